#include "base/natural_order.h"

#include <cstddef>

#include "base/whitespace.h"

namespace {

bool is_digit(char byte) { return byte >= '0' && byte <= '9'; }

unsigned digit_value(char digit) { return static_cast<unsigned>(digit - '0'); }

char upper_case(char byte) {
  return byte >= 'a' && byte <= 'z' ? static_cast<char>(byte - 'a' + 'A') : byte;
}

std::size_t digit_run_length(const char *text) {
  std::size_t length = 0;
  while (is_digit(text[length])) {
    length++;
  }
  return length;
}

// The first differing digit decides; a shorter run is smaller.
int compare_left_aligned(const char *a, const char *b) {
  for (;; a++, b++) {
    if (!is_digit(*a) || !is_digit(*b)) {
      return static_cast<int>(is_digit(*a)) - static_cast<int>(is_digit(*b));
    }
    if (*a != *b) {
      return *a < *b ? -1 : 1;
    }
  }
}

// The longer run is greater; in runs of equal length the first differing digit decides.
int compare_right_aligned(const char *a, const char *b) {
  int bias = 0;
  for (;; a++, b++) {
    if (!is_digit(*a) || !is_digit(*b)) {
      const int longer = static_cast<int>(is_digit(*a)) - static_cast<int>(is_digit(*b));
      return longer != 0 ? longer : bias;
    }
    if (bias == 0 && *a != *b) {
      bias = *a < *b ? -1 : 1;
    }
  }
}

template <bool skip_zeros>
const char *skip_ignored(const char *text) {
  while (v_ascii_is_space(*text) || (skip_zeros && *text == '0')) {
    text++;
  }
  return text;
}

// Plain char is signed on some platforms only.
int compare_signed(char a, char b) {
  const auto signed_a = static_cast<signed char>(a);
  const auto signed_b = static_cast<signed char>(b);
  return static_cast<int>(signed_a > signed_b) - static_cast<int>(signed_a < signed_b);
}

template <bool fold_case, bool skip_zeros>
int compare(const char *a, const char *b) {
  for (;;) {
    a = skip_ignored<skip_zeros>(a);
    b = skip_ignored<skip_zeros>(b);
    if (is_digit(*a) && is_digit(*b)) {
      const bool is_fraction = *a == '0' || *b == '0';
      if (const int order =
              is_fraction ? compare_left_aligned(a, b) : compare_right_aligned(a, b)) {
        return order;
      }
      // Skips both runs at once. Otherwise the comparison would start again at each of their
      // digits.
      const std::size_t length = digit_run_length(a);
      a += length;
      b += length;
      continue;
    }
    if (*a == '\0' && *b == '\0') {
      return 0;
    }
    const int order =
        fold_case ? compare_signed(upper_case(*a), upper_case(*b)) : compare_signed(*a, *b);
    if (order != 0) {
      return order;
    }
    a++;
    b++;
  }
}

} // namespace

int strnatcmp0(const char *a, const char *b, bool fold_case, bool skip_zeros) {
  if (fold_case) {
    return skip_zeros ? strnatzerocasecmp(a, b) : strnatcasecmp(a, b);
  }
  return skip_zeros ? strnatzerocmp(a, b) : strnatcmp(a, b);
}

int strnatcmp(const char *a, const char *b) { return compare<false, false>(a, b); }

int strnatcasecmp(const char *a, const char *b) { return compare<true, false>(a, b); }

int strnatzerocmp(const char *a, const char *b) { return compare<false, true>(a, b); }

int strnatzerocasecmp(const char *a, const char *b) { return compare<true, true>(a, b); }

std::uint64_t strnatzerocasecmp_key(const char *text) {
  std::uint64_t key = 0;
  unsigned shift = 64;
  const auto append = [&](unsigned byte) {
    if (shift >= 8) {
      shift -= 8;
      key |= static_cast<std::uint64_t>(byte) << shift;
    }
  };
  // A character is stored as its byte with the top bit flipped: keys are compared unsigned, but
  // characters are ordered as signed bytes.
  const auto append_character = [&](char byte) {
    append(static_cast<unsigned char>(byte) ^ 0x80U);
  };
  while (shift > 0) {
    text = skip_ignored<true>(text);
    const std::size_t length = digit_run_length(text);
    if (length == 0) {
      append_character(upper_case(*text));
      if (*text == '\0') {
        return key;
      }
      text++;
      continue;
    }
    // A number is stored as the byte of a digit, the number of its digits, and the digits, two per
    // byte.
    append_character('0');
    if (length >= 0xFF) {
      append(0xFF);
      return key; // the count of longer numbers does not fit
    }
    append(static_cast<unsigned>(length));
    for (std::size_t i = 0; i < length; i += 2) {
      append(digit_value(text[i]) << 4 | (i + 1 < length ? digit_value(text[i + 1]) : 0));
    }
    text += length;
  }
  return key;
}
