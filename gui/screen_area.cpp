#include "gui/screen_area.h"

GdkRectangle v_screen_area_get(GtkWidget *widget) {
  GdkRectangle area = {};
  GdkDisplay *display = gtk_widget_get_display(widget);
  GdkMonitor *monitor = gdk_display_get_primary_monitor(display);
  gdk_monitor_get_workarea(monitor != nullptr ? monitor : gdk_display_get_monitor(display, 0),
                           &area);
  if (area.width > 0 && area.height > 0) {
    return area;
  }
  GdkScreen *screen = gdk_display_get_default_screen(display);
  return {0, 0, gdk_screen_get_width(screen), gdk_screen_get_height(screen)};
}
