#pragma once
// Getters for the nodes of a tree that turn everything missing or malformed into a fixed message:
// those of base/xml_element.h, which also says what entities may add to a text, and those for
// children by their name. Names are compared without namespaces. Attribute values and text are in
// the encoding that the getter's name says; the tree itself is in UTF-8.

#include "base/xml_parsing.h"

bool v_xml_node_has_name(const xmlNode *node, const char *name);
// The node's name, borrowed; null for nodes that have none (CDATA).
const char *v_xml_get_node_name(const xmlNode *node);
bool v_xml_node_has_attribute(const xmlNode *node, const char *name);
bool v_xml_node_has_child_node_with_name(const xmlNode *node, const char *name);

// Attributes that may be absent: true with null then. False with "Error when reading XML
// attribute.", or with "Invalid XML attribute content." before the reason when the value does not
// fit the encoding.
bool v_xml_get_attribute_value_as_ascii(OwnedText &value, const xmlNode *node, const char *name);
bool v_xml_get_attribute_value_as_latin1(OwnedText &value, const xmlNode *node, const char *name);
bool v_xml_get_attribute_value_as_utf8(OwnedText &value, const xmlNode *node, const char *name);
// The same, and a present but empty value fails with "Empty XML attribute: <name>".
bool v_xml_get_nonempty_attribute_value_as_utf8(OwnedText &value, const xmlNode *node,
                                                const char *name);
// Returns the fallback when the attribute is absent, unreadable or out of range.
bool v_xml_get_attribute_value_as_boolean_with_fallback(const xmlNode *node, const char *name,
                                                        bool fallback);
int v_xml_get_attribute_value_as_int_in_range_with_fallback(const xmlNode *node, const char *name,
                                                            int minimum, int maximum, int fallback);
double v_xml_get_attribute_value_as_double_in_range_with_fallback(const xmlNode *node,
                                                                  const char *name, double minimum,
                                                                  double maximum, double fallback);

// Attributes that must be there: null (or false) with "Missing XML attribute: <name>" when absent.
OwnedText v_xml_get_required_attribute_value_as_ascii(const xmlNode *node, const char *name);
OwnedText v_xml_get_required_attribute_value_as_latin1(const xmlNode *node, const char *name);
OwnedText v_xml_get_required_attribute_value_as_utf8(const xmlNode *node, const char *name);
// "Empty XML attribute: <name>" when empty.
OwnedText v_xml_get_nonempty_required_attribute_value_as_utf8(const xmlNode *node,
                                                              const char *name);
// True exactly for the text "true".
bool v_xml_get_required_attribute_value_as_boolean(bool &value, const xmlNode *node,
                                                   const char *name);
// Decimal. Empty: "Empty XML attribute: <name>"; not a number, or out of range: "Invalid integer
// value in XML attribute: <name>" before the reason. The value is stored only on success.
bool v_xml_get_required_attribute_value_as_int(int &value, const xmlNode *node, const char *name);
bool v_xml_get_required_attribute_value_as_int_in_range(int &value, const xmlNode *node,
                                                        const char *name, int minimum, int maximum);
// "Invalid number in XML attribute: <name>" when it is not a number of the range; the decimal
// point is "." in every locale.
bool v_xml_get_required_attribute_value_as_double_in_range(double &value, const xmlNode *node,
                                                           const char *name, double minimum,
                                                           double maximum);

// A child of any kind, by its name. Two of them: "Duplicate XML nodes found where not allowed.".
// True with null when there is none.
bool v_xml_get_distinct_child_node(xmlNode *&child, const xmlNode *node, const char *name);
// Borrowed; null also with "Missing XML node: <name>".
xmlNode *v_xml_get_required_distinct_child_node(const xmlNode *node, const char *name);

// Text content: the node's direct text, with entities resolved; child elements add nothing, a node
// without text has "". Null with "Error reading text content from XML node."; for ISO-8859-1 also
// with "Invalid XML node content." before the reason. "compact" strips both ends and makes each
// inner run of whitespace one space.
OwnedText v_xml_get_text_content_as_utf8(xmlDoc *document, const xmlNode *node);
OwnedText v_xml_get_text_content_as_latin1(xmlDoc *document, const xmlNode *node);
// "Missing text content in XML." before "Text content is empty." when nothing is left.
OwnedText v_xml_get_nonempty_text_content_as_utf8(xmlDoc *document, const xmlNode *node);
OwnedText v_xml_get_nonempty_text_content_as_compact_utf8(xmlDoc *document, const xmlNode *node);
OwnedText v_xml_get_nonempty_text_content_as_latin1(xmlDoc *document, const xmlNode *node);
OwnedText v_xml_get_nonempty_text_content_as_compact_latin1(xmlDoc *document, const xmlNode *node);

// Text content of the node's one child of that name; true with null when there is none.
bool v_xml_get_text_content_from_distinct_child_node_as_utf8(OwnedText &text, xmlDoc *document,
                                                             const xmlNode *node, const char *name);
bool v_xml_get_text_content_from_distinct_child_node_as_compact_utf8(OwnedText &text,
                                                                     xmlDoc *document,
                                                                     const xmlNode *node,
                                                                     const char *name);
bool v_xml_get_text_content_from_distinct_child_node_as_latin1(OwnedText &text, xmlDoc *document,
                                                               const xmlNode *node,
                                                               const char *name);
bool v_xml_get_text_content_from_distinct_child_node_as_compact_latin1(OwnedText &text,
                                                                       xmlDoc *document,
                                                                       const xmlNode *node,
                                                                       const char *name);
// The same, and a present but empty text fails as the nonempty getters do.
bool v_xml_get_nonempty_text_content_from_distinct_child_node_as_utf8(OwnedText &text,
                                                                      xmlDoc *document,
                                                                      const xmlNode *node,
                                                                      const char *name);
bool v_xml_get_nonempty_text_content_from_distinct_child_node_as_compact_utf8(OwnedText &text,
                                                                              xmlDoc *document,
                                                                              const xmlNode *node,
                                                                              const char *name);
bool v_xml_get_nonempty_text_content_from_distinct_child_node_as_latin1(OwnedText &text,
                                                                        xmlDoc *document,
                                                                        const xmlNode *node,
                                                                        const char *name);
bool v_xml_get_nonempty_text_content_from_distinct_child_node_as_compact_latin1(OwnedText &text,
                                                                                xmlDoc *document,
                                                                                const xmlNode *node,
                                                                                const char *name);
