#include "base/private_files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "base/error.h"
#include "support/child_process.h"
#include "support/files.h"

namespace {

class PrivateFiles : public testing::Test {
protected:
  PrivateFiles() { v_error_set("of an earlier failure"); }
  ~PrivateFiles() override { EXPECT_STREQ(v_error_get(), "of an earlier failure"); }

  TemporaryFolder folder;
  std::string path = folder / "\u00E5";
};

TEST_F(PrivateFiles, AreCreatedForTheirOwnerOnlyAndKeepTheirContent) {
  const mode_t old_mask = umask(0);
  EXPECT_NE(v_private_files_create(path.c_str()), nullptr);
  umask(old_mask);
  EXPECT_EQ(permissions_of(path), 0600U);
  write_file(path, "content");
  EXPECT_NE(v_private_files_create(path.c_str()), nullptr);
  EXPECT_EQ(read_file(path), "content");
}

TEST_F(PrivateFiles, CanBeCreatedByAProgramWithoutStandardInput) {
  EXPECT_EQ(in_child_process([&] {
              close(STDIN_FILENO);
              return v_private_files_create(path.c_str()) ? "created" : "no";
            }),
            "created");
}

TEST_F(PrivateFiles, CanBeHeldOnlyOnceAtATime) {
  OwnedHeldFile held = v_private_files_create(path.c_str());
  ASSERT_NE(held, nullptr);
  EXPECT_EQ(v_private_files_hold(path.c_str()), nullptr);
  EXPECT_EQ(v_private_files_create(path.c_str()), nullptr);
  EXPECT_EQ(in_child_process([&] { return v_private_files_hold(path.c_str()) ? "held" : "no"; }),
            "no");
  held.reset();
  held = v_private_files_hold(path.c_str());
  EXPECT_NE(held, nullptr);
}

TEST_F(PrivateFiles, StayHeldAfterARename) {
  const std::string other = folder / "other";
  write_file(other, "old");
  const OwnedHeldFile held = v_private_files_create(path.c_str());
  write_file(path, "new");
  EXPECT_TRUE(v_private_files_rename(path.c_str(), other.c_str()));
  EXPECT_EQ(list_folder(folder.path()), std::vector<std::string>{"other"});
  EXPECT_EQ(read_file(other), "new");
  EXPECT_EQ(v_private_files_hold(other.c_str()), nullptr);
}

TEST_F(PrivateFiles, CannotBeHeldRenamedOrSyncedIfMissing) {
  EXPECT_EQ(v_private_files_hold(path.c_str()), nullptr);
  EXPECT_FALSE(path_exists(path));
  EXPECT_EQ(v_private_files_create((path + "/x").c_str()), nullptr);
  EXPECT_EQ(v_private_files_create("/\xFF"), nullptr);
  EXPECT_EQ(v_private_files_hold(folder.path()), nullptr);
  EXPECT_FALSE(v_private_files_rename(path.c_str(), (folder / "x").c_str()));
  EXPECT_FALSE(v_private_files_rename("/\xFF", path.c_str()));
  EXPECT_FALSE(v_private_files_rename(path.c_str(), "/\xFF"));
  EXPECT_FALSE(v_private_files_sync(path.c_str()));
  EXPECT_FALSE(v_private_files_sync("/\xFF"));
}

TEST_F(PrivateFiles, CanBeSyncedAsFoldersAndDevicesCan) {
  write_file(path, "content");
  EXPECT_TRUE(v_private_files_sync(path.c_str()));
  EXPECT_TRUE(v_private_files_sync(folder.path()));
  // Devices cannot be synced, which counts as success.
  EXPECT_TRUE(v_private_files_sync("/dev/null"));
}

} // namespace
