#include "base/private_files.h"

#include <cerrno>
#include <cstdio>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

struct VHeldFile {
  int descriptor; // closing it releases the lock
};

namespace {

// The path in the file system's encoding; null when it cannot be converted.
OwnedText convert(const char *path) {
  return OwnedText(g_filename_from_utf8(path, -1, nullptr, nullptr, nullptr));
}

OwnedHeldFile open_without_lock(const char *name, int flags) {
  const int descriptor = name == nullptr ? -1 : open(name, flags | O_CLOEXEC, 0600);
  return OwnedHeldFile(descriptor < 0 ? nullptr : new VHeldFile{descriptor});
}

// Between opening and locking, the previous holder may have removed or replaced the file.
bool is_still_at(const char *name, int descriptor) {
  struct stat at_name;
  struct stat opened;
  return stat(name, &at_name) == 0 && fstat(descriptor, &opened) == 0 &&
         at_name.st_ino == opened.st_ino && at_name.st_dev == opened.st_dev;
}

OwnedHeldFile open_and_lock(const char *path, int flags) {
  const OwnedText name = convert(path);
  OwnedHeldFile held = open_without_lock(name.get(), flags | O_RDWR);
  if (held && (flock(held->descriptor, LOCK_EX | LOCK_NB) != 0 ||
               !is_still_at(name.get(), held->descriptor))) {
    held.reset();
  }
  return held;
}

} // namespace

void v_private_files_release(VHeldFile *held) {
  close(held->descriptor);
  delete held;
}

OwnedHeldFile v_private_files_create(const char *path) { return open_and_lock(path, O_CREAT); }

OwnedHeldFile v_private_files_hold(const char *path) { return open_and_lock(path, 0); }

bool v_private_files_rename(const char *path, const char *new_path) {
  const OwnedText name = convert(path);
  const OwnedText new_name = convert(new_path);
  return name && new_name && std::rename(name.get(), new_name.get()) == 0;
}

bool v_private_files_sync(const char *path) {
  const OwnedHeldFile opened = open_without_lock(convert(path).get(), O_RDONLY);
  return opened && (fsync(opened->descriptor) == 0 || errno == EINVAL || errno == EROFS);
}
