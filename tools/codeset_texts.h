#pragma once
// Makes texts and language tags for a codeset from those that users give, and says in plain words
// why one cannot be in a codeset.

#include <string_view>

#include "base/owned.h"

// The text (UTF-8, any bytes) in ISO-8859-1 with its white space as in a codeset that was read from
// a file; "" when there is nothing else. Letters whose accents are characters of their own are
// composed. Null with a sentence that begins in lower case, so that a place can be put in front:
// for bytes that are not UTF-8, for the first character outside ISO-8859-1 and for a character that
// no XML document can hold.
OwnedText v_tools_make_text(std::string_view utf8_text);
// A language tag, the same way; null also with a sentence for one that is not ASCII.
OwnedText v_tools_make_tag(std::string_view utf8_text);
// The beginning of a codeset's text (ISO-8859-1) in UTF-8, for messages.
OwnedText v_tools_quote_text(const char *latin1_text);
