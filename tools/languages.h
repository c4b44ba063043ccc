#pragma once
// The languages of a codeset, and one text of it in the language that the user wants.

#include <string>
#include <vector>

#include "codeset/codeset.h"

// The tags of all translations of the descriptions, each once, in order of first appearance; "" for
// a text of unknown language. with_header: the tags of the name and the author come first.
std::vector<std::string> v_tools_collect_languages(const VCodeset *codeset, bool with_header);

// The tags separated by ", ", where "" is "undefined"; "no language" when there is none.
std::string v_tools_format_languages(const std::vector<std::string> &languages);
