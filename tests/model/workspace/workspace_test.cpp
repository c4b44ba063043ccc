#include "workspace/workspace.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "base/error.h"
#include "model/workspace/workspace_parts.h"
#include "support/child_process.h"
#include "workspace/workspace_location.h"

namespace {

using testing::StartsWith;

class Workspace : public testing::Test {
protected:
  Workspace() { v_error_set("of an earlier failure"); }

  void save(const std::string &path) const {
    ASSERT_TRUE(v_workspace_save_folder_path(path.c_str())) << v_error_get();
  }
  // Creates an empty folder and saves its path in the pointer file.
  void point_to_a_new_folder() const {
    make_folder(folder);
    save(folder);
  }
  void deliver_some() const {
    machine.deliver({{"codesets/a.codeset", "A"},
                     {"layouts/b.layout", "B"},
                     {"templates/c.template", "C"},
                     {"fonts/d.ttf", "D"}});
  }
  // "created", or the message on failure.
  std::string create_result() const {
    return v_workspace_create(folder.c_str()) ? "created" : v_error_get();
  }
  static std::string saved_path() {
    OwnedText path;
    EXPECT_TRUE(v_workspace_get_saved_folder_path(path));
    return path ? path.get() : "(none)";
  }

  PretendedMachine machine;
  std::string folder = machine.folder / "My \xC3\xA5 workspace";
};

const Contents empty_workspace = {
    {"codesets/", ""}, {"layouts/", ""}, {"documents/", ""}, {"templates/", ""}};

TEST_F(Workspace, OpeningCreatesMissingFolders) {
  deliver_some();
  point_to_a_new_folder();
  const OwnedWorkspace workspace = v_workspace_open();
  ASSERT_NE(workspace, nullptr) << v_error_get();
  EXPECT_EQ(workspace->folder_path.get(), folder);
  EXPECT_EQ(workspace->codesets_folder_path.get(), folder + "/codesets");
  EXPECT_EQ(workspace->fonts_folder_path.get(), folder + "/fonts");
  EXPECT_EQ(workspace->layouts_folder_path.get(), folder + "/layouts");
  EXPECT_EQ(workspace->documents_folder_path.get(), folder + "/documents");
  EXPECT_EQ(workspace->templates_folder_path.get(), folder + "/templates");
  ASSERT_NE(workspace->settings, nullptr);
  EXPECT_EQ(workspace->settings->file_path.get(), folder + "/settings.xml");
  EXPECT_EQ(contents_of(folder), empty_workspace);
  for (const char *name : {"codesets", "layouts", "documents", "templates"}) {
    EXPECT_EQ(std::filesystem::status(folder + "/" + name).permissions(),
              std::filesystem::perms::owner_all);
  }
}

TEST_F(Workspace, OpeningKeepsExistingFiles) {
  Contents full = empty_workspace;
  full["codesets/a.codeset"] = "x";
  full["fonts"] = "not even a folder";
  full["settings.xml"] = "<settings><left-handed active='true'/></settings>";
  put(folder, full);
  save(folder + "//");
  const OwnedWorkspace workspace = v_workspace_open();
  ASSERT_NE(workspace, nullptr) << v_error_get();
  EXPECT_EQ(workspace->folder_path.get(), folder);
  EXPECT_FALSE(workspace->settings->left_handed);
  EXPECT_EQ(contents_of(folder), full);
}

TEST_F(Workspace, WithoutAPointerFileTheDefaultFolderIsOpened) {
  EXPECT_EQ(v_workspace_open(), nullptr);
  make_folder(home_folder() + "/Vantorelle Workspace");
  const OwnedWorkspace workspace = v_workspace_open();
  ASSERT_NE(workspace, nullptr) << v_error_get();
  EXPECT_EQ(workspace->folder_path.get(), home_folder() + "/Vantorelle Workspace");
  EXPECT_EQ(saved_path(), "(none)");
}

TEST_F(Workspace, AnUnreadablePointerFileCountsAsNone) {
  make_folder(home_folder() + "/Vantorelle Workspace");
  make_folder(config_folder() + "/vantorelle");
  const std::string pointer_file = config_folder() + "/vantorelle/vantorelle.xml";
  for (const char *content : {"", "no XML", "<v/>", "<v><workspace path=''/></v>"}) {
    write_file(pointer_file, content);
    const OwnedWorkspace workspace = v_workspace_open();
    ASSERT_NE(workspace, nullptr) << content;
    EXPECT_EQ(workspace->folder_path.get(), home_folder() + "/Vantorelle Workspace");
  }
}

TEST_F(Workspace, AFolderThatNoLongerExistsIsNotOpened) {
  make_folder(home_folder() + "/Vantorelle Workspace");
  save(machine.folder / "gone");
  EXPECT_EQ(v_workspace_open(), nullptr);
  EXPECT_FALSE(path_exists(machine.folder / "gone"));
  write_file(machine.folder / "file", "x");
  save(machine.folder / "file");
  EXPECT_EQ(v_workspace_open(), nullptr);
  save(machine.folder / "file/under");
  EXPECT_EQ(v_workspace_open(), nullptr);
  save("/");
  EXPECT_EQ(v_workspace_open(), nullptr);
  EXPECT_EQ(list_folder(home_folder() + "/Vantorelle Workspace"), std::vector<std::string>());
}

TEST_F(Workspace, RefusesAFileInPlaceOfASubFolder) {
  for (const char *name : {"codesets", "layouts", "documents", "templates"}) {
    std::filesystem::remove_all(folder);
    point_to_a_new_folder();
    write_file(folder + "/" + name, "x");
    EXPECT_EQ(v_workspace_open(), nullptr) << name;
    EXPECT_EQ(read_file(folder + "/" + name), "x");
  }
}

TEST_F(Workspace, RefusesAPipeInPlaceOfASubFolder) {
  for (const char *name : {"codesets", "layouts", "documents", "templates"}) {
    std::filesystem::remove_all(folder);
    point_to_a_new_folder();
    ASSERT_EQ(mkfifo((folder + "/" + name).c_str(), 0600), 0);
    EXPECT_EQ(v_workspace_open(), nullptr) << name;
  }
}

TEST_F(Workspace, FailsIfASubFolderCannotBeCreated) {
  point_to_a_new_folder();
  // A dangling link counts as missing, but no folder can be created in its place.
  std::filesystem::create_symlink("nowhere/at/all", folder + "/documents");
  EXPECT_EQ(v_workspace_open(), nullptr);
  EXPECT_STREQ(v_error_get(), "Cannot create folder.\n\nError 17: File exists");
  EXPECT_EQ(list_folder(folder), (std::vector<std::string>{"codesets", "documents", "layouts"}));
}

TEST_F(Workspace, FailsIfTheStatusOfASubFolderCannotBeRead) {
  point_to_a_new_folder();
  std::filesystem::create_symlink("templates", folder + "/templates");
  EXPECT_EQ(v_workspace_open(), nullptr);
  EXPECT_THAT(v_error_get(), StartsWith("Cannot get file status.\n\nError 40:"));
}

TEST_F(Workspace, ClosingNullIsAllowed) { v_workspace_close(nullptr); }

TEST_F(Workspace, CreatingInstallsTheComponentsAndSavesThePath) {
  deliver_some();
  ASSERT_TRUE(v_workspace_create((folder + "///").c_str())) << v_error_get();
  EXPECT_EQ(contents_of(folder), (Contents{{"codesets/", ""},
                                           {"codesets/a.codeset", "A"},
                                           {"layouts/", ""},
                                           {"layouts/b.layout", "B"},
                                           {"templates/", ""},
                                           {"templates/c.template", "C"}}));
  EXPECT_EQ(std::filesystem::status(folder).permissions(), std::filesystem::perms::owner_all);
  EXPECT_EQ(saved_path(), folder);
  const OwnedWorkspace workspace = v_workspace_open();
  ASSERT_NE(workspace, nullptr) << v_error_get();
  EXPECT_EQ(workspace->folder_path.get(), folder);
  EXPECT_TRUE(path_exists(folder + "/documents"));
}

TEST_F(Workspace, CreatesAWorkspaceWithoutDeliveredTemplates) {
  machine.deliver({{"codesets/a.codeset", "A"}, {"layouts/", ""}});
  ASSERT_TRUE(v_workspace_create(folder.c_str())) << v_error_get();
  EXPECT_EQ(contents_of(folder),
            (Contents{{"codesets/", ""}, {"codesets/a.codeset", "A"}, {"layouts/", ""}}));
  EXPECT_NE(v_workspace_open(), nullptr);
  EXPECT_TRUE(path_exists(folder + "/templates"));
}

TEST_F(Workspace, RefusesToCreateOverAnExistingPath) {
  deliver_some();
  put(folder, {{"own", "x"}});
  EXPECT_FALSE(v_workspace_create(folder.c_str()));
  EXPECT_FALSE(v_workspace_create((folder + "/").c_str()));
  EXPECT_FALSE(v_workspace_create((folder + "/own").c_str()));
  EXPECT_EQ(contents_of(folder), (Contents{{"own", "x"}}));
  EXPECT_FALSE(v_workspace_create("/"));
  EXPECT_FALSE(v_workspace_create(""));
  EXPECT_EQ(saved_path(), "(none)");
}

TEST_F(Workspace, FailsWhereNoFolderCanBeCreated) {
  deliver_some();
  EXPECT_FALSE(v_workspace_create((folder + "/two/levels").c_str()));
  EXPECT_STREQ(v_error_get(), "Cannot create folder.\n\nError 2: No such file or directory");
  EXPECT_EQ(list_folder(machine.folder.path()), std::vector<std::string>());
  write_file(folder, "");
  EXPECT_FALSE(v_workspace_create((folder + "/under").c_str()));
  EXPECT_STREQ(v_error_get(), "Cannot get file status.\n\nError 20: Not a directory");
  EXPECT_EQ(saved_path(), "(none)");
}

TEST_F(Workspace, RefusesANameThatCannotBeSaved) {
  deliver_some();
  EXPECT_FALSE(v_workspace_create((folder + "\x01").c_str()));
  EXPECT_STREQ(v_error_get(), "Error when setting an XML attribute.");
  EXPECT_EQ(list_folder(machine.folder.path()), std::vector<std::string>());
  EXPECT_EQ(saved_path(), "(none)");
}

TEST_F(Workspace, AFailedInstallationUndoesEverythingAndSaysWhy) {
  for (const char *failing : {"codesets", "layouts", "templates"}) {
    SCOPED_TRACE(failing);
    std::filesystem::remove_all(machine.install.path());
    make_folder(machine.install.path());
    deliver_some();

    machine.deliver_unreadable(std::string(failing) + "/unreadable");
    EXPECT_FALSE(v_workspace_create(folder.c_str()));
    EXPECT_STREQ(v_error_get(), "File read error.");
    EXPECT_EQ(list_folder(machine.folder.path()), std::vector<std::string>());

    std::filesystem::remove_all(machine.install / failing);
    machine.deliver({{failing, "a file"}});
    EXPECT_FALSE(v_workspace_create(folder.c_str()));
    EXPECT_STREQ(v_error_get(), "Cannot open folder.\n\nError 20: Not a directory");
    EXPECT_EQ(list_folder(machine.folder.path()), std::vector<std::string>());
    EXPECT_EQ(saved_path(), "(none)");
  }
}

TEST_F(Workspace, WithoutAnInstallFolderNothingIsCreated) {
  fake_platform.install_folder.reset();
  EXPECT_FALSE(v_workspace_create(folder.c_str()));
  EXPECT_STREQ(v_error_get(), "Error getting exe path from system.");
  EXPECT_EQ(list_folder(machine.folder.path()), std::vector<std::string>());
}

TEST_F(Workspace, APathThatCannotBeSavedUndoesEverythingAndSaysWhy) {
  deliver_some();
  std::filesystem::remove_all(config_folder());
  write_file(config_folder(), "a file");
  EXPECT_FALSE(v_workspace_create(folder.c_str()));
  EXPECT_STREQ(v_error_get(),
               "Error creating/accessing directory for settings in user config dir.");
  EXPECT_EQ(list_folder(machine.folder.path()), std::vector<std::string>());
}

TEST_F(Workspace, AFailedCreationKeepsTheSavedPath) {
  save("/elsewhere");
  machine.deliver({{"templates", "a file"}});
  EXPECT_FALSE(v_workspace_create(folder.c_str()));
  EXPECT_EQ(saved_path(), "/elsewhere");
}

// The limit allows the delivered files, but not the pointer file.
TEST_F(Workspace, AFullDiskKeepsThePointerToTheOldWorkspace) {
  deliver_some();
  save("/elsewhere");
  EXPECT_THAT(with_file_size_limit(10, [&] { return create_result(); }),
              StartsWith("Could not write XML data."));
  EXPECT_EQ(list_folder(machine.folder.path()), std::vector<std::string>());
  EXPECT_EQ(saved_path(), "/elsewhere");
}

TEST_F(Workspace, AFullDiskLeavesNothing) {
  deliver_some();
  machine.deliver({{"templates/large", std::string(10'000, 'x')}});
  EXPECT_EQ(with_file_size_limit(5000, [&] { return create_result(); }), "File write error.");
  EXPECT_EQ(list_folder(machine.folder.path()), std::vector<std::string>());
}

} // namespace
