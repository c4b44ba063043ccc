#pragma once
// The "remark" element of codeset and settings files.

#include <libxml/tree.h>

#include "base/xml_element.h"
#include "codeset/remark.h"

// A remark in no list, with a code and a description. Children count by their name alone, so a
// processing instruction named "code" is an empty code. Null with "Missing remark content in XML
// data." alone when the code (an unreadable one included) or the description is missing; else with
// "Remark in XML has multiple codes." or the message of the description's reader.
OwnedRemark v_xml_read_remark(const XmlElement &element);
// The same for a node of a tree.
OwnedRemark v_xml_parse_remark(xmlDoc *document, const xmlNode *element);
