#pragma once
// The assistant that who has no workspace yet is led through: it proposes a place, and creates the
// workspace where the user wants it.

#include "gui/window_stack.h"

// True when a workspace was created, in whatever way the assistant was left after that.
bool v_workspace_gui_create_workspace(VWindowStack *window_stack);
bool v_workspace_gui_new_workspace_assistant_run(VWindowStack *window_stack);
