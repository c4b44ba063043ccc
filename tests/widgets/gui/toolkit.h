#pragma once
// Drives the toolkit from a test: lets time pass, finds widgets, and acts on a dialog while the
// code under test waits in it.

#include <functional>
#include <string>
#include <vector>

#include <gtk/gtk.h>

// Lets the main loop run.
void settle();
void run_for(int milliseconds);
// Until the condition holds; false when it does not within a few seconds.
bool wait_until(const std::function<bool()> &condition);

// Calls the action once, from the main loop.
void call_later(int milliseconds, std::function<void()> action);
// Calls the action, from a main loop inside the code under test, with the next dialog that comes up
// and has the focus. The test fails, and the program ends, when none does.
void when_dialog_shows(std::function<void(GtkDialog *)> action);

// The widgets of one type at or below a widget, internal ones included, in their order.
std::vector<GtkWidget *> find_all(GtkWidget *below, GType type);
template <typename T>
T *find(GtkWidget *below, GType type) {
  const std::vector<GtkWidget *> found = find_all(below, type);
  return found.empty() ? nullptr : reinterpret_cast<T *>(found.front());
}

// Presses and releases a key (a keysym) in a window that has the focus.
void press_key(GtkWidget *window, guint key);

// A window that the test destroys at its end, if nothing else has.
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
  // Shows it and waits until it has the focus.
  void show_active();

private:
  GtkWindow *window;
  bool destroyed = false;
};
