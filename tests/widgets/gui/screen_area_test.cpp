#include "gui/screen_area.h"

#include <gtest/gtest.h>

#include "gui/owned_objects.h"
#include "support/gui_driver.h"

namespace {

GdkWindow *asked_window = nullptr; // argument of the last request for a window's monitor

} // namespace

extern "C" {
GdkMonitor *__real_gdk_display_get_monitor_at_window(GdkDisplay *display, GdkWindow *window);
GdkMonitor *__wrap_gdk_display_get_monitor_at_window(GdkDisplay *display, GdkWindow *window);

GdkMonitor *__wrap_gdk_display_get_monitor_at_window(GdkDisplay *display, GdkWindow *window) {
  asked_window = window;
  return __real_gdk_display_get_monitor_at_window(display, window);
}
}

namespace {

TEST(ScreenArea, UsesTheMonitorOfTheWidgetsWindow) {
  TestWindow below;
  below.show_active();
  TestWindow window;
  GtkWidget *label = gtk_label_new("label");
  gtk_container_add(GTK_CONTAINER(window.get()), label);
  gtk_widget_show(label);
  window.show_active();
  asked_window = nullptr;
  v_screen_area_get(label);
  EXPECT_EQ(asked_window, gtk_widget_get_window(window.widget()));
}

TEST(ScreenArea, UsesTheActiveWindowWhenTheWidgetIsNotShown) {
  TestWindow active;
  active.show_active();
  TestWindow window;
  gtk_widget_realize(window.widget());
  asked_window = nullptr;
  v_screen_area_get(window.widget());
  EXPECT_EQ(asked_window, gtk_widget_get_window(active.widget()));
  asked_window = nullptr;
  const OwnedObject<GtkWidget> label = sink(gtk_label_new("not in a window"));
  v_screen_area_get(label.get());
  EXPECT_EQ(asked_window, gtk_widget_get_window(active.widget()));
}

TEST(ScreenArea, IsAvailableBeforeTheFirstWindow) {
  const OwnedObject<GtkWidget> label = sink(gtk_label_new("not in a window"));
  const GdkRectangle area = v_screen_area_get(label.get());
  EXPECT_GT(area.width, 0);
  EXPECT_GT(area.height, 0);
}

TEST(ScreenArea, IsNeverLessThanTenCharactersWide) {
  const OwnedObject<GtkWidget> label = sink(gtk_label_new("label"));
  EXPECT_GT(v_screen_area_count_characters(label.get(), 0, 0), 20);
  EXPECT_EQ(v_screen_area_count_characters(label.get(), 1000, 0), 10);
  EXPECT_EQ(v_screen_area_count_characters(label.get(), 0, 100000), 10);
}

} // namespace
