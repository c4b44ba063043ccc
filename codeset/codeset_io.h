#pragma once
// Codeset files: XML in ISO-8859-1, read leniently and written in one exact form. Everything that
// the editing window can produce round-trips, except codes with "&", "<" or "]]>", because codes
// are written unescaped.

#include <cstdio>
#include <string>

#include "base/fs_utils.h"
#include "codeset/codeset.h"

// Reads a file (path in UTF-8) and sorts the remarks in remark code order. Null with "Error loading
// codeset file." before the message of v_xml_read_root_children, "Invalid codeset file." before
// "Missing root element in XML tree.", "Not a codeset file.", or "Error parsing codeset file."
// before the first fault: one of the name, else of the author, the version, or a remark.
OwnedCodeset v_codeset_io_read_from_file(const char *path);
// The same for the file of that name in the workspace folder.
OwnedCodeset v_codeset_io_read_from_file_in_workspace(const char *workspace_folder_path,
                                                      const char *file_name);

// Replaces the file at the path (UTF-8) and keeps its permissions. Not atomic: the old file is
// deleted before the new one is written. False with "Cannot access file." before the reason, and
// the old file is unchanged; or with "Cannot create file." before the reason, "File I/O error when
// writing to file." or "Cannot close file." before the reason, and there is no file at the path:
// the codeset in memory is then the only copy.
bool v_codeset_io_write_to_file(const VCodeset *codeset, const char *path);
// The same with explicit permissions for the new file, for another attempt after a failed one, when
// there is no old file to take them from.
bool v_codeset_io_write_to_file_with_permissions(const VCodeset *codeset, const char *path,
                                                 const VFilePermissions &permissions);
// False when the code has "&", "<" or "]]>": codes are written unescaped, so a file written by the
// two functions above would be rejected or read with another code.
bool v_codeset_io_can_code_be_read_back(const char *code);
// True when all codes can be read back.
bool v_codeset_io_can_be_read_back(const VCodeset *codeset);

// Writes a codeset to an open file, and flushes it, in a form that can always be read back if there
// is a remark: codes are escaped, and a codeset without a name gets the substitute (ISO-8859-1, not
// only whitespace) as its untagged name. False with "File I/O error when writing to file.".
bool v_codeset_io_write_readably(std::FILE *file, const VCodeset *codeset,
                                 const char *substitute_name);
// A name (ISO-8859-1) for a codeset without one: the file name (UTF-8) with "?" for characters that
// are outside ISO-8859-1 or not printable.
std::string v_codeset_io_make_substitute_name(const char *file_name);
