#pragma once
// Reads and writes the files given on the command line: a path in the file system's encoding, or
// "-" for standard input and standard output. Functions that fail set a message (base/error.h).

#include <string>
#include <string_view>

#include "codeset/codeset.h"

enum class Overwriting { refused, allowed };

// True for "-" and null.
bool v_tools_is_standard_stream(const char *file);

// The name of an output in messages: the file, or "standard output" for "-" and null.
const char *v_tools_name_output(const char *file);

// The file name without its folders and its extension, in UTF-8. "" for a standard stream, for
// ".csv", and for a name that cannot be converted.
std::string v_tools_get_bare_name(const char *file);

// True when writing the output (null for standard output) would replace the source file, even
// through symbolic links.
bool v_tools_is_source(const char *output, const char *source);

// Reads a codeset as the window does. Null with the message of v_codeset_io_read_from_file.
// Standard input and named pipes are first copied to a temporary file; null also with the message
// of v_tools_read_text or of PlacedFile.
OwnedCodeset v_tools_read_codeset(const char *file);

// Reads all bytes, without reporting progress. False with "Cannot open file." before the reason, or
// with "File I/O error when reading file.".
bool v_tools_read_text(const char *file, std::string &text);

// Writes the bytes; null is standard output as well. A file is replaced atomically: the path has
// the old file or the new one, never part of one. Symbolic links are followed, and a file that is
// replaced keeps its permissions. False with the messages of PlacedFile, or with "File I/O error
// when writing to file." before the system's reason.
bool v_tools_write_text(const char *file, std::string_view text, Overwriting overwriting);

// Writes the bytes to standard output and reports a failure itself (tools/report.h).
bool v_tools_print(std::string_view text);

// Writes a codeset file in the program's own format. The file is read back before it replaces
// anything: false with "The written file does not read back as it should." when the result is
// another codeset, else with a message of v_tools_write_text,
// v_codeset_io_write_to_file_with_permissions or v_codeset_io_read_from_file.
bool v_tools_write_codeset(const VCodeset *codeset, const char *file, Overwriting overwriting);

// True when all texts and their order are the same.
bool v_tools_codesets_are_equal(const VCodeset *a, const VCodeset *b);
