#pragma once
// Keys of a window that work wherever the focus is in it. They do nothing while another window is
// over it.

#include <gtk/gtk.h>

using VWindowCommand = void (*)(void *data);

// The key calls the command. data must outlive the window.
void v_window_commands_add(GtkWindow *window, guint key, GdkModifierType modifiers,
                           VWindowCommand command, void *data);
// The key presses the button of the window, whose tooltip names it. It does nothing while the
// button is insensitive.
void v_window_commands_add_button(GtkWindow *window, guint key, GdkModifierType modifiers,
                                  GtkButton *button);
// Names the key (UTF-8) in the button's tooltip and to assistive technology.
void v_window_commands_announce(GtkButton *button, const char *key);
