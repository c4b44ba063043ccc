#pragma once
// The assistant shown on first start, when there is no workspace yet: it proposes a location and
// creates the workspace at the one that the user chooses.

#include "gui/window_stack.h"

// True when a workspace was created, no matter how the assistant was closed afterwards.
bool v_workspace_gui_create_workspace(VWindowStack *window_stack);
bool v_workspace_gui_new_workspace_assistant_run(VWindowStack *window_stack);
