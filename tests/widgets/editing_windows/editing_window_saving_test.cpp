#include "editing_window_fixture.h"

#include <cstdio>

#include <gmock/gmock.h>

#include "base/error.h"
#include "support/editing_faults.h"

// ---- Saving -------------------------------------------------------------------------------------

TEST_F(EditingWindow, AnUnchangedCodesetIsSavedAsItWas) {
  const std::string bytes = read_file(path());
  check([] {});
  run_until_saved();
  EXPECT_EQ(read_file(path()), bytes);
}

TEST_F(EditingWindow, SavingReportsOneErrorAtATime) {
  name = "new.codeset";
  check([] {
    add_row(author_editor());
    enter(author_editor(), 0, "One");
    enter(author_editor(), 1, "Two");
    gtk_combo_box_set_active(languages_of(author_editor())[1], 0);
  });
  expect_refused_save("There must be at least one remark code in the codeset.");
  add_code("1", "Tear");
  expect_refused_save("The codeset must have a name.");
  check([] { enter(name_editor(), 0, " \u00a0 "); });
  expect_refused_save("The codeset must have a name.");
  check([] {
    add_row(name_editor());
    enter(name_editor(), 0, "N");
    enter(name_editor(), 1, "M");
    gtk_combo_box_set_active(languages_of(name_editor())[0], 1);
  });
  expect_refused_save("Each language may only appear once. Language \"sv\" appears several times.");
  check([] { gtk_combo_box_set_active(languages_of(name_editor())[0], 0); });
  expect_refused_save(
      "Each language may only appear once. Language \"en-uk\" appears several times.");
  check([this] {
    EXPECT_FALSE(path_exists(path()));
    EXPECT_EQ(shown_rows(name_editor()), "English/United Kingdom [en-uk]=N\nSwedish [sv]=M\n");
    EXPECT_EQ(shown_rows(author_editor()),
              "English/United Kingdom [en-uk]=One\nEnglish/United Kingdom [en-uk]=Two\n");
    enter(author_editor(), 1, "");
  });
  run_until_saved();
  EXPECT_EQ(read_file(path()),
            codeset_file({"<name lang=\"en-uk\">N</name>", "<name lang=\"sv\">M</name>",
                          "<author lang=\"en-uk\">One</author>"},
                         {{"1", "Tear"}}));
}

TEST_F(EditingWindow, ALanguageOutsideTheTableCannotBeSaved) {
  write_file(path(), codeset_file({"<name lang=\"pl\">Papier</name>"}, {{"1", "Tear"}}));
  check([] { EXPECT_EQ(shown_rows(name_editor()), "Unknown language [pl]=Papier\n"); });
  expect_refused_save(v_error_message_unknown);
  check([] { gtk_combo_box_set_active(languages_of(name_editor())[0], 1); });
  run_until_saved();
  EXPECT_EQ(read_file(path()), codeset_file({"<name lang=\"sv\">Papier</name>"}, {{"1", "Tear"}}));
}

// The fields are two translations of the name, the author and the version, in this order.
TEST_F(EditingWindow, ReportsAnUnknownErrorWhenAFieldCannotBeRead) {
  for (const int field : {1, 2, 3, 4}) {
    SCOPED_TRACE(field);
    write_paper();
    check([field] {
      v_error_set("Something else.");
      fail_reading_entries_from(field);
    });
    expect_refused_save(v_error_message_unknown);
    check([] { fail_reading_entries_from(0); });
    run_until_closed();
  }
}

TEST_F(EditingWindow, AuthorAndVersionMayBeEmpty) {
  struct {
    const char *typed;
    const char *saved; // null: no version
  } const cases[] = {
      {"", nullptr},       {" ", nullptr},          {" \u00a0 ", nullptr},
      {"  2   b ", "2 b"}, {"%s<&", "%s&lt;&amp;"},
  };
  for (const auto &[typed, saved] : cases) {
    write_paper();
    check([typed = typed] {
      gtk_entry_set_text(version_entry(), typed);
      enter(author_editor(), 0, " ");
    });
    run_until_saved();
    std::vector<std::string> head(paper_head.begin(), paper_head.begin() + 2);
    if (saved != nullptr) {
      head.push_back(std::string("<version>") + saved + "</version>");
    }
    EXPECT_EQ(read_file(path()), codeset_file(head, paper_codes));
  }
}

// The second save reads all fields again, also those that the failed one has read.
TEST_F(EditingWindow, AFailedSaveCanBeTriedAgain) {
  place = folder / "sub";
  make_folder(place);
  write_paper();
  check([this] {
    enter(name_editor(), 0, "Papers");
    gtk_entry_set_text(version_entry(), "2");
    enter(author_editor(), 0, "");
    std::remove(path().c_str());
    std::rename(place.c_str(), (place + "-away").c_str());
  });
  expect_refused_save("Cannot create file.\n\nCannot open file.\n\nError 2: No such file or "
                      "directory");
  check([] {
    EXPECT_EQ(shown_rows(name_editor()),
              "English/United Kingdom [en-uk]=Papers\nSwedish [sv]=Papper\n");
  });
  expect_codes({"1. Tear", "2. Loss", "10. Stain"});
  check([this] {
    enter(name_editor(), 1, "");
    std::rename((place + "-away").c_str(), place.c_str());
  });
  run_until_saved();
  EXPECT_EQ(
      read_file(path()),
      codeset_file({"<name lang=\"en-uk\">Papers</name>", "<version>2</version>"}, paper_codes));
}

TEST_F(EditingWindow, KeepsAFolderThatHasReplacedTheFile) {
  check([this] {
    std::remove(path().c_str());
    make_folder(path());
  });
  expect_refused_save("Cannot access file.\n\nCannot unlink file.\n\nError 21: Is a directory");
  run_until_closed();
  EXPECT_TRUE(path_exists(path()));
}

// ---- Closing ------------------------------------------------------------------------------------

TEST_F(EditingWindow, AsksBeforeClosingInEveryWay) {
  const std::function<void()> ways[] = {
      [] { gtk_button_clicked(find_button(window(), "Close")); },
      [] { gtk_window_close(top_window()); },
      [] { press_key(GDK_KEY_Escape); },
  };
  for (const std::function<void()> &way : ways) {
    write_paper();
    check(way);
    answer_question("gtk-cancel");
    check(way);
    dismiss_question();
    check([] { enter(name_editor(), 0, "Changed"); });
    check(way);
    answer_question("gtk-close");
    EXPECT_EQ(run(), 0);
    EXPECT_EQ(read_file(path()), paper_file);
  }
}

TEST_F(EditingWindow, TheQuestionFocusesTheAnswerThatKeepsTheWork) {
  check([] { enter(name_editor(), 0, "Changed"); });
  check([] { press_key(GDK_KEY_Escape); });
  script.on("Really close?", [] { gtk_window_activate_focus(top_window()); });
  check([] { EXPECT_EQ(gtk_entry_get_text(rows_of(name_editor())[0]), std::string("Changed")); });
  run_until_closed();
}

// The rows are destroyed while one of them is selected.
TEST_F(EditingWindow, ClosesWithASelectedRow) {
  select(1);
  run_until_closed();
}

TEST_F(EditingWindow, SavesWithASelectedRow) {
  select(1);
  run_until_saved();
}

// Something other than the user destroys the window, and its dialog with it.
TEST_F(EditingWindow, MayBeDestroyedTogetherWithItsDialog) {
  const auto destroy_below = [] {
    gtk_widget_destroy(GTK_WIDGET(gtk_window_get_transient_for(top_window())));
  };
  const struct {
    const char *button;
    const char *title;
  } cases[] = {{"Add new", dialog_title}, {"Edit", dialog_title}, {"Close", "Really close?"}};
  for (const auto &[button, over] : cases) {
    write_paper();
    select(0);
    script.click(button);
    script.on(over, destroy_below);
    EXPECT_EQ(run(), 0);
  }
}
