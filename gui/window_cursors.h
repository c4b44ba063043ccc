#pragma once
// Sets the mouse cursor of all windows of a stack, from the bottom up. Each entry's cursor callback
// is called when the cursor of its window is set or cleared.

#include "gui/window_entries.h"

// Sets the "wait" cursor on every window.
void v_window_cursors_show_wait(VWindowStack *stack);
// Sets the standard cursor on every window below the top entry. The top entry's own window keeps
// its cursor.
void v_window_cursors_show_standard_below_top(VWindowStack *stack);
// The same, and clears the cursor that the stack has set on the top entry's own window.
void v_window_cursors_clear_top(VWindowStack *stack);
