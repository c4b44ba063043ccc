#include "csv_records.h"

#include <algorithm>

CsvRecordReader::CsvRecordReader(std::string_view document, char its_delimiter,
                                 std::size_t first_line)
    : at(document.data()), end(document.data() + document.size()), delimiter(its_delimiter),
      line(first_line) {}

CsvStep CsvRecordReader::read(CsvRecord &record) {
  record.fields.clear();
  record.unescaped.clear();
  if (at == end || fault_message != nullptr) {
    return fault_message == nullptr ? CsvStep::end : CsvStep::fault;
  }
  FieldEnd field_end = FieldEnd::delimiter;
  while (field_end == FieldEnd::delimiter) {
    field_end = read_field(record);
  }
  return field_end == FieldEnd::record ? CsvStep::record : CsvStep::fault;
}

CsvRecordReader::FieldEnd CsvRecordReader::read_field(CsvRecord &record) {
  CsvField &field = record.fields.emplace_back(CsvField{{}, line});
  if (record.fields.size() > v_csv_maximum_fields) {
    set_fault("this line has more columns than a spreadsheet can have.");
    return FieldEnd::fault;
  }
  const char *start = at;
  skip_blanks();
  if (!is_at('"')) {
    at = start;
    read_plain_field(field);
  } else if (!read_quoted_field(field, record.unescaped)) {
    return FieldEnd::fault;
  }
  return end_field();
}

// A quotation mark is an ordinary character in a field that does not begin with one.
void CsvRecordReader::read_plain_field(CsvField &field) {
  const char *start = at;
  at = std::find_if(
      at, end, [this](char byte) { return byte == delimiter || byte == '\n' || byte == '\r'; });
  field.text = {start, at};
}

bool CsvRecordReader::read_quoted_field(CsvField &field, std::deque<std::string> &unescaped) {
  at++;
  field.text = read_to_quote();
  std::string *joined = nullptr; // the unescaped text, from the first quotation mark on
  while (at != end && end - at > 1 && at[1] == '"') {
    if (joined == nullptr) {
      joined = &unescaped.emplace_back(field.text);
    }
    at += 2;
    joined->append("\"").append(read_to_quote());
  }
  if (joined != nullptr) {
    field.text = *joined;
  }
  if (at == end) {
    return set_fault("the quotation mark at the beginning of this text has no closing one. Add it, "
                     "and write each quotation mark inside the text twice.");
  }
  at++;
  skip_blanks();
  return is_at_field_end() ||
         set_fault("there is text after the closing quotation mark. Write each quotation mark "
                   "inside the text twice.");
}

// Moves to the next quotation mark, or to the end, and returns the text before it.
std::string_view CsvRecordReader::read_to_quote() {
  const char *start = at;
  skip_counting_lines(std::find(at, end, '"'));
  return {start, at};
}

CsvRecordReader::FieldEnd CsvRecordReader::end_field() {
  if (is_at(delimiter)) {
    at++;
    return FieldEnd::delimiter;
  }
  if (at != end) {
    skip_line_end();
  }
  return FieldEnd::record;
}

void CsvRecordReader::skip_blanks() {
  while (at != end && (*at == ' ' || *at == '\t') && *at != delimiter) {
    at++;
  }
}

void CsvRecordReader::skip_line_end() {
  at += *at == '\r' && end - at > 1 && at[1] == '\n' ? 2 : 1;
  line++;
}

void CsvRecordReader::skip_counting_lines(const char *to) {
  while (at != to) {
    if (*at == '\r' || *at == '\n') {
      skip_line_end();
    } else {
      at++;
    }
  }
}

bool CsvRecordReader::is_at_field_end() const {
  return at == end || *at == delimiter || *at == '\n' || *at == '\r';
}

bool CsvRecordReader::set_fault(const char *message) {
  fault_message = message;
  return false;
}
