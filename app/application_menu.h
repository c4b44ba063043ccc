#pragma once
// The item that the program adds to the application's menu: "Workspace Tool". There is one source
// file per desktop.

#include <gtk/gtk.h>

void v_application_menu_install(GtkApplication *application);

// Starts the workspace tool; shows an error message when that fails. Both arguments are ignored.
void macos_menu_item_activate_callback(GtkMenuItem *item, void *item_code);
