#pragma once
// Lets the user choose one of the component files delivered with the program.

#include "gui/components/component_kind.h"
#include "gui/window_stack.h"
#include "workspace/workspace.h"

// The path (UTF-8) of the chosen file; null when the window was cancelled or closed, and when the
// installation folder is unknown. The workspace is ignored, because the delivered files are the
// same for all; it is a parameter only to match v_components_gui_get_new_file_path.
OwnedText v_components_gui_get_bundled_file_path(VWindowStack *window_stack,
                                                 const VWorkspace *workspace,
                                                 const VComponentKind &kind);
OwnedText v_components_gui_bundled_file_selector_run(VWindowStack *window_stack,
                                                     const VWorkspace *workspace,
                                                     const VComponentKind &kind);
