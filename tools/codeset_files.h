#pragma once
// Reads and writes the files that the user names: a path in the file system's encoding, or "-" for
// standard input and standard output. Failing functions leave a message (base/error.h).

#include <string>
#include <string_view>

#include "codeset/codeset.h"

enum class Overwriting { refused, allowed };

// True for "-" and null.
bool v_tools_is_standard_stream(const char *file);

// The name of an output in messages: the file, or "standard output" for "-" and null.
const char *v_tools_name_output(const char *file);

// The name of a file without its folders and its ending, in UTF-8. "" for a standard stream, for
// ".csv", and for a name that cannot be converted.
std::string v_tools_get_bare_name(const char *file);

// True when writing the output (null for standard output) would replace the file that is read,
// whatever links lead to it.
bool v_tools_is_source(const char *output, const char *source);

// Reads a codeset as the window does. Null with the message of v_codeset_io_read_from_file, or with
// those of v_tools_read_text for standard input and named pipes, which are copied to a temporary
// file first.
OwnedCodeset v_tools_read_codeset(const char *file);

// Reads all bytes, without a report of the progress. False with "Cannot open file." before the
// reason, or "File I/O error when reading file.".
bool v_tools_read_text(const char *file, std::string &text);

// Writes the bytes; null is standard output as well. A file is written beside its place and put
// there when it is whole and on the disk, so that the path has the old file or the new one, never a
// part of one. A link to a file is followed, and the file keeps its permissions. False with "The
// file exists already; --force replaces it." unless that is allowed, "Not a regular file.", or
// the system's reason.
bool v_tools_write_text(const char *file, std::string_view text, Overwriting overwriting);

// Writes the bytes to standard output and reports a failure itself (tools/report.h).
bool v_tools_print(std::string_view text);

// Writes a codeset file in the program's own form. It is read back before it is put in its place:
// false with "The written file does not read back as it should." when that gives another codeset,
// else with the messages of v_tools_write_text, of writing and of reading.
bool v_tools_write_codeset(const VCodeset *codeset, const char *file, Overwriting overwriting);

// True when all texts and their order are the same.
bool v_tools_codesets_are_equal(const VCodeset *a, const VCodeset *b);
