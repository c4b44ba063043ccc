#pragma once
// A scrolled window as high as its content, as long as that fits the screen: it grows and shrinks
// with the content, and scrolls only where the screen ends.

#include <gtk/gtk.h>

#define V_TYPE_SCREEN_HIGH_SCROLLER (v_screen_high_scroller_get_type())
G_DECLARE_FINAL_TYPE(VScreenHighScroller, v_screen_high_scroller, V, SCREEN_HIGH_SCROLLER,
                     GtkScrolledWindow)

// Floating, like every new widget.
GtkWidget *v_screen_high_scroller_new();
