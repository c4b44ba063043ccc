#pragma once
// Shared by all parses: the parser library's process-wide settings during one parse, the library's
// report, and the conditions that count as a failure although the library does not report one.

#include <libxml/parser.h>

// Puts the library's process-wide state in place and restores it: the report is collected, and no
// external entity is ever loaded. The two parser defaults are switched on as all tools of the suite
// do. They are not without effect: by the second one, a new context asks for external entities and
// document types, whatever options it is given. The loader, which refuses all of them, is what
// keeps them shut.
class XmlParserSettings {
public:
  XmlParserSettings();
  ~XmlParserSettings();
  XmlParserSettings(const XmlParserSettings &) = delete;
  XmlParserSettings &operator=(const XmlParserSettings &) = delete;

private:
  int substitute_entities;
  int load_external_dtd;
  xmlExternalEntityLoader external_entity_loader;
};

// While XmlParserSettings are in place: sets the message to "Could not parse XML data." before what
// the library has reported (15 lines at most), "Unknown XML error." when it has reported nothing.
// A reason of our own (null: none) takes the place of the report.
void v_xml_set_error_from_report(const char *reason);

// While XmlParserSettings are in place: whether the library has passed over something, a file that
// cannot be read to its end or a piece of text that there was no memory for. It does not report
// these as a failure of the parse.
bool v_xml_has_lost_something();
