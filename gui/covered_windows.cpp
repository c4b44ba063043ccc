#include "covered_windows.h"

#include "gui/widgets.h"

namespace {

// "event" of a window, emitted before "delete-event" and, when handled, instead of it. So a covered
// window neither asks nor closes, whatever its own handlers do and whether or not the window above
// has a grab.
gboolean event_callback(GtkWidget *, GdkEvent *event, WindowStackNode *entry) {
  const bool is_covered = entry != v_window_entries_get_top(entry->stack);
  return event->type == GDK_DELETE && is_covered ? GDK_EVENT_STOP : GDK_EVENT_PROPAGATE;
}

// A modal window loses its grab when it becomes insensitive. Hiding the window releases the grab
// added here, like the one that showing it adds.
void restore_grab(GtkWindow *window) {
  if (gtk_window_get_modal(window) && gtk_widget_get_visible(GTK_WIDGET(window))) {
    gtk_grab_add(GTK_WIDGET(window));
  }
}

// False when the widget was removed from the window, or became insensitive for another reason,
// while the window was covered.
bool can_have_focus(GtkWindow *window, GtkWidget *widget) {
  return gtk_widget_get_toplevel(widget) == GTK_WIDGET(window) && gtk_widget_is_sensitive(widget);
}

} // namespace

void v_covered_windows_guard(WindowStackNode *entry) {
  g_signal_connect(entry->window, "event", G_CALLBACK(event_callback), entry);
}

// Saves the focus widget, because GTK drops that of an insensitive window.
void v_covered_windows_cover(WindowStackNode *covered) {
  if (GtkWidget *focus_widget = gtk_window_get_focus(covered->window)) {
    covered->focus_widget = share(focus_widget);
  }
  gtk_widget_set_sensitive(GTK_WIDGET(covered->window), FALSE);
}

void v_covered_windows_cover_with(WindowStackNode *covered, GtkWindow *window) {
  gtk_window_set_transient_for(window, covered->window);
  gtk_window_set_destroy_with_parent(window, TRUE);
  gtk_window_set_modal(window, TRUE);
  gtk_window_set_skip_taskbar_hint(window, TRUE);
  v_covered_windows_cover(covered);
}

void v_covered_windows_uncover(WindowStackNode *uncovered) {
  gtk_widget_set_sensitive(GTK_WIDGET(uncovered->window), TRUE);
  restore_grab(uncovered->window);
  const OwnedObject<GtkWidget> focus_widget = std::move(uncovered->focus_widget);
  if (focus_widget && can_have_focus(uncovered->window, focus_widget.get())) {
    v_gui_grab_focus_without_selecting(focus_widget.get());
  }
}
