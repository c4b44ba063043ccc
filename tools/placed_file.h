#pragma once
// A file that is written in a folder of its own beside its place and put there when it is whole, so
// that its place has the old file or the new one, never a part of one. Nothing is left of the new
// one when a signal ends the program. Failing functions leave a message (base/error.h).

#include "base/fs_utils.h"
#include "tools/codeset_files.h"

// One at a time, because a signal finds one only.
class PlacedFile {
public:
  PlacedFile() = default;
  // Removes the new file unless it has been put in its place.
  ~PlacedFile();
  PlacedFile(const PlacedFile &) = delete;
  PlacedFile &operator=(const PlacedFile &) = delete;

  // Prepares a new file for the place (file system's encoding). False with "The file exists
  // already;
  // --force replaces it." unless overwriting is allowed, "Not a regular file.", or "Cannot create
  // file." before the system's reason.
  bool prepare(const char *place, Overwriting overwriting);
  // The same for a file that is only needed until this object is destroyed.
  bool prepare_temporary();

  // Where to write the file (UTF-8), and with which permissions.
  const char *path() const { return new_path.get(); }
  const VFilePermissions &permissions() const { return old_permissions; }

  // Puts the file in its place once it is on the disk. False with "File I/O error when writing to
  // file.", with "Cannot create file." before the reason, or, when a file has appeared there since,
  // with the message about that.
  bool put();

private:
  bool create_folder(const char *parent, const char *name);
  bool claim_place();

  OwnedText target;   // file system's encoding
  OwnedText folder;   // of the new file, file system's encoding
  OwnedText new_name; // of the new file, file system's encoding
  OwnedText new_path; // the same in UTF-8
  VFilePermissions old_permissions;
  bool may_replace = false;
};
