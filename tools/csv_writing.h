#pragma once
// Writes a codeset as a table for spreadsheets: RFC 4180 csv that v_csv_read_codeset can read.

#include "base/text_buffer.h"
#include "codeset/codeset.h"

// Returns the table in UTF-8, with CRLF line ends: a line with the column names ("code" and the
// tags of v_tools_collect_languages), then a line for each remark in remark code order.
// with_header: above these, lines for the name, author and version if they are set, with their
// labels in the first column and the version in the second. Texts with a comma, semicolon, tab,
// quotation mark or line end are quoted, so that programs that guess the delimiter guess the right
// one.
OwnedUtf8String v_csv_write_codeset(const VCodeset *codeset, bool with_header);
