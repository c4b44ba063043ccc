#pragma once
// A scrolled window around a list. Its natural height shows many rows, the more the higher the
// screen is; its minimum is unchanged, for windows that have no more room.

#include <gtk/gtk.h>

#define V_TYPE_LIST_SCROLLER (v_list_scroller_get_type())
G_DECLARE_FINAL_TYPE(VListScroller, v_list_scroller, V, LIST_SCROLLER, GtkScrolledWindow)

// Floating, like every new widget. The child it is given must be a tree view.
GtkWidget *v_list_scroller_new();
