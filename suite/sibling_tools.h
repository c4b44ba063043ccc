#pragma once
// Starts the other programs of the suite, which are installed beside this one.

#include "base/owned.h"

// Starts the suite's workspace tool. False when it could not be started.
bool v_exe_launch_workspace_tool();
// Starts a program by its name (UTF-8, without an extension). The arguments (UTF-8) are part of a
// shell command line; null means none. False with a message when the install folder is unknown or
// the start fails. A missing program may not be detected on systems that start it indirectly.
bool launch_bundled_program(const char *name, const char *arguments);

// The path of a program of the suite: in the install folder, or, when nothing is at that path and
// the running program's bundle is inside another bundle's MacOS folder, in that folder. Only the
// first path is looked up in the file system. All texts are UTF-8; ending: that of
// v_platform_get_program_ending.
OwnedText v_exe_get_bundled_program_path(const char *install_folder, const char *name,
                                         const char *ending);
