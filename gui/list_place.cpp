#include "gui/list_place.h"

#include <algorithm>

#include "base/owned.h"
#include "gui/window_focus.h"

namespace {

using OwnedTreePath = Owned<GtkTreePath, gtk_tree_path_free>;

constexpr char placed_key[] = "vantorelle_cursor_is_placed";   // on a view
constexpr char watched_key[] = "vantorelle_cursor_is_watched"; // on a view

OwnedTreePath path_of_row(int row) {
  return OwnedTreePath(gtk_tree_path_new_from_indices(row, -1));
}

int count_rows(GtkTreeView *view) {
  GtkTreeModel *model = gtk_tree_view_get_model(view);
  return model == nullptr ? 0 : gtk_tree_model_iter_n_children(model, nullptr);
}

bool has_selection(GtkTreeView *view) {
  return gtk_tree_selection_count_selected_rows(gtk_tree_view_get_selection(view)) > 0;
}

void set_placed(GtkTreeView *view, bool is_placed) {
  g_object_set_data(G_OBJECT(view), placed_key, GINT_TO_POINTER(is_placed));
}

void cursor_changed_callback(GtkTreeView *view, void *) { set_placed(view, false); }

// The row that the key moves the cursor to; -1 for other keys.
int row_of_key(const GdkEventKey *event, int row, int rows) {
  if ((event->state & gtk_accelerator_get_default_mod_mask()) != 0) {
    return -1;
  }
  switch (event->keyval) {
  case GDK_KEY_Up:
  case GDK_KEY_KP_Up:
    return std::max(row - 1, 0);
  case GDK_KEY_Down:
  case GDK_KEY_KP_Down:
    return std::min(row + 1, rows - 1);
  case GDK_KEY_Home:
  case GDK_KEY_KP_Home:
    return 0;
  case GDK_KEY_End:
  case GDK_KEY_KP_End:
    return rows - 1;
  default:
    return -1;
  }
}

// "key-press-event" of a list. When nothing is selected, the toolkit's arrow keys would only select
// the cursor's row, and Home in the first row and End in the last would do nothing.
gboolean key_press_event_callback(GtkWidget *widget, GdkEventKey *event, void *) {
  GtkTreeView *view = GTK_TREE_VIEW(widget);
  if (!v_list_place_is_placed(view) || has_selection(view)) {
    return GDK_EVENT_PROPAGATE;
  }
  const int row = row_of_key(event, v_list_place_get(view), count_rows(view));
  if (row < 0) {
    return GDK_EVENT_PROPAGATE;
  }
  gtk_tree_view_set_cursor(view, path_of_row(row).get(), nullptr, FALSE);
  return GDK_EVENT_STOP;
}

// Scrolls at once. The toolkit scrolls gradually, and stops when another window covers the list.
void scroll_now(GtkTreeView *view, GtkTreePath *path) {
  GdkRectangle area;
  gtk_tree_view_get_background_area(view, path, nullptr, &area);
  int top = 0;
  gtk_tree_view_convert_bin_window_to_tree_coords(view, 0, area.y, nullptr, &top);
  GtkAdjustment *adjustment = gtk_scrollable_get_vadjustment(GTK_SCROLLABLE(view));
  const double highest = top + area.height - gtk_adjustment_get_page_size(adjustment);
  const double value = gtk_adjustment_get_value(adjustment);
  gtk_adjustment_set_value(adjustment, std::min(std::max(value, highest), double(top)));
}

void watch_cursor(GtkTreeView *view) {
  if (g_object_get_data(G_OBJECT(view), watched_key) == nullptr) {
    g_object_set_data(G_OBJECT(view), watched_key, GINT_TO_POINTER(true));
    g_signal_connect(view, "cursor-changed", G_CALLBACK(cursor_changed_callback), nullptr);
    g_signal_connect(view, "key-press-event", G_CALLBACK(key_press_event_callback), nullptr);
  }
}

} // namespace

VListWithoutSelection::VListWithoutSelection(GtkTreeView *view)
    : selection(gtk_tree_view_get_selection(view)), mode(gtk_tree_selection_get_mode(selection)) {
  gtk_tree_selection_unselect_all(selection);
  gtk_tree_selection_set_mode(selection, GTK_SELECTION_NONE);
}

VListWithoutSelection::~VListWithoutSelection() { gtk_tree_selection_set_mode(selection, mode); }

int v_list_place_get(GtkTreeView *view) {
  OwnedTreePath path;
  gtk_tree_view_get_cursor(view, receive(path), nullptr);
  return path ? gtk_tree_path_get_indices(path.get())[0] : -1;
}

bool v_list_place_is_placed(GtkTreeView *view) {
  return g_object_get_data(G_OBJECT(view), placed_key) != nullptr && v_list_place_get(view) >= 0;
}

void v_list_place_set(GtkTreeView *view, int row) {
  const int rows = count_rows(view);
  if (rows == 0) {
    return;
  }
  watch_cursor(view);
  const OwnedTreePath path = path_of_row(std::clamp(row, 0, rows - 1));
  {
    const VListWithoutSelection without_selection(view);
    gtk_tree_view_set_cursor(view, path.get(), nullptr, FALSE);
  }
  v_list_place_show(view, v_list_place_get(view));
  v_list_place_reveal_focus(view);
  set_placed(view, true);
}

void v_list_place_reveal_focus(GtkTreeView *view) {
  if (GtkWindow *window = v_window_focus_find_window(GTK_WIDGET(view))) {
    gtk_window_set_focus_visible(window, TRUE);
  }
}

void v_list_place_show(GtkTreeView *view, int row) {
  if (row < 0 || row >= count_rows(view)) {
    return;
  }
  const OwnedTreePath path = path_of_row(row);
  // Makes the toolkit scroll later if the row has no height yet.
  gtk_tree_view_scroll_to_cell(view, path.get(), nullptr, FALSE, 0.0f, 0.0f);
  if (gtk_widget_get_realized(GTK_WIDGET(view))) {
    scroll_now(view, path.get());
  }
}

void v_list_place_select(GtkTreeView *view) {
  if (v_list_place_is_placed(view) && !has_selection(view)) {
    gtk_tree_selection_select_path(gtk_tree_view_get_selection(view),
                                   path_of_row(v_list_place_get(view)).get());
  }
}

void v_list_place_grab_focus(GtkTreeView *view) {
  if (has_selection(view)) {
    gtk_widget_grab_focus(GTK_WIDGET(view));
  } else {
    const VListWithoutSelection without_selection(view);
    gtk_widget_grab_focus(GTK_WIDGET(view));
  }
}

void v_list_place_take_free_focus(GtkTreeView *view) {
  GtkWindow *window = v_window_focus_find_window(GTK_WIDGET(view));
  if (window == nullptr || !gtk_widget_get_mapped(GTK_WIDGET(view)) ||
      !gtk_widget_is_sensitive(GTK_WIDGET(view))) {
    return;
  }
  GtkWidget *focus = gtk_window_get_focus(window);
  if (focus == nullptr || focus == GTK_WIDGET(view) || !gtk_widget_is_sensitive(focus)) {
    v_list_place_grab_focus(view);
  }
}
