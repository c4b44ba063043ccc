#pragma once
// Strict decimal integers, independent of the locale: an optional sign, digits, nothing else. Every
// function stores the value and returns true, or leaves *out unchanged, sets a message about the
// fault and returns false.

#include <glib.h>

bool v_util_parse_int64(gint64 *out, const char *text);
bool v_util_parse_int64_in_range(gint64 *out, const char *text, gint64 minimum, gint64 maximum);
bool v_util_parse_int(int *out, const char *text);
bool v_util_parse_int_in_range(int *out, const char *text, int minimum, int maximum);

bool v_util_parse_uint64(guint64 *out, const char *text);
bool v_util_parse_uint64_in_range(guint64 *out, const char *text, guint64 minimum, guint64 maximum);
bool v_util_parse_uint(unsigned *out, const char *text);
bool v_util_parse_uint_in_range(unsigned *out, const char *text, unsigned minimum,
                                unsigned maximum);
