#pragma once
// A scrolled window around a list. Its natural height shows a number of rows that grows with the
// height of the screen; its minimum height is that of a plain scrolled window, for small windows.

#include <gtk/gtk.h>

#define V_TYPE_LIST_SCROLLER (v_list_scroller_get_type())
G_DECLARE_FINAL_TYPE(VListScroller, v_list_scroller, V, LIST_SCROLLER, GtkScrolledWindow)

// Floating, like every new widget. Its child must be a tree view.
GtkWidget *v_list_scroller_new();
