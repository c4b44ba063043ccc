#pragma once
// Places in a table, for messages about what is wrong there.

#include <cstddef>
#include <string>

// A place in the table. The name of its column is ASCII; null as long as columns have no names.
struct CsvPlace {
  std::size_t line;
  std::size_t column; // from 0
  const char *column_name = nullptr;
};

// Sets the message (UTF-8) with the place in front of it: "Line 12, column 3 (sv): ...". Always
// false.
bool v_csv_fail_at(const CsvPlace &place, const std::string &message);
// The same with the message that the error state holds.
bool v_csv_fail_at(const CsvPlace &place);
