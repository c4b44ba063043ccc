#pragma once
// Recognises files that are not csv, and skips a byte order mark and a "sep=" line. Knows nothing
// of tables.

#include <cstddef>
#include <string_view>

// A document without its byte order mark and without a first line like "sep=;".
struct CsvDocument {
  std::string_view text;      // borrowed
  std::size_t first_line = 1; // number of the first line of text
  char delimiter = '\0';      // '\0' when the document does not declare one
};

// Null for a document that may be csv in UTF-8, else a sentence that says what it is (static).
const char *v_csv_find_wrong_kind(std::string_view document);

CsvDocument v_csv_open_document(std::string_view document);
