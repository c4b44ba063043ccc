#pragma once
// Getters for the nodes of a tree that report everything missing or malformed with a fixed message:
// those of base/xml_element.h, which also describes the limit for entities, and those that find
// children by name. Names are compared without namespaces. Attribute values and texts are in the
// encoding in the getter's name; the tree itself is in UTF-8.

#include "base/xml_parsing.h"

bool v_xml_node_has_name(const xmlNode *node, const char *name);
// The node's name, borrowed; null for nodes that have none (CDATA).
const char *v_xml_get_node_name(const xmlNode *node);
bool v_xml_node_has_attribute(const xmlNode *node, const char *name);
bool v_xml_node_has_child_node_with_name(const xmlNode *node, const char *name);

// Optional attributes: true with null when absent. False with "Error when reading XML attribute.",
// or with "Invalid XML attribute content." before the reason when the value does not fit the
// encoding.
bool v_xml_get_attribute_value_as_ascii(OwnedText &value, const xmlNode *node, const char *name);
bool v_xml_get_attribute_value_as_latin1(OwnedText &value, const xmlNode *node, const char *name);
bool v_xml_get_attribute_value_as_utf8(OwnedText &value, const xmlNode *node, const char *name);
// The same, but an empty value fails with "Empty XML attribute: <name>".
bool v_xml_get_nonempty_attribute_value_as_utf8(OwnedText &value, const xmlNode *node,
                                                const char *name);
// Return the fallback when the attribute is absent, unreadable, not a number or out of range. A
// boolean is true exactly for the text "true", and false for any other.
bool v_xml_get_attribute_value_as_boolean_with_fallback(const xmlNode *node, const char *name,
                                                        bool fallback);
int v_xml_get_attribute_value_as_int_in_range_with_fallback(const xmlNode *node, const char *name,
                                                            int minimum, int maximum, int fallback);
double v_xml_get_attribute_value_as_double_in_range_with_fallback(const xmlNode *node,
                                                                  const char *name, double minimum,
                                                                  double maximum, double fallback);

// Required attributes: null (or false) with "Missing XML attribute: <name>" when absent, else with
// the messages above.
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
// "Invalid number in XML attribute: <name>" when it is not a number in the range; the decimal point
// is "." in every locale.
bool v_xml_get_required_attribute_value_as_double_in_range(double &value, const xmlNode *node,
                                                           const char *name, double minimum,
                                                           double maximum);

// Finds a child of any kind by its name. True with null when there is none; false with "Duplicate
// XML nodes found where not allowed." when there are several.
bool v_xml_get_distinct_child_node(xmlNode *&child, const xmlNode *node, const char *name);
// Borrowed; null also with "Missing XML node: <name>".
xmlNode *v_xml_get_required_distinct_child_node(const xmlNode *node, const char *name);

// Text content: the node's direct text, with entities resolved and without the text of child
// elements; "" for a node without text. Null with "Error reading text content from XML node."; for
// ISO-8859-1 also with "Invalid XML node content." before the reason. "compact" strips both ends
// and collapses each run of whitespace to one space.
OwnedText v_xml_get_text_content_as_utf8(xmlDoc *document, const xmlNode *node);
OwnedText v_xml_get_text_content_as_latin1(xmlDoc *document, const xmlNode *node);
// "Missing text content in XML." before "Text content is empty." when nothing is left.
OwnedText v_xml_get_nonempty_text_content_as_utf8(xmlDoc *document, const xmlNode *node);
OwnedText v_xml_get_nonempty_text_content_as_compact_utf8(xmlDoc *document, const xmlNode *node);
OwnedText v_xml_get_nonempty_text_content_as_latin1(xmlDoc *document, const xmlNode *node);
OwnedText v_xml_get_nonempty_text_content_as_compact_latin1(xmlDoc *document, const xmlNode *node);

// Text content of the node's only child of that name; true with null when there is none.
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
// The same, but an empty text fails as in the nonempty getters.
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
