#include "tools/csv_reading.h"

#include <cstring>
#include <iterator>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "base/error.h"
#include "base/text_encoding.h"
#include "base/whitespace.h"
#include "codeset/codeset_io.h"
#include "codeset_texts.h"
#include "csv_records.h"

namespace {

constexpr const char *code_name = "code";
constexpr char delimiters[] = {',', ';', '\t'};

// ---- The kind of the document -------------------------------------------------------------------

bool begins_with(std::string_view text, std::string_view beginning) {
  return text.substr(0, beginning.size()) == beginning;
}

// Every other byte of UTF-16 is zero as long as the text is Western European.
bool is_utf16(std::string_view document) {
  return begins_with(document, "\xFE\xFF") || begins_with(document, "\xFF\xFE") ||
         document.substr(0, 2).find('\0') != std::string_view::npos;
}

bool is_spreadsheet(std::string_view document) {
  return begins_with(document, "PK\x03\x04") || begins_with(document, "\xD0\xCF\x11\xE0");
}

// Null for a document that can be csv in UTF-8.
const char *find_wrong_kind(std::string_view document) {
  if (document.empty()) {
    return "The file is empty.";
  }
  if (is_utf16(document)) {
    return "The file is written in UTF-16, not in UTF-8. Save it from the spreadsheet as \"Text "
           "CSV\" with the character set Unicode (UTF-8).";
  }
  if (is_spreadsheet(document)) {
    return "The file is a spreadsheet, not csv. Open it in its program and save it as \"Text CSV\" "
           "with the character set Unicode (UTF-8).";
  }
  return nullptr;
}

// A document without its byte order mark and without a first line that names the delimiter.
struct Document {
  std::string_view text;
  std::size_t first_line = 1;
  char delimiter = '\0'; // none is named
};

bool can_delimit(char byte) { return byte == '\t' || (g_ascii_ispunct(byte) && byte != '"'); }

Document open_document(std::string_view text) {
  if (begins_with(text, "\xEF\xBB\xBF")) {
    text.remove_prefix(3);
  }
  constexpr std::size_t length = 5; // of "sep=;"
  const bool has_line = text.size() > length && (text[length] == '\r' || text[length] == '\n') &&
                        g_ascii_strncasecmp(text.data(), "sep=", 4) == 0 &&
                        can_delimit(text[length - 1]);
  if (!has_line) {
    return {text};
  }
  const std::size_t line_end = begins_with(text.substr(length), "\r\n") ? 2 : 1;
  return {text.substr(length + line_end), 2, text[length - 1]};
}

// ---- Faults -------------------------------------------------------------------------------------

// A place in the table. The name of its column is ASCII; null as long as columns have no names.
struct Place {
  std::size_t line;
  std::size_t column; // from 0
  const char *column_name = nullptr;
};

// Always false.
bool fail_at(const Place &place, const std::string &message) {
  std::string name;
  if (place.column_name != nullptr) {
    name = *place.column_name == '\0' ? " (no name)" : std::string(" (") + place.column_name + ")";
  }
  v_error_set_utf8_printf("Line %zu, column %zu%s: %s", place.line, place.column + 1, name.c_str(),
                          message.c_str());
  return false;
}

// Puts the place in front of the message that the error state holds.
bool fail_at(const Place &place) { return fail_at(place, std::string(v_error_get())); }

// The beginning of a text, in quotation marks.
std::string quote(const char *latin1_text) { return v_tools_quote_text(latin1_text).get(); }

// ---- The lines down to the column names ---------------------------------------------------------

std::string_view strip(std::string_view text) {
  while (!text.empty() && v_ascii_is_space(text.front())) {
    text.remove_prefix(1);
  }
  while (!text.empty() && v_ascii_is_space(text.back())) {
    text.remove_suffix(1);
  }
  return text;
}

bool is_word(const CsvField &field, std::string_view word) {
  const std::string_view text = strip(field.text);
  return text.size() == word.size() &&
         g_ascii_strncasecmp(text.data(), word.data(), word.size()) == 0;
}

enum class Label { name, author, version };
constexpr const char *labels[] = {"name", "author", "version"};

std::optional<Label> find_label(const CsvField &field) {
  for (std::size_t i = 0; i < std::size(labels); i++) {
    if (is_word(field, labels[i])) {
      return static_cast<Label>(i);
    }
  }
  return std::nullopt;
}

bool is_blank(const CsvRecord &record) {
  for (const CsvField &field : record.fields) {
    if (!strip(field.text).empty()) {
      return false;
    }
  }
  return true;
}

// The index of the column of the codes.
std::optional<std::size_t> find_code_column(const CsvRecord &record) {
  for (std::size_t i = 0; i < record.fields.size(); i++) {
    if (is_word(record.fields[i], code_name)) {
      return i;
    }
  }
  return std::nullopt;
}

// How the lines look with one delimiter; the later, the more likely it is the right one.
enum class Likelihood {
  faulty,
  without_code,
  label_beside_code,
  code_alone,
  faulty_beside_code,
  whole
};

// The lines down to the column names, with one delimiter.
struct Head {
  CsvRecordReader reader; // of the lines below
  std::vector<CsvRecord> lines_above = {};
  CsvRecord column_names = {}; // unless it is without code; after a fault, the fields up to it
  std::size_t code_column = 0;
  std::size_t line_of_label = 0; // the line with a label beside a code, which can be column names
  Likelihood likelihood = Likelihood::without_code;
};

Likelihood judge(const Head &head, bool is_faulty, bool has_code) {
  if (is_faulty) {
    return has_code ? Likelihood::faulty_beside_code : Likelihood::faulty;
  }
  return head.column_names.fields.size() > 1 ? Likelihood::whole : Likelihood::code_alone;
}

Head read_head(const Document &document, char delimiter) {
  Head head{CsvRecordReader(document.text, delimiter, document.first_line)};
  CsvStep step = CsvStep::record;
  // Each label occurs at most once, so the column names are close.
  while (step == CsvStep::record && head.lines_above.size() <= std::size(labels)) {
    CsvRecord record;
    step = head.reader.read(record);
    if (step == CsvStep::end || (step == CsvStep::record && is_blank(record))) {
      continue;
    }
    const std::optional<std::size_t> code_column = find_code_column(record);
    const bool is_labelled = find_label(record.fields.front()).has_value();
    if (step == CsvStep::fault || (code_column && !is_labelled)) {
      head.column_names = std::move(record);
      head.code_column = code_column.value_or(0);
      head.likelihood = judge(head, step == CsvStep::fault, code_column.has_value());
      break;
    }
    if (code_column) {
      head.line_of_label = record.fields.front().line;
      head.likelihood = Likelihood::label_beside_code;
    }
    head.lines_above.push_back(std::move(record));
  }
  return head;
}

Head find_head(const Document &document) {
  if (document.delimiter != '\0') {
    return read_head(document, document.delimiter);
  }
  Head best = read_head(document, delimiters[0]);
  for (const char delimiter : {delimiters[1], delimiters[2]}) {
    Head head = read_head(document, delimiter);
    if (head.likelihood > best.likelihood) {
      best = std::move(head);
    }
  }
  return best;
}

bool fail_without_column_names(const Document &document) {
  return fail_at(
      {document.first_line, 0},
      "no column is named \"code\". The first line of the table has the names of the "
      "columns, with commas, semicolons or tabs between them: \"code\" and a language tag "
      "for each other column, as in \"code,en-uk,sv\".");
}

// ---- The table ----------------------------------------------------------------------------------

class TableReader {
public:
  explicit TableReader(Head head_of_table)
      : head(std::move(head_of_table)), code_column(head.code_column) {}

  OwnedCodeset read();

private:
  bool read_column_names();
  bool read_column_name(std::size_t column);
  bool read_line_above(const CsvRecord &record);
  bool set_labelled_text(Label label, const Place &place, OwnedLangstr text);
  bool read_remarks();
  bool read_remark(const CsvRecord &record);
  void set_code_twice_error() const;
  bool read_code(OwnedText &code, const CsvRecord &record) const;
  bool read_translations(VLangstrCollection &translations, const CsvRecord &record);
  bool read_translation(VLangstrCollection &translations, const CsvField &field,
                        std::size_t column);
  bool accept_column(const Place &place);
  Place place_of(const CsvField &field, std::size_t column) const;
  Place place_of_code(const CsvRecord &record) const;

  Head head;
  std::size_t code_column;
  std::vector<OwnedText> column_names; // ASCII, normalised
  std::unordered_map<std::string_view, std::size_t> columns_of_names;
  std::optional<std::size_t> nameless_column; // the one that has texts
  std::optional<std::size_t> lines_of_labels[std::size(labels)];
  OwnedCodeset codeset = v_codeset_new();
  VRemarkCollection remarks;
  // Code and line of each remark, in the order of the lines. The remarks own the codes.
  std::vector<std::pair<const char *, std::size_t>> lines_of_codes;
};

OwnedCodeset TableReader::read() {
  if (!read_column_names()) {
    return nullptr;
  }
  for (const CsvRecord &record : head.lines_above) {
    if (!read_line_above(record)) {
      return nullptr;
    }
  }
  const bool are_readable = read_remarks();
  // Sorting finds out about equal codes by the way. They are above the line that cannot be read.
  if (!v_remark_list_sort_collection(remarks)) {
    set_code_twice_error();
    return nullptr;
  }
  if (!are_readable) {
    return nullptr;
  }
  codeset->remarks = std::move(remarks.list);
  return std::move(codeset);
}

bool TableReader::read_column_names() {
  const std::vector<CsvField> &fields = head.column_names.fields;
  for (std::size_t i = 0; i < fields.size(); i++) {
    if (!read_column_name(i)) {
      return false;
    }
  }
  return fields.size() > 1 ||
         fail_at({fields.front().line, 0, code_name},
                 "there is no other column. Add one for each language, with its tag as the name, "
                 "for example \"sv\" or \"en-uk\".");
}

// More than one column without name is allowed, because spreadsheets save empty columns.
bool TableReader::read_column_name(std::size_t column) {
  const CsvField &field = head.column_names.fields[column];
  OwnedText name = column == code_column ? copy_text(code_name) : v_tools_make_tag(field.text);
  if (!name) {
    return fail_at({field.line, column});
  }
  const bool is_code = g_ascii_strcasecmp(name.get(), code_name) == 0;
  const std::string_view key = is_code ? code_name : name.get();
  const auto [same, is_new] = columns_of_names.emplace(key, column);
  if (!is_new && *name != '\0') {
    return fail_at({field.line, column}, "column " + std::to_string(same->second + 1) +
                                             " is named " + quote(name.get()) +
                                             " as well. Keep one of the two.");
  }
  column_names.push_back(std::move(name));
  return true;
}

bool TableReader::read_line_above(const CsvRecord &record) {
  const Place place = place_of_code(record);
  const std::optional<Label> label =
      code_column < record.fields.size() ? find_label(record.fields[code_column]) : std::nullopt;
  if (!label) {
    return fail_at(place, "only lines with \"name\", \"author\" or \"version\" in the column "
                          "\"code\" can be above the names of the columns. Delete this line.");
  }
  std::optional<std::size_t> &line = lines_of_labels[static_cast<std::size_t>(*label)];
  if (line) {
    return fail_at(place,
                   "line " + std::to_string(*line) + " is labelled the same. Keep one of the two.");
  }
  line = place.line;
  VLangstrCollection texts;
  return read_translations(texts, record) &&
         set_labelled_text(*label, place, std::move(texts.langstr));
}

bool TableReader::set_labelled_text(Label label, const Place &place, OwnedLangstr text) {
  if (label == Label::name) {
    codeset->name = std::move(text);
  } else if (label == Label::author) {
    codeset->author = std::move(text);
  } else if (text && text->next) {
    return fail_at(place, "a codeset has one version, in no language. Delete the others.");
  } else if (text) {
    codeset->version = std::move(text->text);
  }
  return true;
}

bool TableReader::read_remarks() {
  CsvRecord record;
  CsvStep step = CsvStep::record;
  while ((step = head.reader.read(record)) == CsvStep::record) {
    if (!read_remark(record)) {
      return false;
    }
  }
  if (step == CsvStep::fault) {
    const std::size_t column = record.fields.size() - 1;
    return fail_at(place_of(record.fields.back(), column), head.reader.fault());
  }
  const std::size_t line = head.column_names.fields[code_column].line;
  return !v_remark_list_is_empty(remarks.list.get()) ||
         fail_at({line, code_column, code_name}, "no codes are below.");
}

bool TableReader::read_remark(const CsvRecord &record) {
  OwnedRemark remark = v_remark_new();
  VLangstrCollection description;
  if (!read_code(remark->code, record) || !read_translations(description, record)) {
    return false;
  }
  remark->description = std::move(description.langstr);
  const Place place = place_of_code(record);
  if (*remark->code == '\0') {
    return !remark->description || fail_at(place, "the text in this line has no code.");
  }
  if (!remark->description) {
    return fail_at(place, "the code " + quote(remark->code.get()) +
                              " has no text in any language. Write one, or delete the line.");
  }
  if (!v_codeset_io_can_code_be_read_back(remark->code.get())) {
    return fail_at(place, "the code " + quote(remark->code.get()) +
                              " has \"&\", \"<\" or \"]]>\", and a file with such a code cannot be "
                              "read. Change the code.");
  }
  lines_of_codes.emplace_back(remark->code.get(), place.line);
  v_remark_list_collect_remark(remarks, std::move(remark));
  return true;
}

// Names the first code that a line above has already.
void TableReader::set_code_twice_error() const {
  std::unordered_map<std::string_view, std::size_t> lines;
  for (const auto &[code, line] : lines_of_codes) {
    const auto [same, is_new] = lines.emplace(code, line);
    if (!is_new) {
      fail_at({line, code_column, code_name}, "the code " + quote(code) + " is in line " +
                                                  std::to_string(same->second) +
                                                  " already. Change one of the two codes.");
      return;
    }
  }
}

// "" when the line has no code.
bool TableReader::read_code(OwnedText &code, const CsvRecord &record) const {
  const std::string_view text =
      code_column < record.fields.size() ? record.fields[code_column].text : std::string_view();
  code = v_tools_make_text(text);
  return code || fail_at(place_of_code(record));
}

bool TableReader::read_translations(VLangstrCollection &translations, const CsvRecord &record) {
  for (std::size_t i = 0; i < record.fields.size(); i++) {
    const CsvField &field = record.fields[i];
    if (i != code_column && !field.text.empty() && !read_translation(translations, field, i)) {
      return false;
    }
  }
  return true;
}

bool TableReader::read_translation(VLangstrCollection &translations, const CsvField &field,
                                   std::size_t column) {
  const Place place = place_of(field, column);
  OwnedText text = v_tools_make_text(field.text);
  if (!text) {
    return fail_at(place);
  }
  if (*text == '\0') {
    return true;
  }
  if (!accept_column(place)) {
    return false;
  }
  v_langstr_collect_translation(translations, copy_text(place.column_name), std::move(text));
  return true;
}

// False when no text can be in the column.
bool TableReader::accept_column(const Place &place) {
  if (place.column_name == nullptr) {
    return fail_at(place, "the table has only " + std::to_string(column_names.size()) +
                              " columns. Put a text with commas, semicolons or tabs in quotation "
                              "marks.");
  }
  if (*place.column_name != '\0') {
    return true;
  }
  const std::size_t other = nameless_column.value_or(place.column);
  nameless_column = other;
  return other == place.column ||
         fail_at(place, "column " + std::to_string(other + 1) +
                            " has no name either. Name the columns by their languages.");
}

Place TableReader::place_of(const CsvField &field, std::size_t column) const {
  const bool has_name = column < column_names.size();
  return {field.line, column, has_name ? column_names[column].get() : nullptr};
}

Place TableReader::place_of_code(const CsvRecord &record) const {
  const bool has_field = code_column < record.fields.size();
  return place_of(has_field ? record.fields[code_column] : record.fields.back(), code_column);
}

} // namespace

OwnedCodeset v_csv_read_codeset(std::string_view document) {
  if (const char *message = find_wrong_kind(document)) {
    v_error_set(message);
    return nullptr;
  }
  const Document opened = open_document(document);
  Head head = find_head(opened);
  switch (head.likelihood) {
  case Likelihood::without_code:
    fail_without_column_names(opened);
    return nullptr;
  case Likelihood::label_beside_code:
    fail_at({head.line_of_label, 0},
            "a line that begins with this word is for the whole codeset, so it cannot name the "
            "columns. Make \"code\" the first column, and delete those that are of no language.");
    return nullptr;
  case Likelihood::faulty:
  case Likelihood::faulty_beside_code:
    fail_at({head.column_names.fields.back().line, head.column_names.fields.size() - 1},
            head.reader.fault());
    return nullptr;
  case Likelihood::code_alone:
  case Likelihood::whole:
    break;
  }
  return TableReader(std::move(head)).read();
}
