#pragma once
// The location of the workspace: a small file in the user's configuration folder, which all tools
// of the suite read, and the default place for a new workspace. Paths are UTF-8.

#include "base/owned.h"

// The path of the pointer file, which need not exist. With FolderCreation::yes its folder is made,
// missing parents included. Null with "Error locating user config dir." or "Error
// creating/accessing directory for settings in user config dir.".
enum class FolderCreation { no, yes };
OwnedText get_workspace_pointer_file_path(FolderCreation creation);

// True with the saved folder, without trailing "/", or with null when nothing is saved. False with
// null when there is a pointer file that cannot be read or understood.
bool v_workspace_get_saved_folder_path(OwnedText &path);
// Saves the folder; null removes the pointer file. False with a message, and what was saved before
// stays.
bool v_workspace_save_folder_path(const char *path);
// The default name of a workspace folder.
inline constexpr const char *v_workspace_default_folder_name = "Vantorelle Workspace";
// The folder of that name in the home folder; null when its path has no
// UTF-8 form.
OwnedText v_workspace_get_default_folder_path();

// The folder of that name in an absolute folder, which may be the root.
OwnedText v_workspace_create_path_in_parent_folder(const char *parent_folder);
// The absolute path of a place that a user has typed: a relative one, "~" and "~/..." are in the
// home folder. The empty text stays empty. Null with "Could not convert filename to unicode." when
// the home folder is needed and its path has no UTF-8 form.
OwnedText v_workspace_make_place_absolute(const char *place);
