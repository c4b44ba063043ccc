#include "gui/screen_high_scroller.h"

#include "gui/screen_area.h"

struct _VScreenHighScroller {
  GtkScrolledWindow parent_instance;
};

G_DEFINE_TYPE(VScreenHighScroller, v_screen_high_scroller, GTK_TYPE_SCROLLED_WINDOW)

namespace {

// What title bars, desktop bars and the window's other rows leave of the screen's height, in
// pixels.
int get_usable_height(GtkWidget *widget) { return v_screen_area_get(widget).height * 8 / 10; }

// The scrolled window itself would be content with next to no height.
void get_preferred_height(GtkWidget *widget, int *minimum, int *natural) {
  GTK_WIDGET_CLASS(v_screen_high_scroller_parent_class)
      ->get_preferred_height(widget, minimum, natural);
  *minimum = *natural;
}

void get_preferred_height_for_width(GtkWidget *widget, int width, int *minimum, int *natural) {
  GTK_WIDGET_CLASS(v_screen_high_scroller_parent_class)
      ->get_preferred_height_for_width(widget, width, minimum, natural);
  *minimum = *natural;
}

// The scrolled window itself would keep room for the scroll bar that is not there.
void get_preferred_width(GtkWidget *widget, int *minimum, int *natural) {
  GTK_WIDGET_CLASS(v_screen_high_scroller_parent_class)
      ->get_preferred_width(widget, minimum, natural);
  GtkWidget *child = gtk_bin_get_child(GTK_BIN(widget));
  int least_width = 0;
  int height = 0;
  gtk_widget_get_preferred_width(child, &least_width, nullptr);
  gtk_widget_get_preferred_height_for_width(child, least_width, nullptr, &height);
  if (height <= gtk_scrolled_window_get_max_content_height(GTK_SCROLLED_WINDOW(widget))) {
    gtk_widget_get_preferred_width(child, minimum, natural);
  }
}

} // namespace

static void v_screen_high_scroller_class_init(VScreenHighScrollerClass *scroller_class) {
  GTK_WIDGET_CLASS(scroller_class)->get_preferred_width = get_preferred_width;
  GTK_WIDGET_CLASS(scroller_class)->get_preferred_height = get_preferred_height;
  GTK_WIDGET_CLASS(scroller_class)->get_preferred_height_for_width = get_preferred_height_for_width;
}

static void v_screen_high_scroller_init(VScreenHighScroller *scroller) {
  GtkScrolledWindow *scrolled_window = GTK_SCROLLED_WINDOW(scroller);
  gtk_scrolled_window_set_policy(scrolled_window, GTK_POLICY_NEVER, GTK_POLICY_AUTOMATIC);
  gtk_scrolled_window_set_overlay_scrolling(scrolled_window, FALSE);
  // The focus is for what can be operated.
  gtk_widget_set_can_focus(GTK_WIDGET(scroller), FALSE);
  gtk_scrolled_window_set_propagate_natural_height(scrolled_window, TRUE);
  gtk_scrolled_window_set_max_content_height(scrolled_window,
                                             get_usable_height(GTK_WIDGET(scroller)));
}

GtkWidget *v_screen_high_scroller_new() {
  return GTK_WIDGET(g_object_new(V_TYPE_SCREEN_HIGH_SCROLLER, nullptr));
}
