#pragma once
// Watches the calls that sync, rename or delete files. A test sees each call and can make it fail.

#include <functional>
#include <string>

// Called before each call with "fsync", "rename" or "unlink" and the path (the old path of a
// rename). If it returns false, the call fails with EIO.
using DiskCallWatcher = std::function<bool(const std::string &call, const std::string &path)>;

class WatchedDiskCalls {
public:
  explicit WatchedDiskCalls(DiskCallWatcher watcher);
  ~WatchedDiskCalls();
  WatchedDiskCalls(const WatchedDiskCalls &) = delete;
  WatchedDiskCalls &operator=(const WatchedDiskCalls &) = delete;
};
