#include "workspace/workspace_location.h"

#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "base/error.h"
#include "model/workspace/user_folders.h"
#include "support/child_process.h"
#include "support/environment.h"
#include "support/files.h"
#include "support/xml_roots.h"

namespace {

using testing::HasSubstr;
using testing::StartsWith;

constexpr const char *no_config_folder = "Error locating user config dir.";
constexpr const char *no_settings_folder =
    "Error creating/accessing directory for settings in user config dir.";

class WorkspaceLocation : public testing::Test {
protected:
  WorkspaceLocation() { v_error_set("of an earlier failure"); }

  static void write_pointer_file(const std::string &content) {
    std::filesystem::create_directory(config_folder() + "/vantorelle");
    write_file(config_folder() + "/vantorelle/vantorelle.xml", content);
  }

  FreshUserFolders fresh;
  std::string pointer_folder = config_folder() + "/vantorelle";
  std::string pointer_file = pointer_folder + "/vantorelle.xml";
};

TEST_F(WorkspaceLocation, FindsThePointerFile) {
  EXPECT_EQ(get_workspace_pointer_file_path(FolderCreation::no).get(), pointer_file);
  EXPECT_FALSE(path_exists(pointer_folder));
  EXPECT_EQ(get_workspace_pointer_file_path(FolderCreation::yes).get(), pointer_file);
  EXPECT_EQ(list_folder(pointer_folder), std::vector<std::string>());
  EXPECT_EQ(get_workspace_pointer_file_path(FolderCreation::yes).get(), pointer_file);
}

TEST_F(WorkspaceLocation, MissingParentsOfThePointerFileAreCreatedForTheirOwnerOnly) {
  std::filesystem::remove_all(config_folder());
  EXPECT_EQ(get_workspace_pointer_file_path(FolderCreation::no).get(), pointer_file);
  EXPECT_FALSE(path_exists(config_folder()));
  EXPECT_NE(get_workspace_pointer_file_path(FolderCreation::yes), nullptr) << v_error_get();
  for (const std::string &path : {config_folder(), pointer_folder}) {
    EXPECT_EQ(permissions_of(path), 0700U) << path;
  }
}

TEST_F(WorkspaceLocation, FailsIfTheConfigurationFolderIsAFile) {
  std::filesystem::remove_all(config_folder());
  write_file(config_folder(), "");
  EXPECT_NE(get_workspace_pointer_file_path(FolderCreation::no), nullptr);
  EXPECT_EQ(get_workspace_pointer_file_path(FolderCreation::yes), nullptr);
  EXPECT_STREQ(v_error_get(), no_settings_folder);
  EXPECT_FALSE(v_workspace_save_folder_path("/w"));
  EXPECT_STREQ(v_error_get(), no_settings_folder);
  OwnedText path = copy_text("old");
  EXPECT_FALSE(v_workspace_get_saved_folder_path(path));
  EXPECT_EQ(path, nullptr);
}

TEST_F(WorkspaceLocation, FailsIfTheFolderCannotBeCreated) {
  std::filesystem::permissions(config_folder(), std::filesystem::perms(0555));
  std::filesystem::permissions(home_folder(), std::filesystem::perms(0755));
  std::filesystem::permissions(home_folder() + "/..", std::filesystem::perms(0755));
  EXPECT_EQ(as_ordinary_user([] {
              return get_workspace_pointer_file_path(FolderCreation::yes) ? "made" : v_error_get();
            }),
            no_settings_folder);
}

TEST_F(WorkspaceLocation, GivesNullIfNothingIsSaved) {
  OwnedText path = copy_text("old");
  EXPECT_TRUE(v_workspace_get_saved_folder_path(path));
  EXPECT_EQ(path, nullptr);
  EXPECT_EQ(list_folder(config_folder()), std::vector<std::string>());
}

TEST_F(WorkspaceLocation, SavingWritesAFileThatReadsBack) {
  for (const char *folder :
       {"/home/a b/W", "/\xC3\xA5\xE2\x82\xAC/<&>\"'%s", "relative", "/a//b", "/x/../y"}) {
    ASSERT_TRUE(v_workspace_save_folder_path(folder)) << v_error_get();
    OwnedText path;
    EXPECT_TRUE(v_workspace_get_saved_folder_path(path));
    EXPECT_STREQ(path.get(), folder);
  }
  EXPECT_TRUE(v_workspace_save_folder_path("/home/\xC3\xA5"));
  EXPECT_EQ(read_file(pointer_file), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                     "<vantorelle>\n"
                                     "  <workspace path=\"/home/\xC3\xA5\"/>\n"
                                     "</vantorelle>\n");
  EXPECT_EQ(list_folder(pointer_folder), std::vector<std::string>{"vantorelle.xml"});
}

TEST_F(WorkspaceLocation, SavingNothingRemovesThePointerFile) {
  EXPECT_TRUE(v_workspace_save_folder_path(nullptr));
  ASSERT_TRUE(v_workspace_save_folder_path("/w"));
  EXPECT_TRUE(v_workspace_save_folder_path(nullptr));
  EXPECT_FALSE(path_exists(pointer_file));
  EXPECT_TRUE(v_workspace_save_folder_path(nullptr));
  OwnedText path;
  EXPECT_TRUE(v_workspace_get_saved_folder_path(path));
  EXPECT_EQ(path, nullptr);
}

std::string save_result(const char *path) {
  return v_workspace_save_folder_path(path) ? "saved" : v_error_get();
}

std::string saved_path() {
  OwnedText path;
  v_workspace_get_saved_folder_path(path);
  return path ? path.get() : "(none)";
}

TEST_F(WorkspaceLocation, SavingOverAFolderFails) {
  make_folder(pointer_folder);
  make_folder(pointer_file);
  EXPECT_FALSE(v_workspace_save_folder_path("/w"));
  EXPECT_THAT(v_error_get(), StartsWith("Could not write XML data.\n\n"));
  EXPECT_EQ(list_folder(pointer_folder), std::vector<std::string>{"vantorelle.xml"});
  EXPECT_FALSE(v_workspace_save_folder_path(nullptr));
  EXPECT_THAT(v_error_get(), StartsWith("Cannot unlink file.\n\nError "));
}

TEST_F(WorkspaceLocation, SavingOnAFullDiskLeavesNoPointerFile) {
  EXPECT_THAT(with_file_size_limit(10, [] { return save_result("/w"); }),
              StartsWith("Could not write XML data.\n\n"));
  EXPECT_EQ(list_folder(pointer_folder), std::vector<std::string>());
}

TEST_F(WorkspaceLocation, SavingOnAFullDiskKeepsTheOldPath) {
  ASSERT_TRUE(v_workspace_save_folder_path("/old"));
  EXPECT_THAT(with_file_size_limit(10, [] { return save_result("/w"); }),
              StartsWith("Could not write XML data.\n\n"));
  EXPECT_EQ(saved_path(), "/old");
  EXPECT_EQ(list_folder(pointer_folder), std::vector<std::string>{"vantorelle.xml"});
}

TEST_F(WorkspaceLocation, APathThatXmlCannotHoldKeepsTheOldPath) {
  ASSERT_TRUE(v_workspace_save_folder_path("/old"));
  EXPECT_FALSE(v_workspace_save_folder_path("/\x01"));
  EXPECT_EQ(saved_path(), "/old");
}

TEST_F(WorkspaceLocation, AFolderThatMayNotBeWrittenToKeepsTheOldPath) {
  ASSERT_TRUE(v_workspace_save_folder_path("/old"));
  set_permissions(pointer_folder, 0555);
  for (const std::string &folder : {home_folder() + "/..", home_folder(), config_folder()}) {
    set_permissions(folder, 0755);
  }
  EXPECT_THAT(as_ordinary_user([] { return save_result("/w"); }),
              StartsWith("Could not write XML data.\n\n"));
  EXPECT_EQ(saved_path(), "/old");
}

TEST_F(WorkspaceLocation, ALinkedPointerFileStaysALink) {
  make_folder(pointer_folder);
  make_folder(home_folder() + "/dotfiles");
  const std::string target = home_folder() + "/dotfiles/pointer";
  write_file(target, "<v><workspace path='/old'/></v>");
  ASSERT_EQ(symlink(target.c_str(), pointer_file.c_str()), 0);
  EXPECT_EQ(save_result("/w"), "saved");
  EXPECT_TRUE(std::filesystem::is_symlink(pointer_file));
  EXPECT_THAT(read_file(target), HasSubstr("path=\"/w\""));
  EXPECT_EQ(saved_path(), "/w");
}

TEST_F(WorkspaceLocation, ADanglingLinkIsReplaced) {
  make_folder(pointer_folder);
  ASSERT_EQ(symlink((home_folder() + "/none/x").c_str(), pointer_file.c_str()), 0);
  EXPECT_EQ(save_result("/w"), "saved");
  EXPECT_EQ(saved_path(), "/w");
}

TEST_F(WorkspaceLocation, SavingKeepsThePermissionsOfThePointerFile) {
  ASSERT_TRUE(v_workspace_save_folder_path("/old"));
  set_permissions(pointer_file, 0600);
  ASSERT_TRUE(v_workspace_save_folder_path("/w"));
  EXPECT_EQ(permissions_of(pointer_file), 0600U);
}

struct PointerFile {
  const char *content;
  const char *path;
};

TEST_F(WorkspaceLocation, ReadsAPointerFile) {
  const PointerFile files[] = {
      {"<vantorelle><workspace path='/a/b'/></vantorelle>", "/a/b"},
      {"<anything><workspace path='/a/b'/></anything>", "/a/b"},
      {"<v>text<x/><workspace other='x' path='/a/b'>text</workspace><!--workspace--></v>", "/a/b"},
      {"<v><workspace path='/a/b/'/></v>", "/a/b"},
      {"<v><workspace path='/a/b///'/></v>", "/a/b"},
      {"<v><workspace path='/'/></v>", ""},
      {"<v><workspace path='///'/></v>", ""},
      {"<v><workspace path=' /a '/></v>", " /a "},
      {"<?xml version='1.0' encoding='ISO-8859-1'?><v><workspace path='/\xE5&#x20AC;'/></v>",
       "/\xC3\xA5\xE2\x82\xAC"},
  };
  for (const PointerFile &file : files) {
    write_pointer_file(file.content);
    OwnedText path;
    EXPECT_TRUE(v_workspace_get_saved_folder_path(path)) << file.content;
    EXPECT_STREQ(path.get(), file.path);
  }
}

TEST_F(WorkspaceLocation, RejectsAPointerFileWithoutARoot) {
  write_pointer_file("<v><workspace path='/a'/></v>");
  const MissingXmlRoots missing;
  OwnedText path = copy_text("old");
  EXPECT_FALSE(v_workspace_get_saved_folder_path(path));
  EXPECT_EQ(path, nullptr);
  EXPECT_STREQ(v_error_get(), "Missing root element in XML tree.");
}

TEST_F(WorkspaceLocation, RejectsAnInvalidPointerFile) {
  const std::pair<const char *, const char *> files[] = {
      {"<v/>", "Missing XML node: workspace"},
      {"<workspace path='/a'/>", "Missing XML node: workspace"},
      {"<v><x><workspace path='/a'/></x></v>", "Missing XML node: workspace"},
      {"<v><workspace path='/a'/><workspace path='/a'/></v>",
       "Duplicate XML nodes found where not allowed."},
      {"<v><workspace/></v>", "Missing XML attribute: path"},
      {"<v><workspace Path='/a'/></v>", "Missing XML attribute: path"},
      {"<v><workspace path=''/></v>", "Empty XML attribute: path"},
  };
  for (const auto &[content, message] : files) {
    write_pointer_file(content);
    OwnedText path = copy_text("old");
    EXPECT_FALSE(v_workspace_get_saved_folder_path(path)) << content;
    EXPECT_EQ(path, nullptr);
    EXPECT_STREQ(v_error_get(), message);
  }
  for (const char *content : {"", "no XML", "<v>", "<v><workspace path='\xE5'/></v>"}) {
    write_pointer_file(content);
    OwnedText path = copy_text("old");
    EXPECT_FALSE(v_workspace_get_saved_folder_path(path)) << content;
    EXPECT_EQ(path, nullptr);
    EXPECT_THAT(v_error_get(), StartsWith("Could not parse XML data."));
  }
  std::filesystem::remove(pointer_file);
  make_folder(pointer_file);
  OwnedText path = copy_text("old");
  EXPECT_FALSE(v_workspace_get_saved_folder_path(path));
  EXPECT_EQ(path, nullptr);
}

TEST_F(WorkspaceLocation, TheDefaultFolderIsInTheHomeFolder) {
  EXPECT_EQ(v_workspace_get_default_folder_path().get(), home_folder() + "/Vantorelle Workspace");
}

TEST_F(WorkspaceLocation, APlaceIsMadeAbsoluteAgainstTheHomeFolder) {
  const std::pair<const char *, std::string> places[] = {
      {"/a/b", "/a/b"},
      {"/", "/"},
      {"//a", "//a"},
      {"W", home_folder() + "/W"},
      {"a/W", home_folder() + "/a/W"},
      {"./W", home_folder() + "/./W"},
      {"../W", home_folder() + "/../W"},
      {"~", home_folder()},
      {"~/", home_folder()},
      {"~/W", home_folder() + "/W"},
      {"~//W", home_folder() + "/W"},
      {"~someone/W", home_folder() + "/~someone/W"},
      {"a/~/W", home_folder() + "/a/~/W"},
      {"\xC3\xA5 b", home_folder() + "/\xC3\xA5 b"},
      {"", ""},
  };
  for (const auto &[place, absolute] : places) {
    EXPECT_EQ(v_workspace_make_place_absolute(place).get(), absolute) << place;
  }
}

TEST_F(WorkspaceLocation, AWorkspaceInTheRootFolderHasAnAbsolutePath) {
  EXPECT_STREQ(v_workspace_create_path_in_parent_folder("/").get(), "/Vantorelle Workspace");
  EXPECT_STREQ(v_workspace_create_path_in_parent_folder("///").get(), "/Vantorelle Workspace");
  EXPECT_STREQ(v_workspace_create_path_in_parent_folder("/a/").get(), "/a/Vantorelle Workspace");
}

// GLib caches these folders, so each test needs a process of its own.
class WorkspaceLocationDeathTest : public testing::Test {
protected:
  WorkspaceLocationDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

TEST_F(WorkspaceLocationDeathTest, FailsIfTheConfigurationFolderNameIsNotUtf8) {
  const EnvironmentVariable config("VANTORELLE_TEST_CONFIG_HOME", "/tmp/\xFF");
  EXPECT_EXIT(
      {
        OwnedText path = copy_text("old");
        const bool all_fail = !get_workspace_pointer_file_path(FolderCreation::no) &&
                              !get_workspace_pointer_file_path(FolderCreation::yes) &&
                              !v_workspace_save_folder_path("/w") &&
                              !v_workspace_save_folder_path(nullptr) &&
                              !v_workspace_get_saved_folder_path(path) && !path;
        std::fprintf(stderr, "%s", v_error_get());
        std::exit(all_fail ? 0 : 1);
      },
      testing::ExitedWithCode(0), no_config_folder);
}

TEST_F(WorkspaceLocationDeathTest, FailsIfTheHomeFolderNameIsNotUtf8) {
  const EnvironmentVariable home("VANTORELLE_TEST_HOME", "/tmp/\xFF");
  EXPECT_EXIT(std::exit(v_workspace_get_default_folder_path() ? 1 : 0), testing::ExitedWithCode(0),
              "");
  EXPECT_EXIT(
      {
        const bool is_made =
            v_workspace_make_place_absolute("/W") && !v_workspace_make_place_absolute("W");
        std::fprintf(stderr, "%s", v_error_get());
        std::exit(is_made ? 0 : 1);
      },
      testing::ExitedWithCode(0), "Could not convert filename to unicode.");
}

TEST_F(WorkspaceLocationDeathTest, PlacesUnderARootHomeFolderHaveOneSlash) {
  const EnvironmentVariable home("VANTORELLE_TEST_HOME", "/");
  EXPECT_EXIT(
      {
        std::fprintf(stderr, "%s", v_workspace_make_place_absolute("a/W").get());
        std::exit(0);
      },
      testing::ExitedWithCode(0), "^/a/W$");
}

} // namespace
