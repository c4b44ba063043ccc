#pragma once
// Keys that press a button of their window. The button's tooltip shows the key, and assistive
// technology announces it.
//
// A key does what pressing the button would do, and nothing while the button is insensitive, as all
// buttons of a window are while another window is over it. It does nothing in a list's search
// field, and a key that is held down presses once. Keys of the number pad count as those of the
// same name.

#include <gtk/gtk.h>

// The key works wherever the focus is in the window.
void v_window_keys_add(GtkWindow *window, guint key, GdkModifierType modifiers, GtkButton *button);
// The key works while the list has the focus.
void v_window_keys_add_in_list(GtkWindow *window, GtkTreeView *list, guint key, GtkButton *button);
// Return in the list, for the selected row or else the one on which the cursor was placed.
void v_window_keys_add_return_in_list(GtkWindow *window, GtkTreeView *list, GtkButton *button);
// A double click on a row of the list, or assistive technology that activates it, presses the
// button.
void v_window_keys_press_on_double_click(GtkTreeView *list, GtkButton *button);
