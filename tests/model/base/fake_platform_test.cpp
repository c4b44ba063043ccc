#include "support/fake_platform.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/error.h"
#include "base/platform.h"

namespace {

class FakePlatformTest : public testing::Test {
private:
  FakePlatformReset reset;
};

} // namespace

TEST_F(FakePlatformTest, HasNoFoldersAndNoProcessesAtFirst) {
  EXPECT_EQ(v_platform_get_install_folder_path(), nullptr);
  EXPECT_STREQ(v_error_get(), "Error getting exe path from system.");
  EXPECT_EQ(v_platform_get_temp_files_folder_path(), nullptr);
  OwnedText path;
  EXPECT_FALSE(v_platform_get_exe_path_for_process_id(path, 1));
}

TEST_F(FakePlatformTest, ReturnsTheValuesThatTheTestSets) {
  fake_platform.install_folder = "/opt/vantorelle";
  fake_platform.temp_files_folder = "/scratch";
  fake_platform.exe_paths[7] = "/bin/seven";
  EXPECT_STREQ(v_platform_get_exe_path().get(), "/opt/vantorelle/program");
  EXPECT_STREQ(v_platform_get_install_folder_path().get(), "/opt/vantorelle");
  EXPECT_STREQ(v_platform_get_temp_files_folder_path().get(), "/scratch");
  OwnedText path;
  EXPECT_TRUE(v_platform_get_exe_path_for_process_id(path, 7));
  EXPECT_STREQ(path.get(), "/bin/seven");
}

TEST_F(FakePlatformTest, RecordsEveryCommandLine) {
  EXPECT_TRUE(v_platform_run_command_line("one"));
  fake_platform.commands_can_start = false;
  EXPECT_FALSE(v_platform_run_command_line("two"));
  EXPECT_THAT(fake_platform.command_lines, testing::ElementsAre("one", "two"));
}

TEST_F(FakePlatformTest, LaunchesProgramsOrBundles) {
  EXPECT_STREQ(v_platform_get_program_ending(), "");
  EXPECT_STREQ(v_platform_create_launch_command_line("'p'", "a").get(), "'p' a");
  fake_platform.programs_are_bundles = true;
  EXPECT_STREQ(v_platform_get_program_ending(), ".app");
  EXPECT_STREQ(v_platform_create_launch_command_line("'p'", "a").get(), "open -n 'p' --args a");
}
