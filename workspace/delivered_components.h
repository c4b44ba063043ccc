#pragma once
// The component files delivered with the program (codesets, layouts, templates), and their
// installation in a workspace. All paths are UTF-8.

// Copies the delivered files of the sub-folder that the workspace does not have yet; existing files
// are never overwritten. True also when no such file is delivered. False with the message of the
// file layer; a target folder that this call has created is then removed.
bool install_bundled_components(const char *workspace_folder, const char *sub_folder);
// Deletes the files of the workspace's sub-folder, then the folder, as far as possible. Failures
// are not reported: the caller undoes a failed step, whose message is kept.
void delete_components_folder(const char *workspace_folder, const char *sub_folder);
// Replaces the layout by the delivered one of the same name if its MD5 digest (32 hexadecimal
// digits) is old_digest, that of an earlier delivered version, so that layouts changed by the user
// are kept. Failures are not reported: the workspace remains usable with the old layout.
void upgrade_component_if_needed(const char *layouts_folder, const char *file_name,
                                 const char *old_digest);
// Updates all layouts delivered by earlier versions.
void v_delivered_components_upgrade_layouts(const char *workspace_folder,
                                            const char *layouts_folder);
