#pragma once
// What the tool needs before its main window can open: an open workspace whose personal settings
// have been read.

#include "gui/window_stack.h"
#include "workspace/workspace.h"

// Opens the workspace, after having it created by the assistant when there is none, and loads the
// settings; settings that cannot be read are told of and do not stop it. False with null when there
// is no workspace in the end: silently when the user did not want one.
bool v_user_session_start(VWindowStack *window_stack, OwnedWorkspace &workspace);
void v_user_session_end(OwnedWorkspace workspace);
