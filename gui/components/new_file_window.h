#pragma once
// Asks for the file name of a new component. Only checks that the name is valid and not yet taken;
// does not create the file.

#include "gui/components/component_kind.h"
#include "gui/window_stack.h"
#include "workspace/workspace.h"

// The path (UTF-8) for the new file in the kind's folder of the workspace; null when the window was
// cancelled or closed.
OwnedText v_components_gui_get_new_file_path(VWindowStack *window_stack,
                                             const VWorkspace *workspace,
                                             const VComponentKind &kind);
OwnedText v_components_gui_new_file_window_run(VWindowStack *window_stack,
                                               const VWorkspace *workspace,
                                               const VComponentKind &kind);
