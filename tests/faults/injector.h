#pragma once
// Makes the Nth call of the C library fail, and the Nth allocation that a library reports instead
// of aborting. The test program defines the calls itself, so that those made inside the libraries
// come here too. Only what happens below one folder is counted and failed, and only between start
// and stop: the test itself, its framework and the loader are never disturbed.

#include <optional>
#include <string>
#include <vector>

// fopen, and fdopen as well, counts as a call of its own and as the open that it makes; in the same
// way there are read and write under the buffered calls, and close under fclose. allocate is
// libxml2's allocator and GLib's g_try_malloc, compile is g_regex_new.
enum class Call {
  open,
  fopen,
  read,
  fread,
  write,
  fwrite,
  fflush,
  close,
  fclose,
  fsync,
  rename,
  unlink,
  mkdir,
  rmdir,
  stat,
  lstat,
  opendir,
  readdir,
  closedir,
  allocate,
  compile,
};

const char *name_of(Call call);

struct Fault {
  std::vector<Call> calls;
  int nth = 1; // of the calls together, from 1
  int error_number = 0;
  bool from_then_on = false; // as on a disk that is gone; otherwise one call fails
};

// The first call that was made to fail.
struct Hit {
  Call call;
  std::string path;   // below the watched folder; "" for what has no path
  int occurrence = 1; // which call of its kind on this path it was
};

struct Report {
  std::optional<Hit> hit;
  std::vector<std::string> left_open; // paths of files and folders
};

namespace injector {

// Counts what happens below the folder (an absolute path) and lets the fault strike.
void start(const std::string &folder, const Fault &fault);
Report stop();
// Blocks of memory that libxml2 holds, apart from its record of the last error.
long count_library_blocks();

} // namespace injector
