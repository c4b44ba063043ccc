#include <gtest/gtest.h>

#include "base/error.h"
#include "faults/component_promises.h"
#include "workspace/settings.h"
#include "workspace/workspace.h"
#include "workspace/workspace_location.h"

namespace {

constexpr const char *config = "home/.config";
constexpr const char *pointer_folder = "home/.config/vantorelle";
constexpr const char *pointer_file = "home/.config/vantorelle/vantorelle.xml";
constexpr const char *settings_file = "workspace/settings.xml";

constexpr const char *no_config_folder =
    "Error creating/accessing directory for settings in user config dir.";

const std::vector<Call> opening = {Call::fopen, Call::open};
const std::vector<Call> reading = {Call::fread, Call::read};
const std::vector<Call> closing = {Call::fclose, Call::close};

std::optional<std::string> as_result(bool is_done) {
  return is_done ? std::optional<std::string>("") : std::nullopt;
}

std::string pointer_to(const std::string &path) {
  return "<vantorelle>\n<!-- " + std::string(9000, ' ') + "-->\n<workspace path=\"" + path +
         "\"/>\n</vantorelle>\n";
}

std::vector<Promise> operator+(std::vector<Promise> first, const std::vector<Promise> &second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

// A failed save leaves the old pointer file, and perhaps the folder for it.
const std::vector<Promise> pointer_save_promises = {
    {{Call::stat}, pointer_folder, 0, Result::fails, no_config_folder, untouched},
    // A parent whose status cannot be read counts as existing.
    {{Call::stat}, config, 0, Result::succeeds, "", done},
    {{Call::mkdir}, pointer_folder, 0, Result::fails, no_config_folder, untouched},
    {{Call::stat, Call::lstat}, pointer_file, 0, Result::succeeds, "", done},
    // The new file is there; only its entry in the folder may not be on the disk yet.
    {{Call::open, Call::fsync, Call::close}, pointer_folder, 0, Result::succeeds, "", done},
    {{Call::open, Call::write, Call::fsync, Call::close},
     "home/.config/vantorelle/vantorelle.xml.*",
     0,
     Result::fails,
     "Could not write XML data.\n\n?*",
     untouched_but_for("home/.config/vantorelle/")},
    {{Call::rename},
     pointer_file,
     0,
     Result::fails,
     "Could not write XML data.\n\n?*",
     untouched_but_for("home/.config/vantorelle/")},
};

TEST(PointerFileFaults, SaveForTheFirstTime) {
  sweep({.name = "save the pointer file for the first time",
         .ground = {{"home/.config/other", "another program's"}},
         .run = [] { return as_result(v_workspace_save_folder_path("/some/where")); },
         .promises = pointer_save_promises});
}

TEST(PointerFileFaults, SaveOverTheOldOne) {
  sweep({.name = "save the pointer file over the old one",
         .ground = {{pointer_file, pointer_to("/old/place")},
                    {"home/.config/vantorelle/other", "another tool's"}},
         .run = [] { return as_result(v_workspace_save_folder_path("/some/where")); },
         .promises = pointer_save_promises});
}

TEST(PointerFileFaults, Delete) {
  sweep({.name = "delete the pointer file",
         .ground = {{pointer_file, pointer_to("/old/place")}},
         .run = [] { return as_result(v_workspace_save_folder_path(nullptr)); },
         .promises = {
             {{Call::stat}, pointer_folder, 0, Result::fails, no_config_folder, untouched},
             {{Call::unlink},
              pointer_file,
              0,
              Result::fails,
              "Cannot unlink file.\n\n{error}",
              untouched},
         }});
}

std::vector<Promise> xml_read_promises(const char *file) {
  return {
      {{Call::stat}, file, 1, Result::fails, "Cannot get file status.\n\n{error}", untouched},
      {{Call::stat}, file, 2, Result::succeeds, "", done},
      {opening, file, 0, Result::fails, "Cannot open file.\n\n{error}", untouched},
      {reading, file, 0, Result::fails, "Could not parse XML data.\n\n?*", untouched},
      {closing, file, 0, Result::succeeds, "", done},
  };
}

TEST(PointerFileFaults, Read) {
  sweep({.name = "read the pointer file",
         .ground = {{pointer_file, pointer_to("/some/where")}},
         .run = []() -> std::optional<std::string> {
           OwnedText path;
           const bool is_read = v_workspace_get_saved_folder_path(path);
           // A failure gives no path.
           EXPECT_TRUE(is_read || !path);
           return is_read ? std::optional<std::string>(path ? path.get() : "(none)") : std::nullopt;
         },
         .promises = xml_read_promises(pointer_file)});
}

TEST(SettingsFaults, Load) {
  const std::string languages(
      "<settings>\n<!--" + std::string(9000, ' ') +
      "-->\n<archive path=\"/some/where\"/>\n<preferred-languages>\n"
      "<language tag=\"de\"/><language tag=\"fr\"/>\n</preferred-languages>\n"
      "<recent-custom-remarks><remark><code>7</code><description lang=\"en\">worn</description>"
      "</remark></recent-custom-remarks>\n</settings>\n");
  sweep({.name = "load the settings",
         .ground = {{settings_file, languages}},
         .run = []() -> std::optional<std::string> {
           const OwnedSettings settings = v_settings_new(on_ground("workspace").c_str());
           if (!v_settings_load(settings.get(), -1)) {
             return std::nullopt;
           }
           std::string text = settings->archive_path.get();
           for (const std::string &tag : settings->preferred_languages) {
             text += " " + tag;
           }
           const VRemark *remark = settings->recent_custom_remarks->head.next;
           return text + " " + (remark->code ? remark->code.get() : "(none)");
         },
         .promises = xml_read_promises(settings_file)});
}

class WorkspaceFaults : public testing::Test {
protected:
  WorkspaceFaults() { fake_platform.install_folder = on_ground("install"); }

  const FakePlatformReset reset;
};

TEST_F(WorkspaceFaults, Open) {
  // A pointer file that cannot be read counts as missing, and there is no default folder here.
  std::vector<Promise> promises = xml_read_promises(pointer_file);
  promises = promises + std::vector<Promise>{
                            {{Call::stat},
                             "workspace",
                             0,
                             Result::fails,
                             "Cannot get file status.\n\n{error}",
                             untouched},
                            // Bringing the layouts up to date cannot make opening fail.
                            {{Call::stat, Call::fopen, Call::open, Call::fread, Call::read,
                              Call::fclose, Call::close},
                             "workspace/layouts/*",
                             0,
                             Result::succeeds,
                             "",
                             done},
                            {{Call::stat},
                             "workspace/*",
                             0,
                             Result::fails,
                             "Cannot get file status.\n\n{error}",
                             partly_done},
                            {{Call::mkdir},
                             "workspace/*",
                             0,
                             Result::fails,
                             "Cannot create folder.\n\n{error}",
                             partly_done},
                        };
  sweep({.name = "open a workspace",
         .ground = {{pointer_file, pointer_to(on_ground("workspace"))},
                    {"workspace/layouts/standard.layout", "the user's own"},
                    {"workspace/layouts/bundled_simple.layout", "the user's own"},
                    {settings_file, "<settings/>"}},
         .run = []() -> std::optional<std::string> {
           const OwnedWorkspace workspace = v_workspace_open();
           return workspace ? std::optional(std::string(workspace->folder_path.get()) + " " +
                                            workspace->templates_folder_path.get())
                            : std::nullopt;
         },
         .promises = promises});
}

// A failure undoes everything except the folder for the pointer file.
std::vector<Promise> creation_promises(const std::vector<std::string> &kinds) {
  std::vector<Promise> promises = {
      {{Call::stat},
       "workspace",
       0,
       Result::fails,
       "Cannot get file status.\n\n{error}",
       untouched},
      {{Call::mkdir}, "workspace", 0, Result::fails, "Cannot create folder.\n\n{error}", untouched},
  };
  for (const std::string &kind : kinds) {
    promises = promises + install_promises(kind, untouched, untouched);
  }
  return promises + pointer_save_promises;
}

std::optional<std::string> create() {
  return as_result(v_workspace_create((on_ground("workspace") + "/").c_str()));
}

TEST_F(WorkspaceFaults, Create) {
  sweep({.name = "create a workspace",
         .ground = {{"home/.config/", ""},
                    {"install/codesets/a.codeset", std::string(20000, 'a')},
                    {"install/codesets/b.codeset", "b"},
                    {"install/layouts/c.layout", "c"},
                    {"install/templates/d.template", "d"},
                    {"neighbour", "the user's"}},
         .run = create,
         .promises = creation_promises({"codesets", "layouts", "templates"})});
}

TEST_F(WorkspaceFaults, CreateWithoutTemplates) {
  std::vector<Promise> promises = {
      // An entry whose status cannot be read counts as present, and then cannot be opened.
      {{Call::stat},
       "install/templates",
       0,
       Result::fails,
       "Cannot open folder.\n\nError 2: No such file or directory",
       untouched}};
  sweep({.name = "create a workspace without templates",
         .ground = {{"home/.config/", ""},
                    {"install/codesets/a.codeset", "a"},
                    {"install/layouts/c.layout", "c"}},
         .run = create,
         .promises = promises + creation_promises({"codesets", "layouts"})});
}

} // namespace
