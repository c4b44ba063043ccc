#pragma once
// Growable strings on top of GLib's, and small text operations that the other modules share.

#include <cstdarg>

#include "base/owned.h"

inline void free_growable_string(GString *string) { g_string_free(string, TRUE); }

// A growable UTF-8 string, and one for ISO-8859-1: the same type under two names, so that
// signatures document the encoding.
using VUtf8String = GString;
using VLatin1String = GString;
using OwnedUtf8String = Owned<GString, free_growable_string>;
using OwnedLatin1String = Owned<GString, free_growable_string>;

// A new string that begins with a copy of the text (null: empty).
OwnedUtf8String v_utf8_string_new(const char *text);
void v_utf8_string_append(VUtf8String *string, const char *text);
void v_utf8_string_append_byte(VUtf8String *string, char byte);
void v_utf8_string_append_printf(VUtf8String *string, const char *format, ...) G_GNUC_PRINTF(2, 3);
void v_utf8_string_append_vprintf(VUtf8String *string, const char *format, va_list arguments)
    G_GNUC_PRINTF(2, 0);
// Frees the string. Returns its characters, or null when free_data is true.
OwnedText v_utf8_string_free(OwnedUtf8String string, bool free_data);

OwnedLatin1String v_latin1_string_new(const char *text);
void v_latin1_string_append(VLatin1String *string, const char *text);
void v_latin1_string_append_byte(VLatin1String *string, char byte);
void v_latin1_string_append_printf(VLatin1String *string, const char *format, ...)
    G_GNUC_PRINTF(2, 3);
void v_latin1_string_append_vprintf(VLatin1String *string, const char *format, va_list arguments)
    G_GNUC_PRINTF(2, 0);
OwnedText v_latin1_string_free(OwnedLatin1String string, bool free_data);

// Declares an owned text named text, formatted from the variable arguments of the enclosing
// function, whose last named parameter must be format.
#define V_FORMAT_ARGUMENTS(text, format)                                                           \
  va_list text##_arguments;                                                                        \
  va_start(text##_arguments, format);                                                              \
  OwnedText text(g_strdup_vprintf(format, text##_arguments));                                      \
  va_end(text##_arguments)

// New text with every occurrence of find replaced. An empty find replaces nothing.
OwnedText v_char_strdup_replace(const char *text, const char *find, const char *replacement);
// The same for an owned text, which is freed.
OwnedText v_char_strdup_replace_and_free(OwnedText text, const char *find, const char *replacement);
// The concatenation of count strings, as a new text; null entries are skipped, count 0 gives "".
OwnedText v_utf8_cat_(const char *const *array, int count);
// True when the text ends in suffix, ignoring the case of ASCII letters.
bool v_utf8_has_suffix_case_insensitive_ascii(const char *text, const char *suffix);
