#pragma once
// A widget on the screen, in a window that has the keyboard.

#include <gtk/gtk.h>

// The window holds, from top to bottom, a button, the widget and another button. It is destroyed at
// the end, if it still exists.
class ShownWindow {
public:
  explicit ShownWindow(GtkWidget *widget);
  ~ShownWindow();
  ShownWindow(const ShownWindow &) = delete;
  ShownWindow &operator=(const ShownWindow &) = delete;

  GtkWindow *window() const { return GTK_WINDOW(toplevel); }
  GtkWidget *before() const { return above; }
  GtkWidget *after() const { return below; }
  GtkWidget *focus() const { return gtk_window_get_focus(window()); }

private:
  GtkWidget *toplevel = nullptr;
  GtkWidget *above = nullptr;
  GtkWidget *below = nullptr;
};

// Puts the text on the clipboard and gives the widget its paste command.
void paste(GtkWidget *widget, const char *text);
