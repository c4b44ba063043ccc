#pragma once
// The languages of a codeset, and one text of it in the language that the user wants.

#include <optional>
#include <string>
#include <vector>

#include "codeset/codeset.h"
#include "workspace/settings.h"

// The tags of all translations of the descriptions, each once, in order of first appearance; "" for
// a text of unknown language. with_header: the tags of the name and the author come first.
std::vector<std::string> v_tools_collect_languages(const VCodeset *codeset, bool with_header);

// The tags separated by ", ", where "" is "undefined"; "no language" when there is none.
std::string v_tools_format_languages(const std::vector<std::string> &languages);

// The tag of a text for messages: "undefined" for "".
const char *v_tools_name_language(const char *tag);

// A warning (UTF-8) when the program does not know the language. A text of unknown language, "", is
// no mistake: the window can write such texts.
std::optional<std::string> v_tools_find_unknown_language(const char *tag);

// The settings of a user who wants texts in the language (tag; null for none) and, where there is
// none, in the languages that the window prefers.
OwnedSettings v_tools_prefer_language(const char *language);

// Reports a warning about the file when no description is in the language or in one of its
// dialects.
void v_tools_warn_of_missing_language(const char *file, const VCodeset *codeset,
                                      const char *language);
