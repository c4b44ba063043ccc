#pragma once
// Reads XML with the parser's events (SAX): the children of a document's root, one at a time, each
// into the same small record. However large the file, only one child is in memory at a time.
//
// A document that has a document type, or a text of more than 10,000,000 bytes, is read as a tree
// instead (base/xml_parsing.h), which takes ten to thirty times the size of the file in memory. The
// reader receives the same children either way.

#include <functional>
#include <string>
#include <vector>

#include "base/xml_element.h"

struct XmlRootReader {
  // The names of the children of the root to read, and of the children to read with them; all
  // others are skipped.
  std::vector<std::string> child_names;
  std::vector<std::string> grandchild_names;
  // Called before the first child, with the root's name (UTF-8). Called again when the document is
  // reread as a tree: discard the children received so far.
  std::function<void(const char *root_name)> begin;
  // The child is valid during the call. A fault may follow later in the file: discard the children
  // received when v_xml_read_root_children returns false.
  std::function<void(const XmlElement &child)> read_child;
};

// Reads the file (path in UTF-8). False with the message of v_xml_parse_file; for a malformed file
// above 16 MiB the report may lack faults that only parsing into a tree finds. The reader's
// functions must not parse another document or throw. For a document without a root, true without a
// call of `begin`, and the message is "Missing root element in XML tree.".
bool v_xml_read_root_children(const char *path, const XmlRootReader &reader);
