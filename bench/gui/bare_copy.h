#pragma once
// The lowest cost of one of the program's windows: a window with the same widgets of the toolkit,
// in the same boxes and with the same texts, but without any logic.

#include <gtk/gtk.h>

// Returns a floating copy of the widget and of everything in it; a window is not shown yet. A
// widget of our own class is copied as the toolkit's class that ours is derived from. Lists and
// text views are empty.
GtkWidget *v_bench_copy_bare(GtkWidget *widget);
