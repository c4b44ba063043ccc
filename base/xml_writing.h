#pragma once
// Writes XML in two ways: documents built as a tree and serialised by the parser library, and text
// with exact escaping rules, for files whose format is fixed to the byte.

#include <cstdio>
#include <string>

#include <libxml/tree.h>

#include "base/owned.h"

// New XML 1.0 document; null with "Error when creating new empty XML tree.".
OwnedXmlDoc v_xml_new_doc();
// Borrowed, owned by the document; null with "Error when creating an XML element.".
xmlNode *v_xml_add_root_element(xmlDoc *document, const char *name);
// Borrowed; null with "Error when creating an XML child element.".
xmlNode *v_xml_add_child_element(xmlNode *parent, const char *name);
// A child with text content; borrowed. Null with "Error when creating an XML text child element.",
// and for ASCII with "Non-ascii byte found where not allowed.".
xmlNode *v_xml_add_child_element_with_ascii_text_content(xmlNode *parent, const char *name,
                                                         const char *ascii_text);
xmlNode *v_xml_add_child_element_with_utf8_text_content(xmlNode *parent, const char *name,
                                                        const char *utf8_text);
xmlNode *v_xml_add_child_element_with_latin1_text_content(xmlNode *parent, const char *name,
                                                          const char *latin1_text);

// The value is UTF-8. False with "Missing value for XML attribute." for null, or "Error when
// setting an XML attribute." when the library refuses it or it has a character that XML forbids
// (most of those below the space; U+FFFE and U+FFFF).
bool v_xml_set_attribute(xmlNode *node, const char *name, const char *value);
bool v_xml_set_attribute_with_ascii_content(xmlNode *node, const char *name,
                                            const char *ascii_text);
bool v_xml_set_attribute_with_latin1_content(xmlNode *node, const char *name,
                                             const char *latin1_text);
// "true" or "false".
bool v_xml_set_attribute_to_boolean(xmlNode *node, const char *name, bool value);
bool v_xml_set_attribute_to_int(xmlNode *node, const char *name, int value);
// With a decimal point in every locale, and enough digits to round-trip.
bool v_xml_set_attribute_to_double(xmlNode *node, const char *name, double value);

// Writes the document, indented, in the named encoding, replacing any file at the path (UTF-8).
// False with the message of v_fs_utils_open_file, v_fs_utils_close_file or v_xml_write_to_stream; a
// partly written file is deleted.
bool v_xml_write_to_file(xmlDoc *document, const char *path, const char *encoding);
// The same, but replaces an existing file atomically (v_fs_utils_replace_file). The encoding must
// not produce zero bytes. False with the message of v_xml_write_to_string, or with "Could not write
// XML data." before the reason.
bool v_xml_replace_file(xmlDoc *document, const char *path, const char *encoding);
// Writes at the stream's current position and flushes it. False with "Could not create XML saving
// context for file." or "Could not write XML data.".
bool v_xml_write_to_stream(xmlDoc *document, std::FILE *stream, const char *encoding);
// The serialised document in the named encoding, which must not produce zero bytes (as UTF-16
// does); null with "Could not write XML data to memory buffer.".
OwnedText v_xml_write_to_string(xmlDoc *document, const char *encoding);

// Escapes an ISO-8859-1 text into a new text; null for null. A carriage return intentionally
// becomes two references, "&#xD;&#x9;": all tools of the suite write it this way.
OwnedText v_xml_latin1_to_xml(const char *latin1_text);
// Appends the escaped text (not null).
void v_xml_append_string(std::string &xml, const char *latin1_text);

// The functions below return false with "File I/O error when writing to file." when a write fails.
// Buffered data is written, and can fail, only when the stream is flushed or closed.

// Writes a text built by the appending functions. For many short texts this takes a quarter of the
// time of formatted writes.
bool v_xml_write_xml(std::FILE *stream, const std::string &xml);
// Writes the escaped text; nothing for null.
bool v_xml_write_string(std::FILE *stream, const char *latin1_text);
// Nothing is written for n below 1.
bool v_xml_write_tabs(std::FILE *stream, int n);
bool v_util_fprintf(std::FILE *stream, const char *format, ...) G_GNUC_PRINTF(2, 3);
