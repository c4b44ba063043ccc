#include "window_cursors.h"

namespace {

enum class TopWindow { set, clear, leave_out };

OwnedObject<GdkCursor> create_cursor(GdkDisplay *display, const char *name) {
  return take(gdk_cursor_new_from_name(display, name));
}

void set_cursors(VWindowStack *stack, const char *name, TopWindow top_window) {
  OwnedObject<GdkCursor> cursor;
  GdkDisplay *cursor_display = nullptr;
  for (WindowStackNode *entry = stack->bottom->next.get(); entry != stack->top;
       entry = entry->next.get()) {
    const bool is_top = entry == v_window_entries_get_top(stack);
    if (is_top && top_window == TopWindow::leave_out) {
      break;
    }
    GtkWindow *window = v_window_entries_get_window(entry);
    GdkWindow *gdk_window = window == nullptr ? nullptr : gtk_widget_get_window(GTK_WIDGET(window));
    if (gdk_window == nullptr) {
      continue;
    }
    if (GdkDisplay *display = gdk_window_get_display(gdk_window); display != cursor_display) {
      cursor = create_cursor(display, name);
      cursor_display = display;
    }
    GdkCursor *set = is_top && top_window == TopWindow::clear ? nullptr : cursor.get();
    gdk_window_set_cursor(gdk_window, set);
    if (entry->cursor_callback != nullptr) {
      entry->cursor_callback(set != nullptr, entry->cursor_callback_data);
    }
  }
}

} // namespace

void v_window_cursors_show_wait(VWindowStack *stack) { set_cursors(stack, "wait", TopWindow::set); }

void v_window_cursors_show_standard_below_top(VWindowStack *stack) {
  set_cursors(stack, "default", TopWindow::leave_out);
}

void v_window_cursors_clear_top(VWindowStack *stack) {
  set_cursors(stack, "default", TopWindow::clear);
}
