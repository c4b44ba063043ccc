#pragma once
// A file for XML, and the tree that it was parsed into last.

#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include "base/error.h"
#include "base/xml_reading.h"
#include "support/files.h"

class XmlFixture : public testing::Test {
protected:
  void SetUp() override { v_error_clear(); }

  // Writes the bytes to a file and parses it; what comes back is kept until the next one.
  xmlDoc *parse(const std::string &bytes) {
    write_file(path, bytes);
    v_error_clear();
    document = v_xml_parse_file(path.c_str());
    return document.get();
  }
  // The same, to the root element. Ends the test when there is none.
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
