#pragma once
// Detects when the whole program has lost the keyboard focus, and calls the stack's focus callback
// when it has the focus again. A short loss, while the focus moves between two windows of the
// program, does not count.

#include "gui/window_entries.h"

// Watches the window of the entry until the entry is removed.
void v_program_focus_watch(WindowStackNode *entry);
// Removes all pending callbacks.
void v_program_focus_stop(VWindowStack *stack);
