#include "faults/injector.h"

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <map>
#include <utility>

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <glib.h>
#include <libxml/xmlerror.h>
#include <libxml/xmlmemory.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr const char *call_names[] = {
    "open",  "fopen",  "read",    "fread",   "write",    "fwrite",   "fflush",
    "close", "fclose", "fsync",   "rename",  "unlink",   "mkdir",    "rmdir",
    "stat",  "lstat",  "opendir", "readdir", "closedir", "allocate", "compile",
};

struct BufferedFile {
  int descriptor;
  std::string path;
};

// State between start and stop.
struct Watch {
  std::string folder;
  Fault fault;
  int count = 0;
  std::optional<Hit> hit;
  std::map<std::pair<Call, std::string>, int> occurrences;
  std::map<int, std::string> descriptors;
  std::map<std::FILE *, BufferedFile> files;
  std::map<DIR *, std::string> listings;
};

// Null before start and after stop, and until static variables are initialised.
Watch *watch = nullptr;
long library_blocks = 0;

// The path below the watched folder; none for one that is not watched.
std::optional<std::string> watched(const char *path) {
  if (watch == nullptr || !std::string(path).starts_with(watch->folder + "/")) {
    return std::nullopt;
  }
  return path + watch->folder.size() + 1;
}

template <typename Table>
typename Table::mapped_type *find(Table Watch::*table, const typename Table::key_type &key) {
  if (watch == nullptr) {
    return nullptr;
  }
  const auto found = (watch->*table).find(key);
  return found == (watch->*table).end() ? nullptr : &found->second;
}

bool must_fail(Call call, const std::string &path) {
  const int occurrence = ++watch->occurrences[{call, path}];
  const Fault &fault = watch->fault;
  if (std::find(fault.calls.begin(), fault.calls.end(), call) == fault.calls.end()) {
    return false;
  }
  watch->count++;
  if (fault.from_then_on ? watch->count < fault.nth : watch->count != fault.nth) {
    return false;
  }
  if (!watch->hit) {
    watch->hit = {call, path, occurrence};
  }
  return true;
}

// Sets errno to the fault's error and returns the result.
template <typename Result>
Result fail_with_errno(Result result) {
  errno = watch->fault.error_number;
  return result;
}

bool is_first_failure() { return watch->count == watch->fault.nth; }

// The function that the one of this file replaces.
template <typename Function>
Function *next(const char *name) {
  return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, name));
}

void mark_as_failed(std::FILE *file) { file->_flags |= _IO_ERR_SEEN; }

// A buffered file over a descriptor, whose own calls can be counted: the C library's are out of
// reach inside it. The functions below are the ones that this file defines.
ssize_t read_cookie(void *cookie, char *buffer, std::size_t size) {
  return read(*static_cast<int *>(cookie), buffer, size);
}

ssize_t write_cookie(void *cookie, const char *buffer, std::size_t size) {
  const ssize_t written = write(*static_cast<int *>(cookie), buffer, size);
  return written < 0 ? 0 : written; // 0 is its sign of failure
}

int seek_cookie(void *cookie, off64_t *position, int whence) {
  *position = lseek(*static_cast<int *>(cookie), *position, whence);
  return *position < 0 ? -1 : 0;
}

int close_cookie(void *cookie) {
  int *descriptor = static_cast<int *>(cookie);
  const int result = close(*descriptor);
  delete descriptor;
  return result;
}

std::FILE *make_buffered(int descriptor, const char *mode, const std::string &watched_path) {
  const cookie_io_functions_t calls = {read_cookie, write_cookie, seek_cookie, close_cookie};
  std::FILE *file = fopencookie(new int(descriptor), mode, calls);
  watch->files[file] = {descriptor, watched_path};
  return file;
}

std::FILE *open_buffered(const char *path, const char *mode, const std::string &watched_path) {
  const int flags = *mode == 'r' ? O_RDONLY : O_WRONLY | O_CREAT | O_TRUNC;
  const int descriptor = open(path, flags, 0666);
  return descriptor < 0 ? nullptr : make_buffered(descriptor, mode, watched_path);
}

bool allocation_must_fail() { return watch != nullptr && must_fail(Call::allocate, ""); }

void *allocate(std::size_t size) {
  if (allocation_must_fail()) {
    return fail_with_errno(nullptr);
  }
  library_blocks++;
  return std::malloc(size);
}

void *reallocate(void *block, std::size_t size) {
  if (allocation_must_fail()) {
    return fail_with_errno(nullptr);
  }
  library_blocks += block == nullptr;
  return std::realloc(block, size);
}

void release(void *block) {
  library_blocks -= block != nullptr;
  std::free(block);
}

char *duplicate(const char *text) {
  if (allocation_must_fail()) {
    return fail_with_errno(nullptr);
  }
  library_blocks++;
  return strdup(text);
}

// Set before libxml2 allocates anything.
[[maybe_unused]] const int allocator_is_set =
    xmlGcMemSetup(release, allocate, allocate, reallocate, duplicate);

} // namespace

const char *name_of(Call call) { return call_names[static_cast<int>(call)]; }

void injector::start(const std::string &folder, const Fault &fault) {
  watch = new Watch{folder, fault, 0, {}, {}, {}, {}, {}};
}

Report injector::stop() {
  Report report = {watch->hit, {}};
  for (const auto &[descriptor, path] : watch->descriptors) {
    report.left_open.push_back(path);
  }
  for (const auto &[listing, path] : watch->listings) {
    report.left_open.push_back(path + "/");
  }
  delete std::exchange(watch, nullptr);
  return report;
}

long injector::count_library_blocks() {
  xmlResetLastError();
  return library_blocks;
}

// The replacements of the calls. Each looks up the original once.
extern "C" {

int open(const char *path, int flags, ...) {
  static auto *const real = next<int(const char *, int, mode_t)>("open");
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
  va_end(arguments);
  const auto name = watched(path);
  if (name && must_fail(Call::open, *name)) {
    return fail_with_errno(-1);
  }
  const int descriptor = real(path, flags, mode);
  if (name && descriptor >= 0) {
    watch->descriptors[descriptor] = *name;
  }
  return descriptor;
}

int openat(int folder, const char *path, int flags, ...) {
  static auto *const real = next<int(int, const char *, int, mode_t)>("openat");
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
  va_end(arguments);
  // The program never opens a file relative to a folder's descriptor.
  return watched(path) ? open(path, flags, mode) : real(folder, path, flags, mode);
}

std::FILE *fopen(const char *path, const char *mode) {
  static auto *const real = next<std::FILE *(const char *, const char *)>("fopen");
  const auto name = watched(path);
  if (!name) {
    return real(path, mode);
  }
  return must_fail(Call::fopen, *name) ? fail_with_errno<std::FILE *>(nullptr)
                                       : open_buffered(path, mode, *name);
}

std::FILE *fdopen(int descriptor, const char *mode) noexcept {
  static auto *const real = next<std::FILE *(int, const char *)>("fdopen");
  const std::string *path = find(&Watch::descriptors, descriptor);
  if (path == nullptr) {
    return real(descriptor, mode);
  }
  return must_fail(Call::fopen, *path) ? fail_with_errno<std::FILE *>(nullptr)
                                       : make_buffered(descriptor, mode, *path);
}

// libxml2 reads from the descriptor.
int fileno(std::FILE *file) noexcept {
  static auto *const real = next<int(std::FILE *)>("fileno");
  const BufferedFile *known = find(&Watch::files, file);
  return known != nullptr ? known->descriptor : real(file);
}

ssize_t read(int descriptor, void *buffer, std::size_t size) {
  static auto *const real = next<ssize_t(int, void *, std::size_t)>("read");
  const std::string *path = find(&Watch::descriptors, descriptor);
  return path != nullptr && must_fail(Call::read, *path) ? fail_with_errno<ssize_t>(-1)
                                                         : real(descriptor, buffer, size);
}

std::size_t fread(void *buffer, std::size_t size, std::size_t count, std::FILE *file) {
  static auto *const real =
      next<std::size_t(void *, std::size_t, std::size_t, std::FILE *)>("fread");
  const BufferedFile *known = find(&Watch::files, file);
  if (known != nullptr && must_fail(Call::fread, known->path)) {
    mark_as_failed(file);
    return fail_with_errno<std::size_t>(0);
  }
  return real(buffer, size, count, file);
}

// A failing write still writes a part, as on a disk that becomes full.
ssize_t write(int descriptor, const void *buffer, std::size_t size) {
  static auto *const real = next<ssize_t(int, const void *, std::size_t)>("write");
  const std::string *path = find(&Watch::descriptors, descriptor);
  if (path != nullptr && must_fail(Call::write, *path)) {
    if (is_first_failure()) {
      real(descriptor, buffer, size / 2);
    }
    return fail_with_errno<ssize_t>(-1);
  }
  return real(descriptor, buffer, size);
}

std::size_t fwrite(const void *buffer, std::size_t size, std::size_t count, std::FILE *file) {
  static auto *const real =
      next<std::size_t(const void *, std::size_t, std::size_t, std::FILE *)>("fwrite");
  const BufferedFile *known = find(&Watch::files, file);
  // Writing nothing cannot fail.
  if (known != nullptr && size * count > 0 && must_fail(Call::fwrite, known->path)) {
    const std::size_t written = is_first_failure() ? real(buffer, size, count / 2, file) : 0;
    mark_as_failed(file);
    return fail_with_errno(written);
  }
  return real(buffer, size, count, file);
}

int fflush(std::FILE *file) {
  static auto *const real = next<int(std::FILE *)>("fflush");
  const BufferedFile *known = find(&Watch::files, file);
  if (known != nullptr && must_fail(Call::fflush, known->path)) {
    mark_as_failed(file);
    return fail_with_errno(EOF);
  }
  return real(file);
}

int close(int descriptor) {
  static auto *const real = next<int(int)>("close");
  const std::string *known = find(&Watch::descriptors, descriptor);
  if (known == nullptr) {
    return real(descriptor);
  }
  const std::string path = *known;
  watch->descriptors.erase(descriptor);
  const int result = real(descriptor);
  return must_fail(Call::close, path) ? fail_with_errno(-1) : result;
}

int fclose(std::FILE *file) {
  static auto *const real = next<int(std::FILE *)>("fclose");
  const BufferedFile *known = find(&Watch::files, file);
  if (known == nullptr) {
    return real(file);
  }
  const std::string path = known->path;
  watch->files.erase(file);
  const bool is_failing = must_fail(Call::fclose, path);
  const int result = real(file);
  return is_failing ? fail_with_errno(EOF) : result;
}

int fsync(int descriptor) {
  static auto *const real = next<int(int)>("fsync");
  const std::string *path = find(&Watch::descriptors, descriptor);
  return path != nullptr && must_fail(Call::fsync, *path) ? fail_with_errno(-1) : real(descriptor);
}

int rename(const char *from, const char *to) noexcept {
  static auto *const real = next<int(const char *, const char *)>("rename");
  const auto name = watched(to);
  return name && must_fail(Call::rename, *name) ? fail_with_errno(-1) : real(from, to);
}

int unlink(const char *path) noexcept {
  static auto *const real = next<int(const char *)>("unlink");
  const auto name = watched(path);
  return name && must_fail(Call::unlink, *name) ? fail_with_errno(-1) : real(path);
}

int mkdir(const char *path, mode_t mode) noexcept {
  static auto *const real = next<int(const char *, mode_t)>("mkdir");
  const auto name = watched(path);
  return name && must_fail(Call::mkdir, *name) ? fail_with_errno(-1) : real(path, mode);
}

int rmdir(const char *path) noexcept {
  static auto *const real = next<int(const char *)>("rmdir");
  const auto name = watched(path);
  return name && must_fail(Call::rmdir, *name) ? fail_with_errno(-1) : real(path);
}

int stat(const char *path, struct stat *status) noexcept {
  static auto *const real = next<int(const char *, struct stat *)>("stat");
  const auto name = watched(path);
  return name && must_fail(Call::stat, *name) ? fail_with_errno(-1) : real(path, status);
}

int lstat(const char *path, struct stat *status) noexcept {
  static auto *const real = next<int(const char *, struct stat *)>("lstat");
  const auto name = watched(path);
  return name && must_fail(Call::lstat, *name) ? fail_with_errno(-1) : real(path, status);
}

DIR *opendir(const char *path) {
  static auto *const real = next<DIR *(const char *)>("opendir");
  const auto name = watched(path);
  if (name && must_fail(Call::opendir, *name)) {
    return fail_with_errno<DIR *>(nullptr);
  }
  DIR *listing = real(path);
  if (name && listing != nullptr) {
    watch->listings[listing] = *name;
  }
  return listing;
}

dirent *readdir(DIR *listing) {
  static auto *const real = next<dirent *(DIR *)>("readdir");
  const std::string *path = find(&Watch::listings, listing);
  return path != nullptr && must_fail(Call::readdir, *path) ? fail_with_errno<dirent *>(nullptr)
                                                            : real(listing);
}

int closedir(DIR *listing) {
  static auto *const real = next<int(DIR *)>("closedir");
  const std::string *known = find(&Watch::listings, listing);
  if (known == nullptr) {
    return real(listing);
  }
  const std::string path = *known;
  watch->listings.erase(listing);
  const int result = real(listing);
  return must_fail(Call::closedir, path) ? fail_with_errno(-1) : result;
}

// The names under which libraries with large file offsets call the same functions.
int open64(const char *path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
  va_end(arguments);
  return open(path, flags, mode);
}

int openat64(int folder, const char *path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
  va_end(arguments);
  return openat(folder, path, flags, mode);
}

std::FILE *fopen64(const char *path, const char *mode) { return fopen(path, mode); }

int stat64(const char *path, struct stat64 *status) noexcept {
  return stat(path, reinterpret_cast<struct stat *>(status));
}

int lstat64(const char *path, struct stat64 *status) noexcept {
  return lstat(path, reinterpret_cast<struct stat *>(status));
}

dirent64 *readdir64(DIR *listing) { return reinterpret_cast<dirent64 *>(readdir(listing)); }

// Allocations of GLib that may fail.
gpointer g_try_malloc(gsize size) {
  static auto *const real = next<gpointer(gsize)>("g_try_malloc");
  return allocation_must_fail() ? fail_with_errno<gpointer>(nullptr) : real(size);
}

gpointer g_try_malloc_n(gsize count, gsize size) {
  static auto *const real = next<gpointer(gsize, gsize)>("g_try_malloc_n");
  return allocation_must_fail() ? fail_with_errno<gpointer>(nullptr) : real(count, size);
}

GRegex *g_regex_new(const char *pattern, GRegexCompileFlags compile_flags,
                    GRegexMatchFlags match_flags, GError **error) {
  static auto *const real =
      next<GRegex *(const char *, GRegexCompileFlags, GRegexMatchFlags, GError **)>("g_regex_new");
  if (watch != nullptr && must_fail(Call::compile, "")) {
    g_set_error_literal(error, G_REGEX_ERROR, G_REGEX_ERROR_COMPILE, "out of memory");
    return fail_with_errno<GRegex *>(nullptr);
  }
  return real(pattern, compile_flags, match_flags, error);
}

} // extern "C"
