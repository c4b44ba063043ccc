#include "fuzz/oracle/documents.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include <glib.h>

#include "fuzz/oracle/choices.h"

namespace {

// ---------------------------------------------------------------- what the readers know

enum class Content { children, text, code };

struct Rule {
  const char *parent;
  const char *name;
  std::vector<const char *> attributes;
  Content content;
  unsigned minimum;
  unsigned maximum;
};

using Rules = std::vector<Rule>;

const Rules &rules_of(DocumentKind kind) {
  static const Rules codeset = {
      {"codeset", "name", {"lang"}, Content::text, 1, 3},
      {"codeset", "author", {"lang"}, Content::text, 0, 2},
      {"codeset", "version", {}, Content::text, 0, 1},
      {"codeset", "remark", {}, Content::children, 1, 4},
      {"remark", "code", {}, Content::code, 1, 1},
      {"remark", "description", {"lang"}, Content::text, 1, 3},
  };
  static const Rules settings = {
      {"settings", "archive", {"path"}, Content::children, 0, 1},
      {"settings", "automatically-place-id", {"active"}, Content::children, 0, 1},
      {"settings", "default-mark-id-style", {"style"}, Content::children, 0, 2},
      {"settings", "default-printout-settings", {}, Content::children, 0, 1},
      {"default-printout-settings", "identifier", {"setting"}, Content::children, 0, 2},
      {"default-printout-settings", "layout", {"filename"}, Content::children, 0, 1},
      {"default-printout-settings", "paper", {"name", "orientation"}, Content::children, 0, 1},
      {"default-printout-settings",
       "details",
       {"show-on-text-page", "show-on-view-pages"},
       Content::children,
       0,
       1},
      {"default-printout-settings",
       "legend",
       {"show-on-text-page", "show-on-view-pages", "text-page-codeset-filter-level",
        "text-page-mark-filter-level", "view-page-codeset-filter-level",
        "view-page-mark-filter-level"},
       Content::children,
       0,
       1},
      {"default-printout-settings", "page-numbers", {"show"}, Content::children, 0, 1},
      {"default-printout-settings", "report-type", {"show"}, Content::children, 0, 1},
      {"settings", "export", {}, Content::children, 0, 1},
      {"export", "folder", {"path"}, Content::children, 0, 2},
      {"settings", "last-used-layout", {"filename"}, Content::children, 0, 1},
      {"settings", "last-used-paper", {"id"}, Content::children, 0, 1},
      {"settings", "left-handed", {"active"}, Content::children, 0, 1},
      {"settings", "preferred-languages", {}, Content::children, 0, 2},
      {"preferred-languages", "language", {"tag"}, Content::children, 0, 3},
      {"settings", "recent-custom-remarks", {}, Content::children, 0, 2},
      {"recent-custom-remarks", "remark", {}, Content::children, 0, 2},
      {"remark", "code", {}, Content::code, 1, 1},
      {"remark", "description", {"lang"}, Content::text, 1, 2},
      {"settings", "remember-tool-choice", {"active"}, Content::children, 0, 1},
  };
  static const Rules pointer = {
      {"vantorelle", "workspace", {"path"}, Content::children, 1, 1},
  };
  switch (kind) {
  case DocumentKind::codeset:
    return codeset;
  case DocumentKind::settings:
    return settings;
  case DocumentKind::pointer:
    break;
  }
  return pointer;
}

// ---------------------------------------------------------------- what is chosen from

// Texts that are still the same in ISO-8859-1.
const char *const words[] = {
    "Split",  "a",        "b",       "c d",          "7",         "Färg",        "ÅÄÖ åäö ÿ",
    "1.2",    "]]",       "]]&gt;",  "&amp;",        "&lt;b&gt;", "\"'",         "&quot;",
    "&apos;", "&#65;",    "&#xE5;",  "&#38;",        "&#60;",     "  x  ",       "a \n b",
    "\u00A0", "x\u0085y", "&#xA0;z", "a&#xD;&#x9;b", "N",         "text",        "&amp;amp;",
    "-->",    "?>",       "é",       "e f g",        "sv",        "long\r\none", "a&#10;&#10;b"};
// Texts with characters that no codeset may hold.
const char *const strange_words[] = {"\u20AC", "x\u20ACy", "\U0001F600", "&#x20AC;", "&#128512;",
                                     "\u2003", "\u0100",   "a\u0301",    "\uFEFF",   "&#x2028;"};
// Words that no document may contain.
const char *const forbidden_words[] = {
    "&",          "<",           "]]>",  "&#0;",         "&#xFFFE;", "\x01",         "&#x1;",
    "&#x;",       "&x",          "&;",   "& b;",         "<<",       "</a>",         "<!--",
    "<![CDATA[",  "\xC3",        "\xFF", "\xED\xA0\x80", "<?xml?>",  "<!DOCTYPE a>", "\x0B",
    "&#x110000;", "\xEF\xBF\xBE"};
const char *const spaces[] = {" ", "\n", "\t", "\r\n", "\n\t\t", "  ", "\r", "\n\n"};
const char *const codes[] = {"1",      "7",   "07",  "2",          "10",      "a",
                             "A",      "1a",  "a b", "&#65;&#9;1", "a&amp;b", "&lt;x&gt;",
                             "]]&gt;", "007", "ä",   "a1",         "A1",      "x&gt;y",
                             "&#x37;", "'",   "1.5", "1,5",        "  b\n",   "0"};
const char *const tags[] = {"sv",      "en-uk", "en",     "de-at",    "",        "sv",
                            "fr",      "  sv ", " x  y ", "a&amp;b",  "&lt;sv>", "x&#9;y",
                            "&#115;v", "es-mx", "X",      "a&quot;b", "sv\nfi",  "&apos;"};
const char *const paths[] = {"/a",       "/home/user/Vantorelle Workspace",
                             "/a/",      "/a//",
                             "/",        "///",
                             "",         "a/b",
                             "/å/&amp;", " ",
                             "/a b",     "/x\ty/",
                             "/&#10;/",  "\u20AC/\U0001F600"};
const char *const truths[] = {"true", "false", "TRUE", "true ", "", "&#116;rue", "1", "t&#x72;ue"};
const char *const styles[] = {"0",           "1",
                              "2",           "3",
                              "-1",          "",
                              "x",           " 1",
                              "1 ",          "+2",
                              "0x1",         "2147483648",
                              "-2147483649", "99999999999999999999",
                              "01",          "\u00A01",
                              "-",           "\u20032"};
const char *const identifiers[] = {"None", "Object ID", "Inventory ID", "Inventory ID or Object ID",
                                   "none", "",          "Object  ID",   "Object\nID"};
const char *const levels[] = {"From all codesets",   "From primary codeset only",
                              "From no codeset",     "From all views",
                              "From this view only", "From no view",
                              "from no view",        ""};
const char *const orientations[] = {"Landscape", "Portrait", "landscape", "", " Landscape"};
const char *const other_values[] = {"",  "x",        "A4_P",    "a b", "b.layout",
                                    "å", "&#x20AC;", "a&amp;b", "A\tB"};

struct ValueTable {
  const char *attribute;
  std::vector<const char *> values;
};

template <std::size_t count>
std::vector<const char *> all_of(const char *const (&table)[count]) {
  return {std::begin(table), std::end(table)};
}

const std::vector<const char *> &values_of(std::string_view attribute) {
  static const std::vector<ValueTable> tables = {{"lang", all_of(tags)},
                                                 {"tag", all_of(tags)},
                                                 {"path", all_of(paths)},
                                                 {"active", all_of(truths)},
                                                 {"show", all_of(truths)},
                                                 {"show-on-text-page", all_of(truths)},
                                                 {"show-on-view-pages", all_of(truths)},
                                                 {"style", all_of(styles)},
                                                 {"setting", all_of(identifiers)},
                                                 {"orientation", all_of(orientations)},
                                                 {"text-page-codeset-filter-level", all_of(levels)},
                                                 {"text-page-mark-filter-level", all_of(levels)},
                                                 {"view-page-codeset-filter-level", all_of(levels)},
                                                 {"view-page-mark-filter-level", all_of(levels)}};
  static const std::vector<const char *> others = all_of(other_values);
  for (const ValueTable &table : tables) {
    if (attribute == table.attribute) {
      return table.values;
    }
  }
  return others;
}

const char *const unknown_names[] = {"other",   "b", "Name", "remarks", "x:code",   "xml",
                                     "codeset", "é", "_",    "a.b-c",   "settings", "\u4E2D"};

// ---------------------------------------------------------------- the generator

class Generator {
public:
  Generator(DocumentKind document_kind, LongTexts length_of_texts, Choices &document_choices)
      : long_texts(length_of_texts), choices(document_choices), rules(rules_of(document_kind)),
        root(rules.front().parent) {
    const unsigned fault_rates[] = {0, 0, 0, 0, 64, 64, 16, 6};
    fault_rate = choices.of(fault_rates);
  }

  std::string document() {
    const Encoding encoding = choose_encoding();
    std::string xml = encoding.declaration;
    xml += misc();
    if (choices.one_in(3)) {
      xml += document_type() + misc();
    }
    if (!fault()) {
      xml += root_element();
    }
    xml += misc();
    if (fault()) {
      xml += choices.one_in(2) ? root_element() : text(1);
    }
    std::string bytes = encoding.encode(xml);
    if (choices.one_in(fault_rate == 0 ? 24 : 6)) {
      break_somewhere(bytes);
    }
    return bytes;
  }

private:
  // True when the generator is to insert a construct for which readers may refuse the document.
  bool fault() { return fault_rate != 0 && choices.one_in(fault_rate); }

  // ------------------------------------------------ encodings

  struct Encoding {
    std::string declaration;
    std::string (*encode)(const std::string &utf8_xml);
  };

  static std::string in_utf8(const std::string &xml) { return xml; }
  static std::string in_utf8_with_mark(const std::string &xml) { return "\xEF\xBB\xBF" + xml; }

  // Characters that the encoding does not have become references, broken bytes stay as they are.
  template <typename Write>
  static std::string in_characters(const std::string &xml, gunichar maximum, Write write) {
    std::string bytes;
    const char *end = xml.data() + xml.size();
    for (const char *p = xml.data(); p < end;) {
      const gunichar character = g_utf8_get_char_validated(p, end - p);
      if (character == static_cast<gunichar>(-1) || character == static_cast<gunichar>(-2)) {
        write(bytes, static_cast<unsigned char>(*p++));
        continue;
      }
      p = g_utf8_next_char(p);
      if (character <= maximum) {
        write(bytes, character);
        continue;
      }
      for (const char digit : "&#" + std::to_string(character) + ";") {
        write(bytes, static_cast<unsigned char>(digit));
      }
    }
    return bytes;
  }

  static void write_byte(std::string &bytes, gunichar character) {
    bytes += static_cast<char>(character);
  }
  static std::string in_latin1(const std::string &xml) {
    return in_characters(xml, 0xFF, write_byte);
  }
  static std::string in_ascii(const std::string &xml) {
    return in_characters(xml, 0x7F, write_byte);
  }

  static void write_unit(std::string &bytes, unsigned unit, bool is_big_endian) {
    const char high = static_cast<char>(unit >> 8);
    const char low = static_cast<char>(unit & 0xFF);
    bytes += is_big_endian ? high : low;
    bytes += is_big_endian ? low : high;
  }
  static std::string in_utf16(const std::string &xml, bool is_big_endian) {
    std::string bytes = is_big_endian ? "\xFE\xFF" : "\xFF\xFE";
    return bytes + in_characters(xml, 0x10FFFF, [&](std::string &target, gunichar character) {
             if (character > 0xFFFF) {
               write_unit(target, 0xD800 + ((character - 0x10000) >> 10), is_big_endian);
               character = 0xDC00 + ((character - 0x10000) & 0x3FF);
             }
             write_unit(target, character, is_big_endian);
           });
  }
  static std::string in_utf16_le(const std::string &xml) { return in_utf16(xml, false); }
  static std::string in_utf16_be(const std::string &xml) { return in_utf16(xml, true); }

  Encoding choose_encoding() {
    static const Encoding encodings[] = {
        {"", in_utf8},
        {"utf-8", in_utf8},
        {"iso-8859-1", in_latin1},
        {"ISO-8859-1", in_latin1},
        {"UTF-8", in_utf8_with_mark},
        {"", in_utf8_with_mark},
        {"utf-16", in_utf16_le},
        {"", in_utf16_be},
        {"us-ascii", in_ascii},
        {"windows-1252", in_latin1},
        {"UTF-16", in_utf16_be},
        {"UTF-16LE", in_utf16_le},
    };
    static const char *const wrong_names[] = {
        "x-none", "utf-16",      "ebcdic-cp-us", "UCS-4", "UTF-7",    "Shift_JIS", "EUC-JP",
        "koi8-r", "iso-2022-jp", "iso-8859-15",  "utf-8", "us-ascii", "UTF-16BE",  "iso-8859-1",
        "",       "1",           "UTF8",         "HTML"};
    Encoding encoding = choices.of(encodings);
    const bool is_wrong = fault();
    const std::string name = is_wrong ? choices.of(wrong_names) : encoding.declaration;
    encoding.declaration.clear();
    if (!name.empty() || is_wrong || choices.one_in(2)) {
      static const char *const versions[] = {"1.0", "1.0", "1.0", "1.1", "1.2", "2.0", ""};
      const char quote = choices.one_in(4) ? '\'' : '"';
      const std::string version = choices.one_in(16) ? choices.of(versions) : versions[0];
      encoding.declaration = std::string("<?xml version=") + quote + version + quote;
      if (!name.empty()) {
        encoding.declaration += std::string(" encoding=") + quote + name + quote;
      }
      if (choices.one_in(12)) {
        encoding.declaration += choices.one_in(2) ? " standalone='yes'" : " standalone=\"no\"";
      }
      encoding.declaration += "?>";
    }
    if (fault() && choices.one_in(4)) {
      encoding.declaration.insert(0, " ");
    }
    return encoding;
  }

  // ------------------------------------------------ text

  std::string huge_text() {
    static const unsigned kilobytes[] = {1'000, 4'000, 10'000, 300};
    static const unsigned lengths[] = {100'000, 40'000, 300'000, 9'999'990, 1'000'000, 11'000'000};
    unsigned length = choices.of(kilobytes);
    if (long_texts == LongTexts::megabytes) {
      // Lengths after the first two are rare, because such documents take seconds.
      length = lengths[choices.one_in(64) ? choices.below(6) : choices.below(2)];
    }
    static const char *const fillings[] = {"a", " ", "b ", "å", "\n", "&#97;", "]", "-"};
    const std::string filling = choices.of(fillings);
    const std::size_t minimum = length + choices.below(32);
    std::string result;
    result.reserve(minimum + filling.size());
    while (result.size() < minimum) {
      result += filling;
    }
    return result;
  }

  std::string word() {
    if (fault()) {
      return choices.one_in(2) ? choices.of(forbidden_words) : choices.of(strange_words);
    }
    if (fault_rate != 0 && choices.one_in(16384)) {
      return huge_text();
    }
    return choices.of(words);
  }

  std::string cdata(const std::string &content) { return "<![CDATA[" + content + "]]>"; }

  std::string any_name() {
    if (choices.one_in(3)) {
      return choices.of(unknown_names);
    }
    return rules[choices.below(static_cast<unsigned>(rules.size()))].name;
  }

  std::string comment() {
    static const char *const comments[] = {" a ",    "",    "<remark>", "&x;",   "é",
                                           "\u20AC", "]]>", "\n",       "- x - "};
    return std::string("<!--") + choices.of(comments) + (fault() ? "--x-->" : "-->");
  }

  std::string instruction() {
    static const char *const contents[] = {
        "", " x", " lang='sv' path='/x' tag='x'", " <code>7</code>", "  é ", " ?", " ]]>"};
    std::string name = any_name();
    if (name == "xml" && !fault()) {
      name = "code";
    }
    return "<?" + name + choices.of(contents) + "?>";
  }

  std::string reference() {
    if (!entities.empty() && !(may_be_undeclared && choices.one_in(6))) {
      return "&" + entities[choices.below(static_cast<unsigned>(entities.size()))] + ";";
    }
    if (may_be_undeclared || fault()) {
      return "&" + (choices.one_in(2) ? any_name() : std::string("unknown")) + ";";
    }
    return "&amp;";
  }

  // Something between two pieces of text or content that a reader ignores or nearly ignores.
  std::string interruption() {
    switch (choices.below(8)) {
    case 0:
      return comment();
    case 1:
      return instruction();
    case 2:
      return cdata("");
    case 3:
      return reference();
    case 4:
      return unknown_element();
    default:
      return choices.of(spaces);
    }
  }

  std::string text(unsigned minimum) {
    std::string result;
    for (unsigned pieces = minimum + choices.below(3); pieces > 0; --pieces) {
      switch (choices.below(8)) {
      case 5:
        result += cdata(choices.one_in(2) ? "x<&y" : word());
        break;
      case 6:
        result += interruption();
        break;
      case 7:
        result += reference();
        break;
      default:
        result += word();
      }
    }
    return result;
  }

  std::string code() {
    std::string result;
    if (choices.one_in(4)) {
      result += interruption();
    }
    switch (choices.below(8)) {
    case 6:
      result += text(1);
      break;
    case 7:
      result += cdata(std::to_string(choices.below(1000)));
      break;
    case 5:
    case 4:
      result += choices.of(codes);
      break;
    default:
      result += std::to_string(++code_count);
    }
    if (choices.one_in(4)) {
      result += interruption();
    }
    return result;
  }

  // ------------------------------------------------ attributes

  std::string attribute(const std::string &name, std::string value) {
    if (choices.one_in(16)) {
      value += fault() ? choices.of(forbidden_words) : "&#x20;";
    }
    if (!entities.empty() && choices.one_in(8)) {
      value += reference();
    }
    if (fault_rate != 0 && choices.one_in(32768)) {
      value += huge_text();
    }
    const char quote = choices.one_in(3) ? '\'' : '"';
    const std::string replacement = quote == '"' ? "&quot;" : "&apos;";
    std::string quoted;
    for (const char character : value) {
      quoted += character == quote ? replacement : std::string(1, character);
    }
    const char *const equal_signs[] = {"=", "=", "=", " = ", "\n="};
    return choices.of(spaces) + name + choices.of(equal_signs) + quote + quoted + quote;
  }

  std::string known_attribute(const char *name) {
    const std::vector<const char *> &values = values_of(name);
    std::string value = values[choices.below(static_cast<unsigned>(values.size()))];
    if (fault()) {
      static const char *const unfit[] = {"\u00E5", "&#xE5;", "\u20AC", ""};
      value = choices.of(unfit);
    }
    return attribute(name, value);
  }

  std::string other_attribute(bool &declares_x) {
    static const char *const prefixed[] = {"x:lang", "x:path", "x:active", "x:tag"};
    switch (choices.below(10)) {
    case 0:
      return attribute("xml:lang", choices.of(tags));
    case 1:
      return attribute("id", "i");
    case 2:
      return attribute("xml:id", fault() ? "1 bad" : choices.one_in(2) ? "i" : "j");
    case 3:
      declares_x = true;
      return attribute("xmlns:x", "urn:x") + attribute(choices.of(prefixed), choices.of(tags));
    case 4:
      return is_x_declared || fault() ? attribute(choices.of(prefixed), choices.of(tags)) : "";
    case 5:
      return attribute("xmlns", choices.one_in(2) ? "urn:y" : "");
    case 6:
      return attribute("xml:space", choices.one_in(2) ? "preserve" : "default");
    case 7:
      return attribute("xml:base", "http://127.0.0.1/");
    case 8:
      return attribute("LANG", "sv");
    default:
      return attribute("other", choices.of(other_values));
    }
  }

  std::string attributes_of(const Rule &rule, bool &declares_x) {
    std::vector<std::string> pieces;
    for (const char *name : rule.attributes) {
      if (!fault()) {
        pieces.push_back(known_attribute(name));
      }
    }
    const bool has_others = choices.one_in(6);
    for (unsigned others = has_others ? 1 + choices.below(3) : 0; others > 0; --others) {
      pieces.push_back(other_attribute(declares_x));
    }
    remove_duplicates(pieces);
    return joined_in_any_order(pieces, false);
  }

  // Most attributes are there once; a second one of the name makes the document a broken one.
  void remove_duplicates(std::vector<std::string> &pieces) {
    std::vector<std::string> names;
    for (std::string &piece : pieces) {
      const std::size_t start = std::min(piece.find_first_not_of(" \t\r\n"), piece.size());
      const std::string name = piece.substr(start, piece.find_first_of(" =\n", start) - start);
      if (std::find(names.begin(), names.end(), name) != names.end() && !fault()) {
        piece.clear();
      }
      names.push_back(name);
    }
  }

  std::string joined_in_any_order(std::vector<std::string> &pieces, bool with_interruptions) {
    std::string result;
    while (!pieces.empty()) {
      const unsigned place = choices.below(static_cast<unsigned>(pieces.size()));
      if (with_interruptions && choices.one_in(3)) {
        result += between();
      }
      result += pieces[place];
      pieces.erase(pieces.begin() + place);
    }
    if (with_interruptions && choices.one_in(3)) {
      result += between();
    }
    return result;
  }

  // ------------------------------------------------ elements

  // Content between elements, where readers ignore text.
  std::string between() {
    std::string result;
    for (unsigned pieces = 1 + choices.below(3); pieces > 0; --pieces) {
      result += choices.one_in(4) ? text(1) : interruption();
    }
    return result;
  }

  std::string element(std::string name, const std::string &attributes, const std::string &content) {
    if (is_x_declared && choices.one_in(6)) {
      name.insert(0, "x:");
    } else if (fault()) {
      static const char *const prefixes[] = {"y:", "x:", ":", "xml:", "xmlns:"};
      name.insert(0, choices.of(prefixes));
    }
    const std::string start = "<" + name + attributes;
    const char *end_of_tag = choices.one_in(16) ? choices.of(spaces) : "";
    if (content.empty() && choices.one_in(2)) {
      return start + end_of_tag + "/>";
    }
    const std::string end_name = fault() ? any_name() : name;
    const std::string end = fault() ? "" : "</" + end_name + end_of_tag + ">";
    return start + ">" + content + end;
  }

  std::string known_element(const Rule &rule) {
    if (++depth > 8) {
      --depth;
      return "";
    }
    bool declares_x = false;
    const std::string attributes = attributes_of(rule, declares_x);
    const bool was_x_declared = is_x_declared;
    is_x_declared = is_x_declared || declares_x;
    std::string content;
    switch (rule.content) {
    case Content::text:
      content = fault() ? choices.of(spaces) : text(1);
      break;
    case Content::code:
      content = fault() ? "" : code();
      break;
    case Content::children:
      content = children_of(rule.name);
      break;
    }
    std::string result = element(rule.name, attributes, content);
    is_x_declared = was_x_declared;
    --depth;
    return result;
  }

  std::string children_of(std::string_view parent) {
    std::vector<std::string> children;
    for (const Rule &rule : rules) {
      if (parent != rule.parent) {
        continue;
      }
      unsigned count = rule.minimum + choices.below(rule.maximum - rule.minimum + 1);
      if (fault()) {
        count = choices.below(3);
      }
      for (; count > 0; --count) {
        children.push_back(known_element(rule));
      }
    }
    return joined_in_any_order(children, true);
  }

  // An element that readers ignore at its place, with its contents, independent of its name.
  std::string unknown_element() {
    if (depth > 4) {
      return "";
    }
    ++depth;
    std::string name = choices.of(unknown_names);
    if (name == "x:code" && !is_x_declared && !fault()) {
      name = "codes";
    }
    std::string content;
    switch (choices.below(4)) {
    case 0:
      break;
    case 1:
      content = text(1);
      break;
    case 2:
      content = choices.of(strange_words);
      break;
    default:
      content = known_element(rules[choices.below(static_cast<unsigned>(rules.size()))]);
    }
    --depth;
    return element(name, "", content);
  }

  std::string root_element() {
    const Rule rule = {"", root, {}, Content::children, 1, 1};
    if (choices.one_in(512)) {
      return deep_element();
    }
    if (fault()) {
      return element(any_name(), "", children_of(root));
    }
    return known_element(rule);
  }

  // The library refuses elements deeper than 256.
  std::string deep_element() {
    std::string before;
    std::string after;
    for (unsigned left = 250 + choices.below(10); left > 0; --left) {
      before += "<d>";
      after += "</d>";
    }
    const std::string content = children_of(root);
    const std::string name = root;
    return choices.one_in(2)
               ? "<" + name + ">" + before + after + content + "</" + name + ">"
               : "<" + name + ">" + content + before + text(1) + after + "</" + name + ">";
  }

  // ------------------------------------------------ around the root

  std::string misc() {
    std::string result;
    while (choices.one_in(4)) {
      switch (choices.below(4)) {
      case 0:
        result += comment();
        break;
      case 1:
        result += instruction();
        break;
      case 2:
        result += fault() ? word() : "";
        break;
      default:
        result += choices.of(spaces);
      }
    }
    return result;
  }

  std::string document_type() {
    static const char *const externals[] = {
        " SYSTEM 'codeset.dtd'", " SYSTEM 'file:///etc/hostname'",
        " PUBLIC '-//x//y' 'http://127.0.0.1/x.dtd'", " SYSTEM ''", " PUBLIC 'a' \"b\""};
    std::string type = "<!DOCTYPE " + (fault() ? any_name() : std::string(root));
    if (choices.one_in(4)) {
      type += choices.of(externals);
      may_be_undeclared = true;
    }
    if (!choices.one_in(6)) {
      type += " [";
      for (unsigned count = 1 + choices.below(5); count > 0; --count) {
        type += declaration();
      }
      type += "]";
    }
    return type + ">";
  }

  std::string declaration() {
    switch (choices.below(12)) {
    case 0:
      return comment();
    case 1:
      return instruction();
    case 2:
      return "<!ELEMENT " + any_name() + (choices.one_in(2) ? " ANY>" : " (#PCDATA|a)*>");
    case 3:
    case 4:
    case 5:
      return attribute_list();
    case 6:
      return parameter_entity();
    case 7:
      return "<!NOTATION n SYSTEM 'n'>";
    default:
      return entity();
    }
  }

  std::string attribute_list() {
    static const char *const types[] = {"CDATA", "CDATA",  "NMTOKEN", "NMTOKENS",    "ID",
                                        "IDREF", "(sv|x)", "ENTITY",  "NOTATION (n)"};
    static const char *const defaults[] = {
        " 'sv'",  " \"  x  y \"", " #IMPLIED", " #REQUIRED", " #FIXED 'sv'", " ''",
        " '/d/'", " 'true'",      " '&#xE5;'", " '&amp;'",   " 'a&#38;b'",   " '&e0;'"};
    static const char *const names[] = {"lang",    "lang",   "path",     "tag",
                                        "active",  "x:lang", "xml:lang", "xmlns",
                                        "xmlns:x", "xml:id", "id"};
    std::string list = "<!ATTLIST " + any_name();
    for (unsigned count = 1 + choices.below(2); count > 0; --count) {
      list += std::string(" ") + choices.of(names) + " " + choices.of(types) + choices.of(defaults);
    }
    return list + ">";
  }

  std::string parameter_entity() {
    static const char *const declarations[] = {
        "<!ENTITY % p \"<!ENTITY fromp 'P'>\">%p;", "<!ENTITY % q SYSTEM 'q.ent'>%q;",
        "<!ENTITY % r ''> %r;", "%unknown;",
        "<!ENTITY % s \"<!ATTLIST name lang CDATA 'sv'>\"> %s;"};
    if (fault()) {
      return "<!ENTITY % t '%t;'> %t;";
    }
    const unsigned number = choices.below(5);
    may_be_undeclared = may_be_undeclared || number == 1 || number == 3;
    if (number == 0) {
      entities.emplace_back("fromp");
    }
    return declarations[number];
  }

  // Entities refer to those before them only, and few times, so that none expands to much.
  std::string entity() {
    static const char *const contents[] = {
        "T",
        "",
        " ",
        "a<b>m</b>c",
        "<code>7</code>",
        "<!--c-->x",
        "&#38;amp;",
        "&#38;#60;",
        "&#xE5;",
        "<?code x?>",
        "<![CDATA[<]]>",
        "a b  c",
        "<remark><code>77</code><description lang='sv'>d</description></remark>",
        "<name lang='sv'>E</name>",
        "&#x9;",
        "<code>8</code><description lang=''>d</description>"};
    static const char *const broken_contents[] = {"<b>",   "</b>",   "&unknown;", "&self;", "&#38;",
                                                  "&#60;", "\u20AC", "a<b/",      "]]>"};
    static const char *const externals[] = {" SYSTEM 'x.ent'", " PUBLIC 'p' 'x.ent'",
                                            " SYSTEM 'x.gif' NDATA n", " SYSTEM '/etc/hostname'"};
    std::string name = "e" + std::to_string(entities.size());
    if (choices.one_in(6)) {
      name = any_name();
    }
    if (fault()) {
      name = choices.one_in(2) ? "self" : "amp";
    }
    std::string content;
    if (fault() || choices.one_in(24)) {
      content = choices.of(externals);
    } else {
      std::string value = fault() ? choices.of(broken_contents) : choices.of(contents);
      if (!entities.empty() && choices.one_in(3)) {
        value += "&" + entities.back() + ";" + choices.of(words);
      }
      value = std::string(value.find('"') == std::string::npos ? value : "Q");
      std::replace(value.begin(), value.end(), '%', 'p');
      content = " \"" + value + "\"";
    }
    entities.push_back(name);
    return "<!ENTITY " + name + content + ">";
  }

  // ------------------------------------------------ broken ends

  void break_somewhere(std::string &bytes) {
    const std::size_t size = bytes.size();
    if (size == 0) {
      return;
    }
    const std::size_t place =
        (choices.below(65536) * std::size_t{65536} + choices.below(65536)) % size;
    const std::size_t length = 1 + choices.below(16);
    static const char *const insertions[] = {"<",    ">",  "&",     "]]>",       "<![CDATA[",
                                             "<!--", "x",  "\xFF",  "</remark>", "<remark>",
                                             "'",    "\"", "<?a?>", "<b/>"};
    switch (choices.below(6)) {
    case 0:
      bytes.resize(place);
      break;
    case 1:
      bytes[place] = static_cast<char>(choices.below(256));
      break;
    case 2:
      bytes.erase(place, length);
      break;
    case 3:
      bytes.insert(place, bytes.substr(place, length));
      break;
    case 4:
      bytes.insert(place, choices.of(insertions));
      break;
    default:
      bytes += choices.of(insertions);
    }
  }

  LongTexts long_texts;
  Choices &choices;
  const Rules &rules;
  const char *root;
  unsigned fault_rate = 0;
  unsigned depth = 0;
  unsigned code_count = 0;
  bool is_x_declared = false;
  std::vector<std::string> entities;
  // A part of the document type that nobody reads may declare any entity.
  bool may_be_undeclared = false;
};

} // namespace

std::string generate_document(DocumentKind kind, LongTexts long_texts, const std::uint8_t *bytes,
                              std::size_t length) {
  Choices choices(bytes, length);
  if (choices.below(256) == 0) {
    return choices.rest();
  }
  return Generator(kind, long_texts, choices).document();
}
