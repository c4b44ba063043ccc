#pragma once
// The managed folder of the component manager: lists its files and copies files into and out of it,
// with the questions and messages for the user. Knows nothing of the manager's window.

#include <vector>

#include "gui/components/component_list.h"
#include "gui/window_stack.h"

struct VComponentFolder {
  VWindowStack *window_stack = nullptr; // borrowed
  VComponentKind kind;
  OwnedText path; // UTF-8
};

// The path (UTF-8) of the entry in the folder, as a new text.
OwnedText v_component_folder_create_path(const VComponentFolder &folder, const char *entry_name);
// One row, with its entry name as the file, for each regular file of the kind. Empty when the
// folder cannot be opened.
std::vector<VComponentRow> v_component_folder_read(const VComponentFolder &folder);

// Copies a file into the folder under its own name. Creates the folder if it is missing, and asks
// before overwriting a file. False when the file may not be added, after an error message, and when
// the user declined. True when it was copied, but also when copying failed, after an error message.
bool v_component_folder_add(const VComponentFolder &folder, const char *source_path);
// False when the file could not be copied. The destination is unchanged if the source cannot be
// read.
bool v_component_folder_copy_file(const char *source_path, const char *destination_path);
// True when the file may be edited: it differs from the delivered one of that name, or the user
// confirms editing it.
bool v_component_folder_may_edit(const VComponentFolder &folder, const char *entry_name);
