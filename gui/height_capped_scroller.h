#pragma once
// A scrolled window as high as its content, as long as that fits the screen: it grows and shrinks
// with the content, and scrolls only where the screen ends. The widget that has the focus stays in
// view when the content or the room for it changes.

#include <gtk/gtk.h>

#define V_TYPE_HEIGHT_CAPPED_SCROLLER (v_height_capped_scroller_get_type())
G_DECLARE_FINAL_TYPE(VHeightCappedScroller, v_height_capped_scroller, V, HEIGHT_CAPPED_SCROLLER,
                     GtkScrolledWindow)

// Floating, like every new widget.
GtkWidget *v_height_capped_scroller_new();
// Lets the scroller become as low as that (pixels) where the other rows of the window need the
// room. Without it the scroller is always as high as its content or the screen allow.
void v_height_capped_scroller_set_least_height(VHeightCappedScroller *scroller, int height);
