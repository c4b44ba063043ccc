#include "base/xml_element.h"

#include <cstring>
#include <utility>

#include "base/error.h"
#include "base/text_buffer.h"
#include "base/text_encoding.h"
#include "base/whitespace.h"
#include "base/xml_parsing.h"

namespace {

// Limit of nested entities, the same as the parser's. In the declared default of an attribute, a
// loop of entities can get past the parser.
constexpr int maximum_entity_depth = 40;

const char *as_text(const xmlChar *text) { return reinterpret_cast<const char *>(text); }

const xmlChar *as_xml(const char *text) { return reinterpret_cast<const xmlChar *>(text); }

XmlText unreadable_text() { return {XmlTextState::unreadable, {}, nullptr}; }

XmlText joined_text(OwnedText utf8_text) {
  XmlText text = {XmlTextState::readable, {}, std::move(utf8_text)};
  text.text = text.joined.get();
  return text;
}

OwnedText copy_text(std::string_view text) {
  return OwnedText(g_strndup(text.data(), text.size()));
}

// Adds to the amount of text that the document's entities expand to; false beyond the limit. The
// sum is kept with the document, so that the limit holds for all its texts together.
bool spend_expansion(xmlDoc *document, gsize amount) {
  const gsize spent = GPOINTER_TO_SIZE(document->_private) + amount;
  document->_private = GSIZE_TO_POINTER(spent);
  return spent <= v_xml_maximum_expansion;
}

// Appends the text of sibling nodes; depth: the nesting of entities. False when an entity is
// unknown or the entities expand beyond the limits. The library's own function copies the text
// again for each piece.
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

// Most texts are a single node; its content is borrowed instead of copied.
XmlText text_of(xmlDoc *document, const xmlNode *children) {
  if (children == nullptr) {
    return v_xml_borrowed_text("");
  }
  if (children->next == nullptr && children->type == XML_TEXT_NODE) {
    return v_xml_borrowed_text(as_text(children->content));
  }
  OwnedUtf8String text = v_utf8_string_new(nullptr);
  if (!append_text(text.get(), document, children)) {
    return unreadable_text();
  }
  return joined_text(v_utf8_string_free(std::move(text), false));
}

// The default that the document type declares for an absent attribute. It counts towards the
// expansion limit, like the text of an entity.
XmlText declared_default(const xmlNode *node, const char *name) {
  const OwnedXmlText value(xmlGetProp(node, as_xml(name)));
  if (!value || !spend_expansion(node->doc, std::strlen(as_text(value.get())))) {
    return unreadable_text();
  }
  const Owned<xmlNode, xmlFreeNodeList> pieces(xmlStringGetNodeList(node->doc, value.get()));
  const XmlText text = text_of(node->doc, pieces.get());
  // `pieces` is freed on return, so copy.
  return text.state == XmlTextState::readable ? joined_text(copy_text(text.text))
                                              : unreadable_text();
}

// Converts the text to the encoding. Null with the sentence in front of the reason on failure.
OwnedText encode(std::string_view utf8_text, XmlEncoding encoding, const char *sentence) {
  OwnedText text;
  switch (encoding) {
  case XmlEncoding::utf8:
    return copy_text(utf8_text);
  case XmlEncoding::ascii:
    text = v_convert_utf8_to_ascii(utf8_text);
    break;
  case XmlEncoding::latin1:
    text = v_convert_utf8_to_latin1(utf8_text);
    break;
  }
  if (!text) {
    v_error_append(sentence);
  }
  return text;
}

bool fail_for_attribute(const char *reason, const char *name) {
  v_error_set_utf8_printf("%s: %s", reason, name);
  return false;
}

void compact(char *text, XmlEncoding encoding) {
  if (encoding == XmlEncoding::utf8) {
    v_strip_surrounding_and_spacify_compactly_within_original_for_utf8(text);
  } else {
    v_strip_surrounding_and_spacify_compactly_within_original_for_latin1(text);
  }
}

} // namespace

bool XmlNodeElement::has_name(std::string_view name) const {
  return node->name != nullptr && name == as_text(node->name);
}

bool XmlNodeElement::is_element() const { return node->type == XML_ELEMENT_NODE; }

XmlText XmlNodeElement::get_attribute(const char *name) const {
  const xmlAttr *attribute = xmlHasProp(node, as_xml(name));
  if (attribute == nullptr) {
    return {};
  }
  return attribute->type == XML_ATTRIBUTE_NODE ? text_of(node->doc, attribute->children)
                                               : declared_default(node, name);
}

XmlText XmlNodeElement::get_text() const { return text_of(document, node->children); }

bool XmlNodeElement::visit_children(const XmlChildVisitor &visit) const {
  for (const xmlNode *child = node->children; child != nullptr; child = child->next) {
    if (!visit(XmlNodeElement(document, child))) {
      return false;
    }
  }
  return true;
}

bool v_xml_get_attribute(OwnedText &value, const XmlElement &element, const char *name,
                         XmlEncoding encoding, XmlPresence presence, XmlContent content) {
  value.reset();
  const XmlText text = element.get_attribute(name);
  switch (text.state) {
  case XmlTextState::absent:
    return presence == XmlPresence::optional || fail_for_attribute("Missing XML attribute", name);
  case XmlTextState::unreadable:
    v_error_set("Error when reading XML attribute.");
    return false;
  case XmlTextState::readable:
    break;
  }
  if (content == XmlContent::nonempty && text.text.empty()) {
    return fail_for_attribute("Empty XML attribute", name);
  }
  value = encode(text.text, encoding, "Invalid XML attribute content.");
  return value != nullptr;
}

OwnedText v_xml_get_text(const XmlElement &element, XmlEncoding encoding, XmlSpacing spacing,
                         XmlContent content) {
  const XmlText utf8_text = element.get_text();
  if (utf8_text.state != XmlTextState::readable) {
    v_error_set("Error reading text content from XML node.");
    return nullptr;
  }
  OwnedText text = encode(utf8_text.text, encoding, "Invalid XML node content.");
  if (!text) {
    return nullptr;
  }
  if (spacing == XmlSpacing::compact) {
    compact(text.get(), encoding);
  }
  if (content == XmlContent::nonempty && v_latin1_assert_nonempty(text.get()) == nullptr) {
    v_error_append("Missing text content in XML.");
    return nullptr;
  }
  return text;
}

void v_xml_set_missing_node_error(const char *name) {
  v_error_set_utf8_printf("Missing XML node: %s", name);
}

void v_xml_set_duplicate_nodes_error() {
  v_error_set("Duplicate XML nodes found where not allowed.");
}
