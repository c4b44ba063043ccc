#pragma once
// The component manager: lists the files of one kind in one folder of the workspace, and lets the
// user add, create, clone, edit, export and delete them. Knows nothing of the files' content, which
// callbacks read and edit. They are called on the GUI thread while the window is open.

#include "gui/components/component_kind.h"
#include "gui/window_stack.h"
#include "workspace/workspace.h"

enum class OfferBundled { no, yes };

// Edits the file at the path (UTF-8), creating it if it does not exist, and returns when editing is
// finished. The result is ignored.
using VComponentEditCallback = int (*)(const char *path, void *user_data);
// True when the file at the path (UTF-8) may be edited and cloned.
using VComponentCanEditCallback = bool (*)(const char *path, void *user_data);

// Returns when the user has closed the window. title and folder_name are UTF-8. offer_bundled:
// whether delivered files of the kind can be added. edit_callback: null when files cannot be
// edited, and then not created or cloned either. can_edit_callback: null when every file may be
// edited. user_data is passed to the three callbacks.
void v_components_gui_main_window_run(VWindowStack *window_stack, const VWorkspace *workspace,
                                      const char *title, const char *folder_name,
                                      VFileType file_type, OfferBundled offer_bundled,
                                      VComponentTextCallback text_callback,
                                      VComponentEditCallback edit_callback,
                                      VComponentCanEditCallback can_edit_callback, void *user_data);
