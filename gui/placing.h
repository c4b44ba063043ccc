#pragma once
// Shows a new widget, adds it to a container or packs it into a box. Each function returns its
// widget argument.

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
