#include "support/gui/test_window.h"

#include "support/gui/waiting.h"

TestWindow::TestWindow() : window(GTK_WINDOW(gtk_window_new(GTK_WINDOW_TOPLEVEL))) {
  g_object_ref(window);
  gtk_window_set_default_size(window, 200, 100);
  g_signal_connect(window, "destroy", G_CALLBACK(+[](GtkWidget *, bool *flag) { *flag = true; }),
                   &destroyed);
}

TestWindow::~TestWindow() {
  if (!destroyed) {
    destroy();
  }
  g_object_unref(window);
  settle();
}

void TestWindow::show_active() {
  gtk_widget_show(widget());
  gtk_window_present(window);
  ASSERT_TRUE(wait_until("the keyboard in the test's window",
                         [this] { return gtk_window_has_toplevel_focus(window) != FALSE; }));
}
