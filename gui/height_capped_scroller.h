#pragma once
// A scrolled window that is as high as its content, up to the height of the screen: it grows and
// shrinks with the content, and scrolls only when the content is higher than the screen. The widget
// that has the focus stays in view when the content or the room for it changes.

#include <gtk/gtk.h>

#define V_TYPE_HEIGHT_CAPPED_SCROLLER (v_height_capped_scroller_get_type())
G_DECLARE_FINAL_TYPE(VHeightCappedScroller, v_height_capped_scroller, V, HEIGHT_CAPPED_SCROLLER,
                     GtkScrolledWindow)

// Floating, like every new widget.
GtkWidget *v_height_capped_scroller_new();
// Lets the scroller shrink to this height (pixels) when the other rows of the window need the room.
// Without it the scroller is as high as its content, or the screen allows.
void v_height_capped_scroller_set_least_height(VHeightCappedScroller *scroller, int height);
