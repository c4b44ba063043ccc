#pragma once
// The component files that are delivered beside the program (codesets, layouts, templates), and
// their installation in a workspace. All paths are UTF-8.

// Copies every delivered file of the sub-folder that the workspace does not have yet; existing
// files are never overwritten. True also when no such file is delivered. On failure, with the
// message of the file layer, a target folder that was made by this call is removed; an older one
// stays as it is.
bool install_bundled_components(const char *workspace_folder, const char *sub_folder);
// Deletes the files of the workspace's sub-folder, then the folder, as far as it can. Files that
// stay are not reported: the caller undoes a failed step, and the message of that step is kept.
void delete_components_folder(const char *workspace_folder, const char *sub_folder);
// Replaces the layout by the delivered one of its name when its MD5 digest (32 hexadecimal digits)
// is old_digest, that of an earlier delivered version; a layout that the user has changed has
// another. No failure is reported: the workspace stays usable with its old layout.
void upgrade_component_if_needed(const char *layouts_folder, const char *file_name,
                                 const char *old_digest);
// Brings all layouts that were delivered by earlier versions up to date.
void v_delivered_components_upgrade_layouts(const char *workspace_folder,
                                            const char *layouts_folder);
