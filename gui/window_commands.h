#pragma once
// Keys of a window that call a function, for actions that have no button, or no permanent one. They
// work wherever the focus is in the window, and do nothing while another window is over it. For
// keys that press a button see gui/window_keys.h.

#include <gtk/gtk.h>

using VWindowCommand = void (*)(void *data);

// The window's group of keys, created on the first call. Borrowed.
GtkAccelGroup *v_window_commands_get_keys(GtkWindow *window);
// The key calls the command. data must outlive the window.
void v_window_commands_add(GtkWindow *window, guint key, GdkModifierType modifiers,
                           VWindowCommand command, void *data);
// Names the key (UTF-8) in the button's tooltip and to assistive technology.
void v_window_commands_announce(GtkButton *button, const char *key);
