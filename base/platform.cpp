#include "base/platform.h"

#include "base/error.h"
#include "base/fs_utils.h"

OwnedText v_platform_get_install_folder_path() {
  OwnedText path = v_platform_get_exe_path();
  if (path) {
    v_fs_utils_strip_entry_name_from_path(path.get());
  }
  return path;
}

OwnedText v_platform_get_temp_files_folder_path() { return copy_text("/tmp"); }

bool v_platform_run_command_line(const char *command_line) {
  const OwnedText native_command_line = v_fs_utils_convert_utf8_to_glibfsenc(command_line);
  if (!native_command_line) {
    return false;
  }
  OwnedError error;
  if (!g_spawn_command_line_async(native_command_line.get(), receive(error))) {
    v_error_set_from_gerror_and_free(error.release());
    return false;
  }
  return true;
}
