#include "csv_head.h"

#include <iterator>
#include <string_view>
#include <utility>

#include <glib.h>

#include "base/whitespace.h"
#include "csv_place.h"

namespace {

constexpr char delimiters[] = {',', ';', '\t'};
constexpr const char *labels[] = {"name", "author", "version"};
static_assert(std::size(labels) == v_csv_label_count);

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

// The index of the column of the codes.
std::optional<std::size_t> find_code_column(const CsvRecord &record) {
  for (std::size_t i = 0; i < record.fields.size(); i++) {
    if (is_word(record.fields[i], v_csv_code_name)) {
      return i;
    }
  }
  return std::nullopt;
}

// The result of trying a delimiter, from the least to the most likely to be the right one.
enum class Likelihood {
  faulty,
  without_code,
  label_beside_code,
  code_alone,
  faulty_beside_code,
  whole
};

// The lines as read with one delimiter. After a fault, column_names holds the fields up to and
// including the faulty one.
struct Attempt {
  CsvHead head;
  std::size_t line_of_label = 0; // a line with a label and "code", which may be the column names
  Likelihood likelihood = Likelihood::without_code;
};

Likelihood judge(const CsvHead &head, bool is_faulty, bool has_code) {
  if (is_faulty) {
    return has_code ? Likelihood::faulty_beside_code : Likelihood::faulty;
  }
  return head.column_names.fields.size() > 1 ? Likelihood::whole : Likelihood::code_alone;
}

Attempt try_delimiter(const CsvDocument &document, char delimiter) {
  Attempt attempt{{CsvRecordReader(document.text, delimiter, document.first_line)}};
  CsvHead &head = attempt.head;
  CsvStep step = CsvStep::record;
  // Each label occurs at most once, so few lines can be above the column names.
  while (step == CsvStep::record && head.lines_above.size() <= v_csv_label_count) {
    CsvRecord record;
    step = head.reader.read(record);
    if (step == CsvStep::end || (step == CsvStep::record && v_csv_is_blank(record))) {
      continue;
    }
    const std::optional<std::size_t> code_column = find_code_column(record);
    const bool is_labelled = v_csv_find_label(record.fields.front()).has_value();
    if (step == CsvStep::fault || (code_column && !is_labelled)) {
      head.column_names = std::move(record);
      head.code_column = code_column.value_or(0);
      attempt.likelihood = judge(head, step == CsvStep::fault, code_column.has_value());
      break;
    }
    if (code_column) {
      attempt.line_of_label = record.fields.front().line;
      attempt.likelihood = Likelihood::label_beside_code;
    }
    head.lines_above.push_back(std::move(record));
  }
  return attempt;
}

Attempt try_delimiters(const CsvDocument &document) {
  if (document.delimiter != '\0') {
    return try_delimiter(document, document.delimiter);
  }
  Attempt best = try_delimiter(document, delimiters[0]);
  for (const char delimiter : {delimiters[1], delimiters[2]}) {
    Attempt attempt = try_delimiter(document, delimiter);
    if (attempt.likelihood > best.likelihood) {
      best = std::move(attempt);
    }
  }
  return best;
}

// False with a message that says what is wrong and where, unless the lines can begin a table.
bool accept(const Attempt &attempt, const CsvDocument &document) {
  const std::vector<CsvField> &fields = attempt.head.column_names.fields;
  switch (attempt.likelihood) {
  case Likelihood::without_code:
    return v_csv_fail_at(
        {document.first_line, 0},
        "no column is named \"code\". The first line of the table has the names of the "
        "columns, with commas, semicolons or tabs between them: \"code\" and a language tag "
        "for each other column, as in \"code,en-uk,sv\".");
  case Likelihood::label_beside_code:
    return v_csv_fail_at(
        {attempt.line_of_label, 0},
        "a line that begins with this word is for the whole codeset, so it cannot name the "
        "columns. Make \"code\" the first column, and delete those that are of no language.");
  case Likelihood::faulty:
  case Likelihood::faulty_beside_code:
    return v_csv_fail_at({fields.back().line, fields.size() - 1}, attempt.head.reader.fault());
  case Likelihood::code_alone:
  case Likelihood::whole:
    break;
  }
  return true;
}

} // namespace

std::optional<CsvLabel> v_csv_find_label(const CsvField &field) {
  for (std::size_t i = 0; i < std::size(labels); i++) {
    if (is_word(field, labels[i])) {
      return static_cast<CsvLabel>(i);
    }
  }
  return std::nullopt;
}

bool v_csv_is_blank(const CsvRecord &record) {
  for (const CsvField &field : record.fields) {
    if (!strip(field.text).empty()) {
      return false;
    }
  }
  return true;
}

std::optional<CsvHead> v_csv_read_head(const CsvDocument &document) {
  Attempt attempt = try_delimiters(document);
  if (!accept(attempt, document)) {
    return std::nullopt;
  }
  return std::move(attempt.head);
}
