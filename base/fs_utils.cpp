#include "base/fs_utils.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "base/error.h"
#include "base/text_buffer.h"

namespace {

int last_error_number = 0;

bool fail_with_errno(const char *sentence) {
  last_error_number = errno;
  v_error_set_from_errno();
  v_error_append(sentence);
  return false;
}

OwnedText convert(const char *name, decltype(&g_filename_to_utf8) converter, const char *sentence) {
  OwnedError error;
  OwnedText converted(converter(name, -1, nullptr, nullptr, receive(error)));
  if (!converted) {
    v_error_set_from_gerror_and_free(error.release());
    v_error_append(sentence);
  }
  return converted;
}

// Opening a named pipe blocks until its other end is opened, and reading from a device may never
// end. Such a file in a user's folder must not block the program.
bool may_block_forever(const char *name, const char *mode) {
  struct stat status;
  return stat(name, &status) == 0 &&
         (S_ISFIFO(status.st_mode) || (S_ISCHR(status.st_mode) && *mode == 'r'));
}

// A file name in the system's encoding, allocated with malloc.
using SystemName = Owned<char, std::free>;

// Ignores errors: a file system without permissions has none to keep.
void set_permissions(int descriptor, const VFilePermissions &permissions) {
  mode_t mode = permissions.mode;
  struct stat status;
  if (fstat(descriptor, &status) != 0 || status.st_gid != permissions.group) {
    mode &= 0707 | (mode & 07) << 3;
  }
  if (fchmod(descriptor, mode) != 0) {
    last_error_number = errno;
  }
}

} // namespace

int v_fs_utils_get_last_error_number() { return last_error_number; }

OwnedText v_fs_utils_convert_glibfsenc_to_utf8(const char *name) {
  return convert(name, g_filename_to_utf8, "Could not convert filename to unicode.");
}

OwnedText v_fs_utils_convert_utf8_to_glibfsenc(const char *path) {
  return convert(path, g_filename_from_utf8, "Could not use filename.");
}

OwnedText v_fs_utils_convert_osfsenc_to_utf8(const char *name) {
  return v_fs_utils_convert_glibfsenc_to_utf8(name);
}

OwnedText v_fs_utils_convert_utf8_to_osfsenc(const char *path) {
  return v_fs_utils_convert_utf8_to_glibfsenc(path);
}

OwnedFile v_fs_utils_open_file(const char *path, const char *mode) {
  const OwnedText name = v_fs_utils_convert_utf8_to_osfsenc(path);
  if (!name) {
    return nullptr;
  }
  OwnedFile file;
  if (may_block_forever(name.get(), mode)) {
    errno = ENXIO; // as open does for a socket
  } else {
    file.reset(std::fopen(name.get(), mode));
  }
  if (!file) {
    fail_with_errno("Cannot open file.");
  }
  return file;
}

OwnedText v_fs_utils_resolve_links(const char *path) {
  const OwnedText name(g_filename_from_utf8(path, -1, nullptr, nullptr, nullptr));
  const SystemName resolved(name ? realpath(name.get(), nullptr) : nullptr);
  return OwnedText(resolved ? g_filename_to_utf8(resolved.get(), -1, nullptr, nullptr, nullptr)
                            : nullptr);
}

VFilePermissions v_fs_utils_get_permissions(const char *path) {
  const OwnedText name(g_filename_from_utf8(path, -1, nullptr, nullptr, nullptr));
  struct stat status;
  if (!name || stat(name.get(), &status) != 0 || !S_ISREG(status.st_mode)) {
    return {};
  }
  return {true, status.st_mode & 0777, status.st_gid};
}

OwnedFile v_fs_utils_create_file(const char *path, const VFilePermissions &permissions) {
  if (!permissions.are_known) {
    return v_fs_utils_open_file(path, "wb");
  }
  const OwnedText name = v_fs_utils_convert_utf8_to_osfsenc(path);
  if (!name) {
    return nullptr;
  }
  // Only the owner can read the file until set_permissions is called.
  const int descriptor = open(name.get(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
  OwnedFile file;
  if (descriptor != -1) {
    set_permissions(descriptor, permissions);
    file.reset(fdopen(descriptor, "wb"));
  }
  if (!file) {
    fail_with_errno("Cannot open file.");
    if (descriptor != -1) {
      close(descriptor);
    }
  }
  return file;
}

bool v_fs_utils_close_file(OwnedFile file) {
  return !file || std::fclose(file.release()) == 0 || fail_with_errno("Cannot close file.");
}

OwnedFolder v_fs_utils_open_folder(const char *path) {
  const OwnedText name = v_fs_utils_convert_utf8_to_osfsenc(path);
  if (!name) {
    return nullptr;
  }
  OwnedFolder listing(opendir(name.get()));
  if (!listing) {
    fail_with_errno("Cannot open folder.");
  }
  return listing;
}

bool v_fs_utils_next_folder_entry(DIR *listing, OwnedText &name) {
  name.reset();
  errno = 0;
  const dirent *entry = readdir(listing);
  if (entry == nullptr) {
    return errno == 0 || fail_with_errno("Cannot read folder contents.");
  }
  name = v_fs_utils_convert_osfsenc_to_utf8(entry->d_name);
  return name != nullptr;
}

OwnedText v_fs_utils_next_convertible_folder_entry(DIR *listing) {
  while (const dirent *entry = readdir(listing)) {
    if (OwnedText name = v_fs_utils_convert_osfsenc_to_utf8(entry->d_name)) {
      return name;
    }
  }
  return nullptr;
}

bool v_fs_utils_close_folder(OwnedFolder listing) {
  return !listing || closedir(listing.release()) == 0 || fail_with_errno("Cannot close folder.");
}

bool v_fs_utils_create_folder(const char *path) {
  const OwnedText name = v_fs_utils_convert_utf8_to_osfsenc(path);
  return name && (mkdir(name.get(), 0700) == 0 || fail_with_errno("Cannot create folder."));
}

bool v_fs_utils_create_folder_recursively(const char *path) {
  const OwnedText parent = copy_text(path);
  v_fs_utils_strip_ending_path_delimiters(parent.get());
  v_fs_utils_strip_entry_name_from_path(parent.get());
  v_fs_utils_strip_ending_path_delimiters(parent.get());
  // The recursion ends when the parent is empty; no folder can be created for an empty path.
  const bool parent_is_missing = *parent != '\0' && v_fs_utils_is_missing(parent.get());
  if (parent_is_missing && !v_fs_utils_create_folder_recursively(parent.get())) {
    return false;
  }
  return v_fs_utils_create_folder(path);
}

bool v_fs_utils_delete_folder_if_exists(const char *path) {
  const OwnedText name = v_fs_utils_convert_utf8_to_osfsenc(path);
  return name &&
         (rmdir(name.get()) == 0 || errno == ENOENT || fail_with_errno("Cannot delete folder."));
}

bool v_fs_utils_delete_file_if_exists(const char *path) {
  const OwnedText name = v_fs_utils_convert_utf8_to_osfsenc(path);
  return name &&
         (unlink(name.get()) == 0 || errno == ENOENT || fail_with_errno("Cannot unlink file."));
}

void v_fs_utils_discard_file(const char *path) {
  const OwnedText name(g_filename_from_utf8(path, -1, nullptr, nullptr, nullptr));
  struct stat status;
  // A device such as /dev/full existed before and has none of our data.
  const bool is_device = name && lstat(name.get(), &status) == 0 && !S_ISREG(status.st_mode) &&
                         !S_ISLNK(status.st_mode);
  if (name && !is_device && unlink(name.get()) != 0 && errno != ENOENT) {
    last_error_number = errno;
  }
}

bool v_fs_utils_replace_file(const char *path, const char *text) {
  const OwnedText name = v_fs_utils_convert_utf8_to_osfsenc(path);
  if (!name) {
    return false;
  }
  struct stat status;
  const bool is_file = stat(name.get(), &status) == 0 && S_ISREG(status.st_mode);
  // A rename would replace a symbolic link itself and not its target.
  const SystemName target(is_file ? realpath(name.get(), nullptr) : nullptr);
  OwnedError error;
  if (!g_file_set_contents_full(target ? target.get() : name.get(), text, -1,
                                static_cast<GFileSetContentsFlags>(G_FILE_SET_CONTENTS_CONSISTENT |
                                                                   G_FILE_SET_CONTENTS_DURABLE),
                                is_file ? static_cast<int>(status.st_mode & 0777) : 0666,
                                receive(error))) {
    v_error_set_from_gerror_and_free(error.release());
    return false;
  }
  return true;
}

bool v_fs_utils_get_info(const char *path, VFileInfo &info) {
  info = {};
  const OwnedText name = v_fs_utils_convert_utf8_to_osfsenc(path);
  if (!name) {
    return false;
  }
  struct stat status;
  if (stat(name.get(), &status) != 0) {
    return errno == ENOENT || fail_with_errno("Cannot get file status.");
  }
  // Tests single bits of the mode, as all tools of the suite do: a block device also has the bit of
  // a folder, and a socket has both bits.
  info.exists = 1;
  info.is_folder = (status.st_mode & 0x4000) != 0;
  info.is_file = (status.st_mode & 0x8000) != 0;
  info.modification_time = status.st_mtime;
  info.size = status.st_size;
  return true;
}

bool v_fs_utils_is_missing(const char *path) {
  VFileInfo info;
  return v_fs_utils_get_info(path, info) && !info.exists;
}

OwnedText v_fs_utils_create_path_in_folder_(const char *folder, const char *const *parts,
                                            int count) {
  const OwnedText start = copy_text(folder);
  v_fs_utils_strip_ending_path_delimiters(start.get());
  OwnedUtf8String path = v_utf8_string_new(start.get());
  for (int i = 0; i < count; i++) {
    if (*parts[i] == '\0') {
      continue;
    }
    if (path->len != 0) {
      v_utf8_string_append_byte(path.get(), '/');
    }
    v_utf8_string_append(path.get(), parts[i]);
  }
  return v_utf8_string_free(std::move(path), false);
}

const char *v_fs_utils_find_entry_name_in_path(const char *path) {
  const char *delimiter = std::strrchr(path, '/');
  return delimiter == nullptr ? path : delimiter + 1;
}

void v_fs_utils_strip_entry_name_from_path(char *path) {
  char *end = std::strrchr(path, '/');
  if (end == nullptr) {
    *path = '\0';
    return;
  }
  *end = '\0';
  v_fs_utils_strip_ending_path_delimiters(path);
}

void v_fs_utils_strip_ending_path_delimiters(char *path) {
  for (gsize length = std::strlen(path); length > 0 && path[length - 1] == '/'; length--) {
    path[length - 1] = '\0';
  }
}
