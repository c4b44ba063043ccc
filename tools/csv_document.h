#pragma once
// Opens a csv file: recognises other kinds of file and skips a byte order mark. Knows nothing of
// tables.

#include <cstddef>
#include <string_view>

// A document without its byte order mark and without a first line that names the delimiter.
struct CsvDocument {
  std::string_view text; // borrowed
  std::size_t first_line = 1;
  char delimiter = '\0'; // none is named
};

// Null for a document that can be csv in UTF-8, else a sentence that says what it is (static).
const char *v_csv_find_wrong_kind(std::string_view document);

CsvDocument v_csv_open_document(std::string_view document);
