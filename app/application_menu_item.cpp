#include "app/application_menu.h"
#include "gui/message_dialogs.h"
#include "suite/sibling_tools.h"

void macos_menu_item_activate_callback(GtkMenuItem *, void *) {
  if (!v_exe_launch_workspace_tool()) {
    v_message_show_error(nullptr, "An error occured when trying to start the workspace tool.");
  }
}
