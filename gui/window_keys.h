#pragma once
// Keys that press a button of their window. The button's tooltip shows the key, and assistive
// technology announces it.
//
// A key has the same effect as pressing the button, and none while the button is insensitive, as
// all buttons of a window are while another window is above it. It has no effect in a list's search
// field, and presses only once while it is held down. Keys of the numeric keypad work like those of
// the same name.

#include <gtk/gtk.h>

// The key works wherever the focus is in the window.
void v_window_keys_add(GtkWindow *window, guint key, GdkModifierType modifiers, GtkButton *button);
// The key works while the list has the focus.
void v_window_keys_add_in_list(GtkWindow *window, GtkTreeView *list, guint key, GtkButton *button);
// Return in the list, for the selected row, else for the one on which the cursor was placed.
void v_window_keys_add_return_in_list(GtkWindow *window, GtkTreeView *list, GtkButton *button);
// Makes a double click on a row of the list, or its activation by an assistive technology, press
// the button.
void v_window_keys_press_on_double_click(GtkTreeView *list, GtkButton *button);
