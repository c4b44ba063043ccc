#pragma once
// What a window needs for use without a mouse or without a screen.

#include <gtk/gtk.h>

// The name (UTF-8) by which a screen reader announces a widget that has no label of its own.
void v_gui_set_accessible_name(GtkWidget *widget, const char *name);

// What a screen reader says beside the name: of a button whose label is only a sign, for instance.
void v_gui_set_accessible_description(GtkWidget *widget, const char *description);

// Makes the widget a group whose name (UTF-8) is spoken when the focus comes into it.
void v_gui_set_accessible_group_name(GtkWidget *widget, const char *name);

// A window that opens by itself to say something: a screen reader speaks the message (UTF-8) at
// once, whatever has the focus in it.
void v_gui_set_accessible_message(GtkWidget *window, const char *message);

// Escape closes the window as the window manager's close button would, unless the widget with the
// focus has a use for the key.
void v_gui_close_on_escape(GtkWindow *window);
