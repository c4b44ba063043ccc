#pragma once
// What the component manager and its two helper windows know of the kind of files that they deal
// with: where they lie, how their names end, and who can say in one line what is in one.

#include "base/owned.h"
#include "gui/file_types.h"

// The display text (UTF-8) of the file at the path (UTF-8); null when the file is not compatible
// with this version of the program. What is at the path may also be no file at all.
using VComponentTextCallback = OwnedText (*)(const char *path, void *user_data);

struct VComponentKind {
  // Of the folder in the workspace and of that of the delivered files in the installation folder.
  const char *folder_name = nullptr;
  VFileType file_type = VFileType::remark_codeset;
  VComponentTextCallback text_callback = nullptr;
  void *user_data = nullptr; // handed to the callback
};

// ".codeset" for the codesets.
const char *v_component_kind_get_extension(const VComponentKind &kind);
// True when the name or path ends in the extension; ASCII letters match without regard to case.
bool v_component_kind_has_extension(const VComponentKind &kind, const char *name);
