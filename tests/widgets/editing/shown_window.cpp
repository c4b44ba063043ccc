#include "shown_window.h"

#include <gtest/gtest.h>

#include "support/gui_driver.h"

namespace {

guint16 find_keycode(guint keyval) {
  GdkKeymapKey *keys = nullptr;
  int count = 0;
  GdkKeymap *keymap = gdk_keymap_get_for_display(gdk_display_get_default());
  if (!gdk_keymap_get_entries_for_keyval(keymap, keyval, &keys, &count) || count == 0) {
    return 0;
  }
  const auto keycode = static_cast<guint16>(keys[0].keycode);
  g_free(keys);
  return keycode;
}

} // namespace

ShownWindow::ShownWindow(GtkWidget *widget)
    : toplevel(gtk_window_new(GTK_WINDOW_TOPLEVEL)), above(gtk_button_new_with_label("above")),
      below(gtk_button_new_with_label("below")) {
  g_object_add_weak_pointer(G_OBJECT(toplevel), reinterpret_cast<gpointer *>(&toplevel));
  GtkWidget *box = gtk_box_new(GTK_ORIENTATION_VERTICAL, 8);
  gtk_box_pack_start(GTK_BOX(box), above, FALSE, FALSE, 0);
  gtk_box_pack_start(GTK_BOX(box), widget, TRUE, TRUE, 0);
  gtk_box_pack_start(GTK_BOX(box), below, FALSE, FALSE, 0);
  gtk_container_add(GTK_CONTAINER(toplevel), box);
  for (GtkWidget *each : {above, widget, below, box, toplevel}) {
    gtk_widget_show(each);
  }
  EXPECT_TRUE(wait_until([this] { return gtk_window_is_active(window()); }));
  gtk_widget_grab_focus(above);
}

ShownWindow::~ShownWindow() {
  if (toplevel != nullptr) {
    g_object_remove_weak_pointer(G_OBJECT(toplevel), reinterpret_cast<gpointer *>(&toplevel));
    gtk_widget_destroy(toplevel);
  }
}

void ShownWindow::press_key(guint keyval, GdkModifierType modifiers) const {
  for (const GdkEventType type : {GDK_KEY_PRESS, GDK_KEY_RELEASE}) {
    GdkEvent *event = gdk_event_new(type);
    event->key.window = GDK_WINDOW(g_object_ref(gtk_widget_get_window(toplevel)));
    event->key.send_event = TRUE;
    event->key.time = GDK_CURRENT_TIME;
    event->key.state = modifiers;
    event->key.keyval = keyval;
    event->key.hardware_keycode = find_keycode(keyval);
    GdkSeat *seat = gdk_display_get_default_seat(gdk_display_get_default());
    gdk_event_set_device(event, gdk_seat_get_keyboard(seat));
    gtk_main_do_event(event);
    gdk_event_free(event);
  }
}

void paste(GtkWidget *widget, const char *text) {
  gtk_clipboard_set_text(gtk_clipboard_get(GDK_SELECTION_CLIPBOARD), text, -1);
  g_signal_emit_by_name(widget, "paste-clipboard");
  settle();
}
