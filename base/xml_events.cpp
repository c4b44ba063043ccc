#include "base/xml_events.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include <libxml/SAX2.h>
#include <libxml/parser.h>
#include <libxml/parserInternals.h> // XML_MAX_TEXT_LENGTH
#include <sys/stat.h>
#include <unistd.h>

#include "base/error.h"
#include "base/fs_utils.h"
#include "base/xml_parser_settings.h"
#include "base/xml_parsing.h"
#include "xml_recorded_element.h"

namespace {

const char *as_text(const xmlChar *text) { return reinterpret_cast<const char *>(text); }

// The name as in the library's tree: an undeclared prefix is part of it. buffer: for a name that
// has to be joined.
const char *get_name(std::string &buffer, const xmlChar *local_name, const xmlChar *prefix,
                     const xmlChar *uri) {
  if (prefix == nullptr || uri != nullptr) {
    return as_text(local_name);
  }
  buffer.assign(as_text(prefix)).append(":").append(as_text(local_name));
  return buffer.c_str();
}

// The entry that equals the name; null when there is none.
const std::string *find(const std::vector<std::string> &names, const char *name) {
  const auto found = std::find_if(names.begin(), names.end(), [name](const std::string &other) {
    return std::strcmp(other.c_str(), name) == 0;
  });
  return found == names.end() ? nullptr : &*found;
}

// ---- The parser's events ------------------------------------------------------------------------

constexpr int root_depth = 1;
constexpr int child_depth = 2;
constexpr int grandchild_depth = 3;

// Kept in the parser context's private field, which belongs to the application.
struct EventReading {
  const XmlRootReader *reader = nullptr;
  int depth = 0;           // number of open elements
  std::string name_buffer; // for get_name
  RecordedParent child;
  RecordedElement *grandchild = nullptr; // the open grandchild; null when it is skipped
  bool is_child_recorded = false;        // the open child will be passed to the reader
  std::size_t text_length = 0;           // bytes of text since the last event of another kind
  bool needs_tree = false;
};

EventReading &reading_of(void *context) {
  return *static_cast<EventReading *>(static_cast<xmlParserCtxt *>(context)->_private);
}

void switch_to_tree(void *context) {
  reading_of(context).needs_tree = true;
  xmlStopParser(static_cast<xmlParserCtxt *>(context));
}

// A document type may declare entities and defaults, which only a tree resolves.
void document_type(void *context, const xmlChar *, const xmlChar *, const xmlChar *) noexcept {
  switch_to_tree(context);
}

// The library passes five pointers for each attribute.
void record_attributes(RecordedElement &element, std::string &name_buffer, int count,
                       const xmlChar **attributes) {
  for (const xmlChar **place = attributes; count > 0; count--, place += 5) {
    RecordedAttribute &attribute = element.attributes.add();
    attribute.name = get_name(name_buffer, place[0], place[1], place[2]);
    attribute.value.assign(as_text(place[3]), static_cast<std::size_t>(place[4] - place[3]));
  }
}

// The record for the element or instruction that begins; null when it is skipped.
RecordedElement *begin_record(EventReading &reading, const char *item_name, int depth,
                              bool is_instruction) {
  const bool is_child = depth == child_depth;
  if (!is_child && (depth != grandchild_depth || !reading.is_child_recorded)) {
    return nullptr;
  }
  const XmlRootReader &reader = *reading.reader;
  const std::string *name =
      find(is_child ? reader.child_names : reader.grandchild_names, item_name);
  if (name == nullptr) {
    return nullptr;
  }
  if (is_child) {
    reading.child.children.clear();
  }
  RecordedElement &element = is_child ? reading.child : reading.child.children.add();
  element.restart(name, is_instruction);
  return &element;
}

void start_element(void *context, const xmlChar *local_name, const xmlChar *prefix,
                   const xmlChar *uri, int, const xmlChar **, int attribute_count, int,
                   const xmlChar **attributes) noexcept {
  EventReading &reading = reading_of(context);
  reading.text_length = 0;
  reading.depth++;
  if (reading.depth > grandchild_depth) {
    return;
  }
  const char *name = get_name(reading.name_buffer, local_name, prefix, uri);
  if (reading.depth == root_depth) {
    reading.reader->begin(name);
    return;
  }
  RecordedElement *element = begin_record(reading, name, reading.depth, false);
  if (element != nullptr) {
    record_attributes(*element, reading.name_buffer, attribute_count, attributes);
  }
  if (reading.depth == child_depth) {
    reading.is_child_recorded = element != nullptr;
  } else {
    reading.grandchild = element;
  }
}

void end_element(void *context, const xmlChar *, const xmlChar *, const xmlChar *) noexcept {
  EventReading &reading = reading_of(context);
  reading.text_length = 0;
  if (reading.depth == child_depth && reading.is_child_recorded) {
    reading.reader->read_child(reading.child);
    reading.is_child_recorded = false;
  } else if (reading.depth == grandchild_depth) {
    reading.grandchild = nullptr;
  }
  reading.depth--;
}

void append_text(EventReading &reading, const xmlChar *text, int length) {
  const auto size = static_cast<std::size_t>(length);
  if (reading.depth == child_depth && reading.is_child_recorded) {
    reading.child.text.append(as_text(text), size);
  } else if (reading.depth == grandchild_depth && reading.grandchild != nullptr) {
    reading.grandchild->text.append(as_text(text), size);
  }
}

void characters(void *context, const xmlChar *text, int length) noexcept {
  EventReading &reading = reading_of(context);
  reading.text_length += static_cast<std::size_t>(length);
  if (reading.text_length > XML_MAX_TEXT_LENGTH) { // a tree cannot hold it
    switch_to_tree(context);
  } else {
    append_text(reading, text, length);
  }
}

void cdata_block(void *context, const xmlChar *text, int length) noexcept {
  EventReading &reading = reading_of(context);
  reading.text_length = 0;
  append_text(reading, text, length);
}

void processing_instruction(void *context, const xmlChar *target, const xmlChar *) noexcept {
  EventReading &reading = reading_of(context);
  reading.text_length = 0;
  const int depth = reading.depth + 1;
  const RecordedElement *element = begin_record(reading, as_text(target), depth, true);
  if (depth == child_depth && element != nullptr) {
    reading.reader->read_child(*element);
  }
}

void comment(void *context, const xmlChar *) noexcept { reading_of(context).text_length = 0; }

xmlSAXHandler event_handlers() {
  xmlSAXHandler handlers = {};
  handlers.initialized = XML_SAX2_MAGIC;
  handlers.startDocument = xmlSAX2StartDocument;
  handlers.internalSubset = document_type;
  handlers.startElementNs = start_element;
  handlers.endElementNs = end_element;
  handlers.characters = characters;
  // The library reports whitespace between elements to this function if it is a different one.
  handlers.ignorableWhitespace = characters;
  handlers.cdataBlock = cdata_block;
  handlers.processingInstruction = processing_instruction;
  handlers.comment = comment;
  handlers.warning = xmlParserWarning;
  handlers.error = xmlParserError;
  return handlers;
}

// ---- Reading by events or as a tree -------------------------------------------------------------

enum class Outcome { read, failed, needs_tree };

Outcome outcome_of(const EventReading &reading, const OwnedXmlDoc &document) {
  if (reading.needs_tree) {
    return Outcome::needs_tree;
  }
  return document && !v_xml_has_lost_something() ? Outcome::read : Outcome::failed;
}

// Uses only the two fields of the context that are meant for applications: the handler table and
// the private field. The resulting document is empty; it only indicates that the file is
// well-formed.
Outcome read_by_events(int descriptor, const XmlRootReader &reader) {
  const XmlParserSettings settings;
  EventReading reading;
  reading.reader = &reader;
  const Owned<xmlParserCtxt, xmlFreeParserCtxt> parser(xmlNewParserCtxt());
  OwnedXmlDoc document;
  if (parser) {
    parser->_private = &reading;
    *parser->sax = event_handlers();
    // Without this option, an escaped "&" in an attribute's value is reported as a reference.
    document.reset(xmlCtxtReadFd(parser.get(), descriptor, nullptr, nullptr, XML_PARSE_NOENT));
  }
  const Outcome outcome = outcome_of(reading, document);
  if (outcome != Outcome::read) {
    v_xml_set_error_from_report(nullptr);
  }
  return outcome;
}

OwnedXmlDoc parse_again(int descriptor) {
  if (lseek(descriptor, 0, SEEK_SET) != 0) {
    v_error_set_from_errno();
    return nullptr;
  }
  return v_xml_parse_descriptor(descriptor);
}

bool read_by_tree(int descriptor, const XmlRootReader &reader) {
  const OwnedXmlDoc document = parse_again(descriptor);
  if (!document) {
    return false;
  }
  if (const xmlNode *root = v_xml_get_root_element(document.get())) {
    reader.begin(as_text(root->name));
    XmlNodeElement(document.get(), root).visit_children([&](const XmlElement &child) {
      if (std::any_of(reader.child_names.begin(), reader.child_names.end(),
                      [&](const std::string &name) { return child.has_name(name); })) {
        reader.read_child(child);
      }
      return true;
    });
  }
  return true;
}

// Bytes. For larger files, building a tree only for its report takes too much memory.
constexpr off_t largest_file_reported_by_tree = 16 * 1024 * 1024;

// Parsing into a tree reports more, for instance invalid identifiers, and faults after one that is
// before the document type. Its message replaces the first one. The file is rejected even if the
// second parse succeeds because the file has changed.
void report_by_tree(int descriptor) {
  struct stat status;
  if (fstat(descriptor, &status) != 0 || status.st_size > largest_file_reported_by_tree) {
    return;
  }
  VErrorCopy error_of_events = v_error_copy();
  if (parse_again(descriptor)) {
    v_error_restore(std::move(error_of_events));
  }
}

} // namespace

bool v_xml_read_root_children(const char *path, const XmlRootReader &reader) {
  const OwnedFile file = v_fs_utils_open_file(path, "rb");
  if (!file) {
    return false;
  }
  const int descriptor = fileno(file.get());
  switch (read_by_events(descriptor, reader)) {
  case Outcome::read:
    return true;
  case Outcome::failed:
    report_by_tree(descriptor);
    return false;
  case Outcome::needs_tree:
    break;
  }
  return read_by_tree(descriptor, reader);
}
