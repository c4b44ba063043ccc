#pragma once
// Parses XML into a tree of the parser library, and puts the library's own report into the error
// state. The tree is in UTF-8; base/xml_reading.h gets values out of it. A tree takes ten to thirty
// times the size of its file in memory; base/xml_events.h is for files that may be large.
//
// No file can exhaust memory with entities: a document with more than ten million references to
// them (a thousand to parameter entities) is rejected, and the text that they add to the texts read
// from a tree is limited as well.

#include <cstddef>

#include <libxml/tree.h>

#include "base/owned.h"

// Limit, in bytes plus nodes, of what the entities of one document may add to all texts read from
// it. The library has the same limit for a single text.
inline constexpr std::size_t v_xml_maximum_expansion = 10'000'000;

// Parses the file (path in UTF-8; the file declares its encoding). Entities declared in the file
// are known; nothing outside the file is ever opened. Null with the message of
// v_fs_utils_open_file, or with "Could not parse XML data." before the parser's report (at most 15
// lines).
OwnedXmlDoc v_xml_parse_file(const char *path);
// The same for an open file, from its current position. Null with the parser's report as above.
OwnedXmlDoc v_xml_parse_descriptor(int descriptor);
// True with null when there is no file at the path. False with the message of
// v_xml_parse_file or of v_fs_utils_get_info.
bool v_xml_parse_file_if_exists(OwnedXmlDoc &document, const char *path);
// v_xml_parse_file for a document in memory, length in bytes (below 2^31). Null with the parser's
// report as above.
OwnedXmlDoc v_xml_parse_memory(const char *data, std::size_t length);
// Null is allowed.
void v_xml_free_doc(xmlDoc *document);
// Borrowed; null with "Missing root element in XML tree.".
xmlNode *v_xml_get_root_element(xmlDoc *document);
