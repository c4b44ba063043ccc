#pragma once
// Keys of a window for which it has no button, or none that is always there. They work wherever the
// focus is in it, and do nothing while another window is over it. Keys that press a button are
// those of gui/window_keys.h.

#include <gtk/gtk.h>

using VWindowCommand = void (*)(void *data);

// The keys of the window; made when it has none. Borrowed.
GtkAccelGroup *v_window_commands_get_keys(GtkWindow *window);
// The key calls the command. data must outlive the window.
void v_window_commands_add(GtkWindow *window, guint key, GdkModifierType modifiers,
                           VWindowCommand command, void *data);
// Names the key (UTF-8) in the button's tooltip and to assistive technology.
void v_window_commands_announce(GtkButton *button, const char *key);
