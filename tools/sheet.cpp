#include "tools/sheet.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "base/text_encoding.h"
#include "base/xml_writing.h"
#include "bcp47.h"
#include "sheet_layout.h"
#include "tools/sheet_style.h"
#include "workspace/display_text.h"

namespace {

// The sheet is written by hand. An XSLT stylesheet would need the tree of the whole file, which
// takes three times as long to build as reading the codeset, and its own sort. libxml2's writer
// writes XML, in which an empty element is "<dd/>" and style sheets are escaped.

// Bytes; few enough to be still in the processor's cache when they are converted.
constexpr std::size_t converted_at_once = 32768;

// Remarks with longer texts may break across columns.
constexpr std::size_t maximum_characters_in_one_piece = 600;

// The characters before the first digit of a code: "Cr" for "Cr14"; "" if it has no digit.
std::string_view family_of(std::string_view code) {
  const auto is_no_digit = [](char byte) { return byte < '0' || byte > '9'; };
  const auto digit = std::find_if_not(code.begin(), code.end(), is_no_digit);
  return code.substr(0, digit == code.end() ? 0 : static_cast<std::size_t>(digit - code.begin()));
}

// Appends a CSS string. A space ends an escape.
void append_css_string(std::string &latin1_css, std::string_view latin1_text) {
  latin1_css += '"';
  for (const char byte : latin1_text) {
    if (static_cast<unsigned char>(byte) < ' ' || std::strchr("\"\\<", byte) != nullptr) {
      constexpr const char *digits = "0123456789abcdef";
      latin1_css += '\\';
      latin1_css += digits[static_cast<unsigned char>(byte) >> 4];
      latin1_css += digits[byte & 0xF];
      latin1_css += ' ';
    } else {
      latin1_css += byte;
    }
  }
  latin1_css += '"';
}

// Whether a translation has another tag than first_tag, which the first call with a translation
// sets.
bool has_other_tag(const VLangstr *langstr, const char *&first_tag) {
  if (first_tag == nullptr && langstr != nullptr) {
    first_tag = langstr->lang.get();
  }
  while (langstr != nullptr && std::strcmp(langstr->lang.get(), first_tag) == 0) {
    langstr = langstr->next.get();
  }
  return langstr != nullptr;
}

// Returns early for most codesets, whose names are already in several languages.
bool has_several_tags(const VCodeset *codeset) {
  const char *first_tag = nullptr;
  if (has_other_tag(codeset->name.get(), first_tag) ||
      has_other_tag(codeset->author.get(), first_tag)) {
    return true;
  }
  const VRemark *remark = codeset->remarks->head.next;
  while (remark != &codeset->remarks->tail &&
         !has_other_tag(remark->description.get(), first_tag)) {
    remark = remark->next;
  }
  return remark != &codeset->remarks->tail;
}

class SheetWriter {
public:
  SheetWriter(const VCodeset *shown_codeset, const VSettings *wanted_settings)
      : codeset(shown_codeset), settings(wanted_settings),
        has_several_languages(has_several_tags(codeset)) {}

  OwnedUtf8String write() {
    append_head();
    append_body();
    convert_written();
    return std::move(html);
  }

private:
  void append(std::string_view ascii_text) { latin1_html += ascii_text; }
  void append_text(const char *latin1_text) { v_xml_append_string(latin1_html, latin1_text); }

  void convert_written() {
    v_utf8_string_append_latin1(html.get(), latin1_html.c_str());
    latin1_html.clear();
  }

  bool is_in_all_languages() const { return settings == nullptr; }

  // Whether there is a translation in the language of the sheet.
  bool is_translated(const VLangstr *langstr) const {
    const char *language = settings->preferred_languages.front().c_str();
    return v_langstr_get_string(langstr, language, true) != nullptr;
  }

  // The translation that a sheet in one language shows; the first one for a sheet in all languages.
  const VLangstr *find_shown(const VLangstr *langstr) const {
    if (is_in_all_languages()) {
      return langstr;
    }
    const char *text = v_util_get_langstr_string(settings, langstr);
    while (langstr->text.get() != text) {
      langstr = langstr->next.get();
    }
    return langstr;
  }

  // The attribute "lang" with a leading space, escaped.
  const std::string &find_lang_attribute(const char *tag) {
    const auto [entry, is_new] = lang_attributes.try_emplace(tag);
    if (is_new) {
      entry->second = " lang=\"" + v_bcp47_from_tag(tag) + "\"";
    }
    return entry->second;
  }

  void append_translation(std::string_view element, const VLangstr *translation, bool has_tag) {
    append("<");
    append(element);
    append(find_lang_attribute(translation->lang.get()));
    if (has_tag && *translation->lang != '\0') {
      append(" data-tag=\"");
      append_text(translation->lang.get());
      append("\"");
    }
    append(">");
    append_text(translation->text.get());
    append("</");
    append(element);
    append(">\n");
  }

  // Calls visit(translation, has_tag) for each translation that the sheet shows; has_tag: with its
  // tag.
  template <typename Visit>
  void visit_shown(const VLangstr *langstr, Visit visit) const {
    if (langstr != nullptr && !is_in_all_languages()) {
      visit(find_shown(langstr), !is_translated(langstr));
      return;
    }
    for (; langstr != nullptr; langstr = langstr->next.get()) {
      visit(langstr, has_several_languages);
    }
  }

  void append_translations(std::string_view element, const VLangstr *langstr) {
    visit_shown(langstr, [&](const VLangstr *translation, bool has_tag) {
      append_translation(element, translation, has_tag);
    });
  }

  bool has_line_of_names() const { return is_in_all_languages() && codeset->name->next; }

  void append_line(const char *name, const VLangstr *langstr) {
    if (langstr == nullptr) {
      return;
    }
    append("<p class=\"");
    append(name);
    append("\">\n");
    append_translations("span", langstr);
    append("</p>\n");
  }

  const VLangstr *find_title() const { return find_shown(codeset->name.get()); }

  std::string title_with_version() const {
    std::string title = find_title()->text.get();
    if (codeset->version) {
      (title += ' ') += codeset->version.get();
    }
    return title;
  }

  void measure_text(std::vector<std::size_t> &lengths, const VLangstr *translation, bool has_tag) {
    lengths.push_back(std::strlen(translation->text.get()));
    if (has_tag) {
      content.longest_tag = std::max(content.longest_tag, std::strlen(translation->lang.get()));
    }
  }

  void measure_line(const VLangstr *langstr) {
    std::vector<std::size_t> lengths;
    visit_shown(langstr, [&](const VLangstr *translation, bool has_tag) {
      measure_text(lengths, translation, has_tag);
    });
    constexpr std::size_t gap = 10; // characters for the tag and the space around it
    for (const std::size_t length : lengths) {
      content.header_length += length + gap;
    }
  }

  void measure_remark(const VRemark *remark) {
    content.longest_code = std::max(content.longest_code, std::strlen(remark->code.get()));
    if (content.rows.size() > v_sheet_maximum_rows_to_measure) {
      return;
    }
    SheetRow &row = content.rows.emplace_back();
    row.begins_family = begins_family(remark);
    visit_shown(remark->description.get(), [&](const VLangstr *translation, bool has_tag) {
      measure_text(row.text_lengths, translation, has_tag);
    });
  }

  void measure() {
    if (has_line_of_names()) {
      measure_line(codeset->name.get());
    }
    measure_line(codeset->author.get());
    for (const VRemark *r = codeset->remarks->head.next; r != &codeset->remarks->tail;
         r = r->next) {
      measure_remark(r);
    }
  }

  void append_style() {
    append("<style>\n");
    append(v_sheet_style);
    append("\n@page {\n  @bottom-left {\n    content: ");
    append_css_string(latin1_html, title_with_version());
    append(";\n  }\n}\n\n");
    measure();
    append(v_sheet_format_layout(v_sheet_choose_layout(content)));
    append("</style>\n");
  }

  void append_head() {
    append("<!DOCTYPE html>\n<html");
    append(find_lang_attribute(find_title()->lang.get()));
    append(">\n<head>\n<meta charset=\"utf-8\">\n"
           "<meta name=\"viewport\" content=\"width=device-width\">\n<title>");
    append_text(title_with_version().c_str());
    append("</title>\n");
    append_style();
    append("</head>\n");
  }

  void append_header() {
    append("<header>\n<h1");
    append(find_lang_attribute(find_title()->lang.get()));
    append(">");
    append_text(find_title()->text.get());
    append("</h1>\n");
    if (has_line_of_names()) {
      append_line("names", codeset->name.get());
    }
    append_line("authors", codeset->author.get());
    if (codeset->version) {
      append("<p class=\"version\">");
      append_text(codeset->version.get());
      append("</p>\n");
    }
    append("</header>\n");
  }

  bool begins_family(const VRemark *remark) const {
    return remark->prev == &codeset->remarks->head ||
           family_of(remark->prev->code.get()) != family_of(remark->code.get());
  }

  bool is_long(const VRemark *remark) const {
    std::size_t length = 0;
    visit_shown(remark->description.get(), [&](const VLangstr *translation, bool) {
      length += std::strlen(translation->text.get());
    });
    return length > maximum_characters_in_one_piece;
  }

  void append_class(const VRemark *remark) {
    const bool is_first = begins_family(remark);
    if (is_long(remark)) {
      append(is_first ? " class=\"first long\"" : " class=\"long\"");
    } else if (is_first) {
      append(" class=\"first\"");
    }
  }

  void append_remark(const VRemark *remark) {
    append("<div");
    append_class(remark);
    append(">\n<dt>");
    append_text(remark->code.get());
    append("</dt>\n");
    append_translations("dd", remark->description.get());
    append("</div>\n");
    if (latin1_html.size() > converted_at_once) {
      convert_written();
    }
  }

  void append_body() {
    append("<body>\n<article>\n");
    append_header();
    append("<dl>\n");
    for (const VRemark *r = codeset->remarks->head.next; r != &codeset->remarks->tail;
         r = r->next) {
      append_remark(r);
    }
    append("</dl>\n</article>\n</body>\n</html>\n");
  }

  const VCodeset *codeset;
  const VSettings *settings; // null: all languages
  bool has_several_languages;
  SheetContent content;
  std::unordered_map<std::string_view, std::string> lang_attributes; // keys borrow from the codeset
  std::string latin1_html; // text that is not yet converted to UTF-8
  OwnedUtf8String html = v_utf8_string_new("");
};

} // namespace

OwnedUtf8String v_sheet_write_codeset(const VCodeset *codeset, const VSettings *settings) {
  return SheetWriter(codeset, settings).write();
}
