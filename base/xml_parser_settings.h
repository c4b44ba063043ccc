#pragma once
// Shared by all parses: the parser library's process-wide settings during one parse, the library's
// report, and the conditions that count as a failure although the library does not report one.

#include <libxml/parser.h>

// Sets the library's process-wide state, and restores it at the end: the report is collected, and
// no external entity is ever loaded. The two parser defaults (substitution of entities, loading of
// external document types) are switched on as all tools of the suite do. Because of the second one,
// a new context requests external entities and document types, with any options; the entity loader
// of these settings refuses all of them.
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

// While XmlParserSettings are in place: sets the message to "Could not parse XML data." before the
// library's report (15 lines at most), or "Unknown XML error." when there is none. reason: replaces
// the report; null: none.
void v_xml_set_error_from_report(const char *reason);

// While XmlParserSettings are in place: true when the library has left something out, the rest of a
// file that cannot be read to its end or a piece of text for which there was no memory. The library
// does not report these as a failure of the parse.
bool v_xml_has_lost_something();
