#pragma once
// The remark codesets manager as the frame runs it: a session in which the component manager lists
// the workspace's codesets and opens the codeset editing window.

#include "gui/editing/editing_window.h"

// The name of the desktop entry, and the class of the windows, so that desktops connect the two.
inline constexpr char v_codesets_manager_id[] = "org.vantorelle.VantorelleRemarkCodesetsManager";

// The tool, from session start to session end; the arguments are not used.
void run(int argc, char **argv);
void run_main_window(RunContext *context);
// The one-line summary (UTF-8) of the codeset file; null when it is not a readable codeset.
OwnedText text_callback(const char *file_path, void *run_context);
// Edits the codeset file; returns 1 when it was saved.
int edit_callback(const char *file_path, void *run_context);
