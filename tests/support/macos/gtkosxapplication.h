#pragma once
// Declares the functions that the program calls from the library's header of this name, so that the
// macOS source can be compiled and tested everywhere. The test program defines the functions.

#include <gtk/gtk.h>

struct GtkosxApplication;

extern "C" {
GtkosxApplication *gtkosx_application_get();
void gtkosx_application_insert_app_menu_item(GtkosxApplication *self, GtkWidget *item, gint index);
void gtkosx_application_ready(GtkosxApplication *self);
}
