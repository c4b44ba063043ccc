#include "workspace/workspace_location.h"

#include <cstring>
#include <utility>

#include "base/error.h"
#include "base/fs_utils.h"
#include "base/xml_reading.h"
#include "base/xml_writing.h"

namespace {

bool make_folder_if_missing(const char *path) {
  VFileInfo info;
  return v_fs_utils_get_info(path, info) &&
         (info.exists || v_fs_utils_create_folder_recursively(path));
}

bool write_pointer_file(const char *file_path, const char *folder_path) {
  const OwnedXmlDoc document = v_xml_new_doc();
  xmlNode *root = document ? v_xml_add_root_element(document.get(), "vantorelle") : nullptr;
  xmlNode *workspace = root != nullptr ? v_xml_add_child_element(root, "workspace") : nullptr;
  return workspace != nullptr && v_xml_set_attribute(workspace, "path", folder_path) &&
         v_xml_replace_file(document.get(), file_path, "UTF-8");
}

// For the root folder, v_fs_utils_create_path_in_folder intentionally returns a relative path; this
// function prepends the slash.
OwnedText join_in_absolute_folder(const char *folder, const char *name) {
  OwnedText path = v_fs_utils_create_path_in_folder(folder, name);
  return *path == '/' ? std::move(path) : OwnedText(g_strconcat("/", path.get(), nullptr));
}

// The path relative to the home folder, without a leading slash.
const char *skip_home_sign(const char *place) {
  if (*place == '~' && (place[1] == '/' || place[1] == '\0')) {
    place++;
  }
  return place + std::strspn(place, "/");
}

} // namespace

OwnedText get_workspace_pointer_file_path(FolderCreation creation) {
  const OwnedText config_folder = v_fs_utils_convert_glibfsenc_to_utf8(g_get_user_config_dir());
  if (!config_folder) {
    v_error_set("Error locating user config dir.");
    return nullptr;
  }
  const OwnedText folder = v_fs_utils_create_path_in_folder(config_folder.get(), "vantorelle");
  if (creation == FolderCreation::yes && !make_folder_if_missing(folder.get())) {
    v_error_set("Error creating/accessing directory for settings in user config dir.");
    return nullptr;
  }
  return v_fs_utils_create_path_in_folder(folder.get(), "vantorelle.xml");
}

bool v_workspace_get_saved_folder_path(OwnedText &path) {
  path.reset();
  const OwnedText file_path = get_workspace_pointer_file_path(FolderCreation::no);
  OwnedXmlDoc document;
  if (!file_path || !v_xml_parse_file_if_exists(document, file_path.get())) {
    return false;
  }
  if (!document) {
    return true;
  }
  const xmlNode *root = v_xml_get_root_element(document.get());
  const xmlNode *workspace =
      root == nullptr ? nullptr : v_xml_get_required_distinct_child_node(root, "workspace");
  if (workspace == nullptr) {
    return false;
  }
  path = v_xml_get_nonempty_required_attribute_value_as_utf8(workspace, "path");
  if (!path) {
    return false;
  }
  v_fs_utils_strip_ending_path_delimiters(path.get());
  return true;
}

bool v_workspace_save_folder_path(const char *path) {
  const OwnedText file_path = get_workspace_pointer_file_path(FolderCreation::yes);
  if (!file_path) {
    return false;
  }
  return path == nullptr ? v_fs_utils_delete_file_if_exists(file_path.get())
                         : write_pointer_file(file_path.get(), path);
}

OwnedText v_workspace_get_default_folder_path() {
  const OwnedText home = v_fs_utils_convert_glibfsenc_to_utf8(g_get_home_dir());
  return home ? v_fs_utils_create_path_in_folder(home.get(), v_workspace_default_folder_name)
              : nullptr;
}

OwnedText v_workspace_create_path_in_parent_folder(const char *parent_folder) {
  return join_in_absolute_folder(parent_folder, v_workspace_default_folder_name);
}

OwnedText v_workspace_make_place_absolute(const char *place) {
  if (*place == '/' || *place == '\0') {
    return copy_text(place);
  }
  const OwnedText home = v_fs_utils_convert_glibfsenc_to_utf8(g_get_home_dir());
  return home ? join_in_absolute_folder(home.get(), skip_home_sign(place)) : nullptr;
}
