#pragma once
// Finds a widget's window and the focused widget in it. Results are borrowed.

#include <gtk/gtk.h>

// Null when the widget is not in a window.
GtkWindow *v_window_focus_find_window(GtkWidget *widget);
// The focused widget of the widget's window (or of the widget, if it is a window); null for none.
GtkWidget *v_window_focus_find_focus(GtkWidget *widget);
