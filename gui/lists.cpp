#include "gui/lists.h"

#include "gui/css.h"
#include "gui/list_scroller.h"
#include "gui/placing.h"

namespace {

// Themes draw the outline of the focused row so faintly that it is easy to miss when no row is
// selected.
constexpr const char *list_css =
    "treeview { outline-style: solid; outline-color: alpha(currentColor, 0.6); }";

void set_up_scrolled_window(GtkScrolledWindow *scrolled_window, int width, int height) {
  gtk_scrolled_window_set_overlay_scrolling(scrolled_window, FALSE);
  gtk_widget_set_size_request(GTK_WIDGET(scrolled_window), width, height);
}

} // namespace

GtkScrolledWindow *v_gui_create_scrolled_window(int width, int height,
                                                GtkPolicyType horizontal_policy,
                                                GtkPolicyType vertical_policy,
                                                GtkShadowType shadow) {
  GtkScrolledWindow *scrolled_window =
      GTK_SCROLLED_WINDOW(shown(gtk_scrolled_window_new(nullptr, nullptr)));
  set_up_scrolled_window(scrolled_window, width, height);
  gtk_scrolled_window_set_policy(scrolled_window, horizontal_policy, vertical_policy);
  gtk_scrolled_window_set_shadow_type(scrolled_window, shadow);
  return scrolled_window;
}

GtkScrolledWindow *v_gui_pack_list_scrolled_window(GtkBox *box, int width, int height) {
  auto *scrolled_window = GTK_SCROLLED_WINDOW(shown(v_list_scroller_new()));
  set_up_scrolled_window(scrolled_window, width, height);
  gtk_scrolled_window_set_policy(scrolled_window, GTK_POLICY_NEVER, GTK_POLICY_AUTOMATIC);
  gtk_scrolled_window_set_shadow_type(scrolled_window, GTK_SHADOW_IN);
  return packed(box, Expand::yes, scrolled_window);
}

GtkScrolledWindow *v_gui_pack_scrolled_window(GtkBox *box, int width, int height,
                                              GtkPolicyType horizontal_policy,
                                              GtkPolicyType vertical_policy, GtkShadowType shadow) {
  return packed(
      box, Expand::yes,
      v_gui_create_scrolled_window(width, height, horizontal_policy, vertical_policy, shadow));
}

GtkTreeView *v_gui_create_tree_view(HeadersVisible headers_visible, FixedHeight fixed_height,
                                    SelectionMode selection_mode) {
  GtkTreeView *tree_view = GTK_TREE_VIEW(shown(gtk_tree_view_new()));
  v_css_style_widget(GTK_WIDGET(tree_view), list_css);
  gtk_tree_view_set_headers_visible(tree_view, headers_visible == HeadersVisible::yes);
  gtk_tree_view_set_fixed_height_mode(tree_view, fixed_height == FixedHeight::yes);
  if (selection_mode == SelectionMode::multiple) {
    gtk_tree_selection_set_mode(gtk_tree_view_get_selection(tree_view), GTK_SELECTION_MULTIPLE);
  }
  return tree_view;
}

GtkTreeView *v_gui_add_tree_view(GtkContainer *container, HeadersVisible headers_visible,
                                 FixedHeight fixed_height, SelectionMode selection_mode) {
  return added(container, v_gui_create_tree_view(headers_visible, fixed_height, selection_mode));
}
