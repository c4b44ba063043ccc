#pragma once
// The calls by which a test program changes what is on the disk beyond a file's content: each is
// told of, and each can be made to fail.

#include <functional>
#include <string>

// Before each call: "fsync", "rename" or "unlink", and the path (of what is renamed, the old one).
// The call fails with EIO when false is returned.
using DiskCallWatcher = std::function<bool(const std::string &call, const std::string &path)>;

class WatchedDiskCalls {
public:
  explicit WatchedDiskCalls(DiskCallWatcher watcher);
  ~WatchedDiskCalls();
  WatchedDiskCalls(const WatchedDiskCalls &) = delete;
  WatchedDiskCalls &operator=(const WatchedDiskCalls &) = delete;
};
