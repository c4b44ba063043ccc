#include "base/platform.h"

#include <cstring>
#include <map>
#include <string>

#include <gtest/gtest.h>
#include <libproc.h>
#include <unistd.h>

#include "base/error.h"

namespace {

std::map<int, std::string> exe_names; // bytes that the system returns, by process id

class PlatformMacosTest : public testing::Test {
protected:
  void SetUp() override {
    exe_names.clear();
    v_error_clear();
  }
};

} // namespace

int proc_pidpath(int process_id, void *buffer, std::uint32_t buffer_size) {
  const auto found = exe_names.find(process_id);
  if (found == exe_names.end() || found->second.size() >= buffer_size) {
    return 0;
  }
  std::memcpy(buffer, found->second.c_str(), found->second.size() + 1);
  return static_cast<int>(found->second.size());
}

TEST_F(PlatformMacosTest, ExePathIsThatOfTheOwnProcess) {
  exe_names[getpid()] = "/Applications/Gr\u00f6n.app/Contents/MacOS/Gr\u00f6n";
  EXPECT_STREQ(v_platform_get_exe_path().get(),
               "/Applications/Gr\u00f6n.app/Contents/MacOS/Gr\u00f6n");
  EXPECT_STREQ(v_platform_get_install_folder_path().get(),
               "/Applications/Gr\u00f6n.app/Contents/MacOS");
}

TEST_F(PlatformMacosTest, MissingExePathSetsAMessage) {
  EXPECT_EQ(v_platform_get_exe_path(), nullptr);
  EXPECT_STREQ(v_error_get(), "Error getting exe path from system.");
  EXPECT_EQ(v_platform_get_install_folder_path(), nullptr);
}

TEST_F(PlatformMacosTest, ExePathThatIsNotUtf8SetsTheSameMessage) {
  exe_names[getpid()] = "/Applications/\xff";
  EXPECT_EQ(v_platform_get_exe_path(), nullptr);
  EXPECT_STREQ(v_error_get(), "Error getting exe path from system.");
}

TEST_F(PlatformMacosTest, FindsTheExePathOfAnotherProcess) {
  exe_names[4711] = "/usr/bin/printer";
  v_error_set("before");
  OwnedText path;
  EXPECT_TRUE(v_platform_get_exe_path_for_process_id(path, 4711));
  EXPECT_STREQ(path.get(), "/usr/bin/printer");
  EXPECT_FALSE(v_platform_get_exe_path_for_process_id(path, 4712));
  EXPECT_EQ(path, nullptr);
  EXPECT_STREQ(v_error_get(), "before");
}

TEST_F(PlatformMacosTest, ProcessWhoseExePathIsNotUtf8CountsAsRunning) {
  exe_names[4711] = "/usr/bin/\xff";
  OwnedText path = copy_text("old");
  EXPECT_TRUE(v_platform_get_exe_path_for_process_id(path, 4711));
  EXPECT_EQ(path, nullptr);
}

TEST_F(PlatformMacosTest, RejectsANumberTooLargeForAProcessId) {
  exe_names[1] = "/sbin/launchd";
  exe_names[0] = "/kernel";
  OwnedText path;
  for (const long process_id : {(1L << 32) + 1, 1L << 32, -(1L << 32) + 1}) {
    EXPECT_FALSE(v_platform_get_exe_path_for_process_id(path, process_id)) << process_id;
  }
}

TEST_F(PlatformMacosTest, ProgramsAreBundles) {
  EXPECT_STREQ(v_platform_get_program_ending(), ".app");
  EXPECT_STREQ(v_platform_create_launch_command_line("'/My Apps/Tool.app'", "").get(),
               "open -n '/My Apps/Tool.app' --args ");
}
