#pragma once
// Opens the workspace and reads its personal settings before the tool's main window opens.

#include "gui/window_stack.h"
#include "workspace/workspace.h"

// Opens the workspace and loads its settings. Runs the assistant first when there is no workspace.
// Settings that cannot be read cause a warning, not a failure. False with null when there is still
// no workspace: silently when the user cancelled the assistant, else after an error message.
bool v_user_session_start(VWindowStack *window_stack, OwnedWorkspace &workspace);
void v_user_session_end(OwnedWorkspace workspace);
