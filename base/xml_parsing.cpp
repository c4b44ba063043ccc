#include "base/xml_parsing.h"

#include <cstdio>

#include <libxml/SAX2.h>
#include <libxml/parser.h>

#include "base/error.h"
#include "base/fs_utils.h"
#include "base/xml_parser_settings.h"

namespace {

// Cost of a reference to a parameter entity, in addition to its length, towards
// v_xml_maximum_expansion. The parser's own guard triggers only after some ten thousand references,
// and then never returns.
constexpr gsize parameter_reference_cost = 10'000;

// Kept in the parser context's private field, which belongs to the application.
struct ReferenceCount {
  gsize spent = 0;
  bool is_exceeded() const { return spent > v_xml_maximum_expansion; }
};

// Adds the cost of a reference, and stops the parser beyond the limit. The parser refuses entities
// that expand to too much text, but resolves those that expand to nothing or to comments for hours.
bool spend_reference(void *context, gsize cost) {
  auto *parser = static_cast<xmlParserCtxt *>(context);
  auto *count = static_cast<ReferenceCount *>(parser->_private);
  count->spent += cost;
  if (count->is_exceeded()) {
    xmlStopParser(parser);
    return false;
  }
  return true;
}

// These two functions replace the parser's own look-ups.
xmlEntity *look_up_entity(void *context, const xmlChar *name) {
  return spend_reference(context, 1) ? xmlSAX2GetEntity(context, name) : nullptr;
}

xmlEntity *look_up_parameter_entity(void *context, const xmlChar *name) {
  xmlEntity *entity = xmlSAX2GetParameterEntity(context, name);
  const gsize length = entity == nullptr ? 0 : static_cast<gsize>(entity->length);
  return spend_reference(context, parameter_reference_cost + length) ? entity : nullptr;
}

// Runs one of the parser's reading functions on a new context with our settings. Uses two fields of
// the context, the private field and the handler table ("sax"), because there is no other way to
// count references.
template <typename Read>
OwnedXmlDoc parse(Read read) {
  const XmlParserSettings settings;
  ReferenceCount count;
  const Owned<xmlParserCtxt, xmlFreeParserCtxt> parser(xmlNewParserCtxt());
  OwnedXmlDoc document;
  if (parser) {
    parser->_private = &count;
    parser->sax->getEntity = look_up_entity;
    parser->sax->getParameterEntity = look_up_parameter_entity;
    document.reset(read(parser.get()));
  }
  if (!document || count.is_exceeded() || v_xml_has_lost_something()) {
    v_xml_set_error_from_report(count.is_exceeded() ? "Too many entity references." : nullptr);
    return nullptr;
  }
  return document;
}

} // namespace

OwnedXmlDoc v_xml_parse_file(const char *path) {
  const OwnedFile file = v_fs_utils_open_file(path, "rb");
  if (!file) {
    return nullptr;
  }
  return v_xml_parse_descriptor(fileno(file.get()));
}

OwnedXmlDoc v_xml_parse_descriptor(int descriptor) {
  return parse([&](xmlParserCtxt *parser) {
    return xmlCtxtReadFd(parser, descriptor, nullptr, nullptr, 0);
  });
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
