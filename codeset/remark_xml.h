#pragma once
// The "remark" element of codeset and settings files.

#include <libxml/tree.h>

#include "base/xml_element.h"
#include "codeset/remark.h"

// Reads a remark with a code and a description; it is not in a list. Children are identified only
// by name, so a processing instruction named "code" is an empty code. Null with "Missing remark
// content in XML data." alone when the code or the description is missing or unreadable; else with
// "Remark in XML has multiple codes." or the message of v_xml_collect_langstr_translation.
OwnedRemark v_xml_read_remark(const XmlElement &element);
// The same for a node of a tree.
OwnedRemark v_xml_parse_remark(xmlDoc *document, const xmlNode *element);
