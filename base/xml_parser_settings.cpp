#include "base/xml_parser_settings.h"

#include <utility>

#include <libxml/xmlerror.h>

#include "base/error.h"
#include "base/text_buffer.h"

namespace {

constexpr int maximum_report_lines = 15;
// Far more than is ever shown; limits the memory for a file with a million faults.
constexpr gsize maximum_report_bytes = 64 * 1024;

OwnedUtf8String report; // null if nothing was reported

void collect_report(void *, const char *format, ...) G_GNUC_PRINTF(2, 3);

// The library calls this several times for each message.
void collect_report(void *, const char *format, ...) {
  if (!report) {
    report = v_utf8_string_new(nullptr);
  }
  if (report->len >= maximum_report_bytes) {
    return;
  }
  V_FORMAT_ARGUMENTS(piece, format);
  v_utf8_string_append(report.get(), piece.get());
}

xmlParserInput *refuse_external_entity(const char *, const char *, xmlParserCtxt *) {
  return nullptr;
}

void set_error_from_collected() {
  if (!report) {
    v_error_set("Unknown XML error.");
    return;
  }
  // The report quotes lines of the file, which may be in any encoding.
  const OwnedText text(g_utf8_make_valid(report->str, static_cast<gssize>(report->len)));
  v_error_set(g_strstrip(text.get()));
  v_error_limit_line_count(maximum_report_lines);
}

} // namespace

XmlParserSettings::XmlParserSettings()
    : substitute_entities(xmlSubstituteEntitiesDefault(1)),
      load_external_dtd(std::exchange(xmlLoadExtDtdDefaultValue, 1)),
      external_entity_loader(xmlGetExternalEntityLoader()) {
  xmlResetLastError();
  xmlSetGenericErrorFunc(nullptr, collect_report);
  xmlSetExternalEntityLoader(refuse_external_entity);
}

XmlParserSettings::~XmlParserSettings() {
  xmlSetExternalEntityLoader(external_entity_loader);
  xmlSetGenericErrorFunc(nullptr, nullptr);
  report.reset();
  xmlLoadExtDtdDefaultValue = load_external_dtd;
  xmlSubstituteEntitiesDefault(substitute_entities);
}

void v_xml_set_error_from_report(const char *reason) {
  if (reason != nullptr) {
    v_error_set(reason);
  } else {
    set_error_from_collected();
  }
  v_error_append("Could not parse XML data.");
}

bool v_xml_has_lost_something() {
  const xmlError *last = xmlGetLastError();
  return last != nullptr && (last->domain == XML_FROM_IO || last->code == XML_ERR_NO_MEMORY);
}
