#include "gui/window_focus.h"

GtkWindow *v_window_focus_find_window(GtkWidget *widget) {
  GtkWidget *toplevel = gtk_widget_get_toplevel(widget);
  return GTK_IS_WINDOW(toplevel) ? GTK_WINDOW(toplevel) : nullptr;
}

GtkWidget *v_window_focus_find_focus(GtkWidget *widget) {
  GtkWindow *window = v_window_focus_find_window(widget);
  return window == nullptr ? nullptr : gtk_window_get_focus(window);
}
