#pragma once
// Replaces a file atomically: the new file is written in a temporary folder beside the target and
// renamed when it is complete, so that the target is the old file or the new one, never part of
// one. The new file is removed when a signal ends the program. Functions that fail set a message
// (base/error.h).

#include "base/fs_utils.h"
#include "tools/codeset_files.h"

// Only one object may exist at a time, because the signal handler removes one file.
class PlacedFile {
public:
  PlacedFile() = default;
  // Removes the new file unless put has renamed it.
  ~PlacedFile();
  PlacedFile(const PlacedFile &) = delete;
  PlacedFile &operator=(const PlacedFile &) = delete;

  // Prepares a new file for the target (file system's encoding); symbolic links are followed. False
  // with "Not a regular file.", with "The file exists already; --force replaces it." unless
  // overwriting is allowed, with "Cannot create file." before the system's reason, or with the
  // message of v_fs_utils_get_info.
  bool prepare(const char *target_file, Overwriting overwriting);
  // Prepares a temporary file without a target, which the destructor removes.
  bool prepare_temporary();

  // The path to which the caller writes the new file (UTF-8), and the permissions to write it with.
  const char *path() const { return new_path.get(); }
  const VFilePermissions &permissions() const { return old_permissions; }

  // Flushes the new file to disk and renames it to the target. False with "File I/O error when
  // writing to file.", with "Cannot create file." before the reason, or with "The file exists
  // already; ..." when another program has created the target since and overwriting is refused.
  bool put();

private:
  bool create_folder(const char *parent, const char *name);
  bool claim_target();
  bool rename_to_target();

  OwnedText target;   // file system's encoding
  OwnedText folder;   // of the new file, file system's encoding
  OwnedText new_name; // of the new file, file system's encoding
  OwnedText new_path; // the same in UTF-8
  VFilePermissions old_permissions;
  bool may_replace = false;
};
