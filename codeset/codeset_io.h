#pragma once
// Codeset files: XML in ISO-8859-1, read tolerantly and written in one exact form. What the editing
// window can produce reads back equal, codes with "&", "<" or "]]>" excepted: codes are written as
// they are.

#include <cstdio>

#include "base/fs_utils.h"
#include "codeset/codeset.h"

// Reads a file (path in UTF-8); the remarks come in remark code order. Null with "Error loading
// codeset file." before the parser's report, "Invalid codeset file.", "Not a codeset file.", or
// "Error parsing codeset file." before what is wrong.
OwnedCodeset v_codeset_io_read_from_file(const char *path);
// The same for a file of the given name in the given folder of a workspace.
OwnedCodeset v_codeset_io_read_from_file_in_workspace(const char *workspace_folder_path,
                                                      const char *file_name);

// Replaces the file at the path (UTF-8), which keeps its permissions. False with "Cannot access
// file." before the reason, and what is at the path stays; or with "Cannot create file." before the
// reason, "File I/O error when writing to file." or "Cannot close file." before the reason, and no
// file is left at the path. The old file is gone before the new one is written: the codeset in
// memory is what is tried again with.
bool v_codeset_io_write_to_file(const VCodeset *codeset, const char *path);
// The same with permissions for the new file, which outlast an attempt that failed: then the old
// file has none any more.
bool v_codeset_io_write_to_file_with_permissions(const VCodeset *codeset, const char *path,
                                                 const VFilePermissions &permissions);
// Whether the file that these two write reads back equal. False when a code has "&", "<" or "]]>".
bool v_codeset_io_can_be_read_back(const VCodeset *codeset);

// Writes a codeset to an open file, and flushes it, in a form that can always be read again as long
// as there is a remark: codes are escaped, and a codeset without name gets the substitute
// (ISO-8859-1, not only white space) as an untagged one. False with "File I/O error when writing to
// file.".
bool v_codeset_io_write_readably(std::FILE *file, const VCodeset *codeset,
                                 const char *substitute_name);
