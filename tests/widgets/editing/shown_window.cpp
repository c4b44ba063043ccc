#include "shown_window.h"

#include <gtest/gtest.h>

#include "support/gui_driver.h"

ShownWindow::ShownWindow(GtkWidget *widget)
    : toplevel(gtk_window_new(GTK_WINDOW_TOPLEVEL)), above(gtk_button_new_with_label("above")),
      below(gtk_button_new_with_label("below")) {
  g_object_add_weak_pointer(G_OBJECT(toplevel), reinterpret_cast<gpointer *>(&toplevel));
  GtkWidget *box = gtk_box_new(GTK_ORIENTATION_VERTICAL, 8);
  gtk_box_pack_start(GTK_BOX(box), above, FALSE, FALSE, 0);
  gtk_box_pack_start(GTK_BOX(box), widget, TRUE, TRUE, 0);
  gtk_box_pack_start(GTK_BOX(box), below, FALSE, FALSE, 0);
  gtk_container_add(GTK_CONTAINER(toplevel), box);
  for (GtkWidget *each : {above, widget, below, box, toplevel}) {
    gtk_widget_show(each);
  }
  EXPECT_TRUE(wait_until("the keyboard in the window of the widget",
                         [this] { return gtk_window_is_active(window()); }));
  gtk_widget_grab_focus(above);
}

ShownWindow::~ShownWindow() {
  if (toplevel != nullptr) {
    g_object_remove_weak_pointer(G_OBJECT(toplevel), reinterpret_cast<gpointer *>(&toplevel));
    gtk_widget_destroy(toplevel);
  }
}

void paste(GtkWidget *widget, const char *text) {
  gtk_clipboard_set_text(gtk_clipboard_get(GDK_SELECTION_CLIPBOARD), text, -1);
  g_signal_emit_by_name(widget, "paste-clipboard");
  settle();
}
