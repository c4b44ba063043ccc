#pragma once
// The lines of a table down to the names of its columns.

#include <cstddef>
#include <optional>
#include <vector>

#include "csv_document.h"
#include "csv_records.h"

// The name of the column of the codes.
constexpr const char *v_csv_code_name = "code";

// The subject of a line above the column names.
enum class CsvLabel { name, author, version };
constexpr std::size_t v_csv_label_count = 3;

struct CsvHead {
  CsvRecordReader reader; // of the lines below
  std::vector<CsvRecord> lines_above = {};
  CsvRecord column_names = {};
  std::size_t code_column = 0;
};

// The label that the field is, without regard to case and the white space around it.
std::optional<CsvLabel> v_csv_find_label(const CsvField &field);
// True when all fields are empty or white space.
bool v_csv_is_blank(const CsvRecord &record);

// Reads the lines with the delimiter that gives a column "code". Null with what is wrong and where.
std::optional<CsvHead> v_csv_read_head(const CsvDocument &document);
