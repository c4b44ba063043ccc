#pragma once
// The ways in which every text from a file or a field is normalised. Three of them exist for
// ISO-8859-1 (and ASCII, the same) and for UTF-8, in place or into a new text:
//
// - detabify: strip both ends; other whitespace than line feeds becomes a space, one by one.
// - spacify: strip both ends; all whitespace becomes a space, one by one.
// - spacify compactly: strip both ends; each run of whitespace becomes one space.
//
// Names and paths are only stripped: white space inside belongs to them.
//
// In ISO-8859-1 and ASCII whitespace is the six ASCII characters in every locale (a no-break space
// is not); in UTF-8 g_unichar_isspace decides (a no-break space is, the vertical tab is not)
// and bytes that are not UTF-8 pass through. "within_original" works in the caller's buffer and
// returns a pointer into it, "in_new" leaves the text alone.

#include "base/owned.h"

// The six ASCII whitespace characters, independent of the locale.
inline bool v_ascii_is_space(char byte) { return byte == ' ' || (byte >= '\t' && byte <= '\r'); }

OwnedText v_strip_surrounding_in_new_for_utf8(const char *utf8_text);

char *v_strip_surrounding_and_detabify_within_original_for_latin1(char *latin1_text);
OwnedText v_strip_surrounding_and_detabify_in_new_for_latin1(const char *latin1_text);
char *v_strip_surrounding_and_detabify_within_original_for_utf8(char *utf8_text);
OwnedText v_strip_surrounding_and_detabify_in_new_for_utf8(const char *utf8_text);

char *v_strip_surrounding_and_spacify_within_original_for_latin1(char *latin1_text);
OwnedText v_strip_surrounding_and_spacify_in_new_for_latin1(const char *latin1_text);
char *v_strip_surrounding_and_spacify_within_original_for_utf8(char *utf8_text);
OwnedText v_strip_surrounding_and_spacify_in_new_for_utf8(const char *utf8_text);

char *v_strip_surrounding_and_spacify_compactly_within_original_for_ascii(char *ascii_text);
char *v_strip_surrounding_and_spacify_compactly_within_original_for_latin1(char *latin1_text);
OwnedText v_strip_surrounding_and_spacify_compactly_in_new_for_latin1(const char *latin1_text);
char *v_strip_surrounding_and_spacify_compactly_within_original_for_utf8(char *utf8_text);
OwnedText v_strip_surrounding_and_spacify_compactly_in_new_for_utf8(const char *utf8_text);
