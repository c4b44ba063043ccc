#pragma once
// Process-wide settings of the parser library during a parse, the library's report, and conditions
// that count as a failure although the library does not report one.

#include <libxml/parser.h>

// Sets the library's process-wide state, and restores it in the destructor: the report is
// collected, and no external entity is ever loaded. Like all tools of the suite, it switches on two
// parser defaults, substitution of entities and loading of external document types. Because of the
// second one, every new context requests external entities and document types, whatever its
// options; the entity loader set here refuses all of them.
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

// Requires XmlParserSettings. Sets the message to "Could not parse XML data." before the library's
// report (at most 15 lines), or before "Unknown XML error." when there is none. reason: replaces
// the report unless it is null.
void v_xml_set_error_from_report(const char *reason);

// Requires XmlParserSettings. True when the library has dropped data: the rest of a file that
// cannot be read to its end, or a piece of text for which there was no memory. The library does not
// report these as failures.
bool v_xml_has_lost_something();
