#pragma once
// Places in a table, for error messages.

#include <cstddef>
#include <string>

// The column name is ASCII; "" for a column without a name, null before the names are known and for
// columns beyond the last of them.
struct CsvPlace {
  std::size_t line;   // of the document, from 1
  std::size_t column; // from 0
  const char *column_name = nullptr;
};

// Sets the message (UTF-8) with the place in front of it: "Line 12, column 3 (sv): ...". Always
// returns false.
bool v_csv_fail_at(const CsvPlace &place, const std::string &message);
// The same with the message that is set already.
bool v_csv_fail_at(const CsvPlace &place);
