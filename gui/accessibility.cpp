#include "gui/accessibility.h"

#include "gui/idle_call.h"
#include "gui/owned_objects.h"

namespace {

// Requests closing like the window manager's close button. An insensitive window is covered by
// another one.
void request_close(GtkWidget *window) {
  if (!gtk_widget_get_realized(window) || !gtk_widget_is_sensitive(window)) {
    return;
  }
  const Owned<GdkEvent, gdk_event_free> event(gdk_event_new(GDK_DELETE));
  event->any.window = share(gtk_widget_get_window(window)).release();
  if (!gtk_widget_event(window, event.get())) {
    gtk_widget_destroy(window);
  }
}

// "key-press-event". Defers closing to the main loop, as gtk_window_close does. That function holds
// no reference: if the window were destroyed first, for instance because the key repeats, it would
// close a window that no longer exists.
gboolean key_press_event_callback(GtkWidget *window, GdkEventKey *event, void *) {
  if (event->keyval != GDK_KEY_Escape) {
    return GDK_EVENT_PROPAGATE;
  }
  v_idle_call_add(window, G_PRIORITY_DEFAULT, [window] { request_close(window); });
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
  // Connected after other handlers, so that the widget with the focus, for instance a list's search
  // field, handles the key first.
  g_signal_connect_after(window, "key-press-event", G_CALLBACK(key_press_event_callback), nullptr);
}
