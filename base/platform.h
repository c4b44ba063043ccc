#pragma once
// Functions of the operating system other than those for files. The first group has one source per
// system, the second is common to all systems; the third only formats texts.

#include "base/owned.h"

// Path (UTF-8) of this program's executable. Null with "Error getting exe path from system.".
OwnedText v_platform_get_exe_path();
// Sets the path (UTF-8) of the executable of a running process, null when it cannot be converted.
// False with null when there is no such process or access is denied; sets no message.
bool v_platform_get_exe_path_for_process_id(OwnedText &path, long process_id);
// The file name extension of installed programs: ".app" where programs are bundles, else "".
const char *v_platform_get_program_ending();
// The command line (UTF-8) that starts the program at the quoted path; arguments are inserted
// unchanged ("" for none).
OwnedText v_platform_create_launch_command_line(const char *quoted_program_path,
                                                const char *arguments);

// The folder (UTF-8) of the running executable, which also has the fonts and the delivered
// components. Null when the executable cannot be found.
OwnedText v_platform_get_install_folder_path();
// The folder (UTF-8) in which the suite's printing code keeps its temporary files.
OwnedText v_platform_get_temp_files_folder_path();
// Starts a UTF-8 command line without waiting for it. False with a message when it cannot be
// converted or started.
bool v_platform_run_command_line(const char *command_line);

// The text quoted for the shell.
OwnedText v_platform_escape_string_for_command_line(const char *text);
// The command line that makes the system start a new instance of an application bundle.
OwnedText v_platform_format_bundle_command_line(const char *quoted_bundle_path,
                                                const char *arguments);
// The command line that starts a plain program file.
OwnedText v_platform_format_program_command_line(const char *quoted_program_path,
                                                 const char *arguments);
