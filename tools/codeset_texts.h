#pragma once
// Converts texts and language tags that users write to those of a codeset, or explains why a
// codeset cannot hold them.

#include <string_view>

#include "base/owned.h"

// Converts the text (UTF-8, any bytes) to ISO-8859-1 and normalises its whitespace as reading a
// codeset file does; "" when it is only whitespace. Combining accents are composed with their
// letters. Null with a sentence that begins in lower case, so that callers can put a place in front
// of it: for bytes that are not UTF-8, for the first character outside ISO-8859-1 and for a control
// character that XML forbids.
OwnedText v_tools_make_text(std::string_view utf8_text);
// The same for a language tag; null also for one that is not ASCII.
OwnedText v_tools_make_tag(std::string_view utf8_text);
// The first characters of a codeset's text (ISO-8859-1) as UTF-8 in quotation marks, for messages.
OwnedText v_tools_quote_text(const char *latin1_text);
