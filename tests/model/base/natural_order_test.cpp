#include "base/natural_order.h"

#include <algorithm>
#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

namespace {

// A second, simple and slow implementation of the rules. It shares no code with the tested one.
namespace reference {

bool is_space(int c) {
  return std::string(" \t\n\v\f\r").find(static_cast<char>(c)) != std::string::npos && c != 0;
}

int at(const std::string &s, std::size_t i) {
  return i < s.size() ? static_cast<unsigned char>(s[i]) : 0;
}

std::string digits_from(const std::string &s, std::size_t i) {
  std::string run;
  for (; at(s, i) >= '0' && at(s, i) <= '9'; i++) {
    run += s[i];
  }
  return run;
}

int sign(int difference) { return (difference > 0) - (difference < 0); }

int as_fractions(const std::string &a, const std::string &b) {
  const std::size_t common = std::min(a.size(), b.size());
  if (const int order = a.substr(0, common).compare(b.substr(0, common))) {
    return sign(order);
  }
  return a.size() == b.size() ? 0 : (a.size() < b.size() ? -1 : 1);
}

int as_whole_numbers(const std::string &a, const std::string &b) {
  return a.size() == b.size() ? sign(a.compare(b)) : (a.size() < b.size() ? -1 : 1);
}

int signed_value(int c, bool fold_case) {
  if (fold_case && c >= 'a' && c <= 'z') {
    c += 'A' - 'a';
  }
  return c > 127 ? c - 256 : c;
}

int compare(const std::string &a, const std::string &b, bool fold_case, bool skip_zeros) {
  std::size_t i = 0, j = 0;
  while (true) {
    while (is_space(at(a, i)) || (skip_zeros && at(a, i) == '0')) {
      i++;
    }
    while (is_space(at(b, j)) || (skip_zeros && at(b, j) == '0')) {
      j++;
    }
    const std::string x = digits_from(a, i), y = digits_from(b, j);
    if (!x.empty() && !y.empty()) {
      const int order = x[0] == '0' || y[0] == '0' ? as_fractions(x, y) : as_whole_numbers(x, y);
      if (order != 0) {
        return order;
      }
    }
    if (at(a, i) == 0 && at(b, j) == 0) {
      return 0;
    }
    if (const int order =
            sign(signed_value(at(a, i), fold_case) - signed_value(at(b, j), fold_case))) {
      return order;
    }
    i++;
    j++;
  }
}

} // namespace reference

void append_all(std::vector<std::string> &texts, const std::string &alphabet, std::size_t longest) {
  std::size_t begin = texts.size();
  texts.emplace_back();
  for (std::size_t length = 1; length <= longest; length++) {
    const std::size_t end = texts.size();
    for (; begin < end; begin++) {
      for (const char c : alphabet) {
        texts.push_back(texts[begin] + c);
      }
    }
  }
}

// All short texts over alphabets that together reach each branch.
const std::vector<std::string> &short_texts() {
  static const std::vector<std::string> texts = [] {
    std::vector<std::string> all;
    append_all(all, std::string("017aB \xE5"), 3);
    append_all(all, "01a", 5);
    append_all(all, "029 ", 4);
    append_all(all, "aA\x80\xFF\n", 3);
    std::sort(all.begin(), all.end());
    all.erase(std::unique(all.begin(), all.end()), all.end());
    return all;
  }();
  return texts;
}

// Every text of one byte.
std::vector<std::string> every_byte() {
  std::vector<std::string> texts;
  for (int byte = 1; byte <= 0xFF; byte++) {
    texts.emplace_back(1, static_cast<char>(byte));
  }
  return texts;
}

struct Row {
  const char *a, *b;
  int plain, fold, zero, zero_fold;
};

TEST(NaturalOrder, FollowsTheTable) {
  const Row rows[] = {
      {"", "", 0, 0, 0, 0},
      {"a", "", 1, 1, 1, 1},
      {"x2", "x10", -1, -1, -1, -1},
      {"07", "7", -1, -1, 0, 0},
      {"7", "07", 1, 1, 0, 0},
      {"abc", "ABC", 1, 0, 1, 0},
      {"a0b", "ab", -1, -1, 0, 0},
      {"a00b", "a0b", 1, 1, 0, 0},
      {"a", "a0", -1, -1, 0, 0},
      {"0", "", 1, 1, 0, 0},
      {"000", "0", 1, 1, 0, 0},
      {"0", "00", -1, -1, 0, 0},
      {"1.010", "1.001", 1, 1, 1, 1},
      {"1.01", "1.1", -1, -1, 0, 0},
      {"1.05", "1.049", 1, 1, -1, -1},
      {"a1", "a1b", -1, -1, -1, -1},
      {"a1b2", "a1b10", -1, -1, -1, -1},
      {"10", "1 0", 1, 1, 1, 1},
      {"9", "10", -1, -1, -1, -1},
      {"19", "21", -1, -1, -1, -1},
      {"21", "19", 1, 1, 1, 1},
      {"100", "99", 1, 1, 1, 1},
      {"0100", "099", -1, -1, 1, 1},
      {"0100", "99", -1, -1, 1, 1},
      {"12345678901234567890123", "12345678901234567890124", -1, -1, -1, -1},
      {"a b", "ab", 0, 0, 0, 0},
      {" a\t\n\v\f\rb ", "ab", 0, 0, 0, 0},
      {"a 1", "a1", 0, 0, 0, 0},
      {"   ", "", 0, 0, 0, 0},
      {"A", "a", -1, 0, -1, 0},
      {"B", "a", -1, 1, -1, 1},
      {"_", "a", -1, 1, -1, 1}, // between 'Z' and 'a': folding is to upper case
      {"i", "I", 1, 0, 1, 0},   // also in a Turkish locale
      {"\xE5", "a", -1, -1, -1, -1},
      {"\xE5", "1", -1, -1, -1, -1},
      {"\xE5", "\x01", -1, -1, -1, -1},
      {"\xE5", "\xC5", 1, 1, 1, 1}, // no folding outside ASCII
      {"\x80", "\xFF", -1, -1, -1, -1},
      {"\xA0"
       "a",
       "a", -1, -1, -1, -1}, // a no-break space is not skipped
      {"\x85"
       "a",
       "a", -1, -1, -1, -1},
      {"a", "a\xE5", 1, 1, 1, 1}, // the end is 0; bytes above 127 are negative
      {"a", "a\x80", 1, 1, 1, 1},
      {"a", "a\xFF", 1, 1, 1, 1},
      {"", "\xE5", 1, 1, 1, 1},
      {"a", "a\x01", -1, -1, -1, -1},
      {"1a", "1\xE5", 1, 1, 1, 1},
      {"1", "1\xE5", 1, 1, 1, 1},
      {"1", "a", -1, -1, -1, -1},
      {"10a", "1a", 1, 1, 1, 1},
      {"a10", "a1", 1, 1, 1, 1},
      {"\xB2", "2", -1, -1, -1, -1}, // superscript two is no digit
  };
  for (const Row &row : rows) {
    SCOPED_TRACE(testing::Message() << "\"" << row.a << "\" and \"" << row.b << "\"");
    EXPECT_EQ(strnatcmp(row.a, row.b), row.plain);
    EXPECT_EQ(strnatcasecmp(row.a, row.b), row.fold);
    EXPECT_EQ(strnatzerocmp(row.a, row.b), row.zero);
    EXPECT_EQ(strnatzerocasecmp(row.a, row.b), row.zero_fold);
    EXPECT_EQ(strnatcmp(row.b, row.a), -row.plain);
    EXPECT_EQ(strnatcasecmp(row.b, row.a), -row.fold);
    EXPECT_EQ(strnatzerocmp(row.b, row.a), -row.zero);
    EXPECT_EQ(strnatzerocasecmp(row.b, row.a), -row.zero_fold);
  }
}

TEST(NaturalOrder, SortsAsPeopleExpect) {
  const std::vector<std::string> sorted = {"1",   "1a",   "2",    "10",    "10a", "11",
                                           "100", "A1",   "A2",   "A10",   "a1",  "a1 b",
                                           "a2",  "a2b1", "a2b3", "a2b20", "a10", "b"};
  for (std::size_t i = 0; i < sorted.size(); i++) {
    for (std::size_t j = 0; j < sorted.size(); j++) {
      const int expected = (i > j) - (i < j);
      EXPECT_EQ(strnatcmp(sorted[i].c_str(), sorted[j].c_str()), expected)
          << sorted[i] << " " << sorted[j];
    }
  }
}

class NaturalOrderVariants : public testing::TestWithParam<std::tuple<bool, bool>> {
protected:
  static void expect_rules_for_all_pairs(const std::vector<std::string> &texts) {
    const auto [fold_case, skip_zeros] = GetParam();
    for (const std::string &a : texts) {
      for (const std::string &b : texts) {
        const int order = strnatcmp0(a.c_str(), b.c_str(), fold_case, skip_zeros);
        ASSERT_EQ(order, reference::compare(a, b, fold_case, skip_zeros))
            << "\"" << a << "\" and \"" << b << "\"";
        ASSERT_EQ(order, -strnatcmp0(b.c_str(), a.c_str(), fold_case, skip_zeros))
            << "\"" << a << "\" and \"" << b << "\"";
      }
    }
  }
};

TEST_P(NaturalOrderVariants, FollowsTheRulesForAllShortTexts) {
  expect_rules_for_all_pairs(short_texts());
}

// Covers the bytes next to the digits, the letters and the whitespace.
TEST_P(NaturalOrderVariants, FollowsTheRulesForEveryByte) {
  expect_rules_for_all_pairs(every_byte());
}

TEST_P(NaturalOrderVariants, EachEntryPointEqualsItsVariant) {
  const auto [fold_case, skip_zeros] = GetParam();
  const auto entry_point = fold_case ? (skip_zeros ? strnatzerocasecmp : strnatcasecmp)
                                     : (skip_zeros ? strnatzerocmp : strnatcmp);
  for (const char *a : {"a", "A", "a0", "07", "7", "B"}) {
    for (const char *b : {"a", "A", "a0", "07", "7", "B"}) {
      EXPECT_EQ(entry_point(a, b), strnatcmp0(a, b, fold_case, skip_zeros)) << a << " " << b;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(All, NaturalOrderVariants,
                         testing::Combine(testing::Bool(), testing::Bool()));

// The order of remark codes: the four comparisons in turn, then the bytes.
int compare_in_chain(const std::string &a, const std::string &b) {
  for (const auto compare : {strnatzerocasecmp, strnatcasecmp, strnatzerocmp, strnatcmp}) {
    if (const int order = compare(a.c_str(), b.c_str())) {
      return order;
    }
  }
  return a.compare(b);
}

TEST(NaturalOrder, AllComparisonsInTurnGiveAStrictTotalOrder) {
  std::vector<std::string> sorted = short_texts();
  std::sort(sorted.begin(), sorted.end(),
            [](const std::string &a, const std::string &b) { return compare_in_chain(a, b) < 0; });
  // If all pairs are in order, the comparison has no cycle, so the sort need not be trusted.
  for (std::size_t i = 0; i < sorted.size(); i++) {
    for (std::size_t j = i + 1; j < sorted.size(); j++) {
      ASSERT_LT(compare_in_chain(sorted[i], sorted[j]), 0)
          << "\"" << sorted[i] << "\" and \"" << sorted[j] << "\"";
    }
  }
}

void expect_key_agrees(const std::string &a, const std::string &b) {
  const auto key_a = strnatzerocasecmp_key(a.c_str());
  const auto key_b = strnatzerocasecmp_key(b.c_str());
  if (key_a != key_b) {
    ASSERT_EQ(strnatzerocasecmp(a.c_str(), b.c_str()), key_a < key_b ? -1 : 1)
        << "\"" << a << "\" and \"" << b << "\"";
  }
}

TEST(NaturalOrder, DifferentKeysOrderLikeTheComparison) {
  for (const std::vector<std::string> &texts : {short_texts(), every_byte()}) {
    for (const std::string &a : texts) {
      for (const std::string &b : texts) {
        expect_key_agrees(a, b);
      }
    }
  }
}

TEST(NaturalOrder, KeysOfNumbersThatDoNotFitOrderLikeTheComparison) {
  for (const std::size_t length : {6U, 7U, 8U, 9U, 254U, 255U, 256U, 300U, 511U, 512U}) {
    for (const std::size_t other : {6U, 7U, 8U, 9U, 254U, 255U, 256U, 300U, 511U, 512U}) {
      expect_key_agrees(std::string(length, '9'), std::string(other, '1'));
      expect_key_agrees("a" + std::string(length, '1') + "b", "A" + std::string(other, '2'));
    }
  }
}

TEST(NaturalOrder, KeysDistinguishOrdinaryCodes) {
  EXPECT_LT(strnatzerocasecmp_key("ab2"), strnatzerocasecmp_key("AB10"));
  EXPECT_LT(strnatzerocasecmp_key("Ab 9"), strnatzerocasecmp_key("ab10a"));
  EXPECT_LT(strnatzerocasecmp_key("Ab1204a"), strnatzerocasecmp_key("Ab1204b"));
  EXPECT_LT(strnatzerocasecmp_key("\xE5"), strnatzerocasecmp_key("a"));
  EXPECT_LT(strnatzerocasecmp_key("\xE5"), strnatzerocasecmp_key(""));
  EXPECT_EQ(strnatzerocasecmp_key("a07"), strnatzerocasecmp_key("A7"));
}

TEST(NaturalOrder, LongRunsOfDigitsTakeLinearTime) {
  const std::string ones(2'000'000, '1'), zeros(2'000'000, '0');
  EXPECT_EQ(strnatcmp(ones.c_str(), ones.c_str()), 0);
  EXPECT_EQ(strnatcmp(zeros.c_str(), zeros.c_str()), 0);
  EXPECT_EQ(strnatcmp(ones.c_str(), (ones + "1").c_str()), -1);
  EXPECT_EQ(strnatzerocmp(zeros.c_str(), ""), 0);
}

} // namespace
