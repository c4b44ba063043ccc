#pragma once
// Finds the window that a widget is in, and its focus widget. Results are borrowed.

#include <gtk/gtk.h>

// Null when the widget is in no window.
GtkWindow *v_window_focus_find_window(GtkWidget *widget);
// The focus widget of the window that the widget is in, or that it is; null when there is none.
GtkWidget *v_window_focus_find_focus(GtkWidget *widget);
