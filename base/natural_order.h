#pragma once
// Natural order: texts compare as people read them, x2 before x10. Texts are in a single-byte
// encoding; whitespace, digits and letter case are those of ASCII in every locale, and bytes above
// 127 sort before every ASCII character. Takes linear time.

#include <cstdint>

// Returns -1, 0 or 1. fold_case: ignores the case of ASCII letters. skip_zeros: each "0" at the
// start of a comparison step is skipped like whitespace, so 7 and 07 are equal, and so are a0b and
// ab.
int strnatcmp0(const char *a, const char *b, bool fold_case, bool skip_zeros);

int strnatcmp(const char *a, const char *b);
int strnatcasecmp(const char *a, const char *b);
int strnatzerocmp(const char *a, const char *b);
int strnatzerocasecmp(const char *a, const char *b);

// A sort key: when the keys of two texts differ, they order the texts as strnatzerocasecmp does.
// Equal keys do not imply equal texts.
std::uint64_t strnatzerocasecmp_key(const char *text);
