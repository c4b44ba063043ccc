#pragma once
// Files that a program keeps for itself: readable only by their owner (0600), locked by one running
// program at a time, and flushed to disk when that matters. Paths are UTF-8. Failures set no
// message, because the callers do not report them to the user.

#include "base/owned.h"

struct VHeldFile;
void v_private_files_release(VHeldFile *held);
// A locked file: no other program can hold it at the same time. The lock is released when the
// program ends, normally or not; renaming or removing the file does not release it.
using OwnedHeldFile = Owned<VHeldFile, v_private_files_release>;

// Locks the file at the path, creating it if there is none. Null when that fails or another program
// holds it.
OwnedHeldFile v_private_files_create(const char *path);
// The same, but creates no file.
OwnedHeldFile v_private_files_hold(const char *path);

// Renames a file within its folder, atomically replacing a file with the new name. False on
// failure.
bool v_private_files_rename(const char *path, const char *new_path);
// Flushes the content of the file, or the entries of the folder, to disk. True also where the file
// system has no such operation.
bool v_private_files_sync(const char *path);
