#pragma once
// One uniform layer over the operating system's file functions. Every path is UTF-8 with "/" as its
// delimiter; only this module converts it to the file system's encoding. On failure the message is
// the system's ("Error 2: No such file or directory") or the conversion's, with the sentence named
// at each function in front; a path that cannot be converted fails with "Could not use filename.".

#include <cstdint>

#include "base/owned.h"

struct VFileInfo {
  std::uint32_t exists = 0;           // 1 when the path names something
  std::uint32_t is_folder = 0;        // the mode's bit 0x4000
  std::uint32_t is_file = 0;          // the mode's bit 0x8000
  std::int64_t modification_time = 0; // seconds since the epoch
  std::int64_t size = 0;              // bytes
};

// The system's error number of the last failed call of this layer, 0 before the first failure. A
// missing path does not count where the function treats it as success.
int v_fs_utils_get_last_error_number();

// Convert between the system's file names and UTF-8. Null with "Could not convert filename to
// unicode." or "Could not use filename.". The two pairs are for names of GLib and of
// the operating system; here both use the same encoding.
OwnedText v_fs_utils_convert_glibfsenc_to_utf8(const char *name);
OwnedText v_fs_utils_convert_utf8_to_glibfsenc(const char *path);
OwnedText v_fs_utils_convert_osfsenc_to_utf8(const char *name);
OwnedText v_fs_utils_convert_utf8_to_osfsenc(const char *path);

// Opens a buffered file with a standard mode ("rb", "wb"). Null with "Cannot open file.", also for
// files that could block the program for ever: a named pipe, and a character device to read from.
OwnedFile v_fs_utils_open_file(const char *path, const char *mode);

// The absolute path without links. Null when there is nothing at the path, or the path cannot be
// used.
OwnedText v_fs_utils_resolve_links(const char *path);

// Permissions of a file, for the file that replaces it.
struct VFilePermissions {
  bool are_known = false;  // false: there is no such file
  unsigned mode = 0;       // the bits 0777
  unsigned long group = 0; // the system's number
};
// Reads the permissions of the regular file at the path, following links.
VFilePermissions v_fs_utils_get_permissions(const char *path);
// Creates a new file for writing; at no time can it be read by users whom the permissions exclude.
// The permissions are set as far as the file system allows. When the new file is in another group
// than the old one, that group gets no more than all users have. When they are not known, the file
// has the usual permissions, and an existing file is emptied. Null with "Cannot open file.", also
// when the permissions are known and something is at the path.
OwnedFile v_fs_utils_create_file(const char *path, const VFilePermissions &permissions);
// Closes; null is success. False with "Cannot close file.": what was buffered may be lost.
bool v_fs_utils_close_file(OwnedFile file);

// Null with "Cannot open folder.".
OwnedFolder v_fs_utils_open_folder(const char *path);
// The next entry's name ("." and ".." included, in the system's order); at the end true with null.
// False with "Cannot read folder contents." or "Could not convert filename to unicode."; after the
// latter, the next call continues with the following entry.
bool v_fs_utils_next_folder_entry(DIR *listing, OwnedText &name);
// The same, but skips entries whose name cannot be converted, for callers that look for certain
// names. Null at the end, and when the folder cannot be read any further.
OwnedText v_fs_utils_next_convertible_folder_entry(DIR *listing);
// Closes; null is success. False with "Cannot close folder.".
bool v_fs_utils_close_folder(OwnedFolder listing);

// Creates a folder that only its owner can use (0700). False with "Cannot create folder.", also
// when the folder exists.
bool v_fs_utils_create_folder(const char *path);
// The same, but creates missing parents first.
bool v_fs_utils_create_folder_recursively(const char *path);
// Removes an empty folder; a missing one is success. False with "Cannot delete folder.".
bool v_fs_utils_delete_folder_if_exists(const char *path);
// Removes a file; a missing one is success. False with "Cannot unlink file.".
bool v_fs_utils_delete_file_if_exists(const char *path);
// Removes the rest of a failed write, a file or a link, if possible; a device stays. Sets no
// message, so that the one of the failed write is kept.
void v_fs_utils_discard_file(const char *path);

// Replaces the file at the path by one with the bytes of the text. The new file is written beside
// the old one, forced onto the disk and renamed, so that the old file stays as it was until the
// new one is whole. A link to a file is followed; the new file is readable only for users who could
// read the old one. False with the system's reason alone.
bool v_fs_utils_replace_file(const char *path, const char *text);

// Fills the record, following links; a missing path is success with every field zero. False with
// "Cannot get file status.".
bool v_fs_utils_get_info(const char *path, VFileInfo &info);
// True when nothing is at the path; a path whose status cannot be read counts as taken.
bool v_fs_utils_is_missing(const char *path);

// True when the record describes a regular file. The mode of a socket has both bits, that of a file
// and that of a folder.
inline bool v_fs_utils_is_regular_file(const VFileInfo &info) {
  return info.exists && info.is_file && !info.is_folder;
}

// Joins a folder and count parts: trailing "/" of the folder are cut, empty parts are skipped,
// parts are joined by one "/". A folder of only "/" counts as empty, so its parts make a relative
// path.
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
// In place: cuts the last entry and the run of "/" before it ("/a//b" becomes "/a", "/b" and "b"
// become "").
void v_fs_utils_strip_entry_name_from_path(char *path);
// In place: removes every trailing "/" ("/" becomes "").
void v_fs_utils_strip_ending_path_delimiters(char *path);
