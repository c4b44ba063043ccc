#include "gui/height_capped_scroller.h"

#include <algorithm>

#include "gui/css.h"
#include "gui/screen_area.h"
#include "gui/window_focus.h"

struct _VHeightCappedScroller {
  GtkScrolledWindow parent_instance;

  int minimum_height; // pixels; 0: as high as the content, up to the screen's height
  // In pixels, from the last allocation.
  double content_height;
  double shown_height;
};

G_DEFINE_TYPE(VHeightCappedScroller, v_height_capped_scroller, GTK_TYPE_SCROLLED_WINDOW)

namespace {

// Themes leave no gap between the scroll bar and the fields beside it.
constexpr const char *scroller_css =
    "scrolledwindow { -GtkScrolledWindow-scrollbar-spacing: 8px; }";

// A plain scrolled window has a minimum height of almost nothing.
int limit_minimum(GtkWidget *widget, int natural) {
  const int minimum_height = V_HEIGHT_CAPPED_SCROLLER(widget)->minimum_height;
  return minimum_height == 0 ? natural : std::min(natural, minimum_height);
}

void get_preferred_height(GtkWidget *widget, int *minimum, int *natural) {
  GTK_WIDGET_CLASS(v_height_capped_scroller_parent_class)
      ->get_preferred_height(widget, minimum, natural);
  *minimum = limit_minimum(widget, *natural);
}

void get_preferred_height_for_width(GtkWidget *widget, int width, int *minimum, int *natural) {
  GTK_WIDGET_CLASS(v_height_capped_scroller_parent_class)
      ->get_preferred_height_for_width(widget, width, minimum, natural);
  *minimum = limit_minimum(widget, *natural);
}

// A plain scrolled window would reserve space for a scroll bar even when none is shown.
void get_preferred_width(GtkWidget *widget, int *minimum, int *natural) {
  GTK_WIDGET_CLASS(v_height_capped_scroller_parent_class)
      ->get_preferred_width(widget, minimum, natural);
  GtkWidget *child = gtk_bin_get_child(GTK_BIN(widget));
  int minimum_width = 0;
  int height = 0;
  gtk_widget_get_preferred_width(child, &minimum_width, nullptr);
  gtk_widget_get_preferred_height_for_width(child, minimum_width, nullptr, &height);
  if (height <= gtk_scrolled_window_get_max_content_height(GTK_SCROLLED_WINDOW(widget))) {
    gtk_widget_get_preferred_width(child, minimum, natural);
  }
}

// The focused widget if it is inside the scroller; else null.
GtkWidget *find_focus_inside(GtkWidget *scroller) {
  GtkWidget *focus = v_window_focus_find_focus(scroller);
  return focus != nullptr && gtk_widget_is_ancestor(focus, scroller) ? focus : nullptr;
}

void scroll_to(GtkWidget *widget, GtkWidget *content, GtkAdjustment *place) {
  int top = 0;
  if (gtk_widget_translate_coordinates(widget, content, 0, 0, nullptr, &top)) {
    gtk_adjustment_clamp_page(place, top, top + gtk_widget_get_allocated_height(widget));
  }
}

// Scrolls to the focused widget again: the toolkit scrolls to a widget when it gets the focus, but
// a new widget has no position until it is allocated here. Does not scroll when no size has
// changed, because the user may have scrolled elsewhere deliberately.
void size_allocate(GtkWidget *widget, GtkAllocation *allocation) {
  VHeightCappedScroller *scroller = V_HEIGHT_CAPPED_SCROLLER(widget);
  GTK_WIDGET_CLASS(v_height_capped_scroller_parent_class)->size_allocate(widget, allocation);
  GtkAdjustment *place = gtk_scrolled_window_get_vadjustment(GTK_SCROLLED_WINDOW(scroller));
  const double content_height = gtk_adjustment_get_upper(place);
  const double shown_height = gtk_adjustment_get_page_size(place);
  if (content_height == scroller->content_height && shown_height == scroller->shown_height) {
    return;
  }
  scroller->content_height = content_height;
  scroller->shown_height = shown_height;
  GtkWidget *viewport = gtk_bin_get_child(GTK_BIN(scroller));
  if (GtkWidget *focus = find_focus_inside(widget)) {
    scroll_to(focus, gtk_bin_get_child(GTK_BIN(viewport)), place);
  }
}

// "move-focus-out", which the toolkit binds to Ctrl+Tab. In a web browser it sometimes mistakes Tab
// for that, because its keymap there leaves a modifier mask unset (seen with GTK 3.24.49). In that
// case, moves the focus to the next widget as Tab does.
void move_focus_out(GtkScrolledWindow *scroller, GtkDirectionType direction) {
  GdkModifierType state = {};
  if (gtk_get_current_event_state(&state) && (state & GDK_CONTROL_MASK) == 0) {
    gtk_widget_child_focus(gtk_widget_get_toplevel(GTK_WIDGET(scroller)), direction);
  } else {
    GTK_SCROLLED_WINDOW_CLASS(v_height_capped_scroller_parent_class)
        ->move_focus_out(scroller, direction);
  }
}

} // namespace

static void v_height_capped_scroller_class_init(VHeightCappedScrollerClass *scroller_class) {
  GTK_WIDGET_CLASS(scroller_class)->get_preferred_width = get_preferred_width;
  GTK_WIDGET_CLASS(scroller_class)->get_preferred_height = get_preferred_height;
  GTK_WIDGET_CLASS(scroller_class)->get_preferred_height_for_width = get_preferred_height_for_width;
  GTK_WIDGET_CLASS(scroller_class)->size_allocate = size_allocate;
  GTK_SCROLLED_WINDOW_CLASS(scroller_class)->move_focus_out = move_focus_out;
}

static void v_height_capped_scroller_init(VHeightCappedScroller *scroller) {
  GtkScrolledWindow *scrolled_window = GTK_SCROLLED_WINDOW(scroller);
  gtk_scrolled_window_set_policy(scrolled_window, GTK_POLICY_NEVER, GTK_POLICY_AUTOMATIC);
  gtk_scrolled_window_set_overlay_scrolling(scrolled_window, FALSE);
  v_css_style_widget(GTK_WIDGET(scroller), scroller_css);
  // The scroller itself does not take the focus, because keys have no effect on it.
  gtk_widget_set_can_focus(GTK_WIDGET(scroller), FALSE);
  gtk_scrolled_window_set_propagate_natural_height(scrolled_window, TRUE);
  gtk_scrolled_window_set_max_content_height(
      scrolled_window, v_screen_area_get_maximum_height(GTK_WIDGET(scroller)));
}

GtkWidget *v_height_capped_scroller_new() {
  return GTK_WIDGET(g_object_new(V_TYPE_HEIGHT_CAPPED_SCROLLER, nullptr));
}

void v_height_capped_scroller_set_minimum_height(VHeightCappedScroller *scroller, int height) {
  scroller->minimum_height = height;
  gtk_widget_queue_resize(GTK_WIDGET(scroller));
}
