#pragma once
// Makes the Nth call of the C library fail, and the Nth allocation that a library reports instead
// of aborting. The test program defines the calls itself, so calls made inside the libraries are
// included. Only calls for entries of one folder are counted and failed, and only between start and
// stop: the test itself, its framework and the loader are never disturbed.

#include <optional>
#include <string>
#include <vector>

// fopen and fdopen count as calls of their own and also as the open that they make. In the same way
// the buffered calls include read and write, and fclose includes close. allocate is libxml2's
// allocator and GLib's g_try_malloc, compile is g_regex_new.
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
  bool from_then_on = false; // as on a removed disk; otherwise one call fails
};

// The first call that was made to fail.
struct Hit {
  Call call;
  std::string path;   // below the watched folder; "" for a call without a path
  int occurrence = 1; // which call of its kind on this path it was
};

struct Report {
  std::optional<Hit> hit;
  std::vector<std::string> left_open; // paths of files and folders
};

namespace injector {

// Counts the calls for entries of the folder (an absolute path) and makes those of the fault fail.
void start(const std::string &folder, const Fault &fault);
Report stop();
// Blocks of memory that libxml2 holds, apart from its record of the last error.
long count_library_blocks();

} // namespace injector
