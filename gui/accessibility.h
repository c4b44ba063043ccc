#pragma once
// What a window needs for use without a mouse or without a screen.

#include <gtk/gtk.h>

// The name (UTF-8) by which a screen reader announces a widget that has no label of its own.
void v_gui_set_accessible_name(GtkWidget *widget, const char *name);

// Escape closes the window as the window manager's close button would, unless the widget with the
// focus has a use for the key.
void v_gui_close_on_escape(GtkWindow *window);
