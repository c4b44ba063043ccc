#pragma once
// Reads XML by the parser's events: the children of a document's root, one after the other, each
// gathered into the same small record. However large the file, only one child is in memory at a
// time.
//
// A document that has a document type, or a text of more than 10,000,000 bytes, is read as a tree
// instead (base/xml_parsing.h): then the whole file is in memory, at ten to thirty times its size.
// The reader receives the same children either way.

#include <functional>
#include <string>
#include <vector>

#include "base/xml_element.h"

struct XmlRootReader {
  // The children of the root that are handed out, and the children that these are gathered with, by
  // name; all others are left out.
  std::vector<std::string> child_names;
  std::vector<std::string> grandchild_names;
  // Called before the first child, with the root's name (UTF-8). Called again when the document is
  // read again as a tree: forget the children that were handed out.
  std::function<void(const char *root_name)> begin;
  // The child is valid during the call. A fault may follow it in the file: discard the children
  // that were handed out when v_xml_read_root_children returns false.
  std::function<void(const XmlElement &child)> read_child;
};

// Reads the file (path in UTF-8). False with the message of v_xml_parse_file; for a malformed file
// above 16 MiB the report may lack faults that only the parse to a tree finds. The functions of the
// reader must not parse another document, nor throw. For a document without a root: true without a
// call of `begin`, and the message is "Missing root element in XML tree.".
bool v_xml_read_root_children(const char *path, const XmlRootReader &reader);
