#pragma once
// How much room windows have on the screen.

#include <gtk/gtk.h>

// The part of the primary monitor that desktop bars leave free, in pixels. A screen that is shown
// in a web browser knows no size of its monitor: there it is the whole screen.
GdkRectangle v_screen_area_get(GtkWidget *widget);
