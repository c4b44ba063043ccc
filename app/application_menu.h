#pragma once
// The one item that the program adds to the application's menu: "Workspace Tool". One source per
// desktop.

#include <gtk/gtk.h>

void v_application_menu_install(GtkApplication *application);

// Starts the workspace tool; shows an error message when that fails. The item code is not used.
void macos_menu_item_activate_callback(GtkMenuItem *item, void *item_code);
