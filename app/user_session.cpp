#include "app/user_session.h"

#include "gui/message_dialogs.h"
#include "workspace/assistant/new_workspace_assistant.h"

namespace {

constexpr int all_settings = -1;

} // namespace

bool v_user_session_start(VWindowStack *window_stack, OwnedWorkspace &workspace) {
  workspace = v_workspace_open();
  if (!workspace) {
    if (!v_workspace_gui_create_workspace(window_stack)) {
      return false;
    }
    workspace = v_workspace_open();
  }
  if (!workspace) {
    v_message_show_error(window_stack, "Something went wrong when opening your new workspace.");
    return false;
  }
  if (!v_settings_load(workspace->settings.get(), all_settings)) {
    v_message_show_warning(window_stack,
                           "Something went wrong when reading your personal settings.");
  }
  return true;
}

// The destructor of the argument closes the workspace.
void v_user_session_end(OwnedWorkspace) {}
