#pragma once
// The records of a csv document as RFC 4180 has them, and as spreadsheets and people write them:
// any delimiter, lines that end with a carriage return, a line feed or both, and white space around
// quotation marks. Knows nothing of codesets. No library that the program links reads csv.

#include <cstddef>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

struct CsvField {
  std::string_view text; // without the quotation marks around it; borrowed
  std::size_t line;      // of the document where the field begins, from 1
};

// Fields refer to texts that the record owns, so it is moved, never copied.
struct CsvRecord {
  CsvRecord() = default;
  CsvRecord(CsvRecord &&) = default;
  CsvRecord &operator=(CsvRecord &&) = default;

  std::vector<CsvField> fields;      // at least one
  std::deque<std::string> unescaped; // the texts that have quotation marks inside
};

enum class CsvStep { record, end, fault };

// No spreadsheet has more columns, and no document can make a record much larger than itself.
constexpr std::size_t v_csv_maximum_fields = 16'384;

class CsvRecordReader {
public:
  // The document is borrowed. Its first line has the given number.
  CsvRecordReader(std::string_view document, char its_delimiter, std::size_t first_line);

  // Reads the next record into one whose former fields are dropped. After a fault the record ends
  // with the field that is at fault, and nothing can be read any more.
  CsvStep read(CsvRecord &record);
  // Says what is wrong with that field, in plain words (static).
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
