#include "gui/list_scroller.h"

#include <algorithm>

#include "gui/screen_area.h"

struct _VListScroller {
  GtkScrolledWindow parent_instance;
};

G_DEFINE_TYPE(VListScroller, v_list_scroller, GTK_TYPE_SCROLLED_WINDOW)

namespace {

// Height of a row in pixels, including the gap to the next one; 0 for a list without columns.
int measure_row(GtkTreeView *list) {
  GtkTreeViewColumn *column = gtk_tree_view_get_column(list, 0);
  if (column == nullptr) {
    return 0;
  }
  int height = 0;
  gtk_tree_view_column_cell_get_size(column, nullptr, nullptr, nullptr, nullptr, &height);
  int gap = 0;
  gtk_widget_style_get(GTK_WIDGET(list), "vertical-separator", &gap, nullptr);
  return height + gap;
}

int measure_border(GtkWidget *widget) {
  GtkStyleContext *style = gtk_widget_get_style_context(widget);
  GtkBorder border;
  gtk_style_context_get_border(style, gtk_style_context_get_state(style), &border);
  return border.top + border.bottom;
}

int get_wanted_height(GtkWidget *widget) {
  GtkWidget *list = gtk_bin_get_child(GTK_BIN(widget));
  if (list == nullptr) {
    return 0;
  }
  const int rows = v_screen_area_count_list_rows(widget);
  return rows * measure_row(GTK_TREE_VIEW(list)) + measure_border(widget);
}

void get_preferred_height(GtkWidget *widget, int *minimum, int *natural) {
  GTK_WIDGET_CLASS(v_list_scroller_parent_class)->get_preferred_height(widget, minimum, natural);
  *natural = std::max(*natural, get_wanted_height(widget));
}

void get_preferred_height_for_width(GtkWidget *widget, int width, int *minimum, int *natural) {
  GTK_WIDGET_CLASS(v_list_scroller_parent_class)
      ->get_preferred_height_for_width(widget, width, minimum, natural);
  *natural = std::max(*natural, get_wanted_height(widget));
}

} // namespace

static void v_list_scroller_class_init(VListScrollerClass *scroller_class) {
  GTK_WIDGET_CLASS(scroller_class)->get_preferred_height = get_preferred_height;
  GTK_WIDGET_CLASS(scroller_class)->get_preferred_height_for_width = get_preferred_height_for_width;
}

static void v_list_scroller_init(VListScroller *) {}

GtkWidget *v_list_scroller_new() { return GTK_WIDGET(g_object_new(V_TYPE_LIST_SCROLLER, nullptr)); }
