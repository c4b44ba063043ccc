#include "drafts_fixture.h"

#include <csignal>
#include <filesystem>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "codeset/codeset_io.h"
#include "support/child_process.h"

using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;
using testing::SizeIs;

// ---- Writing ------------------------------------------------------------------------------------

TEST_F(Drafts, NothingIsOnTheDiskBeforeTheFirstDraft) {
  const OwnedDraft draft = open();
  EXPECT_EQ(draft->left_behind, nullptr);
  v_draft_remove(draft.get());
  EXPECT_FALSE(path_exists(home_folder() + "/.local"));
}

TEST_F(Drafts, ADraftIsACodesetFileForItsOwnerOnly) {
  const mode_t old_mask = umask(0);
  const OwnedDraft draft = open();
  OwnedCodeset codeset = codeset_with({{"sv", "Papper & p\xE4rm"}}, {{"7", {{"", "V\xE5gor"}}}});
  codeset->author = langstr_of({{"en-uk", "Anna"}});
  codeset->version = copy_text("1.2");
  EXPECT_TRUE(v_draft_write(draft.get(), codeset.get()));
  umask(old_mask);
  EXPECT_THAT(names(), ElementsAre(EndsWith(".paper.codeset")));
  EXPECT_EQ(read_file(only_draft()), "<?xml version=\"1.0\" encoding=\"iso-8859-1\"?>\n"
                                     "\n"
                                     "<codeset>\n"
                                     "\n"
                                     "\t<name lang=\"sv\">Papper &amp; p\xE4rm</name>\n"
                                     "\t<author lang=\"en-uk\">Anna</author>\n"
                                     "\t<version>1.2</version>\n"
                                     "\n"
                                     "\t<remark>\n"
                                     "\t\t<code>7</code>\n"
                                     "\t\t<description lang=\"\">V\xE5gor</description>\n"
                                     "\t</remark>\n"
                                     "\n"
                                     "</codeset>\n");
  EXPECT_EQ(permissions_of(only_draft()), 0600U);
  for (const char *made : {"/.local", "/.local/state", "/.local/state/vantorelle"}) {
    EXPECT_EQ(permissions_of(home_folder() + made), 0700U) << made;
  }
  EXPECT_EQ(permissions_of(drafts_folder), 0700U);
  EXPECT_FALSE(path_exists(path));
}

TEST_F(Drafts, ANewerDraftReplacesTheOlderOne) {
  const OwnedDraft draft = open();
  v_draft_write(draft.get(), paper("Old").get());
  const std::string file = only_draft();
  v_draft_write(draft.get(), paper("New").get());
  EXPECT_EQ(only_draft(), file);
  EXPECT_EQ(permissions_of(file), 0600U);
  const OwnedCodeset codeset = v_codeset_io_read_from_file(file.c_str());
  EXPECT_EQ(translations_of(codeset->name).at(0).second, "New");
}

TEST_F(Drafts, ACodesetWithoutANameIsNamedAfterItsFile) {
  const std::pair<const char *, const char *> files[] = {
      {"paper.codeset", "paper.codeset"},
      {"my paper.codeset", "my paper.codeset"},
      {"p\xC3\xA4pper <&>.codeset", "p\xE4pper <&>.codeset"},
      {"\xE2\x82\xAC\n1\xC2\x85.codeset", "??1?.codeset"},
  };
  for (const auto &[file, name] : files) {
    path = folder / file;
    const OwnedCodeset codeset = codeset_with({});
    leave_behind(codeset.get());
    EXPECT_EQ(codeset->name, nullptr);
    const OwnedDraft draft = open();
    ASSERT_TRUE(draft->left_behind) << file;
    EXPECT_EQ(translations_of(draft->left_behind->name), (Translations{{"", name}}));
    v_draft_remove(draft.get());
  }
}

TEST_F(Drafts, ACodesetWithoutRemarksKeepsTheOlderDraft) {
  const OwnedDraft draft = open();
  v_draft_write(draft.get(), codeset_with({{"sv", "P"}}, {}).get());
  EXPECT_THAT(names(), IsEmpty());
  v_draft_write(draft.get(), paper("Full").get());
  v_draft_write(draft.get(), codeset_with({{"sv", "Empty"}}, {}).get());
  const OwnedCodeset codeset = v_codeset_io_read_from_file(only_draft().c_str());
  EXPECT_EQ(translations_of(codeset->name).at(0).second, "Full");
}

TEST_F(Drafts, KeepsCodesThatACodesetFileCannotHold) {
  const Remarks odd = {{"A&B", {{"sv", "1"}}},
                       {"a<b", {{"sv", "2"}}},
                       {"x&amp;", {{"sv", "3"}}},
                       {"y]]>", {{"sv", "4"}}}};
  leave_behind(codeset_with({{"sv", "P"}}, odd).get());
  const OwnedDraft draft = open();
  ASSERT_TRUE(draft->left_behind);
  EXPECT_THAT(remarks_of(draft->left_behind->remarks), testing::UnorderedElementsAreArray(odd));
}

TEST_F(Drafts, WorksForLongAndUnusualFileNames) {
  std::string two_bytes_each;
  for (int i = 0; i < 123; i++) {
    two_bytes_each += "\xC3\xA5";
  }
  std::string three_bytes_each;
  for (int i = 0; i < 82; i++) {
    three_bytes_each += "\xE2\x82\xAC";
  }
  std::string deep = folder.path();
  for (int i = 0; i < 12; i++) {
    deep += "/" + std::string(250, 'd');
  }
  for (const std::string &file :
       {folder / std::string(246, 'n') + ".codeset", folder / two_bytes_each + ".codeset",
        folder / "x" + two_bytes_each + ".codeset", folder / three_bytes_each + ".codeset",
        deep + "/paper.codeset", folder / "%s%n \\ \" *?.codeset"}) {
    path = file;
    leave_behind(paper().get());
    EXPECT_THAT(only_draft(), EndsWith(".codeset"));
    const OwnedDraft draft = open();
    EXPECT_EQ(left_name(draft), "Paper") << file;
    v_draft_remove(draft.get());
    EXPECT_THAT(names(), IsEmpty());
  }
}

// ---- Left behind --------------------------------------------------------------------------------

TEST_F(Drafts, IsFoundWithItsTimeAfterItsProgramHasEnded) {
  const std::string file = leave_behind(paper().get());
  set_modification_time(file, 1'700'000'000);
  const OwnedDraft draft = open();
  ASSERT_TRUE(draft->left_behind);
  EXPECT_EQ(translations_of(draft->left_behind->name), (Translations{{"en-uk", "Paper"}}));
  EXPECT_EQ(remarks_of(draft->left_behind->remarks), paper_remarks);
  EXPECT_EQ(draft->left_behind_time, 1'700'000'000);
}

TEST_F(Drafts, IsFoundAfterAKill) {
  const pid_t child = fork();
  if (child == 0) {
    const OwnedDraft draft = open();
    v_draft_write(draft.get(), paper("Killed").get());
    raise(SIGKILL);
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  ASSERT_TRUE(WIFSIGNALED(status));
  EXPECT_EQ(left_name(open()), "Killed");
}

TEST_F(Drafts, BelongsToOneFileUnderEverySpellingOfItsPath) {
  make_folder(folder / "other");
  leave_behind(paper().get());
  for (const std::string &other :
       {folder / "other/paper.codeset", folder / "paper.codeset2", folder / "aper.codeset"}) {
    EXPECT_EQ(left_name(v_draft_open(other.c_str())), "none") << other;
  }
  for (const std::string &same :
       {folder / "other/../paper.codeset", folder / "./paper.codeset", folder / "/paper.codeset"}) {
    EXPECT_EQ(left_name(v_draft_open(same.c_str())), "Paper") << same;
  }
}

TEST_F(Drafts, IgnoresWhatIsNoFileAmongTheDrafts) {
  const std::string draft = leave_behind(paper().get());
  std::filesystem::remove(draft);
  std::filesystem::create_symlink(draft, draft);
  EXPECT_EQ(left_name(open()), "none");
  std::filesystem::remove(draft);
  std::filesystem::create_directory(draft);
  EXPECT_EQ(left_name(open()), "none");
  v_draft_close(nullptr);
}

TEST_F(Drafts, BelongsToTheSameFileThroughALinkedFolder) {
  make_folder(folder / "codesets");
  make_folder(folder / "others");
  std::filesystem::create_directory_symlink(folder / "codesets", folder / "link");
  path = folder / "codesets/paper.codeset";
  leave_behind(paper().get());
  EXPECT_EQ(left_name(v_draft_open((folder / "link/paper.codeset").c_str())), "Paper");
  EXPECT_EQ(left_name(v_draft_open((folder / "others/paper.codeset").c_str())), "none");
  EXPECT_EQ(left_name(v_draft_open((folder / "gone/paper.codeset").c_str())), "none");
  // A save replaces a link by a file, so a link is not the file it names.
  std::filesystem::create_symlink(path, folder / "others/paper.codeset");
  EXPECT_EQ(left_name(v_draft_open((folder / "others/paper.codeset").c_str())), "none");
}

// Such as a disk that is reached through a link and is disconnected while the codeset is edited.
TEST_F(Drafts, BelongsToTheSameFileWhenTheFolderWasAwayDuringTheFirstDraft) {
  make_folder(folder / "disk");
  std::filesystem::create_directory_symlink(folder / "disk", folder / "link");
  path = folder / "link/paper.codeset";
  {
    const OwnedDraft draft = open();
    std::filesystem::rename(folder / "disk", folder / "away");
    EXPECT_TRUE(v_draft_write(draft.get(), paper("Written while away").get()));
  }
  std::filesystem::rename(folder / "away", folder / "disk");
  EXPECT_EQ(left_name(open()), "Written while away");
}

TEST_F(Drafts, BelongsToTheSameFileWhenTheFolderWasAwayFromTheBeginning) {
  std::filesystem::create_directory_symlink(folder / "disk", folder / "link");
  path = folder / "link/paper.codeset";
  leave_behind(paper("New while away").get());
  make_folder(folder / "disk");
  EXPECT_EQ(left_name(open()), "New while away");
}

TEST_F(Drafts, ARunningProgramKeepsItsDraft) {
  const OwnedDraft running = open();
  v_draft_write(running.get(), paper("Running").get());
  const OwnedDraft second = open();
  EXPECT_EQ(left_name(second), "none");
  // It is not offered to another process either.
  EXPECT_EQ(in_child_process([&] { return left_name(open()); }), "none");
  v_draft_write(second.get(), paper("Second").get());
  v_draft_write(running.get(), paper("Running on").get());
  EXPECT_THAT(names(), SizeIs(2));
  EXPECT_EQ(left_name(open()), "none");
  v_draft_remove(second.get());
  EXPECT_THAT(names(), SizeIs(1));
}

TEST_F(Drafts, IsOfferedToOneProgramAtATime) {
  leave_behind(paper().get());
  const OwnedDraft first = open();
  EXPECT_EQ(left_name(first), "Paper");
  EXPECT_EQ(left_name(open()), "none");
}

TEST_F(Drafts, ADraftTakenOverAndLeftAgainIsOfferedAgain) {
  const std::string file = leave_behind(paper("First").get());
  { const OwnedDraft unanswered = open(); }
  {
    const OwnedDraft restored = open();
    EXPECT_EQ(left_name(restored), "First");
  }
  {
    const OwnedDraft restored = open();
    v_draft_write(restored.get(), paper("Second").get());
  }
  EXPECT_EQ(only_draft(), file);
  EXPECT_EQ(left_name(open()), "Second");
}

TEST_F(Drafts, TheNewestIsOfferedAndTheOthersStay) {
  const OwnedDraft one = open();
  const OwnedDraft two = open();
  const OwnedDraft three = open();
  int age = 3;
  for (const OwnedDraft *draft : {&two, &one, &three}) {
    v_draft_write(draft->get(), paper(std::to_string(age).c_str()).get());
    set_modification_time((*draft)->path.get(), 1'700'000'000 - age * 100);
    (*draft)->held.reset();
    age--;
  }
  const OwnedDraft newest = open();
  EXPECT_EQ(left_name(newest), "1");
  v_draft_remove(newest.get());
  EXPECT_EQ(left_name(open()), "2");
  EXPECT_TRUE(v_draft_save_codeset(newest.get(), paper("Saved").get()));
  EXPECT_THAT(names(), SizeIs(2));
  EXPECT_EQ(left_name(open()), "2");
}

TEST_F(Drafts, AnUnreadableDraftIsSetAside) {
  const std::string old = leave_behind(paper("Old").get());
  set_modification_time(old, 1'700'000'000);
  const std::string prefix = path_of(old.substr(old.rfind('/') + 1, 65));
  const std::string contents[] = {std::string(), read_file(old).substr(0, 100), "<codeset/>",
                                  std::string("\0\0\0", 3)};
  for (const std::string &content : contents) {
    const std::string file = prefix + std::to_string(content.size()) + ".paper.codeset";
    write_file(file, content);
    for (int times = 1; times <= 2; times++) {
      EXPECT_EQ(left_name(open()), "Old");
      EXPECT_EQ(read_file(file + ".unreadable"), content);
      EXPECT_FALSE(path_exists(file));
    }
  }
  EXPECT_THAT(names(), SizeIs(1 + std::size(contents)));
}

TEST_F(Drafts, AHalfWrittenDraftIsRemovedUnlessItsProgramRuns) {
  const std::string draft_path = leave_behind(paper().get());
  const std::string half = draft_path + ".new";
  write_file(half, "<codeset>");
  {
    const OwnedHeldFile writing = v_private_files_hold(half.c_str());
    EXPECT_EQ(left_name(open()), "Paper");
    EXPECT_TRUE(path_exists(half));
  }
  EXPECT_EQ(left_name(open()), "Paper");
  EXPECT_FALSE(path_exists(half));
}

TEST_F(Drafts, OtherEntriesOfTheFolderAreKept) {
  const std::string file = leave_behind(paper().get());
  std::filesystem::remove(file);
  make_folder(file);
  const std::string pipe = path_of(file.substr(file.rfind('/') + 1, 65) + "pipe");
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  write_file(path_of("note"), "mine");
  const std::vector<std::string> before = names();
  const OwnedDraft draft = open();
  EXPECT_EQ(left_name(draft), "none");
  EXPECT_EQ(names(), before);
  v_draft_write(draft.get(), paper().get());
  v_draft_remove(draft.get());
  EXPECT_EQ(names(), before);
}
