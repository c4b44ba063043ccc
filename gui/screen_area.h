#pragma once
// How much fits on the screen. The screen is the monitor of the widget's window or, while that
// window is not shown, of the program's active window, over which it will open.

#include <gtk/gtk.h>

// The part of the monitor that desktop bars leave free, in pixels. A screen that is shown in a web
// browser reports no size of its monitor: there it is the whole screen.
GdkRectangle v_screen_area_get(GtkWidget *widget);
// The height of a scrolling part of a window, in pixels: the most that title bar and other rows of
// the window leave free, and the least, when these other rows need the room for a list.
int v_screen_area_get_most_height(GtkWidget *widget);
int v_screen_area_get_least_height(GtkWidget *widget);
// The number of rows that a list shows at once, if the window has the room.
int v_screen_area_count_list_rows(GtkWidget *widget);
// The width of the screen in characters of the widget's font, less the reserved characters and
// pixels; at least 10.
int v_screen_area_count_characters(GtkWidget *widget, int reserved_characters, int reserved_pixels);
