#include "support/gui/keys.h"

#include "support/gui/widget_search.h"

namespace {

// Accelerators are looked up by the keyboard's key code. 0 for a keysym that no key has.
guint16 find_hardware_keycode(GdkDisplay *display, guint key) {
  GdkKeymapKey *keys = nullptr;
  int count = 0;
  gdk_keymap_get_entries_for_keyval(gdk_keymap_get_for_display(display), key, &keys, &count);
  const Owned<void, g_free> owned_keys(keys);
  return count > 0 ? static_cast<guint16>(keys[0].keycode) : guint16{0};
}

OwnedEvent make_event_for(GdkWindow *window, GdkEventType type, guint key, int modifiers,
                          guint32 time) {
  GdkDisplay *display = gdk_window_get_display(window);
  OwnedEvent event(gdk_event_new(type));
  event->key.window = GDK_WINDOW(g_object_ref(window));
  event->key.time = time;
  event->key.keyval = key;
  event->key.state = static_cast<guint>(modifiers);
  event->key.hardware_keycode = find_hardware_keycode(display, key);
  event->key.is_modifier = key >= GDK_KEY_Shift_L && key <= GDK_KEY_Hyper_R;
  gdk_event_set_device(event.get(), gdk_seat_get_keyboard(gdk_display_get_default_seat(display)));
  return event;
}

} // namespace

OwnedEvent make_key_event(GtkWidget *window, GdkEventType type, guint key, int modifiers,
                          guint32 time) {
  return make_event_for(gtk_widget_get_window(window), type, key, modifiers, time);
}

void press_key(GtkWidget *window, guint key, int modifiers) {
  GdkWindow *pressed_in = gtk_widget_get_window(window);
  const Owned<void, g_object_unref> kept(g_object_ref(pressed_in));
  for (const GdkEventType type : {GDK_KEY_PRESS, GDK_KEY_RELEASE}) {
    gtk_main_do_event(make_event_for(pressed_in, type, key, modifiers, GDK_CURRENT_TIME).get());
  }
}

void press_key(guint key, int modifiers) { press_key(GTK_WIDGET(top_window()), key, modifiers); }
