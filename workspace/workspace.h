#pragma once
// The workspace: a personal folder with a fixed set of sub-folders, located by the pointer file.
// All paths are UTF-8.

#include "workspace/settings.h"

struct VWorkspace {
  OwnedText codesets_folder_path;
  OwnedText fonts_folder_path; // neither checked nor created here
  OwnedText layouts_folder_path;
  OwnedText documents_folder_path;
  OwnedText templates_folder_path;
  OwnedText folder_path;
  OwnedSettings settings; // the defaults, until they are loaded
};

// Null is allowed.
void v_workspace_close(VWorkspace *workspace);
using OwnedWorkspace = Owned<VWorkspace, v_workspace_close>;

// Opens the workspace at the location in the pointer file, else at the default one: creates missing
// sub-folders and updates layouts delivered by earlier versions. Null when there is no such folder,
// or when a sub-folder cannot be accessed or created; a message of the file layer may be set.
OwnedWorkspace v_workspace_open();

// Creates a workspace with the delivered components and saves its path in the pointer file. False
// when something already exists at the path, which is not changed, or when a step fails: the new
// folder is then removed, and the pointer file is unchanged.
bool v_workspace_create(const char *folder_path);
