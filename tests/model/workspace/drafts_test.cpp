#include "workspace/drafts.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <random>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "base/error.h"
#include "codeset/codeset_io.h"
#include "disk_calls.h"
#include "model/workspace/user_folders.h"
#include "support/child_process.h"
#include "support/environment.h"
#include "support/files.h"
#include "support/values/remarks.h"

namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

const Remarks remarks = {{"1", {{"en-uk", "Tear"}}}, {"2", {{"en-uk", "Loss"}}}};

OwnedCodeset codeset_with(const Translations &name, const Remarks &of = remarks) {
  OwnedCodeset codeset = v_codeset_new();
  codeset->name = langstr_of(name);
  codeset->remarks = list_of(of);
  return codeset;
}

OwnedCodeset paper(const char *name = "Paper") { return codeset_with({{"en-uk", name}}); }

void set_time(const std::string &path, std::time_t seconds) {
  const timespec times[] = {{seconds, 0}, {seconds, 0}};
  ASSERT_EQ(utimensat(AT_FDCWD, path.c_str(), times, 0), 0) << path;
}

class Drafts : public testing::Test {
protected:
  std::string path_of(const std::string &name) const { return drafts_folder + "/" + name; }
  // Names of the entries of the drafts folder, none if it does not exist.
  std::vector<std::string> names() const {
    return path_exists(drafts_folder) ? list_folder(drafts_folder) : std::vector<std::string>();
  }
  std::string only_draft() const {
    const std::vector<std::string> all = names();
    EXPECT_THAT(all, SizeIs(1));
    return all.empty() ? "" : path_of(all.front());
  }
  // Moves the file of the codeset into a folder of its own, which a test can delete.
  void use_sub_folder() {
    make_folder(folder / "codesets");
    path = folder / "codesets/paper.codeset";
  }
  OwnedDraft open() const { return v_draft_open(path.c_str()); }
  // Leaves a draft like a program that ends without saving or closing the window. Returns the path
  // of the draft.
  std::string leave_behind(const VCodeset *codeset) const {
    const OwnedDraft draft = v_draft_open(path.c_str());
    draft->left_behind.reset();
    v_draft_write(draft.get(), codeset);
    return draft->path.get();
  }
  // The name of the codeset in a draft that was left behind, or "none".
  static std::string left_name(const OwnedDraft &draft) {
    return draft->left_behind ? translations_of(draft->left_behind->name).at(0).second : "none";
  }

  FreshUserFolders fresh;
  std::string drafts_folder = state_folder() + "/vantorelle/drafts";
  TemporaryFolder folder;
  std::string path = folder / "paper.codeset";
};

} // namespace

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
  v_draft_write(draft.get(), codeset.get());
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
  set_time(file, 1'700'000'000);
  const OwnedDraft draft = open();
  ASSERT_TRUE(draft->left_behind);
  EXPECT_EQ(translations_of(draft->left_behind->name), (Translations{{"en-uk", "Paper"}}));
  EXPECT_EQ(remarks_of(draft->left_behind->remarks), remarks);
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
    set_time((*draft)->path.get(), 1'700'000'000 - age * 100);
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
  set_time(old, 1'700'000'000);
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

// ---- Saving -------------------------------------------------------------------------------------

TEST_F(Drafts, SavingWritesTheFileAndLeavesNoDraft) {
  const OwnedDraft draft = open();
  v_draft_write(draft.get(), paper("Draft").get());
  EXPECT_TRUE(v_draft_save_codeset(draft.get(),
                                   codeset_with({{"sv", "P"}}, {{"A>B", {{"sv", "1"}}}}).get()));
  // The format requires unescaped codes.
  EXPECT_EQ(read_file(path), "<?xml version=\"1.0\" encoding=\"iso-8859-1\"?>\n"
                             "\n"
                             "<codeset>\n"
                             "\n"
                             "\t<name lang=\"sv\">P</name>\n"
                             "\n"
                             "\t<remark>\n"
                             "\t\t<code>A>B</code>\n"
                             "\t\t<description lang=\"sv\">1</description>\n"
                             "\t</remark>\n"
                             "\n"
                             "</codeset>\n");
  EXPECT_THAT(names(), IsEmpty());
}

TEST_F(Drafts, TheDraftIsOnTheDiskWhileTheFileIsReplaced) {
  write_file(path, "old");
  const OwnedDraft draft = open();
  std::vector<std::string> calls;
  {
    const WatchedDiskCalls watched([&](const std::string &call, const std::string &at) {
      std::string name = at;
      for (const auto &[long_name, short_name] :
           {std::pair<std::string, std::string>{drafts_folder, "DRAFTS"},
            {folder.path(), "FOLDER"}}) {
        if (name.starts_with(long_name)) {
          name = short_name + name.substr(long_name.size());
        }
      }
      // The name of a draft has a random part.
      const auto draft_name = name.find("DRAFTS/");
      if (draft_name != std::string::npos) {
        name = name.ends_with(".new") ? "NEW DRAFT" : "DRAFT";
      }
      calls.push_back(call + " " + name);
      return true;
    });
    ASSERT_TRUE(v_draft_save_codeset(draft.get(), paper().get()));
  }
  EXPECT_THAT(calls, ElementsAre("rename NEW DRAFT", "fsync DRAFT", "fsync DRAFTS",
                                 "unlink FOLDER/paper.codeset", "fsync FOLDER/paper.codeset",
                                 "fsync FOLDER", "unlink DRAFT"));
}

TEST_F(Drafts, AFailedSaveKeepsTheDraft) {
  make_folder(path);
  OwnedDraft draft = open();
  EXPECT_FALSE(v_draft_save_codeset(draft.get(), paper("Refused").get()));
  EXPECT_THAT(v_error_get(), testing::StartsWith("Cannot access file.\n\nCannot unlink file."));
  EXPECT_THAT(names(), SizeIs(1));
  EXPECT_EQ(left_name(open()), "none");
  draft.reset();
  draft = open();
  EXPECT_EQ(left_name(draft), "Refused");
  std::filesystem::remove(path);
  EXPECT_TRUE(v_draft_save_codeset(draft.get(), paper("Refused").get()));
  EXPECT_THAT(names(), IsEmpty());
}

TEST_F(Drafts, AFileThatCannotBeSyncedKeepsTheDraft) {
  for (const std::string &failing : {path, std::string(folder.path())}) {
    const OwnedDraft draft = open();
    {
      const WatchedDiskCalls watched([&](const std::string &call, const std::string &at) {
        return call != "fsync" || at != failing;
      });
      EXPECT_TRUE(v_draft_save_codeset(draft.get(), paper().get()));
    }
    EXPECT_TRUE(path_exists(path));
    EXPECT_THAT(names(), SizeIs(1)) << failing;
    v_draft_remove(draft.get());
  }
}

TEST_F(Drafts, AFailureOfTheDraftDoesNotStopASave) {
  for (const char *failing : {"fsync", "rename", "unlink"}) {
    std::filesystem::remove(path);
    const OwnedDraft draft = open();
    const WatchedDiskCalls watched([&](const std::string &call, const std::string &at) {
      return call != failing || !at.starts_with(drafts_folder);
    });
    v_draft_write(draft.get(), paper().get());
    EXPECT_TRUE(v_draft_save_codeset(draft.get(), paper().get())) << failing;
    EXPECT_TRUE(path_exists(path));
  }
}

TEST_F(Drafts, AFailedWriteKeepsOnlyTheOlderDraft) {
  OwnedDraft draft = open();
  v_draft_write(draft.get(), paper("Old").get());
  {
    const WatchedDiskCalls watched(
        [](const std::string &call, const std::string &) { return call != "rename"; });
    v_draft_write(draft.get(), paper("New").get());
  }
  EXPECT_THAT(names(), SizeIs(1));
  EXPECT_EQ(left_name(open()), "none");
  draft.reset();
  EXPECT_EQ(left_name(open()), "Old");
}

// ---- When the file is no substitute for the draft ----------------------------------------------

TEST_F(Drafts, AFileThatCannotHoldTheCodesKeepsTheDraft) {
  for (const char *code : {"A&B", "a<b", "x&amp;", "y]]>"}) {
    const Remarks odd = {{"1", {{"sv", "a"}}}, {code, {{"sv", "b"}}}};
    OwnedDraft draft = open();
    EXPECT_TRUE(v_draft_save_codeset(draft.get(), codeset_with({{"sv", "P"}}, odd).get()));
    draft.reset();
    draft = open();
    ASSERT_TRUE(draft->left_behind) << code;
    EXPECT_EQ(remarks_of(draft->left_behind->remarks), odd);
    // With ordinary codes the file is enough.
    EXPECT_TRUE(v_draft_save_codeset(draft.get(), paper().get()));
    EXPECT_THAT(names(), IsEmpty()) << code;
  }
}

TEST_F(Drafts, AFileThatCanHoldUnusualCodesLeavesNoDraft) {
  const OwnedDraft draft = open();
  const Remarks odd = {{"\"1'", {{"sv", "a & <b> ]]>"}}}, {"a>b]]", {{"sv", "b"}}}};
  EXPECT_TRUE(v_draft_save_codeset(draft.get(), codeset_with({{"sv", "P&"}}, odd).get()));
  EXPECT_THAT(names(), IsEmpty());
  const OwnedCodeset saved = v_codeset_io_read_from_file(path.c_str());
  ASSERT_TRUE(saved);
  EXPECT_THAT(remarks_of(saved->remarks), testing::UnorderedElementsAreArray(odd));
}

namespace {

// Makes a save fail after it has deleted the old file, as on a disk that is full or removed.
void fail_to_save_after_the_old_file_is_gone(VDraft *draft, const std::string &path,
                                             const VCodeset *codeset) {
  const std::filesystem::path folder = std::filesystem::path(path).parent_path();
  {
    const WatchedDiskCalls watched([&](const std::string &call, const std::string &at) {
      if (call == "unlink" && at == path) {
        std::filesystem::remove_all(folder);
      }
      return true;
    });
    EXPECT_FALSE(v_draft_save_codeset(draft, codeset));
  }
  make_folder(folder);
  EXPECT_FALSE(path_exists(path));
}

} // namespace

TEST_F(Drafts, RemovingKeepsTheOnlyCopyAfterAFailedSave) {
  use_sub_folder();
  ASSERT_TRUE(v_codeset_io_write_to_file(paper("Old").get(), path.c_str()));
  OwnedDraft draft = open();
  fail_to_save_after_the_old_file_is_gone(draft.get(), path, paper("New").get());
  v_draft_remove(draft.get());
  draft.reset();
  draft = open();
  EXPECT_EQ(left_name(draft), "New");
  // The user declines it.
  v_draft_remove(draft.get());
  EXPECT_THAT(names(), IsEmpty());
}

TEST_F(Drafts, RemovingAfterAFailedFirstSaveLeavesNothing) {
  use_sub_folder();
  const OwnedDraft draft = open();
  fail_to_save_after_the_old_file_is_gone(draft.get(), path, paper("New").get());
  EXPECT_THAT(names(), SizeIs(1));
  v_draft_remove(draft.get());
  EXPECT_THAT(names(), IsEmpty());
}

TEST_F(Drafts, RemovingAfterALaterSaveLeavesNothing) {
  use_sub_folder();
  ASSERT_TRUE(v_codeset_io_write_to_file(paper("Old").get(), path.c_str()));
  const OwnedDraft draft = open();
  fail_to_save_after_the_old_file_is_gone(draft.get(), path, paper("New").get());
  EXPECT_TRUE(v_draft_save_codeset(draft.get(), paper("New").get()));
  EXPECT_THAT(names(), IsEmpty());
}

TEST_F(Drafts, ARetriedSaveKeepsTheOldFilesPermissions) {
  use_sub_folder();
  ASSERT_TRUE(v_codeset_io_write_to_file(paper("Old").get(), path.c_str()));
  set_permissions(path, 0600);
  const OwnedDraft draft = open();
  fail_to_save_after_the_old_file_is_gone(draft.get(), path, paper("New").get());
  EXPECT_TRUE(v_draft_save_codeset(draft.get(), paper("New").get()));
  EXPECT_EQ(permissions_of(path), 0600U);
  // Permissions that were changed between two saves are kept as well.
  set_permissions(path, 0640);
  EXPECT_TRUE(v_draft_save_codeset(draft.get(), paper("Newer").get()));
  EXPECT_EQ(permissions_of(path), 0640U);
}

TEST_F(Drafts, AFailedDraftIsWrittenAfterTheSaveHasFailedToo) {
  use_sub_folder();
  ASSERT_TRUE(v_codeset_io_write_to_file(paper("Old").get(), path.c_str()));
  OwnedDraft draft = open();
  // As on a full disk, where deleting the old file frees space.
  bool has_room = false;
  {
    const WatchedDiskCalls watched([&](const std::string &call, const std::string &at) {
      if (call == "unlink" && at == path) {
        has_room = true;
        std::filesystem::remove_all(folder / "codesets");
      }
      return has_room || call != "rename";
    });
    EXPECT_FALSE(v_draft_save_codeset(draft.get(), paper("New").get()));
    EXPECT_THAT(v_error_get(), testing::StartsWith("Cannot create file."));
  }
  make_folder(folder / "codesets");
  draft.reset();
  EXPECT_EQ(left_name(open()), "New");
}

// ---- No place for drafts ------------------------------------------------------------------------

// Saving must work even if drafts cannot be written.
void expect_that_saving_works(const std::string &path) {
  const OwnedDraft draft = v_draft_open(path.c_str());
  EXPECT_EQ(draft->left_behind, nullptr);
  v_draft_write(draft.get(), paper("Draft").get());
  EXPECT_TRUE(v_draft_save_codeset(draft.get(), paper("Saved").get())) << v_error_get();
  const OwnedCodeset saved = v_codeset_io_read_from_file(path.c_str());
  ASSERT_TRUE(saved);
  EXPECT_EQ(translations_of(saved->name).at(0).second, "Saved");
  v_draft_remove(draft.get());
}

TEST_F(Drafts, SavesIfAFileIsInPlaceOfAFolder) {
  for (const char *file : {"/.local", "/.local/state", "/.local/state/vantorelle",
                           "/.local/state/vantorelle/drafts"}) {
    const std::filesystem::path blocked = home_folder() + file;
    std::filesystem::create_directories(blocked.parent_path());
    write_file(blocked, "mine");
    expect_that_saving_works(path);
    EXPECT_EQ(read_file(blocked), "mine");
    std::filesystem::remove(blocked);
  }
}

TEST_F(Drafts, RecreatesADeletedStateFolder) {
  const OwnedDraft draft = open();
  v_draft_write(draft.get(), paper().get());
  std::filesystem::remove_all(home_folder() + "/.local");
  v_draft_write(draft.get(), paper("Again").get());
  EXPECT_EQ(permissions_of(drafts_folder), 0700U);
  EXPECT_TRUE(v_draft_save_codeset(draft.get(), paper().get()));
}

TEST_F(Drafts, SavesIfTheStateFolderIsReadOnly) {
  const std::string left = leave_behind(paper("Left").get());
  set_permissions(left, 0644);
  for (const std::string &open_folder :
       {home_folder() + "/..", home_folder(), home_folder() + "/.local", state_folder(),
        state_folder() + "/vantorelle", drafts_folder}) {
    set_permissions(open_folder, 0555);
  }
  set_permissions(folder.path(), 0777);
  EXPECT_EQ(as_ordinary_user([&] {
              expect_that_saving_works(path);
              return HasFailure() ? "failed" : "saved";
            }),
            "saved");
  EXPECT_EQ(list_folder(drafts_folder), std::vector<std::string>{left.substr(left.rfind('/') + 1)});
}

TEST_F(Drafts, AFullDiskKeepsTheOlderDraftWhole) {
  leave_behind(paper("Old").get());
  const std::string file = only_draft();
  const std::string old = read_file(file);
  const Remarks longer = {{"1", {{"sv", std::string(100'000, 'x')}}}};
  for (const unsigned long room : {0UL, 100UL, 4096UL, 50'000UL}) {
    EXPECT_EQ(with_file_size_limit(
                  room,
                  [&] {
                    const OwnedDraft draft = open();
                    v_draft_write(draft.get(), codeset_with({{"sv", "N"}}, longer).get());
                    return left_name(draft);
                  }),
              "Old");
    EXPECT_EQ(only_draft(), file);
    EXPECT_EQ(read_file(file), old);
  }
}

TEST_F(Drafts, LeaveNoDescriptorOpen) {
  const int before = count_open_descriptors();
  leave_behind(paper().get());
  {
    const OwnedDraft draft = open();
    v_draft_write(draft.get(), paper().get());
    EXPECT_EQ(count_open_descriptors(), before + 1);
    EXPECT_TRUE(v_draft_save_codeset(draft.get(), paper().get()));
    EXPECT_EQ(count_open_descriptors(), before);
  }
  EXPECT_EQ(count_open_descriptors(), before);
}

// GLib caches these folders, so the test needs a process of its own.
class DraftsDeathTest : public testing::Test {
protected:
  DraftsDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

TEST_F(DraftsDeathTest, SavesIfTheStateFolderNameIsNotUtf8) {
  const EnvironmentVariable state("VANTORELLE_TEST_STATE_HOME", "/tmp/\xFF");
  EXPECT_EXIT(
      {
        const TemporaryFolder folder;
        expect_that_saving_works(folder / "paper.codeset");
        std::exit(HasFailure() ? 1 : 0);
      },
      testing::ExitedWithCode(0), "");
}

// ---- Kills at random moments --------------------------------------------------------------------

namespace {

long from_environment(const char *variable, long otherwise) {
  const char *value = std::getenv(variable);
  return value == nullptr ? otherwise : std::atol(value);
}

OwnedCodeset codeset_of_version(long version, int remark_count) {
  OwnedCodeset codeset = paper();
  codeset->version = copy_text(std::to_string(version).c_str());
  v_remark_list_destroy_remarks(codeset->remarks.get());
  for (int i = 0; i < remark_count; i++) {
    v_remark_list_add_remark_last(codeset->remarks.get(),
                                  remark_of(std::to_string(i), {{"sv", "Beskrivning"}}));
  }
  return codeset;
}

// The version of a complete codeset, otherwise -1.
long version_of(const VCodeset *codeset, int remark_count) {
  if (codeset == nullptr ||
      remarks_of(codeset->remarks).size() != static_cast<std::size_t>(remark_count)) {
    return -1;
  }
  return std::atol(codeset->version.get());
}

} // namespace

// A child edits and saves in a loop until it is killed. After each kill a draft must be complete,
// and it or the file must hold everything that a finished step has written. VANTORELLE_KILLS sets
// the number of kills, VANTORELLE_SEED repeats their moments.
TEST_F(Drafts, TheWorkIsSafeWheneverTheProgramIsKilled) {
  constexpr int remark_count = 2000;
  const long kills = from_environment("VANTORELLE_KILLS", 40);
  const long seed = from_environment("VANTORELLE_SEED", static_cast<long>(std::random_device()()));
  SCOPED_TRACE("VANTORELLE_SEED=" + std::to_string(seed));
  std::mt19937 random(static_cast<std::mt19937::result_type>(seed));
  std::uniform_int_distribution<int> microseconds(0, 60'000);
  // The newest version that is certainly on the disk. The child sets it.
  auto *finished = static_cast<volatile long *>(
      mmap(nullptr, sizeof(long), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
  ASSERT_NE(static_cast<volatile void *>(finished), MAP_FAILED);
  *finished = 1;
  const OwnedCodeset first = codeset_of_version(1, remark_count);
  ASSERT_TRUE(v_codeset_io_write_to_file(first.get(), path.c_str()));
  for (long kill_number = 0; kill_number < kills && !HasFailure(); kill_number++) {
    const pid_t child = fork();
    if (child == 0) {
      const OwnedDraft draft = v_draft_open(path.c_str());
      draft->left_behind.reset();
      for (long version = *finished + 1;; version++) {
        first->version = copy_text(std::to_string(version).c_str());
        // Some versions are saved without a draft.
        if (version % 3 != 0) {
          v_draft_write(draft.get(), first.get());
          *finished = version;
        }
        if (version % 3 != 1 && v_draft_save_codeset(draft.get(), first.get())) {
          *finished = version;
        }
      }
    }
    usleep(static_cast<useconds_t>(microseconds(random)));
    kill(child, SIGKILL);
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    OwnedDraft draft = open();
    const OwnedCodeset file = v_codeset_io_read_from_file(path.c_str());
    const long in_file = version_of(file.get(), remark_count);
    const long in_draft = version_of(draft->left_behind.get(), remark_count);
    EXPECT_GE(std::max(in_file, in_draft), *finished)
        << "kill " << kill_number << ": file " << in_file << ", draft " << in_draft;
    EXPECT_TRUE(!draft->left_behind || in_draft >= 0) << "The draft is incomplete.";
    EXPECT_THAT(names(), SizeIs(testing::Le(1U)));
    *finished = std::max(in_file, in_draft);
  }
  munmap(const_cast<long *>(finished), sizeof(long));
}
