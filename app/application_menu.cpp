#include "app/application_menu.h"

#include "gui/owned_objects.h"

namespace {

constexpr const char *action_name = "workspace-tool";

void activate_callback(GSimpleAction *, GVariant *, void *) {
  macos_menu_item_activate_callback(nullptr, nullptr);
}

} // namespace

// Adds an item to the application's own menu, which only some desktops show. No window gets a menu
// bar.
void v_application_menu_install(GtkApplication *application) {
  const OwnedObject<GSimpleAction> action(g_simple_action_new(action_name, nullptr));
  g_signal_connect(action.get(), "activate", G_CALLBACK(activate_callback), nullptr);
  g_action_map_add_action(G_ACTION_MAP(application), G_ACTION(action.get()));
  const OwnedObject<GMenu> menu(g_menu_new());
  const OwnedText detailed_name(g_strconcat("app.", action_name, nullptr));
  g_menu_append(menu.get(), "Workspace Tool", detailed_name.get());
  gtk_application_set_app_menu(application, G_MENU_MODEL(menu.get()));
}
