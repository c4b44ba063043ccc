#include "base/integer_parsing.h"

#include <cerrno>
#include <limits>

#include "base/error.h"
#include "base/whitespace.h"

namespace {

bool begins_with_whitespace(const char *utf8_text) {
  const gunichar first = g_utf8_get_char_validated(utf8_text, -1);
  return v_ascii_is_space(*utf8_text) || (first < 0x110000 && g_unichar_isspace(first));
}

// The signed and the unsigned parsers differ only in the library function and in these messages.
struct Words {
  const char *empty;
  const char *leading_whitespace;
  const char *parser_error;
  const char *overflow;
  const char *invalid_characters;
  const char *too_small;
  const char *too_large;
};

constexpr Words signed_words = {
    "Empty integer value.",
    "Integer value must not begin with whitespace.",
    "Integer parser error.",
    "Integer value out of range (overflow or underflow).",
    "Invalid characters in integer value.",
    "Integer value out of valid range (too small).",
    "Integer value out of valid range (too large).",
};

constexpr Words unsigned_words = {
    "Empty unsigned integer value.",
    "Unsigned integer value must not begin with whitespace.",
    "Unsigned integer parser error.",
    "Unsigned integer value overflow.",
    "Invalid characters in unsigned integer value.",
    "Unsigned integer value out of valid range (too small).",
    "Unsigned integer value out of valid range (too large).",
};

bool fail_with_message(const char *message) {
  v_error_set(message);
  return false;
}

bool check_beginning(const char *text, const Words &words) {
  if (*text == '\0') {
    return fail_with_message(words.empty);
  }
  if (begins_with_whitespace(text)) {
    return fail_with_message(words.leading_whitespace);
  }
  return true;
}

template <typename Value>
bool parse(Value *out, const char *text, const Words &words,
           Value (*parser)(const gchar *, gchar **, guint)) {
  char *end = nullptr;
  errno = 0;
  const Value value = parser(text, &end, 10);
  if (errno == EINVAL) {
    return fail_with_message(words.parser_error);
  }
  if (errno == ERANGE) {
    return fail_with_message(words.overflow);
  }
  // Also rejects a text without any digit: the library then leaves `end` at the start.
  if (end == text || *end != '\0') {
    return fail_with_message(words.invalid_characters);
  }
  *out = value;
  return true;
}

template <typename Narrow, typename Wide>
bool store_in_range(Narrow *out, Wide value, Wide minimum, Wide maximum, const Words &words) {
  if (value < minimum) {
    return fail_with_message(words.too_small);
  }
  if (value > maximum) {
    return fail_with_message(words.too_large);
  }
  *out = static_cast<Narrow>(value);
  return true;
}

} // namespace

bool v_util_parse_int64(gint64 *out, const char *text) {
  return check_beginning(text, signed_words) && parse(out, text, signed_words, g_ascii_strtoll);
}

bool v_util_parse_int64_in_range(gint64 *out, const char *text, gint64 minimum, gint64 maximum) {
  gint64 value = 0;
  return v_util_parse_int64(&value, text) &&
         store_in_range(out, value, minimum, maximum, signed_words);
}

bool v_util_parse_int(int *out, const char *text) {
  return v_util_parse_int_in_range(out, text, std::numeric_limits<int>::min(),
                                   std::numeric_limits<int>::max());
}

bool v_util_parse_int_in_range(int *out, const char *text, int minimum, int maximum) {
  gint64 value = 0;
  return v_util_parse_int64(&value, text) &&
         store_in_range<int, gint64>(out, value, minimum, maximum, signed_words);
}

bool v_util_parse_uint64(guint64 *out, const char *text) {
  if (!check_beginning(text, unsigned_words)) {
    return false;
  }
  // The library accepts a minus sign and wraps around.
  if (*text == '-') {
    return fail_with_message("Unsigned integer value underflow (is negative).");
  }
  return parse(out, text, unsigned_words, g_ascii_strtoull);
}

bool v_util_parse_uint64_in_range(guint64 *out, const char *text, guint64 minimum,
                                  guint64 maximum) {
  guint64 value = 0;
  return v_util_parse_uint64(&value, text) &&
         store_in_range(out, value, minimum, maximum, unsigned_words);
}

bool v_util_parse_uint(unsigned *out, const char *text) {
  return v_util_parse_uint_in_range(out, text, 0, std::numeric_limits<unsigned>::max());
}

bool v_util_parse_uint_in_range(unsigned *out, const char *text, unsigned minimum,
                                unsigned maximum) {
  guint64 value = 0;
  return v_util_parse_uint64(&value, text) &&
         store_in_range<unsigned, guint64>(out, value, minimum, maximum, unsigned_words);
}
