#include "base/xml_reading.h"

#include <cerrno>
#include <cmath>
#include <cstring>
#include <limits>
#include <utility>

#include "base/error.h"
#include "base/integer_parsing.h"
#include "base/text_buffer.h"
#include "base/text_encoding.h"
#include "base/whitespace.h"

namespace {

// Entities within entities, again the parser's own limit. A loop of them can get past the parser in
// the declared default of an attribute.
constexpr int maximum_entity_depth = 40;

const char *as_text(const xmlChar *text) { return reinterpret_cast<const char *>(text); }

const xmlChar *as_xml(const char *text) { return reinterpret_cast<const xmlChar *>(text); }

// Takes from what the document's entities may still expand to. The sum so far is kept with the
// document, so that many small texts cannot together do what a single one may not.
bool spend_expansion(xmlDoc *document, gsize amount) {
  const gsize spent = GPOINTER_TO_SIZE(document->_private) + amount;
  document->_private = GSIZE_TO_POINTER(spent);
  return spent <= v_xml_maximum_expansion;
}

// Appends the direct text of a list of sibling nodes, which lie so many entities deep. False when
// an entity is not known or when entities expand beyond the limits. The parser's own function for
// this copies the text anew for each piece.
bool append_text(VUtf8String *text, xmlDoc *document, const xmlNode *siblings, int depth = 0) {
  if (depth > maximum_entity_depth) {
    return false;
  }
  for (const xmlNode *node = siblings; node != nullptr; node = node->next) {
    const bool is_text = node->type == XML_TEXT_NODE || node->type == XML_CDATA_SECTION_NODE;
    if (depth > 0 &&
        !spend_expansion(document, 1 + (is_text ? std::strlen(as_text(node->content)) : 0))) {
      return false;
    }
    if (is_text) {
      v_utf8_string_append(text, as_text(node->content));
    } else if (node->type == XML_ENTITY_REF_NODE) {
      const xmlEntity *entity = xmlGetDocEntity(document, node->name);
      if (entity == nullptr || !append_text(text, document, entity->children, depth + 1)) {
        return false;
      }
    }
  }
  return true;
}

// UTF-8 text of a tree, where it lies in the tree or as it was put together; null when it cannot be
// read.
class TreeText {
public:
  explicit TreeText(const char *borrowed) : text(borrowed) {}
  explicit TreeText(OwnedText joined) : owned(std::move(joined)), text(owned.get()) {}
  const char *get() const { return text; }

private:
  OwnedText owned;
  const char *text;
};

// Most texts are one piece and need not be put together.
TreeText text_of(xmlDoc *document, const xmlNode *children) {
  if (children == nullptr) {
    return TreeText("");
  }
  if (children->next == nullptr && children->type == XML_TEXT_NODE) {
    return TreeText(as_text(children->content));
  }
  OwnedUtf8String text = v_utf8_string_new(nullptr);
  if (!append_text(text.get(), document, children)) {
    return TreeText(nullptr);
  }
  return TreeText(v_utf8_string_free(std::move(text), false));
}

// The value that the document type declares for an attribute that is not written. It is as much an
// expansion as an entity's text is.
TreeText declared_default(const xmlNode *node, const char *name) {
  const OwnedXmlText value(xmlGetProp(node, as_xml(name)));
  if (!value || !spend_expansion(node->doc, std::strlen(as_text(value.get())))) {
    return TreeText(nullptr);
  }
  const Owned<xmlNode, xmlFreeNodeList> pieces(xmlStringGetNodeList(node->doc, value.get()));
  // The pieces go with this call.
  return TreeText(copy_text(text_of(node->doc, pieces.get()).get()));
}

enum class Encoding { ascii, latin1, utf8 };
enum class Presence { optional, required };
enum class Content { any, nonempty };
enum class Spacing { kept, compact };

// The text in another encoding; null with the sentence before the reason when it does not fit.
OwnedText encode(const char *utf8_text, Encoding encoding, const char *sentence) {
  OwnedText text;
  switch (encoding) {
  case Encoding::utf8:
    return copy_text(utf8_text);
  case Encoding::ascii:
    text = copy_text(v_ascii_assert_in_utf8(utf8_text));
    break;
  case Encoding::latin1:
    text = v_convert_utf8_to_latin1(utf8_text);
    break;
  }
  if (!text) {
    v_error_append(sentence);
  }
  return text;
}

bool fail_for_attribute(const char *format_start, const char *name) {
  v_error_set_utf8_printf("%s: %s", format_start, name);
  return false;
}

// The one way to an attribute's value: absent gives null, and success unless it is required.
bool get_attribute(OwnedText &value, const xmlNode *node, const char *name, Encoding encoding,
                   Presence presence, Content content) {
  value.reset();
  const xmlAttr *attribute = xmlHasProp(node, as_xml(name));
  if (attribute == nullptr) {
    return presence == Presence::optional || fail_for_attribute("Missing XML attribute", name);
  }
  const TreeText text = attribute->type == XML_ATTRIBUTE_NODE
                            ? text_of(node->doc, attribute->children)
                            : declared_default(node, name);
  if (text.get() == nullptr) {
    v_error_set("Error when reading XML attribute.");
    return false;
  }
  if (content == Content::nonempty && *text.get() == '\0') {
    return fail_for_attribute("Empty XML attribute", name);
  }
  value = encode(text.get(), encoding, "Invalid XML attribute content.");
  return value != nullptr;
}

OwnedText get_required_attribute(const xmlNode *node, const char *name, Encoding encoding,
                                 Content content) {
  OwnedText value;
  get_attribute(value, node, name, encoding, Presence::required, content);
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

// The one way to a node's text content.
OwnedText get_text(xmlDoc *document, const xmlNode *node, Encoding encoding, Spacing spacing,
                   Content content) {
  const TreeText content_of_node = text_of(document, node->children);
  if (content_of_node.get() == nullptr) {
    v_error_set("Error reading text content from XML node.");
    return nullptr;
  }
  OwnedText text = encode(content_of_node.get(), encoding, "Invalid XML node content.");
  if (!text) {
    return nullptr;
  }
  if (spacing == Spacing::compact) {
    if (encoding == Encoding::utf8) {
      v_strip_surrounding_and_spacify_compactly_within_original_for_utf8(text.get());
    } else {
      v_strip_surrounding_and_spacify_compactly_within_original_for_latin1(text.get());
    }
  }
  if (content == Content::nonempty && v_latin1_assert_nonempty(text.get()) == nullptr) {
    v_error_append("Missing text content in XML.");
    return nullptr;
  }
  return text;
}

bool get_child_text(OwnedText &text, xmlDoc *document, const xmlNode *node, const char *name,
                    Encoding encoding, Spacing spacing, Content content) {
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
  return node->name != nullptr && std::strcmp(as_text(node->name), name) == 0;
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
  return get_attribute(value, node, name, Encoding::ascii, Presence::optional, Content::any);
}

bool v_xml_get_attribute_value_as_latin1(OwnedText &value, const xmlNode *node, const char *name) {
  return get_attribute(value, node, name, Encoding::latin1, Presence::optional, Content::any);
}

bool v_xml_get_attribute_value_as_utf8(OwnedText &value, const xmlNode *node, const char *name) {
  return get_attribute(value, node, name, Encoding::utf8, Presence::optional, Content::any);
}

bool v_xml_get_nonempty_attribute_value_as_utf8(OwnedText &value, const xmlNode *node,
                                                const char *name) {
  return get_attribute(value, node, name, Encoding::utf8, Presence::optional, Content::nonempty);
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
  return get_required_attribute(node, name, Encoding::ascii, Content::any);
}

OwnedText v_xml_get_required_attribute_value_as_latin1(const xmlNode *node, const char *name) {
  return get_required_attribute(node, name, Encoding::latin1, Content::any);
}

OwnedText v_xml_get_required_attribute_value_as_utf8(const xmlNode *node, const char *name) {
  return get_required_attribute(node, name, Encoding::utf8, Content::any);
}

OwnedText v_xml_get_nonempty_required_attribute_value_as_utf8(const xmlNode *node,
                                                              const char *name) {
  return get_required_attribute(node, name, Encoding::utf8, Content::nonempty);
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
    return fail_for_attribute("Invalid number in XML attribute", name);
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
      v_error_set("Duplicate XML nodes found where not allowed.");
      return false;
    }
    child = candidate;
  }
  return true;
}

xmlNode *v_xml_get_required_distinct_child_node(const xmlNode *node, const char *name) {
  xmlNode *child = nullptr;
  if (v_xml_get_distinct_child_node(child, node, name) && child == nullptr) {
    v_error_set_utf8_printf("Missing XML node: %s", name);
  }
  return child;
}

OwnedText v_xml_get_text_content_as_utf8(xmlDoc *document, const xmlNode *node) {
  return get_text(document, node, Encoding::utf8, Spacing::kept, Content::any);
}

OwnedText v_xml_get_text_content_as_latin1(xmlDoc *document, const xmlNode *node) {
  return get_text(document, node, Encoding::latin1, Spacing::kept, Content::any);
}

OwnedText v_xml_get_nonempty_text_content_as_utf8(xmlDoc *document, const xmlNode *node) {
  return get_text(document, node, Encoding::utf8, Spacing::kept, Content::nonempty);
}

OwnedText v_xml_get_nonempty_text_content_as_compact_utf8(xmlDoc *document, const xmlNode *node) {
  return get_text(document, node, Encoding::utf8, Spacing::compact, Content::nonempty);
}

OwnedText v_xml_get_nonempty_text_content_as_latin1(xmlDoc *document, const xmlNode *node) {
  return get_text(document, node, Encoding::latin1, Spacing::kept, Content::nonempty);
}

OwnedText v_xml_get_nonempty_text_content_as_compact_latin1(xmlDoc *document, const xmlNode *node) {
  return get_text(document, node, Encoding::latin1, Spacing::compact, Content::nonempty);
}

bool v_xml_get_text_content_from_distinct_child_node_as_utf8(OwnedText &text, xmlDoc *document,
                                                             const xmlNode *node,
                                                             const char *name) {
  return get_child_text(text, document, node, name, Encoding::utf8, Spacing::kept, Content::any);
}

bool v_xml_get_text_content_from_distinct_child_node_as_compact_utf8(OwnedText &text,
                                                                     xmlDoc *document,
                                                                     const xmlNode *node,
                                                                     const char *name) {
  return get_child_text(text, document, node, name, Encoding::utf8, Spacing::compact, Content::any);
}

bool v_xml_get_text_content_from_distinct_child_node_as_latin1(OwnedText &text, xmlDoc *document,
                                                               const xmlNode *node,
                                                               const char *name) {
  return get_child_text(text, document, node, name, Encoding::latin1, Spacing::kept, Content::any);
}

bool v_xml_get_text_content_from_distinct_child_node_as_compact_latin1(OwnedText &text,
                                                                       xmlDoc *document,
                                                                       const xmlNode *node,
                                                                       const char *name) {
  return get_child_text(text, document, node, name, Encoding::latin1, Spacing::compact,
                        Content::any);
}

bool v_xml_get_nonempty_text_content_from_distinct_child_node_as_utf8(OwnedText &text,
                                                                      xmlDoc *document,
                                                                      const xmlNode *node,
                                                                      const char *name) {
  return get_child_text(text, document, node, name, Encoding::utf8, Spacing::kept,
                        Content::nonempty);
}

bool v_xml_get_nonempty_text_content_from_distinct_child_node_as_compact_utf8(OwnedText &text,
                                                                              xmlDoc *document,
                                                                              const xmlNode *node,
                                                                              const char *name) {
  return get_child_text(text, document, node, name, Encoding::utf8, Spacing::compact,
                        Content::nonempty);
}

bool v_xml_get_nonempty_text_content_from_distinct_child_node_as_latin1(OwnedText &text,
                                                                        xmlDoc *document,
                                                                        const xmlNode *node,
                                                                        const char *name) {
  return get_child_text(text, document, node, name, Encoding::latin1, Spacing::kept,
                        Content::nonempty);
}

bool v_xml_get_nonempty_text_content_from_distinct_child_node_as_compact_latin1(OwnedText &text,
                                                                                xmlDoc *document,
                                                                                const xmlNode *node,
                                                                                const char *name) {
  return get_child_text(text, document, node, name, Encoding::latin1, Spacing::compact,
                        Content::nonempty);
}
