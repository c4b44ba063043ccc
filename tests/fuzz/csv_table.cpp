// Tables generated from the bytes, in all the forms that spreadsheets save: the reader gives the
// codeset that the cells say, or names the first cell that is at fault.

#include <algorithm>
#include <cstring>
#include <map>
#include <optional>
#include <utility>

#include "base/error.h"
#include "fuzz/fuzzing.h"
#include "fuzz/oracle/choices.h"
#include "fuzz/oracle/second_reader.h"
#include "support/values/remarks.h"
#include "tools/csv_reading.h"

namespace {

// A text as it is in the table, and as it is in a codeset (ISO-8859-1); null when none can hold it.
struct Text {
  const char *utf8;
  const char *latin1;
};

// Bytes of the choices that are used up give the first of each table.
constexpr Text texts[] = {
    {"a", "a"},
    {"", ""},
    {"b, c; d\te|f", "b, c; d e|f"},
    {"\"", "\""},
    {"\"quoted\" and \"\"", "\"quoted\" and \"\""},
    {" \t", ""},
    {"two\nlines", "two lines"},
    {"\r\n three \r lines\n", "three lines"},
    {"\xC3\xA5\xC3\xBF\xC2\xA0", "\xE5\xFF\xA0"},
    {"o\xCC\x88", "\xF6"},
    {"code", "code"},
    {"\xE2\x82\xAC", nullptr},
    {"a\xFF", nullptr},
    {"\x1F", nullptr},
};

constexpr Text codes[] = {{"1", "1"},         {"2", "2"},       {"10", "10"},
                          {"a ", "a"},        {"A", "A"},       {"x\ny", "x y"},
                          {"code", "code"},   {"name", "name"}, {"\xC3\xA5", "\xE5"},
                          {"a,\"b", "a,\"b"}, {"", ""},         {"&", "&"}};

constexpr const char *tags[] = {"sv", "en-uk", "de", "", "a,b;c", "\"", "name"};

struct Cell {
  Text text;
  std::size_t line = 0; // where it is in the document, from 1
};

struct Table {
  std::vector<std::string> columns; // tags, and "code" for the codes
  std::size_t code_column = 0;
  std::vector<std::vector<Cell>> lines; // those below the names of the columns
};

Table generate_table(Choices &choices) {
  Table table;
  std::map<std::string, bool> is_used;
  const unsigned column_count = 1 + choices.below(4);
  for (unsigned i = 0; i < column_count; i++) {
    const char *tag = choices.of(tags);
    if (!std::exchange(is_used[tag], true)) {
      table.columns.emplace_back(tag);
    }
  }
  table.code_column = choices.below(static_cast<unsigned>(table.columns.size()) + 1);
  // A first column "name" would be a label.
  if (table.columns.front() == "name") {
    table.code_column = 0;
  }
  table.columns.insert(table.columns.begin() + static_cast<std::ptrdiff_t>(table.code_column),
                       "code");
  const unsigned line_count = 1 + choices.below(6);
  for (unsigned i = 0; i < line_count; i++) {
    std::vector<Cell> &line = table.lines.emplace_back();
    // Now and then cells are missing at the end, or there is one too many.
    const std::size_t missing = choices.one_in(8) ? choices.below(3) : 1;
    for (std::size_t j = 0; j + missing < table.columns.size() + 1; j++) {
      line.push_back({j == table.code_column ? choices.of(codes) : choices.of(texts)});
    }
    if (line.empty()) {
      line.push_back({texts[1]});
    }
  }
  return table;
}

// How a table is written.
struct Style {
  char delimiter;
  const char *line_end;
  bool quotes_all;
  bool has_blanks; // around quotation marks
};

bool needs_quotes(const std::string &text, const Style &style) {
  return style.quotes_all || text.find_first_of(",;\t\"\r\n|") != std::string::npos;
}

std::string written(const std::string &text, const Style &style) {
  if (!needs_quotes(text, style)) {
    return text;
  }
  std::string escaped;
  for (const char byte : text) {
    escaped += byte == '"' ? "\"\"" : std::string(1, byte);
  }
  const char *blank = style.has_blanks ? " " : "";
  return blank + ("\"" + escaped + "\"") + blank;
}

// Each line feed, carriage return or pair of the two ends a line.
std::size_t count_line_ends(const std::string &text) {
  std::size_t count = 0;
  for (std::size_t i = 0; i < text.size(); i++) {
    count += text[i] == '\n' || (text[i] == '\r' && text[i + 1] != '\n');
  }
  return count;
}

// Writes the table behind the beginning of a document, and notes the line of each cell.
std::string write_table(Table &table, std::string document, const Style &style) {
  for (std::size_t i = 0; i < table.columns.size(); i++) {
    document += i == 0 ? "" : std::string(1, style.delimiter);
    document += written(table.columns[i], style);
  }
  document += style.line_end;
  std::size_t line_number = count_line_ends(document) + 1;
  for (std::vector<Cell> &line : table.lines) {
    for (std::size_t i = 0; i < line.size(); i++) {
      const std::string text = line[i].text.utf8;
      document += i == 0 ? "" : std::string(1, style.delimiter);
      document += written(text, style);
      line[i].line = line_number;
      line_number += count_line_ends(text);
    }
    document += style.line_end;
    line_number++;
  }
  return document;
}

std::string generate_document(Table &table, Choices &choices) {
  constexpr char delimiters[] = {',', ';', '\t', '|'};
  constexpr const char *line_ends[] = {"\r\n", "\n", "\r"};
  const Style style = {choices.of(delimiters), choices.of(line_ends), choices.one_in(2),
                       choices.one_in(2)};
  std::string document = choices.one_in(2) ? "\xEF\xBB\xBF" : "";
  if (style.delimiter == '|' || choices.one_in(2)) {
    document += std::string("sep=") + style.delimiter + style.line_end;
  }
  return write_table(table, document, style);
}

// ---- What the cells say -------------------------------------------------------------------------

struct Fault {
  std::size_t line;
  std::size_t column; // from 1
};

struct Reading {
  Remarks remarks;
  std::optional<Fault> fault;
};

// The fault of a line, or its remark, if it has one.
std::optional<Fault> read_line(const Table &table, const std::vector<Cell> &line,
                               Remarks &remarks) {
  const bool has_code = table.code_column < line.size();
  const std::string code = has_code ? line[table.code_column].text.latin1 : "";
  const Fault code_fault = {line[has_code ? table.code_column : line.size() - 1].line,
                            table.code_column + 1};
  Translations translations;
  for (std::size_t i = 0; i < line.size(); i++) {
    const Text &text = line[i].text;
    if (i == table.code_column || (text.latin1 != nullptr && *text.latin1 == '\0')) {
      continue;
    }
    if (text.latin1 == nullptr || i >= table.columns.size()) {
      return Fault{line[i].line, i + 1};
    }
    translations.emplace_back(table.columns[i], text.latin1);
  }
  if (code.empty() && translations.empty()) {
    return std::nullopt;
  }
  if (code.empty() || translations.empty() || code == "&") {
    return code_fault;
  }
  for (const auto &[other, description] : remarks) {
    if (other == code) {
      return code_fault;
    }
  }
  remarks.emplace_back(code, second_collect(translations));
  return std::nullopt;
}

Reading read_cells(const Table &table) {
  Reading reading;
  for (const std::vector<Cell> &line : table.lines) {
    reading.fault = read_line(table, line, reading.remarks);
    if (reading.fault) {
      return reading;
    }
  }
  if (reading.remarks.empty()) {
    reading.fault = Fault{table.lines.front().front().line - 1, table.code_column + 1};
  }
  std::sort(reading.remarks.begin(), reading.remarks.end(), [](const auto &a, const auto &b) {
    return v_remark_compare_codes(a.first.c_str(), b.first.c_str()) < 0;
  });
  return reading;
}

void compare(const Table &table, const std::string &document) {
  const Reading expected = read_cells(table);
  set_old_message();
  const OwnedCodeset codeset = v_csv_read_codeset(document);
  require((codeset == nullptr) == expected.fault.has_value(), "tables with a fault are refused");
  if (codeset) {
    require(remarks_of(codeset->remarks) == expected.remarks, "the remarks are those of the cells");
    return;
  }
  const std::string place = "Line " + std::to_string(expected.fault->line) + ", column " +
                            std::to_string(expected.fault->column);
  const char *message = v_error_get();
  require(g_str_has_prefix(message, place.c_str()) &&
              std::strchr(" :", message[place.size()]) != nullptr,
          "the message names the place of the first fault");
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  Choices choices(data, size);
  Table table = generate_table(choices);
  const std::string document = generate_document(table, choices);
  compare(table, document);
  return 0;
}
