#include "codeset/remark_xml.h"

#include "base/error.h"
#include "base/xml_reading.h"
#include "langstr/langstr_xml.h"

namespace {

bool read_code(VRemark *remark, xmlDoc *document, const xmlNode *element) {
  if (remark->code) {
    v_error_set("Remark in XML has multiple codes.");
    return false;
  }
  remark->code = v_xml_get_nonempty_text_content_as_compact_latin1(document, element);
  if (!remark->code) {
    v_error_append("Missing or invalid remark code in XML data.");
    return false;
  }
  return true;
}

bool read_child(VRemark *remark, VLangstrCollection &description, xmlDoc *document,
                const xmlNode *child) {
  if (v_xml_node_has_name(child, "code")) {
    return read_code(remark, document, child);
  }
  if (v_xml_node_has_name(child, "description")) {
    return v_xml_collect_langstr_translation(description, document, child, LangTag::may_be_empty,
                                             LangstrSpacing::compact);
  }
  return true;
}

} // namespace

OwnedRemark v_xml_parse_remark(xmlDoc *document, const xmlNode *element) {
  OwnedRemark remark = v_remark_new();
  VLangstrCollection description;
  bool is_readable = true;
  for (const xmlNode *child = element->children; child != nullptr && is_readable;
       child = child->next) {
    is_readable = read_child(remark.get(), description, document, child);
  }
  remark->description = std::move(description.langstr);
  if (!remark->code || !remark->description) {
    // Whatever went wrong before is told by this one message.
    v_error_set("Missing remark content in XML data.");
    return nullptr;
  }
  return is_readable ? std::move(remark) : nullptr;
}
