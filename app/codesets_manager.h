#pragma once
// The tool that the application frame runs: a session in which the component manager lists the
// workspace's codesets and opens the codeset editing window.

#include "gui/editing/editing_window.h"

// The name of the desktop entry, and the class of the windows, so that desktops associate the two.
inline constexpr char v_codesets_manager_id[] = "org.vantorelle.VantorelleRemarkCodesetsManager";

// Runs the tool from the start to the end of its session; the arguments are ignored.
void run(int argc, char **argv);
void run_main_window(RunContext *context);
// The one-line summary (UTF-8) of the codeset file; null when it cannot be read as a codeset.
OwnedText text_callback(const char *file_path, void *run_context);
// Edits the codeset file; returns 1 when it was saved, else 0.
int edit_callback(const char *file_path, void *run_context);
