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

OwnedText v_platform_escape_string_for_command_line(const char *text) {
  return OwnedText(g_shell_quote(text));
}

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

OwnedText v_platform_format_bundle_command_line(const char *quoted_bundle_path,
                                                const char *arguments) {
  return OwnedText(g_strdup_printf("open -n %s --args %s", quoted_bundle_path, arguments));
}

OwnedText v_platform_format_program_command_line(const char *quoted_program_path,
                                                 const char *arguments) {
  return OwnedText(g_strdup_printf("%s %s", quoted_program_path, arguments));
}
