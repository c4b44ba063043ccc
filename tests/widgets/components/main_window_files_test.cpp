#include "main_window_fixture.h"

#include <unistd.h>

#include <gmock/gmock.h>

#include "gui/list_place.h"
#include "support/gui/keys.h"
#include "support/gui/widget_search.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr const char *bundled_question =
    "This item was bundled with Vantorelle. You might want to clone it first, to make your own "
    "independent copy.\n\nProceed anyway?";

} // namespace

// ---- New, clone, edit ---------------------------------------------------------------------------

TEST_F(MainWindow, AddNewEditsAFileThatDoesNotExistYet) {
  make_folders();
  on_edit = [](const std::string &path) {
    EXPECT_FALSE(path_exists(path));
    write_file(path, "text:Made");
  };
  script.click("Add new");
  enter_name("made.codeset");
  expect_texts({"Made"});
  run_until_closed();
  EXPECT_THAT(edited, ElementsAre(managed("made.codeset")));
}

TEST_F(MainWindow, AKeyAddsAFile) {
  make_folders();
  check([] { press_key(GDK_KEY_n, GDK_CONTROL_MASK); });
  enter_name("made.codeset");
  run_until_closed();
  EXPECT_THAT(edited, ElementsAre(managed("made.codeset")));
}

TEST_F(MainWindow, CancelledAddNewRefreshes) {
  make_folders();
  check([this] { write_file(managed("a.codeset"), "text:A"); });
  script.click("Add new");
  script.click("Cancel");
  expect_texts({"A"});
  run_until_closed();
  EXPECT_THAT(edited, IsEmpty());
}

TEST_F(MainWindow, CloneCopiesByteForByteAndEditsNothing) {
  make_folders();
  const std::string bytes = "text:A\r\n\xff" + std::string(1, '\0') + "end";
  write_file(managed("a.codeset"), bytes);
  act_on("A", "Clone");
  enter_name("b.codeset");
  check([] {
    EXPECT_EQ(shown_rows(top_window()).size(), 2u);
    EXPECT_FALSE(has_selection(top_window()));
  });
  run_until_closed();
  EXPECT_EQ(read_file(managed("a.codeset")), bytes);
  EXPECT_EQ(read_file(managed("b.codeset")), bytes);
  EXPECT_THAT(edited, IsEmpty());
}

TEST_F(MainWindow, CancelledCloneRefreshes) {
  make_own({"A"});
  select("A");
  check([this] { write_file(managed("b.codeset"), "text:B"); });
  script.click("Clone");
  script.click("Cancel");
  expect_texts({"A", "B"});
  run_until_closed();
}

TEST_F(MainWindow, CloningADeletedFileFails) {
  make_own({"A"});
  select("A");
  check([this] { ASSERT_EQ(unlink(managed("a.codeset").c_str()), 0); });
  script.click("Clone");
  enter_name("b.codeset");
  script.answer("Error", "An error occured when copying the file.", "Close");
  expect_texts({});
  run_until_closed();
  EXPECT_THAT(list_folder(managed()), IsEmpty());
}

TEST_F(MainWindow, EditsAnOwnFileAtOnceAndRefreshes) {
  make_folders();
  write_file(managed("own.codeset"), "text:A");            // has no namesake
  write_file(managed("changed.codeset"), "text:Changed!"); // differs in one byte
  write_file(delivered("changed.codeset"), "text:Changed.");
  write_file(delivered("other.codeset"), "text:A");
  on_edit = [](const std::string &path) { write_file(path, "text:Edited"); };
  act_on("A", "Edit");
  expect_texts({"Changed!", "Edited"});
  act_on("Changed!", "Edit");
  check([] {
    EXPECT_THAT(shown_texts(top_window()), ElementsAre("Edited", "Edited"));
    EXPECT_FALSE(has_selection(top_window()));
  });
  run_until_closed();
  EXPECT_THAT(edited, ElementsAre(managed("own.codeset"), managed("changed.codeset")));
}

TEST_F(MainWindow, KeysInTheListEditAndDelete) {
  make_own({"A"});
  select("A");
  check([] { press_key(GDK_KEY_Return); });
  select("A");
  check([] { press_key(GDK_KEY_Delete); });
  answer_question(deletion_question("A"), "Yes");
  check([this] { EXPECT_FALSE(path_exists(managed("a.codeset"))); });
  run_until_closed();
  EXPECT_THAT(edited, ElementsAre(managed("a.codeset")));
}

TEST_F(MainWindow, AsksBeforeEditingADeliveredFile) {
  make_own({"A"});
  write_file(delivered("a.codeset"), "text:A");
  act_on("A", "Edit");
  answer_question(bundled_question, "No");
  check([this] {
    EXPECT_THAT(edited, IsEmpty());
    EXPECT_FALSE(has_selection(top_window()));
  });
  act_on("A", "Edit");
  script.dismiss("Question", bundled_question);
  check([this] { EXPECT_THAT(edited, IsEmpty()); });
  act_on("A", "Edit");
  answer_question(bundled_question, "Yes");
  check([this] { EXPECT_THAT(edited, ElementsAre(managed("a.codeset"))); });
  run_until_closed();
}

TEST_F(MainWindow, NoFileCountsAsDeliveredWithoutInstallationFolder) {
  make_own({"A"});
  fake_platform.install_folder.reset();
  act_on("A", "Edit");
  check([this] { EXPECT_THAT(edited, ElementsAre(managed("a.codeset"))); });
  script.click("Add bundled"); // shows no window
  run_until_closed();
}

// ---- Saving a copy and deleting -----------------------------------------------------------------

TEST_F(MainWindow, SavesACopyByteForByte) {
  make_folders();
  const std::string bytes = "text:A\r\n\xff" + std::string(1, '\0') + "end";
  write_file(managed("a.codeset"), bytes);
  act_on("A", "Save a copy");
  script.when(
      "the file chooser", [] { return GTK_IS_FILE_CHOOSER_DIALOG(top_window()); },
      [] {
        EXPECT_STREQ(gtk_window_get_title(top_window()), "Save As");
        const OwnedText name(gtk_file_chooser_get_current_name(GTK_FILE_CHOOSER(top_window())));
        EXPECT_STREQ(name.get(), "a.codeset");
      });
  script.save_as(elsewhere.path(), "copy 100%s.codeset");
  check([] { EXPECT_FALSE(has_selection(top_window())); });
  run_until_closed();
  EXPECT_EQ(read_file(elsewhere / "copy 100%s.codeset"), bytes);
  EXPECT_EQ(read_file(managed("a.codeset")), bytes);
}

TEST_F(MainWindow, CancelledCopyRefreshes) {
  make_own({"A"});
  select("A");
  check([this] { write_file(managed("b.codeset"), "text:B"); });
  script.click("Save a copy");
  script.cancel_chooser();
  expect_texts({"A", "B"});
  run_until_closed();
  EXPECT_THAT(list_folder(elsewhere.path()), IsEmpty());
}

TEST_F(MainWindow, CopyingADeletedFileFails) {
  make_own({"A"});
  select("A");
  check([this] { ASSERT_EQ(unlink(managed("a.codeset").c_str()), 0); });
  script.click("Save a copy");
  script.save_as(elsewhere.path(), "copy.codeset");
  script.answer("Error",
                "An error occured when saving the copy of the file.\n\n" +
                    (elsewhere / "copy.codeset"),
                "Close");
  run_until_closed();
  EXPECT_THAT(list_folder(elsewhere.path()), IsEmpty());
}

TEST_F(MainWindow, AsksBeforeDeletingWithTheText) {
  make_folders();
  write_file(managed("a.codeset"), "text:Paper 100%s <b>&");
  const std::string question = deletion_question("Paper 100%s <b>&");
  act_on("Paper 100%s <b>&", "Delete");
  answer_question(question, "No");
  check([this] { EXPECT_TRUE(path_exists(managed("a.codeset"))); });
  act_on("Paper 100%s <b>&", "Delete");
  script.dismiss("Question", question);
  check([this] { EXPECT_TRUE(path_exists(managed("a.codeset"))); });
  act_on("Paper 100%s <b>&", "Delete");
  answer_question(question, "Yes");
  check([this] {
    EXPECT_FALSE(path_exists(managed("a.codeset")));
    EXPECT_THAT(shown_texts(top_window()), IsEmpty());
    EXPECT_EQ(sensitive_buttons(), "");
    EXPECT_STREQ(gtk_entry_get_text(entry()), "");
  });
  run_until_closed();
}

TEST_F(MainWindow, DeletingOneOfSeveralSelectsNoOther) {
  make_own({"a", "b", "c"});
  act_on("b", "Delete");
  answer_question(deletion_question("b"), "Yes");
  check([] {
    EXPECT_THAT(shown_texts(top_window()), ElementsAre("a", "c"));
    EXPECT_FALSE(has_selection(top_window()));
    EXPECT_EQ(sensitive_buttons(), "");
  });
  run_until_closed();
}

TEST_F(MainWindow, DeletingADeletedFileIsNoError) {
  make_own({"A"});
  select("A");
  check([this] { ASSERT_EQ(unlink(managed("a.codeset").c_str()), 0); });
  script.click("Delete");
  answer_question(deletion_question("A"), "Yes");
  expect_texts({});
  run_until_closed();
}

TEST_F(MainWindow, ShowsThePathWhenAFileCannotBeDeleted) {
  make_own({"A"});
  select("A");
  check([this] {
    ASSERT_EQ(unlink(managed("a.codeset").c_str()), 0);
    make_folder(managed("a.codeset"));
  });
  script.click("Delete");
  answer_question(deletion_question("A"), "Yes");
  script.answer("Error", "Couldn't delete the file.\n\n" + managed("a.codeset"), "Close");
  expect_texts({});
  run_until_closed();
}

// ---- Refreshing ---------------------------------------------------------------------------------

namespace {

GtkTreeView *list_of_window() {
  return find_widget<GtkTreeView>(GTK_WIDGET(top_window()), GTK_TYPE_TREE_VIEW);
}

std::string text_at_top() {
  GtkTreePath *first = nullptr;
  if (!gtk_tree_view_get_visible_range(list_of_window(), &first, nullptr)) {
    return "";
  }
  const int row = gtk_tree_path_get_indices(first)[0];
  gtk_tree_path_free(first);
  return shown_texts(top_window())[static_cast<std::size_t>(row)];
}

// In the list's order; the window has no room for all.
std::vector<std::string> many_texts() {
  std::vector<std::string> texts;
  for (int i = 100; i < 200; ++i) {
    texts.push_back("B" + std::to_string(i));
  }
  return texts;
}

} // namespace

TEST_F(MainWindow, AKeyRefreshesTheList) {
  make_own({"A"});
  check([this] {
    write_file(managed("b.codeset"), "text:B");
    press_key(GDK_KEY_F5);
  });
  expect_texts({"A", "B"});
  run_until_closed();
}

TEST_F(MainWindow, AListAtItsTopShowsANewFirstRow) {
  make_own(many_texts());
  check([this] { write_file(managed("a.codeset"), "text:A"); });
  script.click("Refresh list");
  check([] { EXPECT_EQ(text_at_top(), "A"); });
  run_until_closed();
}

TEST_F(MainWindow, AListElsewhereStaysWhereItIs) {
  make_own(many_texts());
  check([] { v_list_place_show(list_of_window(), 60); });
  std::string before;
  script.when(
      "row 60 is shown", [] { return text_at_top() > many_texts()[40]; },
      [&before] { before = text_at_top(); });
  script.click("Refresh list");
  check([&before] { EXPECT_EQ(text_at_top(), before); });
  run_until_closed();
}

// ---- Destruction of the window during an action -------------------------------------------------

TEST_F(MainWindow, MayBeDestroyedWhileAQuestionIsOpen) {
  make_own({"A"});
  select("A");
  GtkWindow *main_window = nullptr;
  check([&main_window] { main_window = top_window(); });
  script.click("Delete");
  script.when(
      "the question", [] { return GTK_IS_DIALOG(top_window()); },
      [&main_window] { gtk_widget_destroy(GTK_WIDGET(main_window)); });
  run();
  EXPECT_EQ(read_file(managed("a.codeset")), "text:A");
}

TEST_F(MainWindow, MayBeDestroyedWhileANameIsEntered) {
  make_own({"A"});
  select("A");
  GtkWindow *main_window = nullptr;
  check([&main_window] { main_window = top_window(); });
  script.click("Clone");
  script.on("Add new", [&main_window] { gtk_widget_destroy(GTK_WIDGET(main_window)); });
  run();
  EXPECT_THAT(list_folder(managed()), ElementsAre("a.codeset"));
}

TEST_F(MainWindow, MayBeDestroyedWhileAFileIsEdited) {
  make_own({"A"});
  select("A");
  on_edit = [](const std::string &) { gtk_widget_destroy(GTK_WIDGET(top_window())); };
  script.click("Edit");
  run();
  EXPECT_THAT(edited, ElementsAre(managed("a.codeset")));
}
