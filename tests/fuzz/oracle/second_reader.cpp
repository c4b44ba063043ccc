#include "fuzz/oracle/second_reader.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

#include <fcntl.h>
#include <glib.h>
#include <libxml/parser.h>
#include <libxml/tree.h>
#include <libxml/xmlerror.h>
#include <unistd.h>

#include "base/natural_order.h"
#include "base/owned.h"

bool operator==(const CodesetContents &a, const CodesetContents &b) {
  return a.name == b.name && a.author == b.author && a.version == b.version &&
         a.remarks == b.remarks;
}

namespace {

// ---------------------------------------------------------------- the error state

class Message {
public:
  explicit Message(std::string held_message) : text(std::move(held_message)) {}

  // Both return false, so that a failure can be returned in one line.
  bool set(const std::string &message) {
    text = message;
    return false;
  }
  bool append(const std::string &message) {
    text = text.empty() ? message : message + "\n\n" + text;
    return false;
  }
  void limit_lines(int maximum) {
    std::size_t cut = 0;
    for (int lines = 0; lines < maximum; ++lines) {
      const std::size_t line_feed = text.find('\n', cut);
      if (line_feed == std::string::npos) {
        return;
      }
      cut = line_feed + 1;
    }
    while (cut > 0 && text[cut - 1] == '\n') {
      --cut;
    }
    text = text.substr(0, cut) + "\n\n(Error message truncated.)";
  }

  std::string text;
};

// ---------------------------------------------------------------- text

bool is_space(char character) { return std::strchr(" \t\n\v\f\r", character) && character != '\0'; }

std::string strip(const std::string &text) {
  std::size_t start = 0;
  std::size_t end = text.size();
  while (start < end && is_space(text[start])) {
    ++start;
  }
  while (end > start && is_space(text[end - 1])) {
    --end;
  }
  return text.substr(start, end - start);
}

std::string compact(const std::string &text) {
  std::string result;
  for (const char character : strip(text)) {
    if (!is_space(character)) {
      result += character;
    } else if (result.back() != ' ') {
      result += ' ';
    }
  }
  return result;
}

bool is_ascii(const std::string &text) {
  return std::all_of(text.begin(), text.end(),
                     [](char character) { return static_cast<unsigned char>(character) < 128; });
}

bool convert_to_latin1(std::string &latin1_text, const std::string &utf8_text, Message &message) {
  latin1_text.clear();
  for (const char *p = utf8_text.c_str(); *p != '\0'; p = g_utf8_next_char(p)) {
    const gunichar character = g_utf8_get_char(p);
    if (character > 0xFF) {
      return message.set("Character incompatible with ISO-8859-1 found where not allowed.");
    }
    latin1_text += static_cast<char>(character);
  }
  return true;
}

bool parse_int(int &value, const std::string &text, Message &message) {
  if (text.empty()) {
    return message.set("Empty integer value.");
  }
  if (g_unichar_isspace(g_utf8_get_char(text.c_str()))) {
    return message.set("Integer value must not begin with whitespace.");
  }
  char *end = nullptr;
  errno = 0;
  const gint64 number = g_ascii_strtoll(text.c_str(), &end, 10);
  if (errno == EINVAL) {
    return message.set("Integer parser error.");
  }
  if (errno == ERANGE) {
    return message.set("Integer value out of range (overflow or underflow).");
  }
  if (*end != '\0') {
    return message.set("Invalid characters in integer value.");
  }
  if (number < INT_MIN) {
    return message.set("Integer value out of valid range (too small).");
  }
  if (number > INT_MAX) {
    return message.set("Integer value out of valid range (too large).");
  }
  value = static_cast<int>(number);
  return true;
}

// ---------------------------------------------------------------- parsing

G_GNUC_PRINTF(2, 3) void collect_diagnostic(void *collected, const char *format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const OwnedText piece(g_strdup_vprintf(format, arguments));
  va_end(arguments);
  *static_cast<std::string *>(collected) += piece.get();
}

xmlParserInput *refuse_external_entity(const char *, const char *, xmlParserCtxt *) {
  return nullptr;
}

// The library's settings during a parse.
class ParserSettings {
public:
  explicit ParserSettings(std::string &collected)
      : loader(xmlGetExternalEntityLoader()), substitutes_entities(xmlSubstituteEntitiesDefault(1)),
        loads_dtds(xmlLoadExtDtdDefaultValue) {
    xmlSetGenericErrorFunc(&collected, collect_diagnostic);
    xmlSetExternalEntityLoader(refuse_external_entity);
    xmlLoadExtDtdDefaultValue = 1;
  }
  ~ParserSettings() {
    xmlSetGenericErrorFunc(nullptr, nullptr);
    xmlSetExternalEntityLoader(loader);
    xmlSubstituteEntitiesDefault(substitutes_entities);
    xmlLoadExtDtdDefaultValue = loads_dtds;
  }
  ParserSettings(const ParserSettings &) = delete;
  ParserSettings &operator=(const ParserSettings &) = delete;

private:
  xmlExternalEntityLoader loader;
  int substitutes_entities;
  int loads_dtds;
};

OwnedXmlDoc parse(const std::string &path, Message &message) {
  const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor < 0) {
    throw std::runtime_error(path + ": " + g_strerror(errno));
  }
  std::string collected;
  OwnedXmlDoc document;
  {
    const ParserSettings settings(collected);
    xmlResetLastError();
    document.reset(xmlReadFd(descriptor, nullptr, nullptr, 0));
  }
  close(descriptor);
  // The program refuses a file that cannot be read to its end, where the library is content with
  // the root.
  const xmlError *last = xmlGetLastError();
  if (document && (last == nullptr || last->domain != XML_FROM_IO)) {
    return document;
  }
  if (collected.empty()) {
    message.set("Unknown XML error.");
  } else {
    const OwnedText utf8_text(
        g_utf8_make_valid(collected.data(), static_cast<gssize>(collected.size())));
    message.set(strip(utf8_text.get()));
    message.limit_lines(15);
  }
  message.append("Could not parse XML data.");
  return nullptr;
}

// ---------------------------------------------------------------- the tree

bool has_name(const xmlNode *node, const char *name) {
  return node->name != nullptr &&
         std::strcmp(reinterpret_cast<const char *>(node->name), name) == 0;
}

bool is_element(const xmlNode *node) { return node->type == XML_ELEMENT_NODE; }

// In document order. Only elements have content: what the library keeps below a reference is the
// declaration of its entity.
std::vector<xmlNode *> children_of(const xmlNode *node) {
  std::vector<xmlNode *> children;
  if (is_element(node)) {
    for (xmlNode *child = node->children; child != nullptr; child = child->next) {
      children.push_back(child);
    }
  }
  return children;
}

// Whether every entity that the nodes refer to is declared, those inside of entities included.
bool are_entities_declared(xmlDoc *document, const xmlNode *first) {
  for (const xmlNode *node = first; node != nullptr; node = node->next) {
    if (node->type != XML_ENTITY_REF_NODE) {
      continue;
    }
    const xmlEntity *entity = xmlGetDocEntity(document, node->name);
    if (entity == nullptr || !are_entities_declared(document, entity->children)) {
      return false;
    }
  }
  return true;
}

bool read_text(std::string &text, xmlDoc *document, const xmlNode *node, Message &message) {
  text.clear();
  if (!is_element(node)) {
    return true;
  }
  if (!are_entities_declared(document, node->children)) {
    return message.set("Error reading text content from XML node.");
  }
  const OwnedXmlText content(xmlNodeListGetString(document, node->children, 1));
  if (content) {
    text = reinterpret_cast<const char *>(content.get());
  }
  return true;
}

bool read_latin1_text(std::string &text, xmlDoc *document, const xmlNode *node, Message &message) {
  std::string utf8_text;
  if (!read_text(utf8_text, document, node, message)) {
    return false;
  }
  if (!convert_to_latin1(text, utf8_text, message)) {
    return message.append("Invalid XML node content.");
  }
  return true;
}

bool read_nonempty_compact_text(std::string &text, xmlDoc *document, const xmlNode *node,
                                Message &message) {
  if (!read_latin1_text(text, document, node, message)) {
    return false;
  }
  text = compact(text);
  if (text.empty()) {
    message.set("Text content is empty.");
    return message.append("Missing text content in XML.");
  }
  return true;
}

// The value that the nodes of an attribute make; null when it cannot be read.
OwnedXmlText attribute_value(xmlDoc *document, const xmlNode *nodes) {
  if (!are_entities_declared(document, nodes)) {
    return nullptr;
  }
  OwnedXmlText value(xmlNodeListGetString(document, nodes, 1));
  return value ? std::move(value) : OwnedXmlText(xmlStrdup(BAD_CAST ""));
}

// The value in the element's own tag, or the declared default; null when it cannot be read. The
// library gives a default as it is declared, with the references in it.
OwnedXmlText attribute_value(const xmlNode *node, const xmlChar *name) {
  for (const xmlAttr *attribute = node->properties; attribute; attribute = attribute->next) {
    if (xmlStrEqual(attribute->name, name)) {
      return attribute_value(node->doc, attribute->children);
    }
  }
  const OwnedXmlText declared(xmlGetProp(node, name));
  xmlNode *nodes = xmlStringGetNodeList(node->doc, declared.get());
  OwnedXmlText value = attribute_value(node->doc, nodes);
  xmlFreeNodeList(nodes);
  return value;
}

// Null for an attribute that is absent.
bool read_attribute(std::optional<std::string> &value, const xmlNode *node, const char *name,
                    Message &message) {
  value.reset();
  const auto *xml_name = reinterpret_cast<const xmlChar *>(name);
  if (!is_element(node) || xmlHasProp(node, xml_name) == nullptr) {
    return true;
  }
  const OwnedXmlText text = attribute_value(node, xml_name);
  if (!text) {
    return message.set("Error when reading XML attribute.");
  }
  value = reinterpret_cast<const char *>(text.get());
  return true;
}

bool read_ascii_attribute(std::optional<std::string> &value, const xmlNode *node, const char *name,
                          Message &message) {
  if (!read_attribute(value, node, name, message)) {
    return false;
  }
  if (value && !is_ascii(*value)) {
    message.set("Non-ascii byte found where not allowed.");
    return message.append("Invalid XML attribute content.");
  }
  return true;
}

bool read_required_attribute(std::string &value, const xmlNode *node, const char *name,
                             Message &message) {
  std::optional<std::string> found;
  if (!read_attribute(found, node, name, message)) {
    return false;
  }
  if (!found) {
    return message.set(std::string("Missing XML attribute: ") + name);
  }
  value = *found;
  return true;
}

// ---------------------------------------------------------------- language-tagged strings

void set_translation(Translations &translations, const std::string &lang, const std::string &text) {
  for (auto &[known_lang, known_text] : translations) {
    if (known_lang == lang) {
      known_text = text;
      return;
    }
  }
  if (lang.empty()) {
    for (const auto &translation : translations) {
      if (translation.second == text) {
        return;
      }
    }
  } else {
    for (auto &[known_lang, known_text] : translations) {
      if (known_lang.empty() && known_text == text) {
        known_lang = lang;
        return;
      }
    }
  }
  translations.emplace_back(lang, text);
}

bool read_translation(Translations &translations, xmlDoc *document, const xmlNode *element,
                      Message &message) {
  std::optional<std::string> lang;
  if (!read_ascii_attribute(lang, element, "lang", message)) {
    return false;
  }
  if (!lang) {
    return message.set("Missing XML attribute: lang");
  }
  std::string text;
  if (!read_latin1_text(text, document, element, message)) {
    return false;
  }
  text = compact(text);
  if (text.empty()) {
    return message.set("Empty text content in XML where not allowed.");
  }
  set_translation(translations, compact(*lang), text);
  return true;
}

bool read_langstr(Translations &translations, xmlDoc *document, const xmlNode *parent,
                  const char *name, Message &message) {
  for (const xmlNode *child : children_of(parent)) {
    if (is_element(child) && has_name(child, name) &&
        !read_translation(translations, document, child, message)) {
      return false;
    }
  }
  return true;
}

// ---------------------------------------------------------------- remarks

using RemarkContents = std::pair<std::string, Translations>;

bool read_remark(RemarkContents &remark, xmlDoc *document, const xmlNode *element,
                 Message &message) {
  std::optional<std::string> code;
  Translations description;
  bool is_stopped = false;
  for (const xmlNode *child : children_of(element)) {
    if (has_name(child, "code")) {
      if (code) {
        is_stopped = true;
        message.set("Remark in XML has multiple codes.");
        break;
      }
      std::string text;
      if (!read_nonempty_compact_text(text, document, child, message)) {
        is_stopped = true;
        message.append("Missing or invalid remark code in XML data.");
        break;
      }
      code = text;
    } else if (has_name(child, "description")) {
      if (!read_translation(description, document, child, message)) {
        is_stopped = true;
        break;
      }
    }
  }
  if (!code || description.empty()) {
    return message.set("Missing remark content in XML data.");
  }
  remark = {*code, description};
  return !is_stopped;
}

int compare_codes(const std::string &a, const std::string &b) {
  using Comparison = int (*)(const char *, const char *);
  for (const Comparison compare : {strnatzerocasecmp, strnatcasecmp, strnatzerocmp, strnatcmp}) {
    const int order = compare(a.c_str(), b.c_str());
    if (order != 0) {
      return order;
    }
  }
  return std::strcmp(a.c_str(), b.c_str());
}

void add_sorted(Remarks &remarks, const RemarkContents &remark) {
  auto place = remarks.begin();
  while (place != remarks.end() && compare_codes(place->first, remark.first) <= 0) {
    ++place;
  }
  remarks.insert(place, remark);
}

// ---------------------------------------------------------------- codesets

bool read_version(std::optional<std::string> &version, xmlDoc *document, const xmlNode *root,
                  Message &message) {
  const xmlNode *found = nullptr;
  for (const xmlNode *child : children_of(root)) {
    if (has_name(child, "version")) {
      if (found != nullptr) {
        return message.set("Duplicate XML nodes found where not allowed.");
      }
      found = child;
    }
  }
  if (found == nullptr) {
    return true;
  }
  std::string text;
  if (!read_nonempty_compact_text(text, document, found, message)) {
    return false;
  }
  version = text;
  return true;
}

bool read_remarks(Remarks &remarks, xmlDoc *document, const xmlNode *root, Message &message) {
  for (const xmlNode *child : children_of(root)) {
    if (!has_name(child, "remark")) {
      continue;
    }
    RemarkContents remark;
    if (!read_remark(remark, document, child, message)) {
      return false;
    }
    for (const auto &[code, description] : remarks) {
      if (code == remark.first) {
        return message.set("Duplicate remark codes.");
      }
    }
    add_sorted(remarks, remark);
  }
  return !remarks.empty() || message.set("Missing remarks.");
}

bool read_codeset(CodesetContents &contents, xmlDoc *document, const xmlNode *root,
                  Message &message) {
  if (!read_langstr(contents.name, document, root, "name", message)) {
    return false;
  }
  if (contents.name.empty()) {
    return message.set("Missing XML node: name");
  }
  return read_langstr(contents.author, document, root, "author", message) &&
         read_version(contents.version, document, root, message) &&
         read_remarks(contents.remarks, document, root, message);
}

// ---------------------------------------------------------------- writing

std::string escaped(const std::string &latin1_text) {
  std::string xml;
  for (const char character : latin1_text) {
    switch (character) {
    case '&':
      xml += "&amp;";
      break;
    case '"':
      xml += "&quot;";
      break;
    case '\'':
      xml += "&apos;";
      break;
    case '<':
      xml += "&lt;";
      break;
    case '>':
      xml += "&gt;";
      break;
    case '\n':
      xml += "&#xA;";
      break;
    case '\t':
      xml += "&#x9;";
      break;
    case '\r':
      xml += "&#xD;&#x9;";
      break;
    default:
      xml += character;
    }
  }
  return xml;
}

std::string written(const Translations &translations, const std::string &element,
                    const std::string &indent) {
  std::string xml;
  for (const auto &[lang, text] : translations) {
    xml.append(indent).append("<").append(element).append(" lang=\"").append(escaped(lang));
    xml.append("\">").append(escaped(text)).append("</").append(element).append(">\n");
  }
  return xml;
}

// ---------------------------------------------------------------- settings

class SettingsReader {
public:
  SettingsReader(xmlDoc *parsed_document, SettingsReading &settings_reading, Message &held_message)
      : document(parsed_document), reading(settings_reading), message(held_message) {}

  void read(const xmlNode *root) {
    for (const xmlNode *child : children_of(root)) {
      if (is_element(child)) {
        read_element(child);
      }
    }
  }

private:
  void read_element(const xmlNode *element) {
    if (has_name(element, "archive")) {
      take_text("archive", element, "path");
    } else if (has_name(element, "automatically-place-id")) {
      take_flag("place id", element, "active");
    } else if (has_name(element, "default-mark-id-style")) {
      take_mark_id_style(element);
    } else if (has_name(element, "default-printout-settings")) {
      take_printout(element);
    } else if (has_name(element, "export")) {
      for (const xmlNode *child : children_of(element)) {
        if (is_element(child) && has_name(child, "folder")) {
          take_text("export", child, "path");
        }
      }
    } else if (has_name(element, "last-used-layout")) {
      take_text("last layout", element, "filename");
    } else if (has_name(element, "last-used-paper")) {
      std::string id;
      if (required_ascii(id, element, "id")) {
        reading.fields["last paper"] = id;
      }
    } else if (has_name(element, "left-handed")) {
      take_flag("left-handed", element, "active");
    } else if (has_name(element, "preferred-languages")) {
      take_languages(element);
    } else if (has_name(element, "recent-custom-remarks")) {
      take_remarks(element);
    } else if (has_name(element, "remember-tool-choice")) {
      take_flag("remember tool", element, "active");
    }
  }

  bool required(std::string &value, const xmlNode *element, const char *attribute) {
    return read_required_attribute(value, element, attribute, message);
  }

  // Only a value that is there and is not ASCII makes the whole reading fail.
  bool required_ascii(std::string &value, const xmlNode *element, const char *attribute) {
    std::optional<std::string> found;
    if (!read_ascii_attribute(found, element, attribute, message)) {
      reading.is_read = false;
      return false;
    }
    if (!found) {
      return message.set(std::string("Missing XML attribute: ") + attribute);
    }
    value = *found;
    return true;
  }

  void take_text(const char *field, const xmlNode *element, const char *attribute) {
    std::string value;
    if (required(value, element, attribute)) {
      reading.fields[field] = value;
    }
  }

  static std::string flag(const std::string &value) { return value == "true" ? "1" : "0"; }

  void take_flag(const char *field, const xmlNode *element, const char *attribute) {
    std::string value;
    if (required(value, element, attribute)) {
      reading.fields[field] = flag(value);
    }
  }

  void take_mark_id_style(const xmlNode *element) {
    std::string text;
    int style = 0;
    if (!required(text, element, "style")) {
      return;
    }
    if (text.empty()) {
      message.set("Empty XML attribute: style");
      return;
    }
    if (!parse_int(style, text, message)) {
      message.append("Invalid integer value in XML attribute: style");
      return;
    }
    if (style >= 0 && style <= 2) {
      reading.fields["mark id style"] = std::to_string(style);
    }
  }

  void take_printout(const xmlNode *element) {
    for (const xmlNode *child : children_of(element)) {
      if (!is_element(child)) {
        continue;
      }
      if (has_name(child, "identifier")) {
        take_identifier(child);
      } else if (has_name(child, "layout")) {
        take_text("layout", child, "filename");
      } else if (has_name(child, "paper")) {
        take_paper(child);
      } else if (has_name(child, "details")) {
        take_details(child);
      } else if (has_name(child, "legend")) {
        take_legend(child);
      } else if (has_name(child, "page-numbers")) {
        take_flag("page numbers", child, "show");
      } else if (has_name(child, "report-type")) {
        take_flag("report type", child, "show");
      }
    }
  }

  void take_identifier(const xmlNode *element) {
    const char *const settings[] = {"None", "Object ID", "Inventory ID",
                                    "Inventory ID or Object ID"};
    std::string value;
    if (!required(value, element, "setting")) {
      return;
    }
    for (int number = 0; number < 4; ++number) {
      if (value == settings[number]) {
        reading.fields["identifier"] = std::to_string(number);
      }
    }
  }

  void take_paper(const xmlNode *element) {
    std::string name;
    std::string orientation;
    if (required(name, element, "name") && required(orientation, element, "orientation")) {
      reading.fields["landscape"] = orientation == "Landscape" ? "1" : "0";
    }
  }

  void take_details(const xmlNode *element) {
    std::string on_text_page;
    std::string on_view_pages;
    if (required(on_text_page, element, "show-on-text-page") &&
        required(on_view_pages, element, "show-on-view-pages")) {
      reading.fields["details text"] = flag(on_text_page);
      reading.fields["details view"] = flag(on_view_pages);
    }
  }

  static std::string codeset_level(const std::string &value) {
    return value == "From all codesets" ? "1" : value == "From no codeset" ? "3" : "2";
  }

  static std::string mark_level(const std::string &value) {
    return value == "From this view only" ? "2" : value == "From no view" ? "3" : "1";
  }

  void take_legend(const xmlNode *element) {
    const char *const attributes[] = {"show-on-text-page",
                                      "show-on-view-pages",
                                      "text-page-codeset-filter-level",
                                      "text-page-mark-filter-level",
                                      "view-page-codeset-filter-level",
                                      "view-page-mark-filter-level"};
    std::vector<std::string> values;
    for (const char *attribute : attributes) {
      std::string value;
      if (!required(value, element, attribute)) {
        return;
      }
      values.push_back(value);
    }
    reading.fields["legend text"] = flag(values[0]);
    reading.fields["legend view"] = flag(values[1]);
    reading.fields["text codesets"] = codeset_level(values[2]);
    reading.fields["text marks"] = mark_level(values[3]);
    reading.fields["view codesets"] = codeset_level(values[4]);
    reading.fields["view marks"] = mark_level(values[5]);
  }

  void take_languages(const xmlNode *element) {
    std::vector<std::string> tags;
    for (const xmlNode *child : children_of(element)) {
      std::string tag;
      if (is_element(child) && has_name(child, "language") && required_ascii(tag, child, "tag")) {
        tags.push_back(tag);
      }
    }
    reading.fields["languages"] = settings_field_of(tags);
  }

  void take_remarks(const xmlNode *element) {
    Remarks remarks;
    for (const xmlNode *child : children_of(element)) {
      if (!is_element(child) || !has_name(child, "remark")) {
        continue;
      }
      RemarkContents remark;
      if (read_remark(remark, document, child, message)) {
        remarks.push_back(remark);
      } else {
        reading.is_read = false;
      }
    }
    reading.fields["remarks"] = settings_field_of(remarks);
  }

  xmlDoc *document;
  SettingsReading &reading;
  Message &message;
};

} // namespace

CodesetReading second_read_codeset(const std::string &path, const std::string &held_message) {
  Message message(held_message);
  const OwnedXmlDoc document = parse(path, message);
  if (!document) {
    message.append("Error loading codeset file.");
    return {std::nullopt, message.text};
  }
  const xmlNode *root = xmlDocGetRootElement(document.get());
  if (root == nullptr) {
    message.set("Missing root element in XML tree.");
    message.append("Invalid codeset file.");
    return {std::nullopt, message.text};
  }
  if (!has_name(root, "codeset")) {
    return {std::nullopt, "Not a codeset file."};
  }
  CodesetContents contents;
  if (!read_codeset(contents, document.get(), root, message)) {
    message.append("Error parsing codeset file.");
    return {std::nullopt, message.text};
  }
  return {contents, message.text};
}

std::string settings_field_of(const std::vector<std::string> &texts) {
  std::string field;
  for (const std::string &text : texts) {
    field += "[" + text + "]";
  }
  return field;
}

std::string settings_field_of(const Remarks &remarks) {
  std::string field;
  for (const auto &[code, description] : remarks) {
    field += "[" + code + "]";
    for (const auto &[lang, text] : description) {
      field.append("(").append(lang).append(": ").append(text).append(")");
    }
  }
  return field;
}

SettingsReading second_read_settings(const std::string &path, SettingsFields fields,
                                     const std::string &held_message) {
  Message message(held_message);
  SettingsReading reading{false, std::move(fields), "", false};
  const OwnedXmlDoc document = parse(path, message);
  const xmlNode *root = document ? xmlDocGetRootElement(document.get()) : nullptr;
  if (document && root == nullptr) {
    message.set("Missing root element in XML tree.");
  }
  if (root != nullptr && has_name(root, "settings")) {
    reading.is_read = true;
    SettingsReader(document.get(), reading, message).read(root);
    reading.is_partly_read = !reading.is_read;
  }
  reading.message = message.text;
  return reading;
}

PointerReading second_read_pointer(const std::string &path, const std::string &held_message) {
  Message message(held_message);
  const OwnedXmlDoc document = parse(path, message);
  if (!document) {
    return {std::nullopt, message.text};
  }
  const xmlNode *root = xmlDocGetRootElement(document.get());
  if (root == nullptr) {
    return {std::nullopt, "Missing root element in XML tree."};
  }
  const xmlNode *workspace = nullptr;
  for (const xmlNode *child : children_of(root)) {
    if (has_name(child, "workspace")) {
      if (workspace != nullptr) {
        return {std::nullopt, "Duplicate XML nodes found where not allowed."};
      }
      workspace = child;
    }
  }
  if (workspace == nullptr) {
    return {std::nullopt, "Missing XML node: workspace"};
  }
  std::string workspace_path;
  if (!read_required_attribute(workspace_path, workspace, "path", message)) {
    return {std::nullopt, message.text};
  }
  if (workspace_path.empty()) {
    return {std::nullopt, "Empty XML attribute: path"};
  }
  while (!workspace_path.empty() && workspace_path.back() == '/') {
    workspace_path.pop_back();
  }
  return {workspace_path, message.text};
}

std::string second_write_codeset(const CodesetContents &contents) {
  std::string xml = "<?xml version=\"1.0\" encoding=\"iso-8859-1\"?>\n\n<codeset>\n\n";
  xml += written(contents.name, "name", "\t");
  xml += written(contents.author, "author", "\t");
  if (contents.version) {
    xml += "\t<version>" + escaped(*contents.version) + "</version>\n";
  }
  for (const auto &[code, description] : contents.remarks) {
    xml += "\n\t<remark>\n\t\t<code>" + code + "</code>\n";
    xml += written(description, "description", "\t\t");
    xml += "\t</remark>\n";
  }
  return xml + "\n</codeset>\n";
}

Translations second_collect(const Translations &translations) {
  Translations collected;
  for (const auto &[lang, text] : translations) {
    set_translation(collected, lang, text);
  }
  return collected;
}
