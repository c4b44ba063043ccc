#pragma once
// Starts the other programs of the suite, which are installed side by side with this one.

#include "base/owned.h"

// Starts the suite's workspace tool. False when it could not be started.
bool v_exe_launch_workspace_tool();
// Starts a program by its name (UTF-8, without an ending). The arguments (UTF-8) are a piece of a
// shell command line; null means none. False when the install folder is not known or the start
// fails. A missing program may go unnoticed on systems that start it in a separate process.
bool launch_bundled_program(const char *name, const char *arguments);

// The path of a program of the suite: in the install folder, or, when nothing is there and the
// running program's bundle is inside another bundle's MacOS folder, in that one. Looks up only the
// first in the file system. All texts are UTF-8; the ending is v_platform_get_program_ending's.
OwnedText v_exe_get_bundled_program_path(const char *install_folder, const char *name,
                                         const char *ending);
