#pragma once
// Keeps the user from a window while another one is above it. A covered window is insensitive and
// refuses requests to close it; uncovered, it has its focus and its grab again.

#include "gui/window_entries.h"

// Lets the window of the entry refuse to close for as long as the entry is not the top one.
void v_covered_windows_guard(WindowStackNode *entry);
// Makes the entry's window insensitive and keeps its focus widget for v_covered_windows_uncover.
void v_covered_windows_cover(WindowStackNode *covered);
// The same, and makes the window modal over it.
void v_covered_windows_cover_with(WindowStackNode *covered, GtkWindow *window);
void v_covered_windows_uncover(WindowStackNode *uncovered);
