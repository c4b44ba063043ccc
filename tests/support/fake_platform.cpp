#include "support/fake_platform.h"

#include "base/error.h"
#include "base/fs_utils.h"
#include "base/platform.h"

FakePlatform fake_platform;

OwnedText v_platform_get_exe_path() {
  if (!fake_platform.install_folder) {
    v_error_set("Error getting exe path from system.");
    return nullptr;
  }
  return v_fs_utils_create_path_in_folder(fake_platform.install_folder->c_str(), "program");
}

bool v_platform_get_exe_path_for_process_id(OwnedText &path, long process_id) {
  const auto found = fake_platform.exe_paths.find(process_id);
  const bool is_running = found != fake_platform.exe_paths.end();
  path = is_running ? copy_text(found->second.c_str()) : nullptr;
  return is_running;
}

const char *v_platform_get_program_ending() {
  return fake_platform.programs_are_bundles ? ".app" : "";
}

OwnedText v_platform_create_launch_command_line(const char *quoted_program_path,
                                                const char *arguments) {
  return fake_platform.programs_are_bundles
             ? v_platform_format_bundle_command_line(quoted_program_path, arguments)
             : v_platform_format_program_command_line(quoted_program_path, arguments);
}

OwnedText v_platform_get_install_folder_path() {
  OwnedText path = v_platform_get_exe_path();
  if (path) {
    v_fs_utils_strip_entry_name_from_path(path.get());
  }
  return path;
}

OwnedText v_platform_get_temp_files_folder_path() {
  const std::optional<std::string> &path = fake_platform.temp_files_folder;
  return path ? copy_text(path->c_str()) : nullptr;
}

bool v_platform_run_command_line(const char *command_line) {
  fake_platform.command_lines.emplace_back(command_line);
  if (!fake_platform.commands_can_start) {
    v_error_set("The command cannot be started.");
  }
  return fake_platform.commands_can_start;
}
