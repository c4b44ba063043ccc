#pragma once
// The calls of the library of this name that the program makes, with the types that they take, so
// that the macOS source is compiled and tested everywhere. The test program defines the functions.

#include <gtk/gtk.h>

struct GtkosxApplication;

extern "C" {
GtkosxApplication *gtkosx_application_get();
void gtkosx_application_insert_app_menu_item(GtkosxApplication *self, GtkWidget *item, gint index);
void gtkosx_application_ready(GtkosxApplication *self);
}
