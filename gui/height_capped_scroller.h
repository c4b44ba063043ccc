#pragma once
// A scrolled window that is as high as its content, up to the height of the screen: it grows and
// shrinks with the content, and scrolls only when the content is higher than the screen. Keeps the
// focused widget in view when the height of the content or of the scroller changes.

#include <gtk/gtk.h>

#define V_TYPE_HEIGHT_CAPPED_SCROLLER (v_height_capped_scroller_get_type())
G_DECLARE_FINAL_TYPE(VHeightCappedScroller, v_height_capped_scroller, V, HEIGHT_CAPPED_SCROLLER,
                     GtkScrolledWindow)

// Floating, like every new widget.
GtkWidget *v_height_capped_scroller_new();
// Lets the scroller shrink to this height (pixels) when the other rows of the window need the
// space. Without it, the minimum height is the natural one: that of the content, limited by the
// screen.
void v_height_capped_scroller_set_minimum_height(VHeightCappedScroller *scroller, int height);
