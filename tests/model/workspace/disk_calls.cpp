#include "disk_calls.h"

#include <cerrno>
#include <filesystem>
#include <utility>

namespace {

DiskCallWatcher watcher_now;

bool may_happen(const char *call, const std::string &path) {
  return !watcher_now || watcher_now(call, path);
}

int fail_with_io_error() {
  errno = EIO;
  return -1;
}

} // namespace

WatchedDiskCalls::WatchedDiskCalls(DiskCallWatcher watcher) { watcher_now = std::move(watcher); }

WatchedDiskCalls::~WatchedDiskCalls() { watcher_now = nullptr; }

// The linker option --wrap redirects the program's own calls to these functions.
extern "C" {

int __real_fsync(int descriptor);
int __real_rename(const char *path, const char *new_path);
int __real_unlink(const char *path);

int __wrap_fsync(int descriptor) {
  const auto path =
      std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(descriptor)).string();
  return may_happen("fsync", path) ? __real_fsync(descriptor) : fail_with_io_error();
}

int __wrap_rename(const char *path, const char *new_path) {
  return may_happen("rename", path) ? __real_rename(path, new_path) : fail_with_io_error();
}

int __wrap_unlink(const char *path) {
  return may_happen("unlink", path) ? __real_unlink(path) : fail_with_io_error();
}

} // extern "C"
