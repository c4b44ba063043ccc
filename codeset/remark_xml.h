#pragma once
// The "remark" element as it stands in codeset and settings files.

#include <libxml/tree.h>

#include "codeset/remark.h"

// A remark in no list, with a code and a description. Null with "Missing remark content in XML
// data." alone whenever either is not there in the end, an unreadable code included; else with
// "Remark in XML has multiple codes." or the message of the description's reader.
OwnedRemark v_xml_parse_remark(xmlDoc *document, const xmlNode *element);
