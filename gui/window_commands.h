#pragma once
// Keys of a window that call a function, for actions without a button, or without a permanent one.
// They work wherever the focus is in the window, but not while another window is above it. For keys
// that press a button see gui/window_keys.h.

#include <gtk/gtk.h>

using VWindowCommand = void (*)(void *data);

// The window's accelerator group, created by the first call. Borrowed.
GtkAccelGroup *v_window_commands_get_keys(GtkWindow *window);
// Makes the key call the command. data must outlive the window.
void v_window_commands_add(GtkWindow *window, guint key, GdkModifierType modifiers,
                           VWindowCommand command, void *data);
// Shows the key (UTF-8, such as "Ctrl+N") in the button's tooltip and reports it to assistive
// technologies.
void v_window_commands_announce(GtkButton *button, const char *key);
