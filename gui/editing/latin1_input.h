#pragma once
// The rule for the program's text fields: they accept only text that a codeset file (XML in
// ISO-8859-1) can hold. The rule itself is independent of the toolkit; the last function applies it
// while text is being inserted.

#include <functional>

#include "base/owned.h"

enum class InputLines { one, several };

// True when the text is not UTF-8, or has whitespace other than spaces (and, with several lines,
// line feeds), a character that is not in ISO-8859-1, or a control character that XML forbids.
// length: in bytes; negative: up to the terminating zero.
bool v_latin1_input_text_needs_fixing(const char *utf8_text, gssize length, InputLines lines);
// New UTF-8 text in which such whitespace characters are replaced by spaces and such other
// characters are dropped; null, without a message, for text that is not UTF-8.
OwnedText v_latin1_input_fix_text(const char *utf8_text, gssize length, InputLines lines);

// The text of a field in ISO-8859-1, repaired where needed; null with a message if it is not UTF-8.
OwnedText v_latin1_input_convert(const char *utf8_text, InputLines lines);

// To be called by a handler of the instance's "insert-text" signal. Stops the signal for a text
// that needs fixing, calls insert with the repaired text unless that is empty, and beeps. Leaves
// any other text to the toolkit.
void v_latin1_input_repair_insertion(void *instance, const char *utf8_text, gssize length,
                                     InputLines lines,
                                     const std::function<void(const char *repaired)> &insert);
