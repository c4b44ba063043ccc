#pragma once
// The three steps that every new widget goes through: shown, added, packed. Each returns the widget
// that it was given.

#include <gtk/gtk.h>

#include "gui/widget_options.h"

template <typename T>
T *shown(T *widget) {
  gtk_widget_show(GTK_WIDGET(widget));
  return widget;
}

template <typename T>
T *added(GtkContainer *container, T *widget) {
  gtk_container_add(container, GTK_WIDGET(widget));
  return widget;
}

template <typename T>
T *packed(GtkBox *box, Expand expand, T *widget) {
  const gboolean grows = expand == Expand::yes;
  gtk_box_pack_start(box, GTK_WIDGET(widget), grows, grows, 0);
  return widget;
}
