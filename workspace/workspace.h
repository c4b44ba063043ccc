#pragma once
// The workspace: one personal folder with a fixed set of sub-folders, found through the pointer
// file. All paths are UTF-8.

#include "workspace/settings.h"

struct VWorkspace {
  OwnedText codesets_folder_path;
  OwnedText fonts_folder_path; // neither checked nor made here
  OwnedText layouts_folder_path;
  OwnedText documents_folder_path;
  OwnedText templates_folder_path;
  OwnedText folder_path;
  OwnedSettings settings; // the defaults, until they are loaded
};

// Null is allowed.
void v_workspace_close(VWorkspace *workspace);
using OwnedWorkspace = Owned<VWorkspace, v_workspace_close>;

// Opens the workspace where the pointer file says, else at its default place: makes sub-folders
// that are missing and brings earlier delivered layouts up to date. Null when there is no such
// folder, or when a sub-folder cannot be used or made; a message of the file layer may be set.
OwnedWorkspace v_workspace_open();

// Makes a new workspace with the delivered components and remembers it in the pointer file. False
// when something is there already, which is not touched, or when a step fails: then nothing is left
// of the workspace, and the pointer file is as it was before.
bool v_workspace_create(const char *folder_path);
