#pragma once
// Notices when the whole program has lost the keyboard focus, and reports to the stack's focus
// callback when it is back. A window that has the focus only for a moment between two windows of
// the program does not count.

#include "gui/window_entries.h"

// Watches the window of the entry until the entry is removed.
void v_program_focus_watch(WindowStackNode *entry);
// Removes the callbacks under way.
void v_program_focus_stop(VWindowStack *stack);
