#pragma once
// Finds what the program accepts in a codeset although it is most likely a mistake.

#include <string>
#include <vector>

#include "codeset/codeset.h"

struct Findings {
  std::size_t codes = 0;
  // The tags of the descriptions, in order of first appearance; "" for a text of unknown language.
  std::vector<std::string> languages;
  // One text (UTF-8) for each finding, in this order: a code that could not be read back, a
  // language that the program does not know, a translation that most codes have and some lack, and
  // codes with the same description in the same language.
  std::vector<std::string> messages;
};

Findings v_findings_collect(const VCodeset *codeset);
