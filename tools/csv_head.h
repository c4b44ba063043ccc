#pragma once
// The lines of a table up to and including the column names.

#include <cstddef>
#include <optional>
#include <vector>

#include "csv_document.h"
#include "csv_records.h"

// The name of the column that holds the codes.
constexpr const char *v_csv_code_name = "code";

// The label of a line above the column names.
enum class CsvLabel { name, author, version };
constexpr std::size_t v_csv_label_count = 3;

struct CsvHead {
  CsvRecordReader reader; // at the first line below the column names
  std::vector<CsvRecord> lines_above = {};
  CsvRecord column_names = {};
  std::size_t code_column = 0;
};

// The label in the field, ignoring case and surrounding whitespace.
std::optional<CsvLabel> v_csv_find_label(const CsvField &field);
// True when all fields are empty or whitespace.
bool v_csv_is_blank(const CsvRecord &record);

// Reads the lines with the delimiter that yields a column "code". Null with a message about
// the fault and its place.
std::optional<CsvHead> v_csv_read_head(const CsvDocument &document);
