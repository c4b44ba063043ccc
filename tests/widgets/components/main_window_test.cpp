#include "main_window_fixture.h"

#include <ctime>

#include <sys/stat.h>
#include <unistd.h>

#include <gmock/gmock.h>

#include "support/gui/layout.h"

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

namespace {

int height_of_top_window() {
  int height = 0;
  gtk_window_get_size(top_window(), nullptr, &height);
  return height;
}

} // namespace

// ---- The window ---------------------------------------------------------------------------------

TEST_F(MainWindow, OpensWithTheFocusInTheListAndNothingSelected) {
  make_own({"A", "B"});
  check([] {
    GtkWindow *window = top_window();
    EXPECT_FALSE(has_selection(window));
    EXPECT_EQ(sensitive_buttons(), "");
    for (const char *label : {"Add from file", "Add bundled", "Add new", "Refresh list"}) {
      EXPECT_TRUE(is_sensitive(label)) << label;
    }
    EXPECT_STREQ(gtk_entry_get_text(entry()), "");
    EXPECT_FALSE(gtk_editable_get_editable(GTK_EDITABLE(entry())));
    EXPECT_STREQ(gtk_label_get_text(label_of(GTK_WIDGET(entry()))), "File name of selected item:");
    EXPECT_FALSE(gtk_tree_view_get_headers_visible(list_of(window)));
    EXPECT_STREQ(gtk_tree_view_column_get_title(gtk_tree_view_get_column(list_of(window), 0)),
                 "Item");
    EXPECT_STREQ(atk_object_get_name(gtk_widget_get_accessible(GTK_WIDGET(list_of(window)))),
                 "Remark codeset files");
    EXPECT_FALSE(gtk_window_is_maximized(window));
  });
  run_until_closed();
}

TEST_F(MainWindow, ButtonsAreInTheirOrder) {
  check([] {
    EXPECT_THAT(button_labels(GTK_WIDGET(top_window())),
                ElementsAre("Add from file", "Add bundled", "Add new", "Clone", "Edit",
                            "Save a copy", "Delete", "Refresh list"));
  });
  run_until_closed();
}

// The last button is at the bottom of the column for any height of the window, with a slightly
// larger gap above it than between the others.
TEST_F(MainWindow, RefreshingIsAtTheBottom) {
  check([] {
    GtkWidget *window = GTK_WIDGET(top_window());
    GtkWidget *refresh = GTK_WIDGET(find_button(window, "Refresh list"));
    GtkWidget *place = gtk_widget_get_parent(refresh);
    GtkWidget *column = gtk_widget_get_parent(place);
    EXPECT_EQ(gtk_widget_get_allocated_width(refresh), gtk_widget_get_allocated_width(column));
    EXPECT_EQ(gtk_widget_get_allocated_width(GTK_WIDGET(find_button(window, "Delete"))),
              gtk_widget_get_allocated_width(column));
    int bottom = 0;
    ASSERT_TRUE(gtk_widget_translate_coordinates(
        refresh, column, 0, gtk_widget_get_allocated_height(refresh), nullptr, &bottom));
    EXPECT_EQ(bottom, gtk_widget_get_allocated_height(column));
    int delete_bottom = 0;
    int place_top = 0;
    GtkWidget *button = GTK_WIDGET(find_button(window, "Delete"));
    gtk_widget_translate_coordinates(button, column, 0, gtk_widget_get_allocated_height(button),
                                     nullptr, &delete_bottom);
    gtk_widget_translate_coordinates(place, column, 0, 0, nullptr, &place_top);
    EXPECT_EQ(place_top - delete_bottom, 8 + 10 + 8);
  });
  run_until_closed();
}

TEST_F(MainWindow, ListTakesTheRoomBesideTheColumnOfButtons) {
  make_folders();
  write_file(managed("broken.codeset"), "broken");
  script.when_active(main_title, [] {
    GtkWidget *window = GTK_WIDGET(top_window());
    const auto label = [&](const char *text) { return GTK_WIDGET(find_label(window, text)); };
    const auto button = [&](const char *text) { return GTK_WIDGET(find_button(window, text)); };
    GtkTreeView *list = list_of(top_window());
    EXPECT_EQ(gtk_tree_view_column_get_width(gtk_tree_view_get_column(list, 0)),
              gtk_widget_get_allocated_width(GTK_WIDGET(list)));
    expect_window_layout(
        top_window(), WindowState::not_maximized,
        {{"notice", label(notice_text), corner(), stays, stays, {{0.0f, 0.5f}}},
         {"list", gtk_widget_get_parent(GTK_WIDGET(list)), below("notice", 8), grows, grows},
         {"rows", GTK_WIDGET(list), anywhere(), grows, grows},
         {"label",
          label("File name of selected item:"),
          below("list", 8),
          stays,
          moves,
          {{0.0f, 0.5f}}},
         {"entry", GTK_WIDGET(entry()), below("label", 8), grows, moves},
         {"Add from file", button("Add from file"), beside("list", 8), moves, stays},
         {"Add bundled", button("Add bundled"), below("Add from file", 8), moves, stays},
         {"Add new", button("Add new"), below("Add bundled", 8), moves, stays},
         {"Clone", button("Clone"), below("Add new", 8), moves, stays},
         {"Edit", button("Edit"), below("Clone", 8), moves, stays},
         {"Save a copy", button("Save a copy"), below("Edit", 8), moves, stays},
         {"Delete", button("Delete"), below("Save a copy", 8), moves, stays},
         {"end", button("Delete"), end_of_row("Delete"), moves, stays},
         {"Refresh list", button("Refresh list"), anywhere(), moves, moves}});
  });
  run_until_closed();
}

TEST_F(MainWindow, OmitsButtonsWithoutAFunction) {
  make_own({"A"});
  offer_bundled = OfferBundled::no;
  has_edit_callback = false;
  select("A");
  check([] {
    EXPECT_THAT(button_labels(GTK_WIDGET(top_window())),
                ElementsAre("Add from file", "Save a copy", "Delete", "Refresh list"));
    EXPECT_EQ(sensitive_buttons(), "Save a copy, Delete");
  });
  run_until_closed();
}

TEST_F(MainWindow, SelectionSetsEntryAndButtons) {
  make_own({"A"});
  write_file(managed("b%s<&>.CODESET"), "text:B");
  select("A");
  check([] {
    EXPECT_STREQ(gtk_entry_get_text(entry()), "a.codeset");
    EXPECT_EQ(sensitive_buttons(), "Clone, Edit, Save a copy, Delete");
  });
  select("B");
  check([] {
    EXPECT_STREQ(gtk_entry_get_text(entry()), "b%s<&>.CODESET");
    gtk_tree_selection_unselect_all(gtk_tree_view_get_selection(list_of(top_window())));
    EXPECT_STREQ(gtk_entry_get_text(entry()), "");
    EXPECT_EQ(sensitive_buttons(), "");
  });
  run_until_closed();
}

TEST_F(MainWindow, AFileThatMayNotBeEditedMayNotBeCloned) {
  make_own({"A", "B"});
  cannot_edit = managed("a.codeset");
  select("A");
  check([] { EXPECT_EQ(sensitive_buttons(), "Save a copy, Delete"); });
  select("B");
  check([] { EXPECT_EQ(sensitive_buttons(), "Clone, Edit, Save a copy, Delete"); });
  run_until_closed();
}

// ---- The list -----------------------------------------------------------------------------------

TEST_F(MainWindow, ListsRegularFilesWithTheExtensionSortedByText) {
  make_folders();
  write_file(managed("A.CODESET"), "text:Wood");
  write_file(managed("b.codeset"), "text:Ceramics");
  write_file(managed("c.codeset"), "text:100%s <b>& \u00e5");
  write_file(managed("notes.txt"), "text:Notes");
  write_file(managed("\xff.codeset"), "text:Not UTF-8");
  make_folder(managed("x.codeset"));
  ASSERT_EQ(mkfifo(managed("pipe.codeset").c_str(), 0600), 0);
  ASSERT_EQ(symlink("/nowhere", managed("dangling.codeset").c_str()), 0);
  ASSERT_EQ(symlink("b.codeset", managed("link.codeset").c_str()), 0);
  check([this] {
    EXPECT_THAT(shown_rows(top_window()),
                ElementsAre(ShownRow{"100%s <b>& \u00e5"}, ShownRow{"Ceramics"},
                            ShownRow{"Ceramics"}, ShownRow{"Wood"}));
    EXPECT_FALSE(shows_notice());
    EXPECT_THAT(summarised, Not(Contains(managed("pipe.codeset"))));
  });
  run_until_closed();
}

TEST_F(MainWindow, MissingFolderIsAnEmptyList) {
  check([] { EXPECT_THAT(shown_rows(top_window()), IsEmpty()); });
  run_until_closed();
  EXPECT_FALSE(path_exists(managed()));
}

TEST_F(MainWindow, IncompatibleFilesAreRedAndFirstAndCauseANotice) {
  make_folders();
  write_file(managed("good.codeset"), "text:Ceramics");
  write_file(managed("z%s<&>.codeset"), "broken");
  check([] {
    EXPECT_THAT(shown_rows(top_window()),
                ElementsAre(ShownRow{"z%s<&>.codeset", true}, ShownRow{"Ceramics"}));
    EXPECT_TRUE(shows_notice());
  });
  select("z%s<&>.codeset");
  check([] { EXPECT_STREQ(gtk_entry_get_text(entry()), "z%s<&>.codeset"); });
  run_until_closed();
}

TEST_F(MainWindow, TheWindowGrowsAndShrinksWithTheNotice) {
  make_folders();
  write_file(managed("good.codeset"), "text:Ceramics");
  int minimum_height = 0;
  check([this, &minimum_height] {
    minimum_height = height_of_top_window();
    write_file(managed("bad.codeset"), "broken");
  });
  script.click("Refresh list");
  script.when(
      "the window to grow", [&] { return height_of_top_window() > minimum_height; },
      [] { EXPECT_TRUE(shows_notice()); });
  act_on("bad.codeset", "Delete");
  answer_question(deletion_question("bad.codeset"), "Yes");
  script.when(
      "the window to shrink",
      [&] { return is_on_top(main_title) && height_of_top_window() == minimum_height; },
      [] { EXPECT_FALSE(shows_notice()); });
  run_until_closed();
}

TEST_F(MainWindow, RefreshingShowsTheCurrentFilesAndSelectsNothing) {
  make_own({"A", "B"});
  select("A");
  check([this] {
    write_file(managed("c.codeset"), "text:C");
    ASSERT_EQ(unlink(managed("b.codeset").c_str()), 0);
  });
  script.click("Refresh list");
  check([] {
    EXPECT_THAT(shown_texts(top_window()), ElementsAre("A", "C"));
    EXPECT_FALSE(has_selection(top_window()));
    EXPECT_EQ(sensitive_buttons(), "");
    EXPECT_STREQ(gtk_entry_get_text(entry()), "");
  });
  run_until_closed();
}

TEST_F(MainWindow, OverlongTextsDoNotMakeTheWindowOverlong) {
  make_folders();
  write_file(managed("a.codeset"), "text:" + std::string(100'000, 'x'));
  write_file(managed("b.codeset"), "text:B");
  check([] {
    int width = 0;
    gtk_window_get_size(top_window(), &width, nullptr);
    EXPECT_LT(width, 1280);
  });
  run_until_closed();
}

TEST_F(MainWindow, ThousandFilesAreListedAtOnce) {
  make_folders();
  for (int i = 0; i < 1000; i++) {
    const std::string number = std::to_string(1000 + i);
    write_file(managed("n" + number + ".codeset"), "text:Codeset number " + number);
  }
  // Processor time, not wall time: the machine may have other work.
  std::clock_t start = 0;
  check([&start] {
    EXPECT_EQ(shown_texts(top_window()).size(), 1000u);
    select_row(top_window(), "Codeset number 1999");
    start = std::clock();
  });
  script.click("Refresh list");
  check([&start] {
    EXPECT_LT(std::clock() - start, 5 * CLOCKS_PER_SEC);
    EXPECT_EQ(shown_texts(top_window()).size(), 1000u);
    EXPECT_FALSE(has_selection(top_window()));
  });
  run_until_closed();
}

// ---- The place in the list ----------------------------------------------------------------------

namespace {

// The text of the row with the cursor, when no row is selected.
std::string place_in_list() {
  GtkTreeView *list = list_of(top_window());
  GtkTreePath *path = nullptr;
  gtk_tree_view_get_cursor(list, &path, nullptr);
  if (path == nullptr || has_selection(top_window())) {
    return "";
  }
  const int row = gtk_tree_path_get_indices(path)[0];
  gtk_tree_path_free(path);
  return shown_texts(top_window()).at(static_cast<std::size_t>(row));
}

bool has_focus_in_list() { return gtk_widget_has_focus(GTK_WIDGET(list_of(top_window()))); }

} // namespace

TEST_F(MainWindow, TheCursorStaysAtTheRowOfTheLastAction) {
  make_own({"A", "B", "C", "D"});
  select("B");
  check([] { gtk_widget_grab_focus(GTK_WIDGET(find_button(GTK_WIDGET(top_window()), "Edit"))); });
  on_edit = [](const std::string &path) { write_file(path, "text:C2"); };
  script.click("Edit");
  check([] {
    EXPECT_EQ(place_in_list(), "C2");
    EXPECT_TRUE(has_focus_in_list());
    EXPECT_EQ(sensitive_buttons(), "");
    EXPECT_STREQ(gtk_entry_get_text(entry()), "");
  });
  act_on("C", "Delete");
  answer_question(deletion_question("C"), "Yes");
  check([] { EXPECT_EQ(place_in_list(), "C2"); });
  act_on("D", "Delete");
  answer_question(deletion_question("D"), "Yes");
  check([] { EXPECT_EQ(place_in_list(), "C2"); });
  act_on("A", "Clone");
  enter_name("z.codeset");
  check([this] {
    EXPECT_EQ(place_in_list(), "A");
    write_file(managed("a0.codeset"), "text:0");
  });
  script.click("Refresh list");
  check([] { EXPECT_EQ(place_in_list(), "A"); });
  run_until_closed();
}
