#include "suite/sibling_tools.h"

#include <cstring>

#include "base/fs_utils.h"
#include "base/platform.h"

namespace {

// Levels from a bundle's parent folder to its executable: <bundle>.app/Contents/MacOS.
constexpr int bundle_depth = 3;

// The MacOS folder of the bundle around the running program's bundle; null when there is none.
OwnedText get_outer_program_folder(const char *install_folder) {
  OwnedText folder = copy_text(install_folder);
  for (int i = 0; i < bundle_depth; i++) {
    v_fs_utils_strip_entry_name_from_path(folder.get());
  }
  const bool is_program_folder =
      std::strcmp(v_fs_utils_find_entry_name_in_path(folder.get()), "MacOS") == 0;
  return is_program_folder ? std::move(folder) : nullptr;
}

} // namespace

OwnedText v_exe_get_bundled_program_path(const char *install_folder, const char *name,
                                         const char *ending) {
  const OwnedText file_name(g_strconcat(name, ending, nullptr));
  OwnedText path = v_fs_utils_create_path_in_folder(install_folder, file_name.get());
  if (!v_fs_utils_is_missing(path.get())) {
    return path;
  }
  const OwnedText outer_folder = get_outer_program_folder(install_folder);
  return outer_folder ? v_fs_utils_create_path_in_folder(outer_folder.get(), file_name.get())
                      : std::move(path);
}

bool launch_bundled_program(const char *name, const char *arguments) {
  const OwnedText install_folder = v_platform_get_install_folder_path();
  if (!install_folder) {
    return false;
  }
  const OwnedText path =
      v_exe_get_bundled_program_path(install_folder.get(), name, v_platform_get_program_ending());
  const OwnedText quoted_path = v_platform_escape_string_for_command_line(path.get());
  const OwnedText command_line = v_platform_create_launch_command_line(
      quoted_path.get(), arguments != nullptr ? arguments : "");
  return v_platform_run_command_line(command_line.get());
}

bool v_exe_launch_workspace_tool() {
  return launch_bundled_program("Vantorelle Workspace Tool", nullptr);
}
