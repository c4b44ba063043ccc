#include "gui/accessibility.h"

#include "gui/owned_objects.h"

namespace {

// As gtk_window_close does, which keeps no reference: were the window gone by then, because the key
// repeats for instance, it would close what is no longer there. A window that has another one over
// it has been asked already.
gboolean close_callback(void *data) {
  auto *window = static_cast<GtkWidget *>(data);
  if (!gtk_widget_get_realized(window) || !gtk_widget_is_sensitive(window)) {
    return G_SOURCE_REMOVE;
  }
  const Owned<GdkEvent, gdk_event_free> event(gdk_event_new(GDK_DELETE));
  event->any.window = share(gtk_widget_get_window(window)).release();
  event->any.send_event = TRUE;
  if (!gtk_widget_event(window, event.get())) {
    gtk_widget_destroy(window);
  }
  return G_SOURCE_REMOVE;
}

gboolean key_press_event_callback(GtkWidget *window, GdkEventKey *event, void *) {
  if (event->keyval != GDK_KEY_Escape) {
    return GDK_EVENT_PROPAGATE;
  }
  g_idle_add_full(G_PRIORITY_DEFAULT, close_callback, share(window).release(), g_object_unref);
  return GDK_EVENT_STOP;
}

} // namespace

void v_gui_set_accessible_name(GtkWidget *widget, const char *name) {
  atk_object_set_name(gtk_widget_get_accessible(widget), name);
}

void v_gui_set_accessible_description(GtkWidget *widget, const char *description) {
  atk_object_set_description(gtk_widget_get_accessible(widget), description);
}

void v_gui_set_accessible_group_name(GtkWidget *widget, const char *name) {
  atk_object_set_role(gtk_widget_get_accessible(widget), ATK_ROLE_PANEL);
  v_gui_set_accessible_name(widget, name);
}

void v_gui_set_accessible_message(GtkWidget *window, const char *message) {
  atk_object_set_role(gtk_widget_get_accessible(window), ATK_ROLE_ALERT);
  v_gui_set_accessible_description(window, message);
}

void v_gui_close_on_escape(GtkWindow *window) {
  // After: the focused widget, a list's search field for instance, has its turn first.
  g_signal_connect_after(window, "key-press-event", G_CALLBACK(key_press_event_callback), nullptr);
}
