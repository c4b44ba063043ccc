#pragma once
// Files that a program keeps for itself beside those of the user: readable for their owner alone
// (0600), held by one running program at a time, and forced onto the disk when that matters. Paths
// are UTF-8. Failures set no message: the callers report none of them to the user.

#include "base/owned.h"

struct VHeldFile;
void v_private_files_release(VHeldFile *held);
// A file that no other program can hold at the same time. It is released when the program ends,
// normally or not; renaming or removing the file does not release it.
using OwnedHeldFile = Owned<VHeldFile, v_private_files_release>;

// Holds the file at the path, which is created when there is none. Null when that is impossible or
// another program holds it.
OwnedHeldFile v_private_files_create(const char *path);
// The same, but creates no file.
OwnedHeldFile v_private_files_hold(const char *path);

// Renames a file within its folder and replaces a file that has the new name: at any moment one of
// the two files has that name.
bool v_private_files_rename(const char *path, const char *new_path);
// Returns once the content of the file, or the names in the folder, are on the disk. True also
// where the file system has no such operation.
bool v_private_files_sync(const char *path);
