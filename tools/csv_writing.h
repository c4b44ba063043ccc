#pragma once
// Writes a codeset as a table for spreadsheets: csv by RFC 4180, that v_csv_read_codeset reads.

#include "base/text_buffer.h"
#include "codeset/codeset.h"

// The table in UTF-8, each line with a carriage return and a line feed at its end: a line with the
// names of the columns, "code" and the tags of v_tools_collect_languages, then a line for each
// remark in remark code order. with_header: above them the lines of the name, the author and the
// version, as far as there are any, with their labels in the first column; the version is in the
// second. A text with a comma, semicolon, tab or quotation mark is in quotation marks, so that no
// program takes another delimiter for that of the table.
OwnedUtf8String v_csv_write_codeset(const VCodeset *codeset, bool with_header);
