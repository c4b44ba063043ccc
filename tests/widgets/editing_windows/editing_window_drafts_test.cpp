#include "editing_window_fixture.h"

#include <cstdio>
#include <ctime>
#include <memory>
#include <set>

#include <gmock/gmock.h>

#include "codeset/codeset_io.h"
#include "support/editing_faults.h"
#include "workspace/drafts.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class EditingWindowDrafts : public EditingWindow {
protected:
  static std::string drafts_folder() {
    return std::string(g_get_user_state_dir()) + "/vantorelle/drafts";
  }
  // The paths of the codeset's drafts; the folder may also have drafts of other tests.
  std::vector<std::string> drafts() const {
    std::vector<std::string> paths;
    const OwnedText digest(g_compute_checksum_for_string(G_CHECKSUM_SHA256, path().c_str(), -1));
    if (path_exists(drafts_folder())) {
      for (const std::string &entry : list_folder(drafts_folder())) {
        if (entry.starts_with(digest.get())) {
          paths.push_back(drafts_folder() + "/" + entry);
        }
      }
    }
    return paths;
  }
  // Contents of the only draft; "" when there is none.
  std::string draft() const {
    const std::vector<std::string> all = drafts();
    EXPECT_LE(all.size(), 1U);
    return all.empty() ? "" : read_file(all.front());
  }
  // Waits for a draft with this content, which must exist two seconds after the previous step. Time
  // in which the machine does not let the program run does not count.
  void expect_draft(const std::string &content) {
    auto wait = std::make_shared<Wait>(2 * G_USEC_PER_SEC);
    auto is_late = std::make_shared<bool>(false);
    script.then([wait] { *wait = Wait(2 * G_USEC_PER_SEC); });
    script.when(
        "the draft",
        [this, content, wait, is_late] {
          *is_late = wait->is_too_long();
          return draft() == content;
        },
        [wait, is_late] { EXPECT_FALSE(*is_late) << describe_failure(*wait, "the draft"); });
  }
  // Makes the folder of drafts impossible to create, and takes this back.
  static void block_drafts() {
    const std::string state = g_get_user_state_dir();
    std::rename(state.c_str(), (state + "-away").c_str());
    write_file(state, "a file");
    take_draft_count();
  }
  static void unblock_drafts() {
    const std::string state = g_get_user_state_dir();
    std::remove(state.c_str());
    std::rename((state + "-away").c_str(), state.c_str());
  }
  // Leaves a draft of this time, as a program that has ended does, beside an older file.
  void leave_draft(const std::string &content, std::time_t seconds = 1'700'000'000) const {
    const TemporaryFolder elsewhere;
    write_file(elsewhere / "codeset", content);
    const OwnedCodeset codeset = v_codeset_io_read_from_file((elsewhere / "codeset").c_str());
    const OwnedDraft left = v_draft_open(path().c_str());
    v_draft_write(left.get(), codeset.get());
    set_modification_time(left->path.get(), seconds);
    if (path_exists(path())) {
      set_modification_time(path(), seconds - 1);
    }
  }
  static std::string date_and_time(std::time_t seconds) {
    char time[100];
    std::tm local;
    EXPECT_GT(std::strftime(time, sizeof time, "%c", localtime_r(&seconds, &local)), 0U);
    return time;
  }
  static std::string restore_question(std::time_t seconds = 1'700'000'000) {
    return "Unsaved changes to this codeset were found, from " + date_and_time(seconds) +
           ". Restore them?";
  }

  const std::string newer = codeset_file({"<name lang=\"sv\">Nyare</name>"}, {{"7", "Fold"}});
};

void delete_first_name() {
  for (GtkWidget *button : find_widgets(name_editor(), GTK_TYPE_BUTTON)) {
    GtkWidget *table = gtk_widget_get_parent(button);
    guint top = 0;
    if (GTK_IS_TABLE(table)) {
      gtk_container_child_get(GTK_CONTAINER(table), button, "top-attach", &top, nullptr);
      if (top == 0) {
        gtk_button_clicked(GTK_BUTTON(button));
        return;
      }
    }
  }
}

struct Change {
  const char *what;
  std::function<void()> act;
  std::vector<std::string> head;
};

} // namespace

TEST_F(EditingWindowDrafts, AreNotWrittenWithoutAChange) {
  edit_code(1);
  script.on(dialog_title, [] { gtk_window_close(top_window()); });
  // A draft would exist two seconds after a change.
  check([] {});
  script.holds_for(2500, "no draft", [this] { return drafts().empty(); });
  run_until_closed();
}

TEST_F(EditingWindowDrafts, ContainEachChangeOfAFieldWithinTwoSeconds) {
  const std::string name_sv = "<name lang=\"sv\">Papper</name>";
  const std::string name_en = "<name lang=\"en-uk\">Paper</name>";
  const std::string author = "<author lang=\"sv\">\xc5sa</author>";
  const std::string version = "<version>1.2</version>";
  const Change changes[] = {
      {"a name",
       [] { enter(name_editor(), 0, "Card"); },
       {"<name lang=\"en-uk\">Card</name>", name_sv, author, version}},
      {"a deleted name", [] { delete_first_name(); }, {name_sv, author, version}},
      {"a language",
       [] { gtk_combo_box_set_active(languages_of(author_editor())[0], 0); },
       {name_en, name_sv, "<author lang=\"en-uk\">\xc5sa</author>", version}},
      {"an added author",
       [] {
         add_row(author_editor());
         enter(author_editor(), 1, "Anna");
       },
       {name_en, name_sv, author, "<author lang=\"en-uk\">Anna</author>", version}},
      {"a version",
       [] { gtk_entry_set_text(version_entry(), "2"); },
       {name_en, name_sv, author, "<version>2</version>"}},
      {"no version", [] { gtk_entry_set_text(version_entry(), ""); }, {name_en, name_sv, author}},
      {"no name",
       [] {
         enter(name_editor(), 0, "");
         enter(name_editor(), 1, " ");
       },
       {"<name lang=\"\">paper.codeset</name>", author, version}},
  };
  for (const Change &change : changes) {
    SCOPED_TRACE(change.what);
    check(change.act);
    expect_draft(codeset_file(change.head, paper_codes));
    run_until_closed();
    EXPECT_THAT(drafts(), IsEmpty());
    EXPECT_EQ(read_file(path()), paper_file);
  }
}

TEST_F(EditingWindowDrafts, ContainEachChangeOfTheCodes) {
  add_code("3", "Fold");
  check([] {});
  expect_draft(
      codeset_file(paper_head, {{"1", "Tear"}, {"2", "Loss"}, {"3", "Fold"}, {"10", "Stain"}}));
  edit_code(0);
  enter_remark("4", "Torn");
  check([] {});
  expect_draft(
      codeset_file(paper_head, {{"2", "Loss"}, {"3", "Fold"}, {"4", "Torn"}, {"10", "Stain"}}));
  delete_code(0);
  check([] {});
  expect_draft(codeset_file(paper_head, {{"3", "Fold"}, {"4", "Torn"}, {"10", "Stain"}}));
  run_until_saved();
  EXPECT_THAT(drafts(), IsEmpty());
}

TEST_F(EditingWindowDrafts, ContainACodeThatIsBeingTyped) {
  check([] {});
  script.click("Add new");
  type_remark("3", "Fold");
  expect_draft(
      codeset_file(paper_head, {{"1", "Tear"}, {"2", "Loss"}, {"3", "Fold"}, {"10", "Stain"}}));
  // Text in the open dialog is only in the draft until it is confirmed.
  script.on(dialog_title, [this] { EXPECT_EQ(read_file(path()), paper_file); });
  type_remark("3", "Folded");
  const std::string folded =
      codeset_file(paper_head, {{"1", "Tear"}, {"2", "Loss"}, {"3", "Folded"}, {"10", "Stain"}});
  expect_draft(folded);
  script.click("OK");
  script.on(title(), [this, folded] {
    EXPECT_THAT(code_rows(), ElementsAre("1. Tear", "2. Loss", "3. Folded", "10. Stain"));
    EXPECT_EQ(draft(), folded);
  });
  run_until_closed();
}

TEST_F(EditingWindowDrafts, ContainACodeThatIsBeingRetyped) {
  edit_code(1);
  type_remark("20", "Lost");
  expect_draft(codeset_file(paper_head, {{"1", "Tear"}, {"10", "Stain"}, {"20", "Lost"}}));
  script.click("Cancel");
  expect_codes({"1. Tear", "2. Loss", "10. Stain"});
  run_until_closed();
}

TEST_F(EditingWindowDrafts, MarkACodeThatIsMissingOrTakenWhileItIsBeingTyped) {
  const std::pair<const char *, Codes> typed[] = {
      {" ", {{"1", "Tear"}, {"2", "Loss"}, {"10", "Stain"}, {"?", "Fold"}}},
      {"2", {{"1", "Tear"}, {"2", "Loss"}, {"2?", "Fold"}, {"10", "Stain"}}},
  };
  check([] {});
  script.click("Add new");
  for (const auto &[code, codes_of_draft] : typed) {
    type_remark(code, "Fold");
    expect_draft(codeset_file(paper_head, codes_of_draft));
  }
  script.click("Cancel");
  run_until_closed();
}

TEST_F(EditingWindowDrafts, AreAsBeforeWhenWhatIsTypedIsCancelled) {
  // Without another change there is no draft afterwards.
  check([] {});
  script.click("Add new");
  type_remark("3", "Fold");
  script.when(
      "the draft", [this] { return !drafts().empty(); }, [] {});
  script.click("Cancel");
  script.on(title(), [] {});
  script.holds_for(1500, "no draft", [this] { return drafts().empty(); });
  // The same when it is confirmed but is what it was before.
  edit_code(0);
  type_remark("1", "Torn");
  script.when(
      "the draft", [this] { return !drafts().empty(); }, [] {});
  type_remark("1", "Tear");
  script.click("OK");
  script.on(title(), [] {});
  script.holds_for(1500, "no draft", [this] { return drafts().empty(); });
  // With another change that one is in it.
  check([] { gtk_entry_set_text(version_entry(), "3"); });
  std::vector<std::string> head = paper_head;
  head[3] = "<version>3</version>";
  expect_draft(codeset_file(head, paper_codes));
  script.click("Add new");
  type_remark("3", "Fold");
  expect_draft(codeset_file(head, {{"1", "Tear"}, {"2", "Loss"}, {"3", "Fold"}, {"10", "Stain"}}));
  script.click("Cancel");
  expect_draft(codeset_file(head, paper_codes));
  run_until_closed();
}

TEST_F(EditingWindowDrafts, AreWrittenDuringTypingAndUnderOtherWindows) {
  // A key every 100 milliseconds, for three seconds at most.
  struct Typing {
    int keys = 0;
    std::set<std::string> drafts;
    bool is_over() const { return keys == 30 || drafts.size() == 2; }
  };
  const auto typing = std::make_shared<Typing>();
  const auto press_next = std::make_shared<std::function<void()>>();
  *press_next = [this, typing, next = std::weak_ptr(press_next)] {
    gtk_entry_set_text(version_entry(), std::to_string(++typing->keys).c_str());
    if (const std::string seen = draft(); !seen.empty()) {
      typing->drafts.insert(seen);
    }
    if (!typing->is_over()) {
      after(100, *next.lock());
    }
  };
  check([press_next] { (*press_next)(); });
  script.when(
      "the last key", [typing] { return typing->is_over(); },
      [typing] { EXPECT_EQ(typing->drafts.size(), 2U); });
  script.click("Add new");
  script.on(dialog_title, [] {});
  script.when(
      "the draft of the last key",
      [this, typing] {
        std::vector<std::string> head(paper_head.begin(), paper_head.end() - 1);
        head.push_back("<version>" + std::to_string(typing->keys) + "</version>");
        return draft() == codeset_file(head, paper_codes);
      },
      [] {});
  script.click("Cancel");
  run_until_closed();
}

TEST_F(EditingWindowDrafts, ContainBothTextsWhenALanguageAppearsTwice) {
  // Both names are Swedish now.
  check([] {
    enter(name_editor(), 0, "Card");
    gtk_combo_box_set_active(languages_of(name_editor())[0], 1);
  });
  std::vector<std::string> head = {"<name lang=\"sv\">Card / Papper</name>", paper_head[2],
                                   paper_head[3]};
  expect_draft(codeset_file(head, paper_codes));
  check([] { gtk_entry_set_text(version_entry(), "3"); });
  head[2] = "<version>3</version>";
  expect_draft(codeset_file(head, paper_codes));
  // Only in the draft: the fields are as they were, and refused.
  expect_refused_save("Each language may only appear once. Language \"sv\" appears several times.");
  check([] { EXPECT_EQ(shown_rows(name_editor()), "Swedish [sv]=Card\nSwedish [sv]=Papper\n"); });
  run_until_closed();
}

TEST_F(EditingWindowDrafts, ContainATextInAnUnknownLanguageWithoutItsTag) {
  write_file(path(), codeset_file({"<name lang=\"pl\">Papier</name>", "<version>1</version>"},
                                  {{"1", "Tear"}}));
  check([] { enter(name_editor(), 0, "Papiery"); });
  expect_draft(
      codeset_file({"<name lang=\"\">Papiery</name>", "<version>1</version>"}, {{"1", "Tear"}}));
  run_until_closed();
}

TEST_F(EditingWindowDrafts, KeepTheLastCodesWhenAllAreDeleted) {
  for (int i = 0; i < 2; i++) {
    delete_code(0);
    check([] {});
  }
  const std::string last = codeset_file(paper_head, {{"10", "Stain"}});
  expect_draft(last);
  delete_code(0);
  // The next draft would be written a second later.
  check([] {});
  script.holds_for(1500, "the last draft", [this, last] { return draft() == last; });
  run_until_closed();
  EXPECT_THAT(drafts(), IsEmpty());
}

TEST_F(EditingWindowDrafts, StayUntilClosingIsConfirmed) {
  check([] { gtk_entry_set_text(version_entry(), "2"); });
  script.when(
      "the draft", [this] { return !drafts().empty(); }, [] {});
  script.click("Close");
  answer_question("gtk-cancel");
  check([this] { EXPECT_THAT(drafts(), testing::SizeIs(1)); });
  run_until_closed();
  EXPECT_THAT(drafts(), IsEmpty());
}

// The change is made just before the window closes.
TEST_F(EditingWindowDrafts, AreRemovedWhenTheWindowIsClosedOrSaved) {
  for (const bool is_saved : {false, true}) {
    check([] { gtk_entry_set_text(version_entry(), "2"); });
    if (is_saved) {
      script.click("Save codeset");
    } else {
      close_without_saving();
    }
    EXPECT_EQ(run(), is_saved ? 1 : 0);
    // A draft that is still due would be written a second after the change.
    EXPECT_TRUE(holds_for(1500, "no draft", [this] { return drafts().empty(); }));
  }
}

TEST_F(EditingWindowDrafts, ContainTheLastChangeOfADestroyedWindow) {
  check([] {
    enter(name_editor(), 0, "Card");
    gtk_widget_destroy(window());
  });
  EXPECT_EQ(run(), 0);
  std::vector<std::string> head = paper_head;
  head[0] = "<name lang=\"en-uk\">Card</name>";
  EXPECT_EQ(draft(), codeset_file(head, paper_codes));
}

TEST_F(EditingWindowDrafts, StayWhenASaveFails) {
  check([this] {
    gtk_entry_set_text(version_entry(), "2");
    std::remove(path().c_str());
    make_folder(path());
  });
  expect_refused_save("Cannot access file.\n\nCannot unlink file.\n\nError 21: Is a directory");
  std::vector<std::string> head = paper_head;
  head[3] = "<version>2</version>";
  check([this, head] {
    EXPECT_EQ(draft(), codeset_file(head, paper_codes));
    std::remove(path().c_str());
  });
  run_until_saved();
  EXPECT_EQ(read_file(path()), codeset_file(head, paper_codes));
  EXPECT_THAT(drafts(), IsEmpty());
}

TEST_F(EditingWindowDrafts, ShowNoErrorWhenTheyCannotBeWritten) {
  block_drafts();
  check([] { gtk_entry_set_text(version_entry(), "2"); });
  script.when(
      "a draft that fails", [] { return take_draft_count() > 0; }, [] {});
  script.then([this] { EXPECT_TRUE(is_on_top(title())); });
  run_until_saved();
  unblock_drafts();
}

TEST_F(EditingWindowDrafts, AreWrittenAsSoonAsTheyCanBe) {
  block_drafts();
  check([] { gtk_entry_set_text(version_entry(), "2"); });
  script.when(
      "a draft that fails", [] { return take_draft_count() > 0; }, unblock_drafts);
  std::vector<std::string> head = paper_head;
  head[3] = "<version>2</version>";
  script.when(
      "the draft", [this, head] { return draft() == codeset_file(head, paper_codes); }, [] {});
  run_until_closed();
}

TEST_F(EditingWindowDrafts, AreRestoredAndSaved) {
  leave_draft(newer);
  script.answer("Question", restore_question(), "Yes");
  check([] {
    EXPECT_EQ(shown_rows(name_editor()), "Swedish [sv]=Nyare\n");
    EXPECT_EQ(shown_rows(author_editor()), "English/United Kingdom [en-uk]=\n");
    EXPECT_STREQ(gtk_entry_get_text(version_entry()), "");
    EXPECT_THAT(code_rows(), ElementsAre("7. Fold"));
  });
  check([this] {
    EXPECT_EQ(read_file(path()), paper_file);
    EXPECT_EQ(draft(), newer);
  });
  run_until_saved();
  EXPECT_EQ(read_file(path()), newer);
  EXPECT_THAT(drafts(), IsEmpty());
}

// By a colleague's copy or by another program; restoring and saving would undo that.
TEST_F(EditingWindowDrafts, AreOfferedWithAWarningWhenTheFileWasChangedLater) {
  leave_draft(newer);
  set_modification_time(path(), 1'700'000'060);
  const std::string question =
      "Unsaved changes to this codeset were found, from " + date_and_time(1'700'000'000) +
      ". The file was changed after that, at " + date_and_time(1'700'000'060) +
      ", and will be replaced if you save them. Restore them?";
  script.dismiss("Question", question);
  expect_codes({"7. Fold"});
  check([] { gtk_widget_destroy(window()); });
  run();
  script.answer("Question", question, "No");
  expect_codes({"1. Tear", "2. Loss", "10. Stain"});
  run_until_closed();
}

TEST_F(EditingWindowDrafts, AreRestoredByDefault) {
  leave_draft(newer);
  script.when_active("Question", [] {
    auto *icon = find_widget<GtkImage>(GTK_WIDGET(top_window()), GTK_TYPE_IMAGE);
    const char *icon_name = nullptr;
    gtk_image_get_icon_name(icon, &icon_name, nullptr);
    EXPECT_STREQ(icon_name, "dialog-question");
  });
  script.dismiss("Question", restore_question());
  expect_codes({"7. Fold"});
  run_until_closed();
  EXPECT_THAT(drafts(), IsEmpty());
}

TEST_F(EditingWindowDrafts, AreRemovedWhenTheyAreNotWanted) {
  leave_draft(newer);
  script.answer("Question", restore_question(), "No");
  check([this] {
    EXPECT_THAT(code_rows(), ElementsAre("1. Tear", "2. Loss", "10. Stain"));
    EXPECT_THAT(drafts(), IsEmpty());
  });
  run_until_closed();
}

TEST_F(EditingWindowDrafts, AreKeptWhenARestoredSessionEndsAgain) {
  leave_draft(newer);
  script.answer("Question", restore_question(), "Yes");
  check([] { gtk_widget_destroy(window()); });
  EXPECT_EQ(run(), 0);
  EXPECT_EQ(draft(), newer);
  script.answer("Question", restore_question(), "Yes");
  check([] { gtk_entry_set_text(version_entry(), "9"); });
  const std::string newest =
      codeset_file({"<name lang=\"sv\">Nyare</name>", "<version>9</version>"}, {{"7", "Fold"}});
  expect_draft(newest);
  check([] { gtk_widget_destroy(window()); });
  run();
  EXPECT_EQ(draft(), newest);
}

TEST_F(EditingWindowDrafts, AreOfferedForAMissingOrBrokenFile) {
  for (const char *content : {"", "<codeset><name lang='sv'>Cut o"}) {
    std::remove(path().c_str());
    if (*content != '\0') {
      write_file(path(), content);
    }
    leave_draft(newer);
    script.answer("Question", restore_question(), "Yes");
    expect_codes({"7. Fold"});
    run_until_saved();
    EXPECT_EQ(read_file(path()), newer);
  }
}

TEST_F(EditingWindowDrafts, ThatAreDeclinedLetABrokenFileShowItsError) {
  write_file(path(), "<codesets/>");
  leave_draft(newer);
  script.answer("Question", restore_question(), "No");
  script.answer("Error",
                "Error when loading the codeset file:\n\n" + path() + "\n\nNot a codeset file.",
                "Close");
  EXPECT_EQ(run(), 0);
  EXPECT_THAT(drafts(), IsEmpty());
}

TEST_F(EditingWindowDrafts, ThatCannotBeReadAreSetAsideWithoutAQuestion) {
  leave_draft(newer);
  write_file(drafts().at(0), "broken");
  expect_codes({"1. Tear", "2. Loss", "10. Stain"});
  run_until_closed();
  EXPECT_THAT(drafts(), ElementsAre(testing::EndsWith(".unreadable")));
  EXPECT_EQ(draft(), "broken");
}

TEST_F(EditingWindowDrafts, StayWhenTheFileCannotBeExamined) {
  std::remove(path().c_str());
  const std::string blocked = folder / "file";
  write_file(blocked, "");
  name = "file/paper.codeset";
  leave_draft(newer);
  script.answer("Error", "Something went wrong when accessing the codeset file:\n\n" + path(),
                "Close");
  EXPECT_EQ(run(), 0);
  EXPECT_EQ(draft(), newer);
}

TEST_F(EditingWindowDrafts, OfARunningProgramAreNotOffered) {
  const OwnedDraft running = v_draft_open(path().c_str());
  const OwnedCodeset codeset = v_codeset_io_read_from_file(path().c_str());
  v_draft_write(running.get(), codeset.get());
  check([this] {
    EXPECT_THAT(code_rows(), ElementsAre("1. Tear", "2. Loss", "10. Stain"));
    gtk_entry_set_text(version_entry(), "2");
  });
  script.when(
      "a draft of its own", [this] { return drafts().size() == 2; }, [] {});
  run_until_closed();
  EXPECT_THAT(drafts(), ElementsAre(running->path.get()));
  v_draft_remove(running.get());
}
