#pragma once
// The mouse cursor of all windows of a stack, set in one sweep from the bottom up. Each entry's
// cursor callback is called when its window gets a cursor or loses it.

#include "gui/window_entries.h"

// The "wait" cursor on every window.
void v_window_cursors_show_wait(VWindowStack *stack);
// The standard cursor on every window below the top entry, whose own window keeps the one it has.
void v_window_cursors_show_standard_below_top(VWindowStack *stack);
// The standard cursor on every window below the top entry, whose own window loses the one that the
// stack has set.
void v_window_cursors_clear_top(VWindowStack *stack);
