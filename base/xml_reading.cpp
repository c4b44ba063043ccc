#include "base/xml_reading.h"

#include <cerrno>
#include <cmath>
#include <cstring>
#include <limits>

#include "base/error.h"
#include "base/integer_parsing.h"
#include "base/whitespace.h"
#include "base/xml_element.h"

namespace {

const char *as_text(const xmlChar *text) { return reinterpret_cast<const char *>(text); }

const xmlChar *as_xml(const char *text) { return reinterpret_cast<const xmlChar *>(text); }

bool get_attribute(OwnedText &value, const xmlNode *node, const char *name, XmlEncoding encoding,
                   XmlPresence presence, XmlContent content) {
  return v_xml_get_attribute(value, XmlNodeElement(node->doc, node), name, encoding, presence,
                             content);
}

OwnedText get_required_attribute(const xmlNode *node, const char *name, XmlEncoding encoding,
                                 XmlContent content) {
  OwnedText value;
  get_attribute(value, node, name, encoding, XmlPresence::required, content);
  return value;
}

bool is_true(const char *text) { return std::strcmp(text, "true") == 0; }

bool parse_double(double &value, const char *text) {
  char *end = nullptr;
  errno = 0;
  const double parsed = g_ascii_strtod(text, &end);
  if (end == text || *end != '\0' || errno == ERANGE || !std::isfinite(parsed) ||
      v_ascii_is_space(*text)) {
    return false;
  }
  value = parsed;
  return true;
}

OwnedText get_text(xmlDoc *document, const xmlNode *node, XmlEncoding encoding, XmlSpacing spacing,
                   XmlContent content) {
  return v_xml_get_text(XmlNodeElement(document, node), encoding, spacing, content);
}

bool get_child_text(OwnedText &text, xmlDoc *document, const xmlNode *node, const char *name,
                    XmlEncoding encoding, XmlSpacing spacing, XmlContent content) {
  text.reset();
  xmlNode *child = nullptr;
  if (!v_xml_get_distinct_child_node(child, node, name)) {
    return false;
  }
  if (child == nullptr) {
    return true;
  }
  text = get_text(document, child, encoding, spacing, content);
  return text != nullptr;
}

} // namespace

bool v_xml_node_has_name(const xmlNode *node, const char *name) {
  return XmlNodeElement(node->doc, node).has_name(name);
}

const char *v_xml_get_node_name(const xmlNode *node) { return as_text(node->name); }

bool v_xml_node_has_attribute(const xmlNode *node, const char *name) {
  return xmlHasProp(node, as_xml(name)) != nullptr;
}

bool v_xml_node_has_child_node_with_name(const xmlNode *node, const char *name) {
  for (const xmlNode *child = node->children; child != nullptr; child = child->next) {
    if (v_xml_node_has_name(child, name)) {
      return true;
    }
  }
  return false;
}

bool v_xml_get_attribute_value_as_ascii(OwnedText &value, const xmlNode *node, const char *name) {
  return get_attribute(value, node, name, XmlEncoding::ascii, XmlPresence::optional,
                       XmlContent::any);
}

bool v_xml_get_attribute_value_as_latin1(OwnedText &value, const xmlNode *node, const char *name) {
  return get_attribute(value, node, name, XmlEncoding::latin1, XmlPresence::optional,
                       XmlContent::any);
}

bool v_xml_get_attribute_value_as_utf8(OwnedText &value, const xmlNode *node, const char *name) {
  return get_attribute(value, node, name, XmlEncoding::utf8, XmlPresence::optional,
                       XmlContent::any);
}

bool v_xml_get_nonempty_attribute_value_as_utf8(OwnedText &value, const xmlNode *node,
                                                const char *name) {
  return get_attribute(value, node, name, XmlEncoding::utf8, XmlPresence::optional,
                       XmlContent::nonempty);
}

bool v_xml_get_attribute_value_as_boolean_with_fallback(const xmlNode *node, const char *name,
                                                        bool fallback) {
  OwnedText text;
  v_xml_get_attribute_value_as_utf8(text, node, name);
  return text ? is_true(text.get()) : fallback;
}

int v_xml_get_attribute_value_as_int_in_range_with_fallback(const xmlNode *node, const char *name,
                                                            int minimum, int maximum,
                                                            int fallback) {
  OwnedText text;
  int value = fallback;
  if (v_xml_get_attribute_value_as_utf8(text, node, name) && text) {
    v_util_parse_int_in_range(&value, text.get(), minimum, maximum);
  }
  return value;
}

double v_xml_get_attribute_value_as_double_in_range_with_fallback(const xmlNode *node,
                                                                  const char *name, double minimum,
                                                                  double maximum, double fallback) {
  OwnedText text;
  double value = fallback;
  if (v_xml_get_attribute_value_as_utf8(text, node, name) && text) {
    parse_double(value, text.get());
  }
  return value >= minimum && value <= maximum ? value : fallback;
}

OwnedText v_xml_get_required_attribute_value_as_ascii(const xmlNode *node, const char *name) {
  return get_required_attribute(node, name, XmlEncoding::ascii, XmlContent::any);
}

OwnedText v_xml_get_required_attribute_value_as_latin1(const xmlNode *node, const char *name) {
  return get_required_attribute(node, name, XmlEncoding::latin1, XmlContent::any);
}

OwnedText v_xml_get_required_attribute_value_as_utf8(const xmlNode *node, const char *name) {
  return get_required_attribute(node, name, XmlEncoding::utf8, XmlContent::any);
}

OwnedText v_xml_get_nonempty_required_attribute_value_as_utf8(const xmlNode *node,
                                                              const char *name) {
  return get_required_attribute(node, name, XmlEncoding::utf8, XmlContent::nonempty);
}

bool v_xml_get_required_attribute_value_as_boolean(bool &value, const xmlNode *node,
                                                   const char *name) {
  const OwnedText text = v_xml_get_required_attribute_value_as_utf8(node, name);
  if (!text) {
    return false;
  }
  value = is_true(text.get());
  return true;
}

bool v_xml_get_required_attribute_value_as_int(int &value, const xmlNode *node, const char *name) {
  return v_xml_get_required_attribute_value_as_int_in_range(
      value, node, name, std::numeric_limits<int>::min(), std::numeric_limits<int>::max());
}

bool v_xml_get_required_attribute_value_as_int_in_range(int &value, const xmlNode *node,
                                                        const char *name, int minimum,
                                                        int maximum) {
  const OwnedText text = v_xml_get_nonempty_required_attribute_value_as_utf8(node, name);
  if (!text) {
    return false;
  }
  if (!v_util_parse_int_in_range(&value, text.get(), minimum, maximum)) {
    v_error_append_utf8_printf("Invalid integer value in XML attribute: %s", name);
    return false;
  }
  return true;
}

bool v_xml_get_required_attribute_value_as_double_in_range(double &value, const xmlNode *node,
                                                           const char *name, double minimum,
                                                           double maximum) {
  const OwnedText text = v_xml_get_nonempty_required_attribute_value_as_utf8(node, name);
  if (!text) {
    return false;
  }
  double parsed = 0;
  if (!parse_double(parsed, text.get()) || parsed < minimum || parsed > maximum) {
    v_error_set_utf8_printf("Invalid number in XML attribute: %s", name);
    return false;
  }
  value = parsed;
  return true;
}

bool v_xml_get_distinct_child_node(xmlNode *&child, const xmlNode *node, const char *name) {
  child = nullptr;
  for (xmlNode *candidate = node->children; candidate != nullptr; candidate = candidate->next) {
    if (!v_xml_node_has_name(candidate, name)) {
      continue;
    }
    if (child != nullptr) {
      child = nullptr;
      v_xml_set_duplicate_nodes_error();
      return false;
    }
    child = candidate;
  }
  return true;
}

xmlNode *v_xml_get_required_distinct_child_node(const xmlNode *node, const char *name) {
  xmlNode *child = nullptr;
  if (v_xml_get_distinct_child_node(child, node, name) && child == nullptr) {
    v_xml_set_missing_node_error(name);
  }
  return child;
}

OwnedText v_xml_get_text_content_as_utf8(xmlDoc *document, const xmlNode *node) {
  return get_text(document, node, XmlEncoding::utf8, XmlSpacing::kept, XmlContent::any);
}

OwnedText v_xml_get_text_content_as_latin1(xmlDoc *document, const xmlNode *node) {
  return get_text(document, node, XmlEncoding::latin1, XmlSpacing::kept, XmlContent::any);
}

OwnedText v_xml_get_nonempty_text_content_as_utf8(xmlDoc *document, const xmlNode *node) {
  return get_text(document, node, XmlEncoding::utf8, XmlSpacing::kept, XmlContent::nonempty);
}

OwnedText v_xml_get_nonempty_text_content_as_compact_utf8(xmlDoc *document, const xmlNode *node) {
  return get_text(document, node, XmlEncoding::utf8, XmlSpacing::compact, XmlContent::nonempty);
}

OwnedText v_xml_get_nonempty_text_content_as_latin1(xmlDoc *document, const xmlNode *node) {
  return get_text(document, node, XmlEncoding::latin1, XmlSpacing::kept, XmlContent::nonempty);
}

OwnedText v_xml_get_nonempty_text_content_as_compact_latin1(xmlDoc *document, const xmlNode *node) {
  return get_text(document, node, XmlEncoding::latin1, XmlSpacing::compact, XmlContent::nonempty);
}

bool v_xml_get_text_content_from_distinct_child_node_as_utf8(OwnedText &text, xmlDoc *document,
                                                             const xmlNode *node,
                                                             const char *name) {
  return get_child_text(text, document, node, name, XmlEncoding::utf8, XmlSpacing::kept,
                        XmlContent::any);
}

bool v_xml_get_text_content_from_distinct_child_node_as_compact_utf8(OwnedText &text,
                                                                     xmlDoc *document,
                                                                     const xmlNode *node,
                                                                     const char *name) {
  return get_child_text(text, document, node, name, XmlEncoding::utf8, XmlSpacing::compact,
                        XmlContent::any);
}

bool v_xml_get_text_content_from_distinct_child_node_as_latin1(OwnedText &text, xmlDoc *document,
                                                               const xmlNode *node,
                                                               const char *name) {
  return get_child_text(text, document, node, name, XmlEncoding::latin1, XmlSpacing::kept,
                        XmlContent::any);
}

bool v_xml_get_text_content_from_distinct_child_node_as_compact_latin1(OwnedText &text,
                                                                       xmlDoc *document,
                                                                       const xmlNode *node,
                                                                       const char *name) {
  return get_child_text(text, document, node, name, XmlEncoding::latin1, XmlSpacing::compact,
                        XmlContent::any);
}

bool v_xml_get_nonempty_text_content_from_distinct_child_node_as_utf8(OwnedText &text,
                                                                      xmlDoc *document,
                                                                      const xmlNode *node,
                                                                      const char *name) {
  return get_child_text(text, document, node, name, XmlEncoding::utf8, XmlSpacing::kept,
                        XmlContent::nonempty);
}

bool v_xml_get_nonempty_text_content_from_distinct_child_node_as_compact_utf8(OwnedText &text,
                                                                              xmlDoc *document,
                                                                              const xmlNode *node,
                                                                              const char *name) {
  return get_child_text(text, document, node, name, XmlEncoding::utf8, XmlSpacing::compact,
                        XmlContent::nonempty);
}

bool v_xml_get_nonempty_text_content_from_distinct_child_node_as_latin1(OwnedText &text,
                                                                        xmlDoc *document,
                                                                        const xmlNode *node,
                                                                        const char *name) {
  return get_child_text(text, document, node, name, XmlEncoding::latin1, XmlSpacing::kept,
                        XmlContent::nonempty);
}

bool v_xml_get_nonempty_text_content_from_distinct_child_node_as_compact_latin1(OwnedText &text,
                                                                                xmlDoc *document,
                                                                                const xmlNode *node,
                                                                                const char *name) {
  return get_child_text(text, document, node, name, XmlEncoding::latin1, XmlSpacing::compact,
                        XmlContent::nonempty);
}
