#include "main_window_fixture.h"

#include <sys/stat.h>
#include <unistd.h>

#include <gmock/gmock.h>

using testing::ElementsAre;

namespace {

constexpr const char *folder_message =
    "The workspace fonts folder does not exist and could not be created.";

} // namespace

TEST_F(MainWindow, AddsAFileByteForByte) {
  make_folders();
  const std::string bytes = "text:New\r\n\xff" + std::string(1, '\0') + "end";
  write_file(elsewhere / "new 100%s <b>&.CODESET", bytes);
  script.click("Add from file");
  script.when(
      "the file chooser", [] { return GTK_IS_FILE_CHOOSER_DIALOG(top_window()); },
      [] {
        EXPECT_STREQ(gtk_window_get_title(top_window()), "Select a file to add");
        GSList *filters = gtk_file_chooser_list_filters(GTK_FILE_CHOOSER(top_window()));
        ASSERT_EQ(g_slist_length(filters), 2u);
        EXPECT_STREQ(gtk_file_filter_get_name(GTK_FILE_FILTER(filters->data)),
                     "Remark codeset files");
        EXPECT_STREQ(gtk_file_filter_get_name(GTK_FILE_FILTER(filters->next->data)), "All files");
        g_slist_free(filters);
      });
  script.choose(elsewhere / "new 100%s <b>&.CODESET");
  check([] { EXPECT_EQ(shown_rows(top_window()).size(), 1u); });
  run_until_closed();
  EXPECT_EQ(read_file(managed("new 100%s <b>&.CODESET")), bytes);
}

TEST_F(MainWindow, CancelledAddingDoesNothing) {
  make_folders();
  write_file(delivered("a.codeset"), "text:A");
  script.click("Add from file");
  script.cancel_chooser();
  script.click("Add bundled");
  script.click("Cancel");
  check([this] { write_file(managed("not_listed.codeset"), "text:A"); });
  expect_texts({});
  run_until_closed();
  EXPECT_THAT(list_folder(managed()), ElementsAre("not_listed.codeset"));
}

TEST_F(MainWindow, AddedFileMustHaveTheExtension) {
  make_folders();
  write_file(elsewhere / "a.txt", "text:A");
  add_from_file(elsewhere / "a.txt");
  script.then([this] { write_file(managed("b.codeset"), "text:B"); });
  script.answer("Error", "The file name must end with \".codeset\".", "Close");
  expect_texts({"B"});
  run_until_closed();
  EXPECT_THAT(list_folder(managed()), ElementsAre("b.codeset"));
}

TEST_F(MainWindow, CreatesNoFolderForAFileThatIsRefusedForItsName) {
  write_file(elsewhere / "a.txt", "text:A");
  add_from_file(elsewhere / "a.txt");
  script.answer("Error", "The file name must end with \".codeset\".", "Close");
  run_until_closed();
  EXPECT_TRUE(list_folder(workspace_folder.path()).empty());
}

TEST_F(MainWindow, CreatesTheMissingFolderForTheFirstFile) {
  write_file(elsewhere / "a.codeset", "text:A");
  add_from_file(elsewhere / "a.codeset");
  expect_texts({"A"});
  run_until_closed();
  EXPECT_EQ(read_file(managed("a.codeset")), "text:A");
  struct stat status;
  ASSERT_EQ(stat(managed().c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0700u);
}

TEST_F(MainWindow, AFileInPlaceOfTheFolderIsAnError) {
  write_file(managed(), "a file");
  write_file(elsewhere / "a.codeset", "text:A");
  add_from_file(elsewhere / "a.codeset");
  script.answer("Error", folder_message, "Close");
  run_until_closed();
  EXPECT_EQ(read_file(managed()), "a file");
}

TEST_F(MainWindow, CreatesNoParentFolders) {
  workspace.folder_path = copy_text((workspace_folder / "gone").c_str());
  write_file(elsewhere / "a.codeset", "text:A");
  add_from_file(elsewhere / "a.codeset");
  script.answer("Error", folder_message, "Close");
  run_until_closed();
  EXPECT_FALSE(path_exists(workspace_folder / "gone"));
}

TEST_F(MainWindow, ShowsTheReasonWhenTheFolderCannotBeExamined) {
  write_file(workspace_folder / "file", "");
  workspace.folder_path = copy_text((workspace_folder / "file").c_str());
  write_file(elsewhere / "a.codeset", "text:A");
  add_from_file(elsewhere / "a.codeset");
  script.answer("Error",
                "Can not access the workspace fonts folder.\n\nCannot get file status.\n\nError "
                "20: Not a directory",
                "Close");
  run_until_closed();
}

TEST_F(MainWindow, AsksBeforeOverwritingWithBothTexts) {
  make_folders();
  write_file(managed("a.codeset"), "text:Old 100%s");
  write_file(elsewhere / "a.codeset", "text:New <b>&");
  for (const char *label : {"No", "Yes"}) {
    add_from_file(elsewhere / "a.codeset");
    script.then([this] { write_file(managed("z.codeset"), "text:Z"); });
    answer_question("Really overwrite \"Old 100%s\" with \"New <b>&\"?", label);
    check([this, label] {
      const bool is_kept = std::string(label) == "No";
      EXPECT_EQ(read_file(managed("a.codeset")), is_kept ? "text:Old 100%s" : "text:New <b>&");
      // The list is refreshed after both answers.
      EXPECT_THAT(shown_texts(top_window()), ElementsAre(is_kept ? "Old 100%s" : "New <b>&", "Z"));
    });
  }
  run_until_closed();
}

TEST_F(MainWindow, AsksBeforeOverwritingWithPathsWhenThereIsNoText) {
  make_folders();
  write_file(managed("a.codeset"), "old");
  write_file(elsewhere / "a.codeset", "new");
  add_from_file(elsewhere / "a.codeset");
  script.dismiss("Question", "Really overwrite \"" + managed("a.codeset") + "\" with \"" +
                                 (elsewhere / "a.codeset") + "\"?");
  run_until_closed();
  EXPECT_EQ(read_file(managed("a.codeset")), "old");
}

TEST_F(MainWindow, AddingAFileOverItselfKeepsIt) {
  make_own({"A"});
  add_from_file(managed("a.codeset"));
  answer_question("Really overwrite \"A\" with \"A\"?", "Yes");
  run_until_closed();
  EXPECT_EQ(read_file(managed("a.codeset")), "text:A");
}

TEST_F(MainWindow, AddsADeliveredFile) {
  make_folders();
  write_file(delivered("a.codeset"), "text:A");
  write_file(delivered("b.codeset"), "text:B");
  script.click("Add bundled");
  script.on(selector_title, [] { select_row(top_window(), "B"); });
  script.click("OK");
  expect_texts({"B"});
  run_until_closed();
  EXPECT_THAT(list_folder(managed()), ElementsAre("b.codeset"));
  EXPECT_EQ(read_file(managed("b.codeset")), "text:B");
}

TEST_F(MainWindow, KeepsTheExistingFileWhenTheNewOneCannotBeOpened) {
  make_folders();
  make_folder(delivered("a.codeset"));
  add_in_vain_over_own_file();
}

TEST_F(MainWindow, KeepsTheExistingFileWhenTheNewOneCannotBeRead) {
  make_folders();
  // A regular file that opens, but whose first byte cannot be read.
  ASSERT_EQ(symlink("/proc/self/mem", delivered("a.codeset").c_str()), 0);
  add_in_vain_over_own_file();
}
