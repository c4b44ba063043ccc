#pragma once
// Natural order: texts compare as people read them, x2 before x10. Single-byte texts; whitespace,
// digits and letter case are those of ASCII in every locale, and bytes above 127 sort before every
// ASCII character. Linear in the length of the texts.

#include <cstdint>

// Negative order is -1, equal 0, positive 1. fold_case: ASCII letters compare without regard to
// case. skip_zeros: each "0" that a comparison step meets first is skipped like whitespace, so 7
// and 07 are equal, and so are a0b and ab.
int strnatcmp0(const char *a, const char *b, bool fold_case, bool skip_zeros);

int strnatcmp(const char *a, const char *b);
int strnatcasecmp(const char *a, const char *b);
int strnatzerocmp(const char *a, const char *b);
int strnatzerocasecmp(const char *a, const char *b);

// A number for sorting many texts: of two texts with different keys the one with the smaller key
// is smaller in strnatzerocasecmp. Equal keys decide nothing.
std::uint64_t strnatzerocasecmp_key(const char *text);
