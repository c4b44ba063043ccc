#pragma once
// Normalises the whitespace of texts from files and fields. There are three operations, each for
// ISO-8859-1 (and ASCII) and for UTF-8, in place or into a new text:
//
// - detabify: strip both ends; each whitespace character but the line feed becomes a space.
// - spacify: strip both ends; each whitespace character becomes a space.
// - spacify compactly: strip both ends; each run of whitespace becomes one space.
//
// Names and paths are only stripped: whitespace inside is part of them.
//
// In ISO-8859-1 and ASCII, whitespace means the six ASCII characters in every locale (not the
// no-break space); in UTF-8 it is what g_unichar_isspace accepts (the no-break space, not the
// vertical tab), and bytes that are not UTF-8 are kept. "within_original" changes the caller's
// buffer and returns it, "in_new" leaves the text unchanged.

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
