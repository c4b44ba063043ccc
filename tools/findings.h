#pragma once
// Finds likely mistakes in a codeset that the program accepts.

#include <string>
#include <vector>

#include "codeset/codeset.h"

struct Findings {
  std::size_t codes = 0;
  // The language tags of the descriptions, in order of first appearance; "" is unknown language.
  std::vector<std::string> languages;
  // One text (UTF-8) for each finding, in this order: codes that could not be read back, languages
  // that the program does not know, translations that most codes have and some lack, and codes with
  // the same description in the same language.
  std::vector<std::string> messages;
};

Findings v_findings_collect(const VCodeset *codeset);
