#include "base/platform.h"

#include <utility>

#include <libproc.h>
#include <unistd.h>

#include "base/error.h"
#include "base/fs_utils.h"

OwnedText v_platform_get_exe_path() {
  OwnedText path;
  if (!v_platform_get_exe_path_for_process_id(path, getpid()) || !path) {
    v_error_set("Error getting exe path from system.");
  }
  return path;
}

bool v_platform_get_exe_path_for_process_id(OwnedText &path, long process_id) {
  path.reset();
  if (!std::in_range<int>(process_id)) {
    return false;
  }
  char name[PROC_PIDPATHINFO_MAXSIZE];
  const int length = proc_pidpath(static_cast<int>(process_id), name, sizeof name);
  if (length <= 0) {
    return false;
  }
  path = v_fs_utils_convert_osfsenc_to_utf8(name);
  return true;
}

const char *v_platform_get_program_ending() { return ".app"; }

OwnedText v_platform_create_launch_command_line(const char *quoted_program_path,
                                                const char *arguments) {
  return v_platform_format_bundle_command_line(quoted_program_path, arguments);
}
