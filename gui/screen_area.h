#pragma once
// Sizes that fit on the screen: the monitor of the widget's window or, while that window is not
// shown, that of the program's active window, over which it will open.

#include <gtk/gtk.h>

// The monitor without desktop panels, in pixels. A screen that is shown in a web browser does not
// report the size of its monitor; there it is the whole screen.
GdkRectangle v_screen_area_get(GtkWidget *widget);
// The maximum height of a scrolling part of a window, in pixels, which leaves space for the title
// bar and other rows; and the minimum height, when a list in the other rows needs the space.
int v_screen_area_get_maximum_height(GtkWidget *widget);
int v_screen_area_get_minimum_height(GtkWidget *widget);
// The number of rows that a list requests.
int v_screen_area_count_list_rows(GtkWidget *widget);
// The width of the screen in characters of the widget's font, minus the reserved characters and
// pixels; at least 10.
int v_screen_area_count_characters(GtkWidget *widget, int reserved_characters, int reserved_pixels);
