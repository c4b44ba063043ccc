#include "tools/csv_reading.h"

#include <cstring>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "base/error.h"
#include "base/text_encoding.h"
#include "codeset/codeset_io.h"
#include "codeset_texts.h"
#include "csv_head.h"
#include "csv_place.h"

namespace {

// The beginning of a text, in quotation marks.
std::string quote(const char *latin1_text) { return v_tools_quote_text(latin1_text).get(); }

class TableReader {
public:
  explicit TableReader(CsvHead head_of_table)
      : head(std::move(head_of_table)), code_column(head.code_column) {}

  OwnedCodeset read();

private:
  bool read_column_names();
  bool read_column_name(std::size_t column);
  bool read_line_above(const CsvRecord &record);
  bool set_labelled_text(CsvLabel label, const CsvPlace &place, OwnedLangstr text);
  bool read_remarks();
  bool read_remark(const CsvRecord &record);
  void set_code_twice_error() const;
  bool read_code(OwnedText &code, const CsvRecord &record) const;
  bool read_translations(VLangstrCollection &translations, const CsvRecord &record);
  bool read_translation(VLangstrCollection &translations, const CsvField &field,
                        std::size_t column);
  bool accept_column(const CsvPlace &place);
  CsvPlace place_of(const CsvField &field, std::size_t column) const;
  CsvPlace place_of_code(const CsvRecord &record) const;

  CsvHead head;
  std::size_t code_column;
  std::vector<OwnedText> column_names; // ASCII, normalised
  std::unordered_map<std::string_view, std::size_t> columns_of_names;
  std::optional<std::size_t> nameless_column; // the only one that may hold texts
  std::optional<std::size_t> lines_of_labels[v_csv_label_count];
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
  // Sorting detects duplicate codes. Report them first: they are above the line that cannot be
  // read.
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
         v_csv_fail_at(
             {fields.front().line, 0, v_csv_code_name},
             "there is no other column. Add one for each language, with its tag as the name, "
             "for example \"sv\" or \"en-uk\".");
}

// Several columns may have no name, because spreadsheets save empty columns.
bool TableReader::read_column_name(std::size_t column) {
  const CsvField &field = head.column_names.fields[column];
  OwnedText name =
      column == code_column ? copy_text(v_csv_code_name) : v_tools_make_tag(field.text);
  if (!name) {
    return v_csv_fail_at({field.line, column});
  }
  const bool is_code = g_ascii_strcasecmp(name.get(), v_csv_code_name) == 0;
  const std::string_view key = is_code ? v_csv_code_name : name.get();
  const auto [same, is_new] = columns_of_names.emplace(key, column);
  if (!is_new && *name != '\0') {
    return v_csv_fail_at({field.line, column}, "column " + std::to_string(same->second + 1) +
                                                   " is named " + quote(name.get()) +
                                                   " as well. Keep one of the two.");
  }
  column_names.push_back(std::move(name));
  return true;
}

bool TableReader::read_line_above(const CsvRecord &record) {
  const CsvPlace place = place_of_code(record);
  const std::optional<CsvLabel> label = code_column < record.fields.size()
                                            ? v_csv_find_label(record.fields[code_column])
                                            : std::nullopt;
  if (!label) {
    return v_csv_fail_at(place,
                         "only lines with \"name\", \"author\" or \"version\" in the column "
                         "\"code\" can be above the names of the columns. Delete this line.");
  }
  std::optional<std::size_t> &line = lines_of_labels[static_cast<std::size_t>(*label)];
  if (line) {
    return v_csv_fail_at(place, "line " + std::to_string(*line) +
                                    " is labelled the same. Keep one of the two.");
  }
  line = place.line;
  VLangstrCollection texts;
  return read_translations(texts, record) &&
         set_labelled_text(*label, place, std::move(texts.langstr));
}

bool TableReader::set_labelled_text(CsvLabel label, const CsvPlace &place, OwnedLangstr text) {
  if (label == CsvLabel::name) {
    codeset->name = std::move(text);
  } else if (label == CsvLabel::author) {
    codeset->author = std::move(text);
  } else if (text && text->next) {
    return v_csv_fail_at(place, "a codeset has one version, in no language. Delete the others.");
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
    return v_csv_fail_at(place_of(record.fields.back(), column), head.reader.fault());
  }
  const std::size_t line = head.column_names.fields[code_column].line;
  return !v_remark_list_is_empty(remarks.list.get()) ||
         v_csv_fail_at({line, code_column, v_csv_code_name}, "no codes are below.");
}

bool TableReader::read_remark(const CsvRecord &record) {
  OwnedRemark remark = v_remark_new();
  VLangstrCollection description;
  if (!read_code(remark->code, record) || !read_translations(description, record)) {
    return false;
  }
  remark->description = std::move(description.langstr);
  const CsvPlace place = place_of_code(record);
  if (*remark->code == '\0') {
    return !remark->description || v_csv_fail_at(place, "the text in this line has no code.");
  }
  if (!remark->description) {
    return v_csv_fail_at(place, "the code " + quote(remark->code.get()) +
                                    " has no text in any language. Write one, or delete the line.");
  }
  if (!v_codeset_io_can_code_be_read_back(remark->code.get())) {
    return v_csv_fail_at(place,
                         "the code " + quote(remark->code.get()) +
                             " has \"&\", \"<\" or \"]]>\", and a file with such a code cannot be "
                             "read. Change the code.");
  }
  lines_of_codes.emplace_back(remark->code.get(), place.line);
  v_remark_list_collect_remark(remarks, std::move(remark));
  return true;
}

// Reports the first code that already occurs in a line above.
void TableReader::set_code_twice_error() const {
  std::unordered_map<std::string_view, std::size_t> lines;
  for (const auto &[code, line] : lines_of_codes) {
    const auto [same, is_new] = lines.emplace(code, line);
    if (!is_new) {
      v_csv_fail_at({line, code_column, v_csv_code_name},
                    "the code " + quote(code) + " is in line " + std::to_string(same->second) +
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
  return code || v_csv_fail_at(place_of_code(record));
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
  const CsvPlace place = place_of(field, column);
  OwnedText text = v_tools_make_text(field.text);
  if (!text) {
    return v_csv_fail_at(place);
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

// False when the column may not hold a text.
bool TableReader::accept_column(const CsvPlace &place) {
  if (place.column_name == nullptr) {
    return v_csv_fail_at(place,
                         "the table has only " + std::to_string(column_names.size()) +
                             " columns. Put a text with commas, semicolons or tabs in quotation "
                             "marks.");
  }
  if (*place.column_name != '\0') {
    return true;
  }
  const std::size_t other = nameless_column.value_or(place.column);
  nameless_column = other;
  return other == place.column ||
         v_csv_fail_at(place, "column " + std::to_string(other + 1) +
                                  " has no name either. Name the columns by their languages.");
}

CsvPlace TableReader::place_of(const CsvField &field, std::size_t column) const {
  const bool has_name = column < column_names.size();
  return {field.line, column, has_name ? column_names[column].get() : nullptr};
}

CsvPlace TableReader::place_of_code(const CsvRecord &record) const {
  const bool has_field = code_column < record.fields.size();
  return place_of(has_field ? record.fields[code_column] : record.fields.back(), code_column);
}

} // namespace

OwnedCodeset v_csv_read_codeset(std::string_view document) {
  if (const char *message = v_csv_find_wrong_kind(document)) {
    v_error_set(message);
    return nullptr;
  }
  std::optional<CsvHead> head = v_csv_read_head(v_csv_open_document(document));
  return head ? TableReader(std::move(*head)).read() : nullptr;
}
