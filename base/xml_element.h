#pragma once
// An XML document as seen by a reader: named items (elements and processing instructions) with
// attributes, text and children, and getters that report everything missing or malformed with a
// fixed message. XmlElement hides whether an item is a node of a tree (XmlNodeElement) or was
// recorded from the parser's events (base/xml_events.h), so each rule about the contents of a file
// is implemented only once.
//
// Names are compared without namespaces; a prefix that is not declared is part of the name.

#include <functional>
#include <string_view>

#include <libxml/tree.h>

#include "base/owned.h"

enum class XmlTextState { absent, unreadable, readable };

// A text of a document.
struct XmlText {
  XmlTextState state = XmlTextState::absent;
  std::string_view text; // UTF-8; empty unless readable; valid as long as this and the element
  OwnedText joined;      // owns the text if it was joined from several nodes
};

inline XmlText v_xml_borrowed_text(std::string_view utf8_text) {
  return {XmlTextState::readable, utf8_text, nullptr};
}

class XmlElement;
// Returns false to stop the iteration.
using XmlChildVisitor = std::function<bool(const XmlElement &child)>;

class XmlElement {
public:
  XmlElement() = default;
  virtual ~XmlElement() = default;
  XmlElement(const XmlElement &) = default;
  XmlElement &operator=(const XmlElement &) = default;

  virtual bool has_name(std::string_view name) const = 0;
  // False for a processing instruction, which has its target as its name and no text, and for all
  // other kinds of nodes that have a name in a tree.
  virtual bool is_element() const = 0;
  // The first attribute of that name.
  virtual XmlText get_attribute(const char *name) const = 0;
  // The direct text, including CDATA, without that of child elements. Never absent.
  virtual XmlText get_text() const = 0;
  // Visits the children in document order until the visitor returns false. Returns false in that
  // case, else true.
  virtual bool visit_children(const XmlChildVisitor &visit) const = 0;
};

// A node of a tree. Entity references are resolved. A text with an unknown entity is unreadable;
// the library's own function would silently drop the reference. v_xml_maximum_expansion limits the
// text that entities and declared defaults add to all texts of a document; a text beyond the limit
// is unreadable. The document's _private field holds the sum.
class XmlNodeElement final : public XmlElement {
public:
  // Both are borrowed; its_document is the node's document.
  XmlNodeElement(xmlDoc *its_document, const xmlNode *its_node)
      : document(its_document), node(its_node) {}

  bool has_name(std::string_view name) const override;
  bool is_element() const override;
  XmlText get_attribute(const char *name) const override;
  XmlText get_text() const override;
  bool visit_children(const XmlChildVisitor &visit) const override;

private:
  xmlDoc *document;
  const xmlNode *node;
};

// Options of the getters for values.
enum class XmlEncoding { ascii, latin1, utf8 };
enum class XmlPresence { optional, required };
enum class XmlContent { any, nonempty };
enum class XmlSpacing { kept, compact }; // compact: as "spacify compactly" in base/whitespace.h

// Gets the value of an attribute. True with null when an optional one is absent. False with null
// and "Missing XML attribute: <name>", "Error when reading XML attribute.", "Empty XML attribute:
// <name>", or "Invalid XML attribute content." before the reason when the value does not fit the
// encoding.
bool v_xml_get_attribute(OwnedText &value, const XmlElement &element, const char *name,
                         XmlEncoding encoding, XmlPresence presence, XmlContent content);
// The text content. Null with "Error reading text content from XML node.", "Invalid XML node
// content." before the reason when it does not fit the encoding, or "Missing text content in XML."
// before "Text content is empty.".
OwnedText v_xml_get_text(const XmlElement &element, XmlEncoding encoding, XmlSpacing spacing,
                         XmlContent content);

// The messages for a missing child and for two children of the same name.
void v_xml_set_missing_node_error(const char *name); // "Missing XML node: <name>"
void v_xml_set_duplicate_nodes_error(); // "Duplicate XML nodes found where not allowed."
