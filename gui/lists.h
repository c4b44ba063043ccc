#pragma once
// Lists, and the scrolled windows around lists and texts, with the conventions of gui/widgets.h.

#include <gtk/gtk.h>

#include "gui/widget_options.h"

// Without overlay scroll bars; width and height (pixels) are the minimum size.
GtkScrolledWindow *v_gui_create_scrolled_window(int width, int height,
                                                GtkPolicyType horizontal_policy,
                                                GtkPolicyType vertical_policy,
                                                GtkShadowType shadow);
// Packed, expanding.
GtkScrolledWindow *v_gui_pack_scrolled_window(GtkBox *box, int width, int height,
                                              GtkPolicyType horizontal_policy,
                                              GtkPolicyType vertical_policy, GtkShadowType shadow);
// For a list: scrolls vertically, expands, and requests more rows than fit into the minimum height.
GtkScrolledWindow *v_gui_pack_list_scrolled_window(GtkBox *box, int width, int height);
// FixedHeight::yes makes long lists fast. It requires that every column has fixed sizing
// (gtk_tree_view_column_set_sizing with GTK_TREE_VIEW_COLUMN_FIXED) before it is added, and that no
// cell wraps.
GtkTreeView *v_gui_create_tree_view(HeadersVisible headers_visible, FixedHeight fixed_height,
                                    SelectionMode selection_mode);
GtkTreeView *v_gui_add_tree_view(GtkContainer *container, HeadersVisible headers_visible,
                                 FixedHeight fixed_height, SelectionMode selection_mode);
