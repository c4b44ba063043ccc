#pragma once
// Blocks a window while another one is above it. A covered window is insensitive and refuses
// requests to close it; uncovering it restores its focus and its grab.

#include "gui/window_entries.h"

// Makes the entry's window refuse to close while the entry is not the top one.
void v_covered_windows_guard(WindowStackNode *entry);
// Makes the entry's window insensitive and saves its focus widget for v_covered_windows_uncover.
void v_covered_windows_cover(WindowStackNode *covered);
// The same, and makes window modal over it.
void v_covered_windows_cover_with(WindowStackNode *covered, GtkWindow *window);
void v_covered_windows_uncover(WindowStackNode *uncovered);
