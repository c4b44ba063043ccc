#include "gui/list_scroller.h"

#include <algorithm>

#include "gui/screen_area.h"

struct _VListScroller {
  GtkScrolledWindow parent_instance;
};

G_DEFINE_TYPE(VListScroller, v_list_scroller, GTK_TYPE_SCROLLED_WINDOW)

namespace {

// Null until the scroller has a list with a column.
GtkTreeViewColumn *find_column(GtkWidget *scroller) {
  GtkWidget *list = gtk_bin_get_child(GTK_BIN(scroller));
  return list == nullptr ? nullptr : gtk_tree_view_get_column(GTK_TREE_VIEW(list), 0);
}

// Height of a row in pixels, including the gap to the next one.
int measure_row(GtkTreeViewColumn *column) {
  int height = 0;
  gtk_tree_view_column_cell_get_size(column, nullptr, nullptr, nullptr, nullptr, &height);
  int gap = 0;
  gtk_widget_style_get(gtk_tree_view_column_get_tree_view(column), "vertical-separator", &gap,
                       nullptr);
  return height + gap;
}

int measure_border(GtkWidget *widget) {
  GtkStyleContext *style = gtk_widget_get_style_context(widget);
  GtkBorder border;
  gtk_style_context_get_border(style, gtk_style_context_get_state(style), &border);
  return border.top + border.bottom;
}

void get_preferred_height(GtkWidget *widget, int *minimum, int *natural) {
  GTK_WIDGET_CLASS(v_list_scroller_parent_class)->get_preferred_height(widget, minimum, natural);
  if (GtkTreeViewColumn *column = find_column(widget)) {
    const int rows = v_screen_area_count_list_rows(widget);
    *natural = std::max(*natural, rows * measure_row(column) + measure_border(widget));
  }
}

} // namespace

static void v_list_scroller_class_init(VListScrollerClass *scroller_class) {
  GTK_WIDGET_CLASS(scroller_class)->get_preferred_height = get_preferred_height;
}

static void v_list_scroller_init(VListScroller *) {}

GtkWidget *v_list_scroller_new() { return GTK_WIDGET(g_object_new(V_TYPE_LIST_SCROLLER, nullptr)); }
