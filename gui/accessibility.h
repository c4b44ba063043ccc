#pragma once
// Makes windows usable with the keyboard alone and with a screen reader.

#include <gtk/gtk.h>

// Sets the name (UTF-8) that a screen reader announces for a widget without a label.
void v_gui_set_accessible_name(GtkWidget *widget, const char *name);

// Sets the description (UTF-8) that a screen reader adds to the name, for instance for a button
// labelled only with a symbol.
void v_gui_set_accessible_description(GtkWidget *widget, const char *description);

// Makes the widget a group whose name (UTF-8) is spoken when the focus enters it.
void v_gui_set_accessible_group_name(GtkWidget *widget, const char *name);

// For a window that opens to show a message: a screen reader speaks the message (UTF-8) at once,
// wherever the focus is.
void v_gui_set_accessible_message(GtkWidget *window, const char *message);

// Escape closes the window as the window manager's close button would, unless the focused widget
// handles the key.
void v_gui_close_on_escape(GtkWindow *window);
