#pragma once
// Converts between ISO-8859-1, the encoding of the data model, and UTF-8, that of the XML parser,
// the toolkit and paths.

#include <string_view>

#include "base/owned.h"
#include "base/text_buffer.h"

// Converts an ISO-8859-1 text to a new UTF-8 text; never fails.
OwnedText v_convert_latin1_to_utf8(const char *latin1_text);
// Appends an ISO-8859-1 text to a UTF-8 string, for callers that convert many texts.
void v_utf8_string_append_latin1(VUtf8String *string, const char *latin1_text);
// Converts a UTF-8 text to a new ISO-8859-1 text; null with "Character incompatible with ISO-8859-1
// found where not allowed." when a character is not in ISO-8859-1 or the text is not UTF-8.
OwnedText v_convert_utf8_to_latin1(std::string_view utf8_text);
// Converts a UTF-8 text to a new ASCII text; null with "Non-ascii byte found where not allowed.".
OwnedText v_convert_utf8_to_ascii(std::string_view utf8_text);
// True when the character at the pointer, which is into valid UTF-8, exists in ISO-8859-1. Sets no
// message.
bool v_convert_test_utf8_char_for_latin1(const char *utf8_character);

// True when every byte is below 128. Sets no message.
bool v_ascii_test(const char *text);
// The text itself (borrowed) when every byte is below 128, else null with "Non-ascii byte found
// where not allowed.".
const char *v_ascii_assert_in_utf8(const char *utf8_text);
const char *v_ascii_assert_in_latin1(const char *latin1_text);

// The text itself (borrowed) when it is not empty; null with "Text content does not exist." for
// null and "Text content is empty." for "".
const char *v_latin1_assert_nonempty(const char *latin1_text);
// The same for an owned text: on failure it is freed and null is returned.
OwnedText v_latin1_assert_nonempty_or_free(OwnedText latin1_text);
