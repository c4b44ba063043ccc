#include "base/integer_parsing.h"

#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "base/error.h"

namespace {

constexpr const char *empty = "Empty integer value.";
constexpr const char *whitespace = "Integer value must not begin with whitespace.";
constexpr const char *overflow = "Integer value out of range (overflow or underflow).";
constexpr const char *invalid = "Invalid characters in integer value.";
constexpr const char *too_small = "Integer value out of valid range (too small).";
constexpr const char *too_large = "Integer value out of valid range (too large).";

constexpr const char *unsigned_empty = "Empty unsigned integer value.";
constexpr const char *unsigned_whitespace =
    "Unsigned integer value must not begin with whitespace.";
constexpr const char *unsigned_negative = "Unsigned integer value underflow (is negative).";
constexpr const char *unsigned_overflow = "Unsigned integer value overflow.";
constexpr const char *unsigned_invalid = "Invalid characters in unsigned integer value.";
constexpr const char *unsigned_too_small = "Unsigned integer value out of valid range (too small).";
constexpr const char *unsigned_too_large = "Unsigned integer value out of valid range (too large).";

template <typename Value>
struct Row {
  const char *text;
  const char *message; // null: parsing succeeds
  Value value = 0;
};

// Parses each row and checks that a failure leaves the output unchanged.
template <typename Value, typename Parse>
void expect_rows(Parse parse, const std::vector<Row<Value>> &rows) {
  for (const Row<Value> &row : rows) {
    SCOPED_TRACE(testing::Message() << "\"" << row.text << "\"");
    constexpr Value untouched = 77;
    Value value = untouched;
    v_error_clear();
    const bool is_read = parse(&value, row.text);
    EXPECT_EQ(is_read, row.message == nullptr);
    EXPECT_EQ(value, row.message == nullptr ? row.value : untouched);
    EXPECT_STREQ(v_error_get(), row.message == nullptr ? "" : row.message);
  }
}

// Texts that every signed parser rejects, whatever its range.
template <typename Value>
const std::vector<Row<Value>> unreadable = {
    {"", empty},
    {" 5", whitespace},
    {"\t5", whitespace},
    {"\n5", whitespace},
    {"\v5", whitespace},
    {"\f5", whitespace},
    {"\r5", whitespace},
    {" ", whitespace},
    {" abc", whitespace},
    {"\xC2\xA0"
     "5",
     whitespace}, // no-break space
    {"\xE2\x80\x83"
     "5",
     whitespace}, // em space
    {"\xC2\x85"
     "5",
     invalid},
    {"5 ", invalid},
    {"5\n", invalid},
    {"5\v", invalid},
    {"5\xC2\xA0", invalid},
    {"abc", invalid},
    {"5a", invalid},
    {"5 5", invalid},
    {"5,5", invalid},
    {"5.5", invalid},
    {"5.", invalid},
    {"1e3", invalid},
    {"0x10", invalid},
    {"1,000", invalid},
    {"1.000", invalid},
    {"-", invalid},
    {"+", invalid},
    {"+-5", invalid},
    {"--5", invalid},
    {"+ 5", invalid},
    {"- 5", invalid},
    {"\xD9\xA5", invalid},     // an Arabic five
    {"\xEF\xBC\x95", invalid}, // a fullwidth five
    {"\xA0"
     "5",
     invalid}, // not UTF-8
    {"\xFF", invalid},
    {"%d", invalid},
    {"99999999999999999999", overflow},
    {"-99999999999999999999", overflow},
    {"9223372036854775808", overflow},
    {"-9223372036854775809", overflow},
};

template <typename Value>
const std::vector<Row<Value>> readable = {
    {"0", nullptr, 0},   {"-0", nullptr, 0},
    {"+0", nullptr, 0},  {"5", nullptr, 5},
    {"+5", nullptr, 5},  {"-5", nullptr, -5},
    {"007", nullptr, 7}, {"-007", nullptr, -7},
    {"08", nullptr, 8},  {"0000000000000000000000000000005", nullptr, 5},
};

constexpr gint64 int64_minimum = std::numeric_limits<gint64>::min();
constexpr gint64 int64_maximum = std::numeric_limits<gint64>::max();
constexpr int int_minimum = std::numeric_limits<int>::min();
constexpr int int_maximum = std::numeric_limits<int>::max();

TEST(IntegerParsing, Int64) {
  expect_rows<gint64>(v_util_parse_int64, unreadable<gint64>);
  expect_rows<gint64>(v_util_parse_int64, readable<gint64>);
  expect_rows<gint64>(v_util_parse_int64, {{"9223372036854775807", nullptr, int64_maximum},
                                           {"-9223372036854775808", nullptr, int64_minimum},
                                           {"2147483648", nullptr, 2147483648},
                                           {"9223372036854775808x", overflow}});
}

TEST(IntegerParsing, Int64InRange) {
  const auto parse = [](gint64 *out, const char *text) {
    return v_util_parse_int64_in_range(out, text, -10, 10'000'000'000);
  };
  expect_rows<gint64>(parse, unreadable<gint64>);
  expect_rows<gint64>(parse, {{"-10", nullptr, -10},
                              {"-11", too_small},
                              {"10000000000", nullptr, 10'000'000'000},
                              {"10000000001", too_large},
                              {"-9223372036854775808", too_small},
                              {"9223372036854775807", too_large}});
}

TEST(IntegerParsing, Int) {
  expect_rows<int>(v_util_parse_int, unreadable<int>);
  expect_rows<int>(v_util_parse_int, readable<int>);
  expect_rows<int>(v_util_parse_int, {{"2147483647", nullptr, int_maximum},
                                      {"-2147483648", nullptr, int_minimum},
                                      {"2147483648", too_large},
                                      {"-2147483649", too_small},
                                      {"4294967296", too_large}, // its low 32 bits are 0
                                      {"9223372036854775807", too_large},
                                      {"-9223372036854775808", too_small}});
}

TEST(IntegerParsing, IntInRange) {
  const auto parse = [](int *out, const char *text) {
    return v_util_parse_int_in_range(out, text, 1, 3);
  };
  expect_rows<int>(parse, unreadable<int>);
  expect_rows<int>(parse, {{"0", too_small},
                           {"1", nullptr, 1},
                           {"3", nullptr, 3},
                           {"4", too_large},
                           {"2147483648", too_large},
                           {"-2147483649", too_small}});
}

template <typename Value>
const std::vector<Row<Value>> unsigned_unreadable = {
    {"", unsigned_empty},
    {" 5", unsigned_whitespace},
    {"\t5", unsigned_whitespace},
    {"\v5", unsigned_whitespace},
    {" -5", unsigned_whitespace},
    {"\xC2\xA0"
     "5",
     unsigned_whitespace},
    {"-5", unsigned_negative},
    {"-0", unsigned_negative},
    {"-", unsigned_negative},
    {"-abc", unsigned_negative},
    {"abc", unsigned_invalid},
    {"5 ", unsigned_invalid},
    {"5-", unsigned_invalid},
    {"+", unsigned_invalid},
    {"+-5", unsigned_invalid},
    {"+ 5", unsigned_invalid},
    {"0x10", unsigned_invalid},
    {"1,000", unsigned_invalid},
    {"\xFF", unsigned_invalid},
    {"18446744073709551616", unsigned_overflow},
    {"99999999999999999999999", unsigned_overflow},
};

template <typename Value>
const std::vector<Row<Value>> unsigned_readable = {
    {"0", nullptr, 0}, {"5", nullptr, 5}, {"+5", nullptr, 5}, {"007", nullptr, 7}};

TEST(IntegerParsing, Uint64) {
  expect_rows<guint64>(v_util_parse_uint64, unsigned_unreadable<guint64>);
  expect_rows<guint64>(v_util_parse_uint64, unsigned_readable<guint64>);
  expect_rows<guint64>(v_util_parse_uint64,
                       {{"18446744073709551615", nullptr, std::numeric_limits<guint64>::max()},
                        {"9223372036854775808", nullptr, guint64{1} << 63}});
}

TEST(IntegerParsing, Uint64InRange) {
  const auto parse = [](guint64 *out, const char *text) {
    return v_util_parse_uint64_in_range(out, text, 5, 10'000'000'000);
  };
  expect_rows<guint64>(parse, unsigned_unreadable<guint64>);
  expect_rows<guint64>(parse, {{"4", unsigned_too_small},
                               {"5", nullptr, 5},
                               {"10000000000", nullptr, 10'000'000'000},
                               {"10000000001", unsigned_too_large},
                               {"18446744073709551615", unsigned_too_large}});
}

TEST(IntegerParsing, Uint) {
  expect_rows<unsigned>(v_util_parse_uint, unsigned_unreadable<unsigned>);
  expect_rows<unsigned>(v_util_parse_uint, unsigned_readable<unsigned>);
  expect_rows<unsigned>(v_util_parse_uint, {{"4294967295", nullptr, 4294967295u},
                                            {"4294967296", unsigned_too_large},
                                            {"18446744073709551615", unsigned_too_large}});
}

TEST(IntegerParsing, UintInRange) {
  const auto parse = [](unsigned *out, const char *text) {
    return v_util_parse_uint_in_range(out, text, 1, 3);
  };
  expect_rows<unsigned>(parse, unsigned_unreadable<unsigned>);
  expect_rows<unsigned>(parse, {{"0", unsigned_too_small},
                                {"1", nullptr, 1},
                                {"3", nullptr, 3},
                                {"4", unsigned_too_large},
                                {"4294967297", unsigned_too_large}});
}

} // namespace
