#pragma once
// Codeset files: XML in ISO-8859-1, read tolerantly and written in one exact form. Everything that
// the editing window can produce reads back equal, except codes with "&", "<" or "]]>", because
// codes are written unescaped.

#include <cstdio>
#include <string>

#include "base/fs_utils.h"
#include "codeset/codeset.h"

// Reads a file (path in UTF-8) and sorts the remarks in remark code order. Null with "Error loading
// codeset file." before the message of v_xml_read_root_children, "Invalid codeset file." before
// "Missing root element in XML tree.", "Not a codeset file.", or "Error parsing codeset file."
// before the first fault: one of the name, else of the author, the version, or a remark.
OwnedCodeset v_codeset_io_read_from_file(const char *path);
// The same for a file of the given name in the given folder of a workspace.
OwnedCodeset v_codeset_io_read_from_file_in_workspace(const char *workspace_folder_path,
                                                      const char *file_name);

// Replaces the file at the path (UTF-8), which keeps its permissions. False with "Cannot access
// file." before the reason, and the path is unchanged; or with "Cannot create file." before the
// reason, "File I/O error when writing to file." or "Cannot close file." before the reason, and no
// file is left at the path. The old file is deleted before the new one is written, so after a
// failure the codeset in memory is the only copy.
bool v_codeset_io_write_to_file(const VCodeset *codeset, const char *path);
// The same with given permissions for the new file, for a second attempt after one that failed:
// there is no old file then to take them from.
bool v_codeset_io_write_to_file_with_permissions(const VCodeset *codeset, const char *path,
                                                 const VFilePermissions &permissions);
// False when the code has "&", "<" or "]]>": codes are written unescaped, so the file that these
// two functions write would be rejected or have another code.
bool v_codeset_io_can_code_be_read_back(const char *code);
// True when that is true for all codes.
bool v_codeset_io_can_be_read_back(const VCodeset *codeset);

// Writes a codeset to an open file, and flushes it, in a form that can always be read again as long
// as there is a remark: codes are escaped, and a codeset without name gets the substitute
// (ISO-8859-1, not only white space) as an untagged one. False with "File I/O error when writing to
// file.".
bool v_codeset_io_write_readably(std::FILE *file, const VCodeset *codeset,
                                 const char *substitute_name);
// A name for a codeset without one (ISO-8859-1): the file name (UTF-8) with "?" for characters
// outside ISO-8859-1 and for those that a codeset cannot hold.
std::string v_codeset_io_make_substitute_name(const char *file_name);
