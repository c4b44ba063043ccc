#include "codeset/remark_xml.h"

#include "base/error.h"
#include "langstr/langstr_xml.h"

namespace {

struct RemarkReading {
  OwnedRemark remark = v_remark_new();
  VLangstrCollection description;
};

bool read_code(VRemark *remark, const XmlElement &element) {
  if (remark->code) {
    v_error_set("Remark in XML has multiple codes.");
    return false;
  }
  remark->code =
      v_xml_get_text(element, XmlEncoding::latin1, XmlSpacing::compact, XmlContent::nonempty);
  if (!remark->code) {
    v_error_append("Missing or invalid remark code in XML data.");
    return false;
  }
  return true;
}

bool read_child(RemarkReading &reading, const XmlElement &child) {
  if (child.has_name("code")) {
    return read_code(reading.remark.get(), child);
  }
  if (child.has_name("description")) {
    return v_xml_collect_langstr_translation(reading.description, child, LangTag::may_be_empty,
                                             LangstrSpacing::compact);
  }
  return true;
}

} // namespace

OwnedRemark v_xml_read_remark(const XmlElement &element) {
  RemarkReading reading;
  const bool is_readable = element.visit_children(
      [&reading](const XmlElement &child) { return read_child(reading, child); });
  OwnedRemark &remark = reading.remark;
  remark->description = std::move(reading.description.langstr);
  if (!remark->code || !remark->description) {
    // Replaces the message of any earlier failure.
    v_error_set("Missing remark content in XML data.");
    return nullptr;
  }
  return is_readable ? std::move(remark) : nullptr;
}

OwnedRemark v_xml_parse_remark(xmlDoc *document, const xmlNode *element) {
  return v_xml_read_remark(XmlNodeElement(document, element));
}
