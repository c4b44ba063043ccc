#include "base/platform.h"

#include <cstdlib>
#include <filesystem>
#include <limits>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "base/error.h"
#include "base/fs_utils.h"
#include "support/child_process.h"
#include "support/files.h"
#include "support/wait.h"

namespace {

// Takes the place of the system's answer for each link; null: the system answers.
char *(*answer_for_links)(GError **error) = nullptr;

} // namespace

// The linker option --wrap redirects the program's calls to the second function.
char *real_file_read_link(const char *path, GError **error) __asm__("__real_g_file_read_link");
char *wrapped_file_read_link(const char *path, GError **error) __asm__("__wrap_g_file_read_link");

char *wrapped_file_read_link(const char *path, GError **error) {
  return answer_for_links != nullptr ? answer_for_links(error) : real_file_read_link(path, error);
}

namespace {

char *refuse_link(GError **error) {
  g_set_error_literal(error, G_FILE_ERROR, G_FILE_ERROR_ACCES, "Permission denied");
  return nullptr;
}

char *give_name_that_is_not_utf8(GError **) { return g_strdup("/opt/\xe5/program"); }

std::string executable() { return std::filesystem::read_symlink("/proc/self/exe").string(); }

// Commands run in the background.
testing::AssertionResult appears(const std::string &path) {
  return sleep_until(path, [&] { return path_exists(path); });
}

std::string quoted(const std::string &text) {
  return v_platform_escape_string_for_command_line(text.c_str()).get();
}

} // namespace

TEST(Platform, ExePathIsThatOfTheTestProgram) {
  EXPECT_EQ(v_platform_get_exe_path().get(), executable());
  OwnedText path;
  EXPECT_TRUE(v_platform_get_exe_path_for_process_id(path, getpid()));
  EXPECT_EQ(path.get(), executable());
}

TEST(Platform, InstallFolderHoldsTheExecutable) {
  EXPECT_EQ(v_platform_get_install_folder_path().get(),
            std::filesystem::path(executable()).parent_path().string());
}

TEST(Platform, AnUnknownExePathFailsWithAMessage) {
  for (const auto answer : {refuse_link, give_name_that_is_not_utf8}) {
    for (const auto get_path : {v_platform_get_exe_path, v_platform_get_install_folder_path}) {
      v_error_set("before");
      answer_for_links = answer;
      EXPECT_EQ(get_path(), nullptr);
      answer_for_links = nullptr;
      EXPECT_STREQ(v_error_get(), "Error getting exe path from system.");
    }
  }
}

TEST(Platform, UnknownProcessIdGivesNoExePathAndNoMessage) {
  for (const long process_id : {-1L, 0L, 4'194'305L, std::numeric_limits<long>::max()}) {
    v_error_set("before");
    OwnedText path = copy_text("old");
    EXPECT_FALSE(v_platform_get_exe_path_for_process_id(path, process_id)) << process_id;
    EXPECT_EQ(path, nullptr);
    EXPECT_STREQ(v_error_get(), "before");
  }
}

TEST(Platform, ExePathIsKnownForProcessesOfTheSameUserOnly) {
  const std::string answer = as_ordinary_user([] {
    struct stat first_process;
    const bool is_own = stat("/proc/1", &first_process) == 0 && first_process.st_uid == getuid();
    OwnedText path;
    const bool is_found = v_platform_get_exe_path_for_process_id(path, 1);
    return std::string(is_found == is_own ? "right" : "wrong");
  });
  EXPECT_EQ(answer, "right");
}

TEST(Platform, TempFilesFolderIgnoresTheEnvironment) {
  const std::string path = in_child_process([] {
    setenv("TMPDIR", "/elsewhere", 1);
    return std::string(v_platform_get_temp_files_folder_path().get());
  });
  EXPECT_EQ(path, "/tmp");
}

TEST(Platform, TextIsQuotedForTheShell) {
  EXPECT_EQ(quoted("/My Apps/Tool"), "'/My Apps/Tool'");
  EXPECT_EQ(quoted(""), "''");
  EXPECT_EQ(quoted("it's"), "'it'\\''s'");
  EXPECT_EQ(quoted("%s $HOME `x` \"y\" \u00e5"), "'%s $HOME `x` \"y\" \u00e5'");
}

TEST(Platform, BundleCommandLineStartsANewInstance) {
  EXPECT_STREQ(v_platform_format_bundle_command_line("'/A b/T.app'", "").get(),
               "open -n '/A b/T.app' --args ");
  EXPECT_STREQ(v_platform_format_bundle_command_line("'/100%s.app'", "-a %d").get(),
               "open -n '/100%s.app' --args -a %d");
}

TEST(Platform, ProgramCommandLineIsPathSpaceArguments) {
  EXPECT_STREQ(v_platform_format_program_command_line("'/A b/T'", "").get(), "'/A b/T' ");
  EXPECT_STREQ(v_platform_format_program_command_line("'/100%s'", "-a %d").get(), "'/100%s' -a %d");
}

TEST(Platform, ProgramsArePlainFiles) {
  EXPECT_STREQ(v_platform_get_program_ending(), "");
  EXPECT_STREQ(v_platform_create_launch_command_line("'/A b/T'", "x").get(), "'/A b/T' x");
}

TEST(Platform, CommandIsStartedWithItsLiteralPath) {
  const TemporaryFolder folder;
  const std::string made = folder / "it's \u00e5 %s & $x";
  EXPECT_TRUE(v_platform_run_command_line(("touch " + quoted(made)).c_str()));
  EXPECT_TRUE(appears(made));
}

TEST(Platform, CommandRunsInTheBackground) {
  const TemporaryFolder folder;
  const std::string gate = folder / "gate";
  const std::string made = folder / "made";
  const std::string script =
      "until test -e " + quoted(gate) + "; do sleep 0.02; done; touch " + quoted(made);
  ASSERT_TRUE(v_platform_run_command_line(("sh -c " + quoted(script)).c_str()));
  EXPECT_FALSE(path_exists(made));
  write_file(gate, "");
  EXPECT_TRUE(appears(made));
}

TEST(Platform, CommandThatCannotBeStartedFailsWithAMessage) {
  for (const char *command_line : {"/nowhere/at/all", "", "  ", "'unfinished"}) {
    v_error_clear();
    EXPECT_FALSE(v_platform_run_command_line(command_line)) << command_line;
    EXPECT_THAT(v_error_get(), testing::StartsWith("GError ")) << command_line;
  }
}

TEST(Platform, CommandLineThatIsNotUtf8FailsWithTheConversionMessage) {
  EXPECT_FALSE(v_platform_run_command_line("touch \xff"));
  EXPECT_THAT(v_error_get(), testing::StartsWith("Could not use filename.\n\nGError "));
}

TEST(Platform, NoDescriptorIsLeftOpen) {
  const int before = count_open_descriptors();
  v_platform_get_install_folder_path();
  OwnedText path;
  v_platform_get_exe_path_for_process_id(path, getpid());
  v_platform_run_command_line("true");
  v_platform_run_command_line("/nowhere/at/all");
  EXPECT_EQ(count_open_descriptors(), before);
}
