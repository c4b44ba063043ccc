#include "tools/csv_writing.h"

#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "base/text_encoding.h"
#include "tools/languages.h"

namespace {

void append_field(VUtf8String *csv, const char *latin1_text) {
  if (std::strpbrk(latin1_text, ",;\t\"\r\n") == nullptr) {
    v_utf8_string_append_latin1(csv, latin1_text);
    return;
  }
  const OwnedText escaped = v_char_strdup_replace(latin1_text, "\"", "\"\"");
  v_utf8_string_append_byte(csv, '"');
  v_utf8_string_append_latin1(csv, escaped.get());
  v_utf8_string_append_byte(csv, '"');
}

class TableWriter {
public:
  explicit TableWriter(std::vector<std::string> its_languages)
      : languages(std::move(its_languages)), texts(languages.size()) {
    for (std::size_t i = 0; i < languages.size(); i++) {
      columns[languages[i]] = i;
    }
  }

  void write_column_names() {
    for (std::size_t i = 0; i < languages.size(); i++) {
      texts[i] = languages[i].c_str();
    }
    write_line("code");
  }
  // Writes each translation into the column of its language.
  void write_translations(const char *label, const VLangstr *langstr) {
    for (; langstr != nullptr; langstr = langstr->next.get()) {
      texts[columns.find(langstr->lang.get())->second] = langstr->text.get();
    }
    write_line(label);
  }
  // Writes the text into the first language column.
  void write_text(const char *label, const char *text) {
    if (!texts.empty()) {
      texts.front() = text;
    }
    write_line(label);
  }
  OwnedUtf8String take() { return std::move(csv); }

private:
  // Clears the texts for the next line.
  void write_line(const char *label) {
    append_field(csv.get(), label);
    for (const char *&text : texts) {
      v_utf8_string_append_byte(csv.get(), ',');
      if (text != nullptr) {
        append_field(csv.get(), text);
        text = nullptr;
      }
    }
    v_utf8_string_append(csv.get(), "\r\n");
  }

  std::vector<std::string> languages;
  std::unordered_map<std::string_view, std::size_t> columns; // the keys borrow from languages
  std::vector<const char *> texts; // of the current line, one for each language or null
  OwnedUtf8String csv = v_utf8_string_new(nullptr);
};

void write_header(TableWriter &table, const VCodeset *codeset) {
  if (codeset->name) {
    table.write_translations("name", codeset->name.get());
  }
  if (codeset->author) {
    table.write_translations("author", codeset->author.get());
  }
  if (codeset->version) {
    table.write_text("version", codeset->version.get());
  }
}

} // namespace

OwnedUtf8String v_csv_write_codeset(const VCodeset *codeset, bool with_header) {
  TableWriter table(v_tools_collect_languages(codeset, with_header));
  if (with_header) {
    write_header(table, codeset);
  }
  table.write_column_names();
  const VRemarkList *list = codeset->remarks.get();
  for (const VRemark *remark = list->head.next; remark != &list->tail; remark = remark->next) {
    table.write_translations(remark->code.get(), remark->description.get());
  }
  return table.take();
}
