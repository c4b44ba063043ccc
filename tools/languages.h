#pragma once
// The languages of a codeset, and the choice of the language in which its texts are shown.

#include <optional>
#include <string>
#include <vector>

#include "codeset/codeset.h"
#include "workspace/settings.h"

// The distinct tags of the descriptions, in order of first appearance; "" is unknown language.
// with_header: begins with the tags of the name and the author.
std::vector<std::string> v_tools_collect_languages(const VCodeset *codeset, bool with_header);

// The tags separated by ", ", with "undefined" for ""; "no language" when the list is empty.
std::string v_tools_format_languages(const std::vector<std::string> &languages);

// The tag for messages: "undefined" for "".
const char *v_tools_name_language(const char *tag);

// A warning (UTF-8) when the program does not know the language; none for "", unknown language,
// because the window can write such texts.
std::optional<std::string> v_tools_find_unknown_language(const char *tag);

// Settings that prefer the language (tag; null for none), then the languages that the window
// prefers.
OwnedSettings v_tools_prefer_language(const char *language);

// Reports a warning for the file when no description is in the language or one of its dialects.
void v_tools_warn_of_missing_language(const char *file, const VCodeset *codeset,
                                      const char *language);
