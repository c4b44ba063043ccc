#pragma once
// Keys of the display's keyboard.

#include <gtk/gtk.h>

#include "base/owned.h"

using OwnedEvent = Owned<GdkEvent, gdk_event_free>;

// An event of the key (a keysym) for a window that is realized. type: GDK_KEY_PRESS or
// GDK_KEY_RELEASE. modifiers: those that are held (GdkModifierType). time: milliseconds.
OwnedEvent make_key_event(GtkWidget *window, GdkEventType type, guint key, int modifiers = 0,
                          guint32 time = GDK_CURRENT_TIME);

// Presses and releases the key in the window, and returns when the program has handled both. The
// window may be destroyed by the press.
void press_key(GtkWidget *window, guint key, int modifiers = 0);
// The same in the top window.
void press_key(guint key, int modifiers = 0);
