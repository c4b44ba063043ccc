#pragma once
// Fixture with an XML file and the tree of its last parse.

#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include "base/error.h"
#include "base/xml_reading.h"
#include "support/files.h"

class XmlFixture : public testing::Test {
protected:
  void SetUp() override { v_error_clear(); }

  // Writes the bytes to a file and parses it. The tree is valid until the next call; null on
  // failure.
  xmlDoc *parse(const std::string &bytes) {
    write_file(path, bytes);
    v_error_clear();
    document = v_xml_parse_file(path.c_str());
    return document.get();
  }
  // Same as parse(), but returns the root element. Ends the test if there is none.
  xmlNode *root_of(const std::string &bytes) {
    xmlNode *root = parse(bytes) == nullptr ? nullptr : v_xml_get_root_element(document.get());
    if (root == nullptr) {
      throw std::runtime_error(v_error_get());
    }
    v_error_clear();
    return root;
  }

  TemporaryFolder folder;
  const std::string path = folder / "file.xml";
  OwnedXmlDoc document;
};
