#include "drafts_fixture.h"

#include <cstdlib>
#include <filesystem>

#include "base/error.h"
#include "codeset/codeset_io.h"
#include "disk_calls.h"
#include "support/child_process.h"
#include "support/environment.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

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

// ---- When the file is no substitute for the draft -----------------------------------------------

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
