#pragma once

#include <gtk/gtk.h>

// An empty window of a test's own, destroyed at its end if it still exists.
class TestWindow {
public:
  TestWindow();
  ~TestWindow();
  TestWindow(const TestWindow &) = delete;
  TestWindow &operator=(const TestWindow &) = delete;

  GtkWindow *get() const { return window; }
  GtkWidget *widget() const { return GTK_WIDGET(window); }
  bool is_destroyed() const { return destroyed; }
  void destroy() { gtk_widget_destroy(widget()); }
  // Shows it and waits until it has the keyboard.
  void show_active();

private:
  GtkWindow *window; // a reference of its own
  bool destroyed = false;
};
