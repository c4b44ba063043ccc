#pragma once
// The rule for the program's text fields: they accept only what a codeset file, XML in ISO-8859-1,
// can hold. The rule itself knows nothing of the toolkit; the last function applies it while text
// is being inserted.

#include <functional>

#include "base/owned.h"

enum class InputLines { one, several };

// True when the text is not UTF-8, or holds white space other than plain spaces (and, with several
// lines, line feeds), a character that ISO-8859-1 does not have, or one of the control characters
// that XML cannot hold. length: bytes; negative: up to the terminating zero.
bool v_latin1_input_text_needs_fixing(const char *utf8_text, gssize length, InputLines lines);
// New UTF-8 text with a plain space for each such white space and without the other such
// characters; null, without a message, for what is not UTF-8.
OwnedText v_latin1_input_fix_text(const char *utf8_text, gssize length, InputLines lines);

// The text of a field in ISO-8859-1, repaired where needed; null with a message when it cannot be.
OwnedText v_latin1_input_convert(const char *utf8_text, InputLines lines);

// For a handler of the instance's "insert-text" signal. A text that needs fixing is not inserted;
// insert is called with its repaired form (unless that is empty), and the user hears a beep. Any
// other text is left to the toolkit.
void v_latin1_input_repair_insertion(void *instance, const char *utf8_text, gssize length,
                                     InputLines lines,
                                     const std::function<void(const char *repaired)> &insert);
