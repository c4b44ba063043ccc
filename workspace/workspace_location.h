#pragma once
// The location of the workspace: the pointer file in the user's configuration folder, which all
// tools of the suite read, and the default location for a new workspace. Paths are UTF-8.

#include "base/owned.h"

// The path of the pointer file, which need not exist. With FolderCreation::yes, creates its folder
// and missing parents. Null with "Error locating user config dir." or "Error creating/accessing
// directory for settings in user config dir.".
enum class FolderCreation { no, yes };
OwnedText get_workspace_pointer_file_path(FolderCreation creation);

// True with the saved folder, without a trailing slash, or with null when there is no pointer file.
// False with null and a message when the pointer file cannot be read or is invalid.
bool v_workspace_get_saved_folder_path(OwnedText &path);
// Saves the folder; null removes the pointer file. False with a message, and the pointer file is
// unchanged.
bool v_workspace_save_folder_path(const char *path);
// The default name of a workspace folder.
inline constexpr const char *v_workspace_default_folder_name = "Vantorelle Workspace";
// The folder of that name in the home folder; null with a message when its path cannot be converted
// to UTF-8.
OwnedText v_workspace_get_default_folder_path();

// The folder of that name in a parent folder (an absolute path, which may be the root).
OwnedText v_workspace_create_path_in_parent_folder(const char *parent_folder);
// The absolute path for a location typed by the user: relative paths, "~" and "~/..." are relative
// to the home folder. "" for "". Null with "Could not convert filename to unicode." when the path
// of the home folder is needed and cannot be converted.
OwnedText v_workspace_make_place_absolute(const char *place);
