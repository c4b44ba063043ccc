#include "langstr/langstr_xml.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "base/error.h"
#include "base/whitespace.h"
#include "base/xml_reading.h"
#include "base/xml_writing.h"

namespace {

constexpr const char *lang_attribute = "lang";

void normalise(char *latin1_text, LangstrSpacing spacing) {
  if (spacing == LangstrSpacing::compact) {
    v_strip_surrounding_and_spacify_compactly_within_original_for_latin1(latin1_text);
  } else {
    v_strip_surrounding_and_detabify_within_original_for_latin1(latin1_text);
  }
}

// Normalised tag and text of one element.
struct Translation {
  OwnedText lang;
  OwnedText text;
};

bool read_translation(Translation &translation, const XmlElement &element, LangTag lang_tag,
                      LangstrSpacing spacing) {
  auto &[lang, text] = translation;
  if (!v_xml_get_attribute(lang, element, lang_attribute, XmlEncoding::ascii, XmlPresence::required,
                           XmlContent::any)) {
    return false;
  }
  v_strip_surrounding_and_spacify_compactly_within_original_for_ascii(lang.get());
  if (lang_tag == LangTag::required && *lang == '\0') {
    v_error_set("Empty XML lang attribute where not allowed.");
    return false;
  }
  text = v_xml_get_text(element, XmlEncoding::latin1, XmlSpacing::kept, XmlContent::any);
  if (!text) {
    return false;
  }
  normalise(text.get(), spacing);
  if (*text == '\0') {
    v_error_set("Empty text content in XML where not allowed.");
    return false;
  }
  return true;
}

} // namespace

bool v_xml_parse_langstr(OwnedLangstr &langstr, xmlDoc *document, const xmlNode *parent,
                         const char *element_name, LangstrSpacing spacing) {
  langstr.reset();
  VLangstrCollection collection;
  const bool all_are_readable =
      XmlNodeElement(document, parent).visit_children([&](const XmlElement &child) {
        return !child.is_element() || !child.has_name(element_name) ||
               v_xml_collect_langstr_translation(collection, child, LangTag::may_be_empty, spacing);
      });
  if (all_are_readable) {
    langstr = std::move(collection.langstr);
  }
  return all_are_readable;
}

OwnedLangstr v_xml_parse_required_langstr(xmlDoc *document, const xmlNode *parent,
                                          const char *element_name, LangstrSpacing spacing) {
  OwnedLangstr langstr;
  if (v_xml_parse_langstr(langstr, document, parent, element_name, spacing) && !langstr) {
    v_xml_set_missing_node_error(element_name);
  }
  return langstr;
}

bool v_xml_parse_langstr_translation(OwnedLangstr &langstr, xmlDoc *document,
                                     const xmlNode *element, LangTag lang_tag,
                                     LangstrSpacing spacing) {
  Translation translation;
  if (!read_translation(translation, XmlNodeElement(document, element), lang_tag, spacing)) {
    return false;
  }
  v_langstr_set_owned_translation(langstr, std::move(translation.lang),
                                  std::move(translation.text));
  return true;
}

bool v_xml_collect_langstr_translation(VLangstrCollection &collection, const XmlElement &element,
                                       LangTag lang_tag, LangstrSpacing spacing) {
  Translation translation;
  if (!read_translation(translation, element, lang_tag, spacing)) {
    return false;
  }
  v_langstr_collect_translation(collection, std::move(translation.lang),
                                std::move(translation.text));
  return true;
}

void v_xml_append_langstr(std::string &xml, const VLangstr *langstr, const char *element_name,
                          int depth) {
  for (const VLangstr *t = langstr; t != nullptr; t = t->next.get()) {
    xml.append(static_cast<std::size_t>(std::max(depth, 0)), '\t');
    xml.append("<").append(element_name).append(" lang=\"");
    // Escaped, because a file may have any ASCII tag.
    v_xml_append_string(xml, t->lang.get());
    xml.append("\">");
    v_xml_append_string(xml, t->text.get());
    xml.append("</").append(element_name).append(">\n");
  }
}

bool v_xml_write_langstr(std::FILE *stream, const VLangstr *langstr, const char *element_name,
                         int depth) {
  std::string xml;
  v_xml_append_langstr(xml, langstr, element_name, depth);
  return v_xml_write_xml(stream, xml);
}

bool v_xml_add_langstr(xmlNode *parent, const VLangstr *langstr, const char *element_name) {
  for (const VLangstr *t = langstr; t != nullptr; t = t->next.get()) {
    xmlNode *element =
        v_xml_add_child_element_with_latin1_text_content(parent, element_name, t->text.get());
    if (element == nullptr || !v_xml_set_attribute(element, lang_attribute, t->lang.get())) {
      return false;
    }
  }
  return true;
}
