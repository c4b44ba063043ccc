#include "base/platform.h"

#include "base/error.h"
#include "base/fs_utils.h"

namespace {

bool read_exe_link(OwnedText &path, const char *link) {
  const OwnedText name(g_file_read_link(link, nullptr));
  path = name ? v_fs_utils_convert_osfsenc_to_utf8(name.get()) : nullptr;
  return name != nullptr;
}

} // namespace

OwnedText v_platform_get_exe_path() {
  OwnedText path;
  read_exe_link(path, "/proc/self/exe");
  if (!path) {
    v_error_set("Error getting exe path from system.");
  }
  return path;
}

bool v_platform_get_exe_path_for_process_id(OwnedText &path, long process_id) {
  const OwnedText link(g_strdup_printf("/proc/%ld/exe", process_id));
  return read_exe_link(path, link.get());
}

const char *v_platform_get_program_ending() { return ""; }

OwnedText v_platform_create_launch_command_line(const char *quoted_program_path,
                                                const char *arguments) {
  return v_platform_format_program_command_line(quoted_program_path, arguments);
}
