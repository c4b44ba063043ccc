#include "workspace/workspace.h"

#include <iterator>

#include "base/error.h"
#include "base/fs_utils.h"
#include "workspace/delivered_components.h"
#include "workspace/workspace_location.h"

namespace {

// Sub-folders of a new workspace, in the order of installation.
constexpr const char *delivered_sub_folders[] = {"codesets", "layouts", "templates"};

// A pointer file that cannot be read counts as absent.
OwnedText find_workspace_folder() {
  OwnedText path;
  v_workspace_get_saved_folder_path(path);
  return path ? std::move(path) : v_workspace_get_default_folder_path();
}

bool is_folder(const char *path) {
  VFileInfo info;
  return v_fs_utils_get_info(path, info) && info.exists && info.is_folder;
}

// Sets the path of a sub-folder and creates the folder if it is missing.
bool open_sub_folder(OwnedText &sub_folder_path, const char *folder_path, const char *name) {
  sub_folder_path = v_fs_utils_create_path_in_folder(folder_path, name);
  VFileInfo info;
  if (!v_fs_utils_get_info(sub_folder_path.get(), info)) {
    return false;
  }
  return info.exists ? info.is_folder != 0 : v_fs_utils_create_folder(sub_folder_path.get());
}

// Installs the delivered components, then saves the workspace's path. After a failure, removes the
// installed ones in reverse order.
bool fill_new_workspace(const char *folder_path) {
  std::size_t installed = 0;
  while (installed < std::size(delivered_sub_folders) &&
         install_bundled_components(folder_path, delivered_sub_folders[installed])) {
    installed++;
  }
  if (installed == std::size(delivered_sub_folders) && v_workspace_save_folder_path(folder_path)) {
    return true;
  }
  while (installed > 0) {
    delete_components_folder(folder_path, delivered_sub_folders[--installed]);
  }
  return false;
}

} // namespace

void v_workspace_close(VWorkspace *workspace) { delete workspace; }

OwnedWorkspace v_workspace_open() {
  OwnedText folder_path = find_workspace_folder();
  if (!folder_path || !is_folder(folder_path.get())) {
    return nullptr;
  }
  OwnedWorkspace workspace(new VWorkspace);
  workspace->folder_path = std::move(folder_path);
  const char *folder = workspace->folder_path.get();
  workspace->settings = v_settings_new(folder);
  if (!open_sub_folder(workspace->codesets_folder_path, folder, "codesets") ||
      !open_sub_folder(workspace->layouts_folder_path, folder, "layouts") ||
      !open_sub_folder(workspace->documents_folder_path, folder, "documents") ||
      !open_sub_folder(workspace->templates_folder_path, folder, "templates")) {
    return nullptr;
  }
  workspace->fonts_folder_path = v_fs_utils_create_path_in_folder(folder, "fonts");
  v_delivered_components_upgrade_layouts(folder, workspace->layouts_folder_path.get());
  return workspace;
}

bool v_workspace_create(const char *folder_path) {
  const OwnedText path = copy_text(folder_path);
  v_fs_utils_strip_ending_path_delimiters(path.get());
  if (!v_fs_utils_is_missing(path.get()) || !v_fs_utils_create_folder(path.get())) {
    return false;
  }
  if (!fill_new_workspace(path.get())) {
    // The clean-up must not replace the message.
    const VErrorKeeper keeper;
    v_fs_utils_delete_folder_if_exists(path.get());
    return false;
  }
  return true;
}
