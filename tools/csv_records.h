#pragma once
// Reads the records of a csv document as defined by RFC 4180, and variants that spreadsheets and
// people write: any delimiter, lines that end with a carriage return, a line feed or both, and
// whitespace around quotation marks. Knows nothing of codesets. No library that the program uses
// reads csv.

#include <cstddef>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

struct CsvField {
  std::string_view text; // without the quotation marks around it; borrowed
  std::size_t line;      // of the document where the field begins, from 1
};

// Fields may refer to texts that the record owns, so records are moved, never copied.
struct CsvRecord {
  CsvRecord() = default;
  CsvRecord(CsvRecord &&) = default;
  CsvRecord &operator=(CsvRecord &&) = default;

  std::vector<CsvField> fields;      // at least one
  std::deque<std::string> unescaped; // texts with escaped quotation marks, unescaped
};

enum class CsvStep { record, end, fault };

// No spreadsheet has more columns. Limits the memory that a record takes.
constexpr std::size_t v_csv_maximum_fields = 16'384;

class CsvRecordReader {
public:
  // The document is borrowed. first_line: the number of its first line.
  CsvRecordReader(std::string_view document, char its_delimiter, std::size_t first_line);

  // Replaces the contents of record by the next record. After a fault, the faulty field is the last
  // one of the record, and every further call returns CsvStep::fault with an empty record.
  CsvStep read(CsvRecord &record);
  // A sentence that says what is wrong with that field (static); null before a fault.
  const char *fault() const { return fault_message; }

private:
  enum class FieldEnd { delimiter, record, fault };

  FieldEnd read_field(CsvRecord &record);
  void read_plain_field(CsvField &field);
  bool read_quoted_field(CsvField &field, std::deque<std::string> &unescaped);
  std::string_view read_to_quote();
  FieldEnd end_field();
  void skip_blanks();
  void skip_line_end();
  void skip_counting_lines(const char *to);
  bool is_at(char byte) const { return at != end && *at == byte; }
  bool is_at_field_end() const;
  bool set_fault(const char *message);

  const char *at;
  const char *end;
  char delimiter;
  std::size_t line;
  const char *fault_message = nullptr;
};
