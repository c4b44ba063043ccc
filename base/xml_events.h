#pragma once
// XML in, as events: the children of a document's root, one after the other, each gathered into one
// small record that is then used again. However large the file, only one child is in memory at a
// time.
//
// A document that has a document type, or a text of more than 10,000,000 bytes, is read as a tree
// instead (base/xml_parsing.h): then the whole file is in memory, at ten to thirty times its size.
// What is handed out is the same either way.

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
  // begun anew as a tree: forget the children that were handed out.
  std::function<void(const char *root_name)> begin;
  // The child is valid during the call. The document may still turn out to be malformed behind it:
  // then what was handed out is not to be used.
  std::function<void(const XmlElement &child)> read_child;
};

// Reads the file (path in UTF-8). False with the message of v_xml_parse_file; for a malformed file
// above 16 MiB the report may lack what only a tree tells. The functions of the
// reader must not parse another document, nor throw. True without a call of `begin`, and with
// "Missing root element in XML tree.", for a document that has no root.
bool v_xml_read_root_children(const char *path, const XmlRootReader &reader);
