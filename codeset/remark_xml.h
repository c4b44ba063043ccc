#pragma once
// The "remark" element as it stands in codeset and settings files.

#include <libxml/tree.h>

#include "codeset/remark.h"

// A remark in no list, with a code and a description. Null with "Remark in XML has multiple
// codes.", "Missing or invalid remark code in XML data." before the reason, the message of the
// description's reader, or, whenever code or description are not there in the end, "Missing remark
// content in XML data." alone.
OwnedRemark v_xml_parse_remark(xmlDoc *document, const xmlNode *element);
