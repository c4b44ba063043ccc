#pragma once
// Reads XML into a tree of the parser library, with the library's own report in the error state.
// The tree is in UTF-8; base/xml_reading.h gets the values out of it. A tree takes ten to thirty
// times the memory of its file; base/xml_events.h is for files that may be large.
//
// No file exhausts memory by its entities: a document that refers to them ten million times
// (a thousand times to parameter entities) does not parse, and what they add to the texts that are
// read from a tree is limited as well.

#include <cstddef>

#include <libxml/tree.h>

#include "base/owned.h"

// Limit, in bytes and nodes, of the text that the entities of one document may add to all texts
// read from it. The library has the same limit for a single text.
inline constexpr std::size_t v_xml_maximum_expansion = 10'000'000;

// Parses the file (path in UTF-8; its own declaration decides on the encoding). Entities declared
// in the file are known, nothing outside the file is ever opened. Null with the message of opening,
// or with the parser's report (15 lines at most) and "Could not parse XML data." in front.
OwnedXmlDoc v_xml_parse_file(const char *path);
// The same for an open file, from its present position. Null with the parser's report as above.
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
