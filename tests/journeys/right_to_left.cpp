// A module that GTK_MODULES names: lays all windows out from right to left, whatever the user's
// language is.

#include <gtk/gtk.h>

extern "C" G_MODULE_EXPORT void gtk_module_init(int *, char ***) {
  gtk_widget_set_default_direction(GTK_TEXT_DIR_RTL);
}
