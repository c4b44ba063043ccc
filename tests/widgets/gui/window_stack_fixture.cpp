#include "window_stack_fixture.h"

#include "gui/owned_objects.h"

bool is_sensitive(const TestWindow &window) {
  return gtk_widget_get_sensitive(window.widget()) != FALSE;
}

GdkCursor *get_cursor(const TestWindow &window) {
  return gdk_window_get_cursor(gtk_widget_get_window(window.widget()));
}

std::string name_cursor(const TestWindow &window) {
  for (const char *name : {"default", "wait"}) {
    const OwnedObject<GdkCursor> cursor =
        take(gdk_cursor_new_from_name(gtk_widget_get_display(window.widget()), name));
    if (cursor && cursor.get() == get_cursor(window)) {
      return name;
    }
  }
  return get_cursor(window) == nullptr ? "none" : "other";
}
