#include "gui/screen_area.h"

#include <algorithm>

#include "base/owned.h"

namespace {

// Screen height in pixels for each row of a list: 10 rows on 700 pixels, 12 on 900. On both, the
// fields of one language above the list need no scroll bar.
constexpr int pixels_per_list_row = 70;

constexpr int minimum_characters = 10;

// Null when no window of the program is active.
GdkWindow *find_active_window() {
  const Owned<GList, g_list_free> windows(gtk_window_list_toplevels());
  for (const GList *item = windows.get(); item != nullptr; item = item->next) {
    if (gtk_window_is_active(GTK_WINDOW(item->data))) {
      return gtk_widget_get_window(GTK_WIDGET(item->data));
    }
  }
  return nullptr;
}

// The monitor of the widget's window; the window has a position only when it is mapped. Otherwise
// the monitor of the active window, or the primary one.
GdkMonitor *find_monitor(GtkWidget *widget) {
  GdkDisplay *display = gtk_widget_get_display(widget);
  GtkWidget *toplevel = gtk_widget_get_toplevel(widget);
  GdkWindow *window = gtk_widget_get_mapped(toplevel) ? gtk_widget_get_window(toplevel) : nullptr;
  if (window == nullptr) {
    window = find_active_window();
  }
  if (window != nullptr) {
    return gdk_display_get_monitor_at_window(display, window);
  }
  GdkMonitor *primary = gdk_display_get_primary_monitor(display);
  return primary != nullptr ? primary : gdk_display_get_monitor(display, 0);
}

// Pixels per character, as the toolkit measures widths in characters: the larger of an average
// letter and an average digit.
int measure_character(GtkWidget *widget) {
  PangoContext *context = gtk_widget_get_pango_context(widget);
  const Owned<PangoFontMetrics, pango_font_metrics_unref> metrics(
      pango_context_get_metrics(context, nullptr, nullptr));
  const int width = std::max(pango_font_metrics_get_approximate_char_width(metrics.get()),
                             pango_font_metrics_get_approximate_digit_width(metrics.get()));
  return std::max(PANGO_PIXELS_CEIL(width), 1);
}

} // namespace

GdkRectangle v_screen_area_get(GtkWidget *widget) {
  GdkRectangle area = {};
  gdk_monitor_get_workarea(find_monitor(widget), &area);
  if (area.width > 0 && area.height > 0) {
    return area;
  }
  GdkScreen *screen = gdk_display_get_default_screen(gtk_widget_get_display(widget));
  return {0, 0, gdk_screen_get_width(screen), gdk_screen_get_height(screen)};
}

int v_screen_area_get_maximum_height(GtkWidget *widget) {
  return v_screen_area_get(widget).height * 8 / 10;
}

int v_screen_area_get_minimum_height(GtkWidget *widget) {
  return v_screen_area_get(widget).height * 3 / 10;
}

int v_screen_area_count_list_rows(GtkWidget *widget) {
  return v_screen_area_get(widget).height / pixels_per_list_row;
}

int v_screen_area_count_characters(GtkWidget *widget, int reserved_characters,
                                   int reserved_pixels) {
  const int characters =
      (v_screen_area_get(widget).width - reserved_pixels) / measure_character(widget);
  return std::max(characters - reserved_characters, minimum_characters);
}
