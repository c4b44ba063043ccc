#include "base/xml_parsing.h"

#include <cstdarg>
#include <utility>

#include <libxml/SAX2.h>
#include <libxml/parser.h>
#include <libxml/xmlerror.h>

#include "base/error.h"
#include "base/fs_utils.h"
#include "base/text_buffer.h"

namespace {

constexpr int maximum_report_lines = 15;
// Far more than is ever shown; a file with a million faults must not be collected whole.
constexpr gsize maximum_report_bytes = 64 * 1024;

OwnedUtf8String report; // what the parser has said, null while it has said nothing

void collect_report(void *, const char *format, ...) G_GNUC_PRINTF(2, 3);

// The parser's messages come in several pieces each.
void collect_report(void *, const char *format, ...) {
  if (!report) {
    report = v_utf8_string_new(nullptr);
  }
  if (report->len >= maximum_report_bytes) {
    return;
  }
  va_list arguments;
  va_start(arguments, format);
  v_utf8_string_append_vprintf(report.get(), format, arguments);
  va_end(arguments);
}

void set_error_from_report() {
  if (!report) {
    v_error_set("Unknown XML error.");
    return;
  }
  // The report quotes lines of the file as they are, whatever their encoding.
  const OwnedText text(g_utf8_make_valid(report->str, static_cast<gssize>(report->len)));
  v_error_set(g_strstrip(text.get()));
  v_error_limit_line_count(maximum_report_lines);
}

xmlParserInput *refuse_external_entity(const char *, const char *, xmlParserCtxt *) {
  return nullptr;
}

// The parser's process-wide state for the time of one parse. The report is collected, and external
// entities are never loaded. The two defaults are for whatever reads by the defaults alone: a
// parser context goes by its own options, which leave references to entities in the tree, for the
// getters to follow.
class ParserSettings {
public:
  ParserSettings()
      : substitute_entities(xmlSubstituteEntitiesDefault(1)),
        load_external_dtd(std::exchange(xmlLoadExtDtdDefaultValue, 1)),
        external_entity_loader(xmlGetExternalEntityLoader()) {
    report.reset();
    xmlResetLastError();
    xmlSetGenericErrorFunc(nullptr, collect_report);
    xmlSetExternalEntityLoader(refuse_external_entity);
  }
  ~ParserSettings() {
    xmlSetExternalEntityLoader(external_entity_loader);
    xmlSetGenericErrorFunc(nullptr, nullptr);
    report.reset();
    xmlLoadExtDtdDefaultValue = load_external_dtd;
    xmlSubstituteEntitiesDefault(substitute_entities);
  }
  ParserSettings(const ParserSettings &) = delete;
  ParserSettings &operator=(const ParserSettings &) = delete;

private:
  int substitute_entities;
  int load_external_dtd;
  xmlExternalEntityLoader external_entity_loader;
};

// What a reference to a parameter entity costs of v_xml_maximum_expansion, besides its length. The
// parser's own guard strikes after some ten thousand of them, and then it never returns.
constexpr gsize parameter_reference_cost = 10'000;

// What one parse knows besides the parser's own context, whose private field leads here.
struct ParseState {
  gsize spent_on_references = 0;
  const XmlChildReader *read_child = nullptr; // null when nobody asks for the children
  xmlNode *last_kept = nullptr;               // of the children that were handed out
};

ParseState &state_of(const xmlParserCtxt *parser) {
  return *static_cast<ParseState *>(parser->_private);
}

// The parser refuses entities that expand to too much text, but would follow those that expand to
// nothing, or to comments, for hours. Adds to what the references of a parse have cost and ends the
// parse beyond the limit.
bool spend_reference(void *context, gsize cost) {
  auto *parser = static_cast<xmlParserCtxt *>(context);
  gsize &spent = state_of(parser).spent_on_references;
  spent += cost;
  if (spent <= v_xml_maximum_expansion) {
    return true;
  }
  if (!report) {
    report = v_utf8_string_new("Too many entity references.");
  }
  parser->wellFormed = 0;
  xmlStopParser(parser);
  return false;
}

// The two take the place of the parser's own look-ups.
xmlEntity *look_up_entity(void *context, const xmlChar *name) {
  return spend_reference(context, 1) ? xmlSAX2GetEntity(context, name) : nullptr;
}

xmlEntity *look_up_parameter_entity(void *context, const xmlChar *name) {
  xmlEntity *entity = xmlSAX2GetParameterEntity(context, name);
  const gsize length = entity == nullptr ? 0 : static_cast<gsize>(entity->length);
  return spend_reference(context, parameter_reference_cost + length) ? entity : nullptr;
}

// Hands out the root's children that were not handed out yet.
void hand_out_children(ParseState &state, xmlDoc *document, const xmlNode *root) {
  xmlNode *next = nullptr;
  for (xmlNode *child = state.last_kept == nullptr ? root->children : state.last_kept->next;
       child != nullptr; child = next) {
    next = child->next;
    if ((*state.read_child)(document, child) == XmlChild::kept) {
      state.last_kept = child;
    } else {
      xmlUnlinkNode(child);
      xmlFreeNode(child);
    }
  }
}

// Takes the place of the parser's own work at the end of an element. A document type may declare
// entities, whose elements the parser builds apart from the tree and copies: then the children are
// handed out when the tree is complete.
void end_element(void *context, const xmlChar *name, const xmlChar *prefix,
                 const xmlChar *uri) noexcept {
  xmlSAX2EndElementNs(context, name, prefix, uri);
  const auto *parser = static_cast<const xmlParserCtxt *>(context);
  ParseState &state = state_of(parser);
  if (state.read_child != nullptr && parser->nodeNr == 1 && parser->myDoc->intSubset == nullptr) {
    hand_out_children(state, parser->myDoc, parser->node);
  }
}

// What the parser passes over once it has the last element: a file that cannot be read to its end,
// and pieces of text that there was no memory for.
bool has_lost_something(const xmlParserCtxt *parser) {
  const xmlError *last = xmlGetLastError();
  return parser->errNo == XML_ERR_NO_MEMORY ||
         (last != nullptr && (last->domain == XML_FROM_IO || last->code == XML_ERR_NO_MEMORY));
}

// Runs one of the parser's reading functions on a new context under our settings.
template <typename Read>
OwnedXmlDoc parse(Read read, const XmlChildReader *read_child = nullptr) {
  const ParserSettings settings;
  ParseState state{.read_child = read_child};
  const Owned<xmlParserCtxt, xmlFreeParserCtxt> parser(xmlNewParserCtxt());
  OwnedXmlDoc document;
  if (parser) {
    parser->_private = &state;
    parser->sax->endElementNs = end_element;
    parser->sax->getEntity = look_up_entity;
    parser->sax->getParameterEntity = look_up_parameter_entity;
    document.reset(read(parser.get()));
  }
  if (!document || has_lost_something(parser.get())) {
    set_error_from_report();
    v_error_append("Could not parse XML data.");
    return nullptr;
  }
  if (const xmlNode *root = xmlDocGetRootElement(document.get());
      root != nullptr && read_child != nullptr) {
    hand_out_children(state, document.get(), root);
  }
  return document;
}

OwnedXmlDoc parse_file(const char *path, const XmlChildReader *read_child) {
  const OwnedFile file = v_fs_utils_open_file(path, "rb");
  if (!file) {
    return nullptr;
  }
  return parse(
      [&](xmlParserCtxt *parser) {
        return xmlCtxtReadFd(parser, fileno(file.get()), nullptr, nullptr, 0);
      },
      read_child);
}

} // namespace

OwnedXmlDoc v_xml_parse_file(const char *path) { return parse_file(path, nullptr); }

OwnedXmlDoc v_xml_parse_file_by_children(const char *path, const XmlChildReader &read_child) {
  return parse_file(path, &read_child);
}

OwnedXmlDoc v_xml_parse_memory(const char *data, std::size_t length) {
  return parse([&](xmlParserCtxt *parser) {
    return xmlCtxtReadMemory(parser, data, static_cast<int>(length), nullptr, nullptr, 0);
  });
}

bool v_xml_parse_file_if_exists(OwnedXmlDoc &document, const char *path) {
  document.reset();
  VFileInfo info;
  if (!v_fs_utils_get_info(path, info)) {
    return false;
  }
  if (!info.exists) {
    return true;
  }
  document = v_xml_parse_file(path);
  return document != nullptr;
}

void v_xml_free_doc(xmlDoc *document) { xmlFreeDoc(document); }

xmlNode *v_xml_get_root_element(xmlDoc *document) {
  xmlNode *root = xmlDocGetRootElement(document);
  if (root == nullptr) {
    v_error_set("Missing root element in XML tree.");
  }
  return root;
}
