#include <gtkosxapplication.h>

#include "app/application_menu.h"
#include "gui/widgets.h"

// Adds a separator and the item after the system's first entry.
void v_application_menu_install(GtkApplication *) {
  GtkosxApplication *application = gtkosx_application_get();
  gtkosx_application_insert_app_menu_item(application, GTK_WIDGET(v_gui_menu_create_separator()),
                                          1);
  GtkMenuItem *item = v_gui_menu_create_item_with_activate_callback(
      "Workspace Tool", nullptr, 0, G_CALLBACK(macos_menu_item_activate_callback), nullptr);
  gtkosx_application_insert_app_menu_item(application, GTK_WIDGET(item), 2);
  gtkosx_application_ready(application);
}
