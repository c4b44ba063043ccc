#include "suite/sibling_tools.h"

#include <cstdio>
#include <string>

#include <gtest/gtest.h>

#include "base/error.h"
#include "base/platform.h"
#include "support/files.h"
#include "support/wait.h"

namespace {

constexpr const char *name = "Vantorelle Workspace Tool";

// Makes the folder with all folders above it, and returns its path.
std::string make_folders(const TemporaryFolder &root, const std::string &path) {
  for (std::size_t end = path.find('/'); end != std::string::npos; end = path.find('/', end + 1)) {
    if (!path_exists(root / path.substr(0, end))) {
      make_folder(root / path.substr(0, end));
    }
  }
  if (!path_exists(root / path)) {
    make_folder(root / path);
  }
  return root / path;
}

std::string find(const std::string &install_folder, const char *ending) {
  return v_exe_get_bundled_program_path(install_folder.c_str(), name, ending).get();
}

struct Ending {
  const char *ending;
  std::string file_name;
};

const Ending endings[] = {{".app", "Vantorelle Workspace Tool.app"},
                          {"", "Vantorelle Workspace Tool"}};

constexpr const char *nested = "Outer.app/Contents/MacOS/Inner.app/Contents/MacOS";

TEST(BundledProgramPath, InTheInstallFolder) {
  for (const auto &[ending, file_name] : endings) {
    const TemporaryFolder root;
    const std::string install_folder = make_folders(root, nested);
    make_folder(install_folder + "/" + file_name);
    make_folder(root / ("Outer.app/Contents/MacOS/" + file_name));
    EXPECT_EQ(find(install_folder, ending), install_folder + "/" + file_name);
  }
}

TEST(BundledProgramPath, InTheProgramFolderOfTheOuterBundle) {
  for (const auto &[ending, file_name] : endings) {
    const TemporaryFolder root;
    const std::string install_folder = make_folders(root, nested);
    // The path does not depend on whether the program exists.
    EXPECT_EQ(find(install_folder, ending), root / ("Outer.app/Contents/MacOS/" + file_name));
    make_folder(root / ("Outer.app/Contents/MacOS/" + file_name));
    EXPECT_EQ(find(install_folder, ending), root / ("Outer.app/Contents/MacOS/" + file_name));
  }
}

TEST(BundledProgramPath, NoOuterBundle) {
  for (const char *folder :
       {"Applications/Inner.app/Contents/MacOS", "lib/vantorelle", "macos/Inner.app/Contents/MacOS",
        "Outer.app/Contents/MacOS2/Inner.app/Contents/MacOS", "Contents/MacOS/Contents/MacOS"}) {
    for (const auto &[ending, file_name] : endings) {
      const TemporaryFolder root;
      const std::string install_folder = make_folders(root, folder);
      EXPECT_EQ(find(install_folder, ending), install_folder + "/" + file_name);
    }
  }
}

TEST(BundledProgramPath, ShortFolders) {
  EXPECT_EQ(find("/nowhere/at", ".app"), "/nowhere/at/Vantorelle Workspace Tool.app");
  EXPECT_EQ(find("/MacOS/a/b/c", ".app"), "/MacOS/Vantorelle Workspace Tool.app");
  EXPECT_EQ(find("", ".app"), "Vantorelle Workspace Tool.app");
}

// A path that cannot be examined, here for its length, does not count as missing.
TEST(BundledProgramPath, UnknownIsNotMissing) {
  const TemporaryFolder root;
  make_folders(root, "Outer.app/Contents/MacOS");
  const std::string install_folder =
      root / "Outer.app/Contents/MacOS/" + std::string(300, 'a') + "/Contents/MacOS";
  EXPECT_EQ(find(install_folder, ".app"), install_folder + "/Vantorelle Workspace Tool.app");
}

// A program of the suite beside the running one, for as long as the object lives: a script that
// tells the file which arguments it was given.
class Sibling {
public:
  Sibling(const std::string &file_name, const std::string &report)
      : path(std::string(v_platform_get_install_folder_path().get()) + "/" + file_name) {
    // Renamed when complete, because it may be started as soon as it has its name.
    write_file(path + ".new", "#!/bin/sh\nprintf '[%s]' \"$0\" \"$@\" >'" + report + ".new'\n" +
                                  "mv '" + report + ".new' '" + report + "'\n");
    set_permissions(path + ".new", 0700);
    std::rename((path + ".new").c_str(), path.c_str());
  }
  ~Sibling() { std::remove(path.c_str()); }
  Sibling(const Sibling &) = delete;
  Sibling &operator=(const Sibling &) = delete;

  const std::string path;
};

// The report of the started program; "" when it takes too long, which is a failure.
std::string await_report(const std::string &report) {
  const auto is_there =
      sleep_until("the report of the program", [&] { return path_exists(report); });
  EXPECT_TRUE(is_there);
  return is_there ? read_file(report) : "";
}

TEST(LaunchBundledProgram, StartsTheWorkspaceToolWithoutArguments) {
  const TemporaryFolder folder;
  const Sibling tool(name, folder / "report");
  ASSERT_TRUE(v_exe_launch_workspace_tool()) << v_error_get();
  EXPECT_EQ(await_report(folder / "report"), "[" + tool.path + "]");
}

TEST(LaunchBundledProgram, QuotesThePathAndPutsTheArgumentsInAsTheyAre) {
  const TemporaryFolder folder;
  const Sibling tool("It's 100% \"å\" & <b> $HOME", folder / "report");
  ASSERT_TRUE(launch_bundled_program("It's 100% \"å\" & <b> $HOME", "one 'two three' \"\""))
      << v_error_get();
  EXPECT_EQ(await_report(folder / "report"), "[" + tool.path + "][one][two three][]");
}

TEST(LaunchBundledProgram, AProgramThatCannotBeStartedIsAFailure) {
  EXPECT_FALSE(launch_bundled_program("A program that nobody has", nullptr));
  EXPECT_TRUE(std::string(v_error_get()).starts_with("GError ")) << v_error_get();
}

// As on a system whose programs are bundles.
TEST(LaunchBundledProgram, BundlesAreOpenedByTheirQuotedPath) {
  const OwnedText quoted = v_platform_escape_string_for_command_line("/A b/It's %s.app");
  EXPECT_STREQ(v_platform_format_bundle_command_line(quoted.get(), "").get(),
               "open -n '/A b/It'\\''s %s.app' --args ");
}

} // namespace
