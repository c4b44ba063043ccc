#include "base/platform.h"

OwnedText v_platform_escape_string_for_command_line(const char *text) {
  return OwnedText(g_shell_quote(text));
}

OwnedText v_platform_format_bundle_command_line(const char *quoted_bundle_path,
                                                const char *arguments) {
  return OwnedText(g_strdup_printf("open -n %s --args %s", quoted_bundle_path, arguments));
}

OwnedText v_platform_format_program_command_line(const char *quoted_program_path,
                                                 const char *arguments) {
  return OwnedText(g_strdup_printf("%s %s", quoted_program_path, arguments));
}
