#pragma once
// The assistant shown on first start, when there is no workspace yet: it proposes a location, and
// creates the workspace where the user wants it.

#include "gui/window_stack.h"

// True when a workspace was created, however the assistant was closed after that.
bool v_workspace_gui_create_workspace(VWindowStack *window_stack);
bool v_workspace_gui_new_workspace_assistant_run(VWindowStack *window_stack);
