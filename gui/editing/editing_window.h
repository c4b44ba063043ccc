#pragma once
// The window in which one codeset file is edited: its name, author, version and remark codes.

#include "gui/editing/spell_checker_cache.h"
#include "gui/window_stack.h"
#include "workspace/workspace.h"

// The objects of one run of the tool.
struct RunContext {
  VWindowStack *window_stack = nullptr; // borrowed
  VWorkspace *workspace = nullptr;      // borrowed
  // Keeps the checkers loaded from one window to the next.
  VSpellCheckerCacheOwner spell_checkers = {};
};

// Edits the file at the path (UTF-8), or a new codeset when there is no file, and returns when the
// window is closed: 1 when the codeset was saved, else 0. When the file cannot be read, shows an
// error and opens no window. While the window is open, changes are kept in a draft; a draft left
// behind by an earlier run is offered first.
int run_editing_window(const RunContext *context, const char *path);
