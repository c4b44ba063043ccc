#include "gui/window_focus.h"

#include <gtest/gtest.h>

#include "gui/owned_objects.h"
#include "support/gui_driver.h"

TEST(WindowFocus, AWidgetInNoWindowHasNeitherWindowNorFocus) {
  const OwnedObject<GtkWidget> button = sink(gtk_button_new());
  EXPECT_EQ(v_window_focus_find_window(button.get()), nullptr);
  EXPECT_EQ(v_window_focus_find_focus(button.get()), nullptr);
}

TEST(WindowFocus, AllWidgetsOfAWindowFindItsFocus) {
  TestWindow window;
  GtkWidget *box = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
  GtkWidget *field = gtk_entry_new();
  GtkWidget *button = gtk_button_new();
  gtk_container_add(GTK_CONTAINER(window.widget()), box);
  gtk_container_add(GTK_CONTAINER(box), field);
  gtk_container_add(GTK_CONTAINER(box), button);
  gtk_widget_show_all(box);
  window.show_active();
  for (GtkWidget *focus : {field, button}) {
    gtk_widget_grab_focus(focus);
    for (GtkWidget *widget : {field, button, box, window.widget()}) {
      EXPECT_EQ(v_window_focus_find_window(widget), window.get());
      EXPECT_EQ(v_window_focus_find_focus(widget), focus);
    }
  }
  gtk_window_set_focus(window.get(), nullptr);
  EXPECT_EQ(v_window_focus_find_focus(field), nullptr);
}
