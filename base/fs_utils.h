#pragma once
// A uniform layer over the operating system's file functions. Paths are UTF-8 with "/" as
// delimiter; only this module converts them to the file system's encoding. On failure the message
// is that of the system ("Error 2: No such file or directory") with the sentence named at each
// function in front of it; for a path that cannot be converted it is "Could not use filename."
// before the reason.

#include <cstdint>

#include "base/owned.h"

struct VFileInfo {
  std::uint32_t exists = 0;           // 1 when there is something at the path
  std::uint32_t is_folder = 0;        // the mode's bit 0x4000
  std::uint32_t is_file = 0;          // the mode's bit 0x8000
  std::int64_t modification_time = 0; // seconds since the epoch
  std::int64_t size = 0;              // bytes
};

// The errno of the last failed call in this layer, 0 before the first failure. A missing path does
// not count where the function treats it as success.
int v_fs_utils_get_last_error_number();

// Convert between the system's file names and UTF-8. Null with "Could not convert filename to
// unicode." or "Could not use filename.". The two pairs are for file names passed to GLib and to
// the operating system; here both have the same encoding.
OwnedText v_fs_utils_convert_glibfsenc_to_utf8(const char *name);
OwnedText v_fs_utils_convert_utf8_to_glibfsenc(const char *path);
OwnedText v_fs_utils_convert_osfsenc_to_utf8(const char *name);
OwnedText v_fs_utils_convert_utf8_to_osfsenc(const char *path);

// Opens a buffered file with a standard mode ("rb", "wb"). Null with "Cannot open file.", also for
// files that could block the program forever: a named pipe, and a character device opened to read.
OwnedFile v_fs_utils_open_file(const char *path, const char *mode);

// The absolute path with symbolic links resolved. Null, without a message, when there is nothing at
// the path or it cannot be converted.
OwnedText v_fs_utils_resolve_links(const char *path);

// Permissions of a file, to be copied to the file that replaces it.
struct VFilePermissions {
  bool are_known = false;  // false: there is no such file
  unsigned mode = 0;       // the bits 0777
  unsigned long group = 0; // the system's number
};
// Reads the permissions of the regular file at the path, following symbolic links.
VFilePermissions v_fs_utils_get_permissions(const char *path);
// Creates a new file for writing. It is never readable by users whom the permissions exclude, and
// gets the permissions as far as the file system allows; when its group is not that of the old
// file, the group gets only what other users get. Null with "Cannot open file.", also when
// something is at the path. When the permissions are not known, the file gets the default ones, and
// an existing file is truncated.
OwnedFile v_fs_utils_create_file(const char *path, const VFilePermissions &permissions);
// Closes; null is success. False with "Cannot close file.": buffered data may be lost.
bool v_fs_utils_close_file(OwnedFile file);

// Null with "Cannot open folder.".
OwnedFolder v_fs_utils_open_folder(const char *path);
// The next entry's name ("." and ".." included, in the system's order); at the end true with null.
// False with "Cannot read folder contents." or "Could not convert filename to unicode."; after the
// latter, the next call continues with the following entry.
bool v_fs_utils_next_folder_entry(DIR *listing, OwnedText &name);
// The same, but skips entries whose names cannot be converted, for callers that look for certain
// names. Null at the end, and when reading the folder fails.
OwnedText v_fs_utils_next_convertible_folder_entry(DIR *listing);
// Closes; null is success. False with "Cannot close folder.".
bool v_fs_utils_close_folder(OwnedFolder listing);

// Creates a folder that only its owner can access (0700). False with "Cannot create folder.", also
// when the folder exists.
bool v_fs_utils_create_folder(const char *path);
// The same, but creates missing parents first.
bool v_fs_utils_create_folder_recursively(const char *path);
// Removes an empty folder; a missing one is success. False with "Cannot delete folder.".
bool v_fs_utils_delete_folder_if_exists(const char *path);
// Removes a file; a missing one is success. False with "Cannot unlink file.".
bool v_fs_utils_delete_file_if_exists(const char *path);
// Removes what a failed write has left, a file or a symbolic link, if possible; a device is kept.
// Sets no message, so that the message of the failed write is kept.
void v_fs_utils_discard_file(const char *path);

// Replaces the file at the path atomically: the text is written to a temporary file, flushed to
// disk and renamed, so that the old file is intact until the new one is complete. A symbolic link
// to a file is followed; the new file has the mode of the old one. False with "Could not use
// filename." or with the system's reason as "GError <code>: ...".
bool v_fs_utils_replace_file(const char *path, const char *text);

// Fills the record, following symbolic links; a missing path is success with every field zero.
// False with "Cannot get file status.".
bool v_fs_utils_get_info(const char *path, VFileInfo &info);
// True when nothing is at the path; a path whose status cannot be read counts as taken.
bool v_fs_utils_is_missing(const char *path);

// True when the record describes a regular file. The mode of a socket has both the bit of a file
// and that of a folder.
inline bool v_fs_utils_is_regular_file(const VFileInfo &info) {
  return info.exists && info.is_file && !info.is_folder;
}

// Joins a folder and count parts with "/". Trailing slashes of the folder are removed and empty
// parts are skipped. A folder of slashes only counts as empty, so the result is a relative path.
OwnedText v_fs_utils_create_path_in_folder_(const char *folder, const char *const *parts,
                                            int count);
// The same with the parts as arguments.
template <typename... Parts>
OwnedText v_fs_utils_create_path_in_folder(const char *folder, Parts... parts) {
  const char *const array[] = {parts...};
  return v_fs_utils_create_path_in_folder_(folder, array, sizeof...(parts));
}
// The text after the last "/", or the whole path; points into the argument.
const char *v_fs_utils_find_entry_name_in_path(const char *path);
// In place: removes the last entry and the slashes before it ("/a//b" becomes "/a", "/b" and "b"
// become "").
void v_fs_utils_strip_entry_name_from_path(char *path);
// In place: removes all trailing slashes ("/" becomes "").
void v_fs_utils_strip_ending_path_delimiters(char *path);
