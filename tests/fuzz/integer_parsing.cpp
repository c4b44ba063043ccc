// The strict parsers of decimal integers.

#include "base/integer_parsing.h"

#include <algorithm>
#include <limits>

#include "fuzz/fuzzing.h"

namespace {

// Reads a sign and any number of digits; a value beyond the widest type stays beyond it.
using Wide = __int128;
constexpr Wide far_away = Wide{std::numeric_limits<guint64>::max()} * 16;

bool expected_value(const std::string &text, Wide &value) {
  const bool has_sign = text.starts_with('+') || text.starts_with('-');
  const std::string digits = text.substr(has_sign ? 1 : 0);
  if (digits.empty() || digits.find_first_not_of("0123456789") != std::string::npos) {
    return false;
  }
  value = 0;
  for (const char digit : digits) {
    value = std::min(value * 10 + (digit - '0'), far_away);
  }
  value = text.starts_with('-') ? -value : value;
  return true;
}

// Parse: bool(Number *out, const char *text), for numbers from minimum to maximum.
template <typename Number, typename Parse>
void check(const std::string &text, Number minimum, Number maximum, Parse parse) {
  constexpr Number untouched = 42;
  Number number = untouched;
  Wide expected = 0;
  const bool is_number = expected_value(text, expected) && expected >= Wide{minimum} &&
                         expected <= Wide{maximum} &&
                         (std::numeric_limits<Number>::is_signed || !text.starts_with('-'));
  set_old_message();
  require(parse(&number, text.c_str()) == is_number, "whole numbers of the range are accepted");
  if (is_number) {
    require(Wide{number} == expected, "the number is the one that is written");
    require(has_old_message(), "success leaves the message alone");
  } else {
    require(number == untouched, "a failure leaves the number alone");
    require_message();
  }
}

template <typename Number>
constexpr Number least = std::numeric_limits<Number>::min();
template <typename Number>
constexpr Number greatest = std::numeric_limits<Number>::max();

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  const std::string text = text_of(data, size);
  check(text, least<int>, greatest<int>, v_util_parse_int);
  check(text, least<unsigned>, greatest<unsigned>, v_util_parse_uint);
  check(text, least<gint64>, greatest<gint64>, v_util_parse_int64);
  check(text, least<guint64>, greatest<guint64>, v_util_parse_uint64);
  check(text, -7, 1000, [](int *out, const char *number) {
    return v_util_parse_int_in_range(out, number, -7, 1000);
  });
  check(text, 7U, 1000U, [](unsigned *out, const char *number) {
    return v_util_parse_uint_in_range(out, number, 7, 1000);
  });
  check(text, gint64{-7}, gint64{1} << 40, [](gint64 *out, const char *number) {
    return v_util_parse_int64_in_range(out, number, -7, gint64{1} << 40);
  });
  check(text, guint64{7}, guint64{1} << 63, [](guint64 *out, const char *number) {
    return v_util_parse_uint64_in_range(out, number, 7, guint64{1} << 63);
  });
  return 0;
}
