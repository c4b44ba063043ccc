#pragma once
// The kind of files that the component manager and its two helper windows handle: the name of their
// folder, their file name extension, and a function that returns the display text of a file.

#include "base/file_types.h"
#include "base/owned.h"

// The display text (UTF-8) of the file at the path (UTF-8); null when it is not a file that this
// version of the program can read.
using VComponentTextCallback = OwnedText (*)(const char *path, void *user_data);

struct VComponentKind {
  // Name of the folder in the workspace, and of the folder of delivered files in the installation
  // folder.
  const char *folder_name = nullptr;
  VFileType file_type = VFileType::remark_codeset;
  VComponentTextCallback text_callback = nullptr;
  void *user_data = nullptr; // passed to the callback
};

// ".codeset" for the codesets.
const char *v_component_kind_get_extension(const VComponentKind &kind);
// True when the name or path ends in the extension, ignoring the case of ASCII letters.
bool v_component_kind_has_extension(const VComponentKind &kind, const char *name);
