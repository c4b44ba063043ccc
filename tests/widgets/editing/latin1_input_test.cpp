#include "gui/editing/latin1_input.h"

#include <cstring>
#include <string>

#include <gtest/gtest.h>

#include "base/error.h"

namespace {

struct Rule {
  const char *text;
  const char *fixed_for_one_line;
  const char *fixed_for_several_lines;
};

// A text that stays unchanged needs no fixing.
const Rule rules[] = {
    {"", "", ""},
    {"plain  text", "plain  text", "plain  text"},
    {" spaces stay ", " spaces stay ", " spaces stay "},
    {"a\tb", "a b", "a b"},
    {"a\nb", "a b", "a\nb"},
    {"a\r\nb", "a  b", "a \nb"},
    {"a\fb", "a b", "a b"},
    {"a\u00A0b", "a b", "a b"},
    {"a\u2003\u2028\u2029\u3000b", "a    b", "a    b"},
    {"a\u200Bb", "ab", "ab"}, // zero width space, which is not white space
    {"a\u20ACb", "ab", "ab"},
    {"\u20AC", "", ""},
    {"a\U0001F600b", "ab", "ab"},
    {"\u0100\u00FF", "\u00FF", "\u00FF"},
    {"e\u0301", "e", "e"}, // a combining accent is a separate character
    {"\u00E5\u00E4\u00F6 \u00DF \u00A1 \u00AD", "\u00E5\u00E4\u00F6 \u00DF \u00A1 \u00AD",
     "\u00E5\u00E4\u00F6 \u00DF \u00A1 \u00AD"},
    {"a\x01\x02\x08\x0E\x1F"
     "b",
     "ab", "ab"},
    {"a\vb\fc", "a b c", "a b c"}, // line breaks of other programs
    {"a\x1B[0mb", "a[0mb", "a[0mb"},
    {"\x7F\u0080\u0085\u009F", "\x7F\u0080\u0085\u009F", "\x7F\u0080\u0085\u009F"},
    {"50 % <b>&amp;", "50 % <b>&amp;", "50 % <b>&amp;"},
    {"\t\u20AC\n", "  ", " \n"},
};

void expect_rule(const std::string &text, const std::string &expected, InputLines lines) {
  EXPECT_EQ(v_latin1_input_text_needs_fixing(text.c_str(), -1, lines), text != expected) << text;
  const OwnedText fixed = v_latin1_input_fix_text(text.c_str(), -1, lines);
  ASSERT_NE(fixed, nullptr) << text;
  EXPECT_EQ(fixed.get(), expected);
  EXPECT_FALSE(v_latin1_input_text_needs_fixing(fixed.get(), -1, lines)) << expected;
}

TEST(Latin1InputTest, RepairsCharactersThatACodesetFileCannotHold) {
  for (const Rule &rule : rules) {
    expect_rule(rule.text, rule.fixed_for_one_line, InputLines::one);
    expect_rule(rule.text, rule.fixed_for_several_lines, InputLines::several);
  }
}

// The characters that XML 1.0 has below the space are tab, line feed and carriage return.
TEST(Latin1InputTest, LetsNoControlCharacterThrough) {
  for (char byte = 1; byte < ' '; byte++) {
    const char text[] = {'a', byte, 'b', '\0'};
    const bool is_space = std::strchr("\t\n\v\f\r", byte) != nullptr;
    expect_rule(text, is_space ? "a b" : "ab", InputLines::one);
  }
}

TEST(Latin1InputTest, ReadsNoMoreThanTheLength) {
  EXPECT_FALSE(v_latin1_input_text_needs_fixing("ab\tc", 2, InputLines::one));
  EXPECT_TRUE(v_latin1_input_text_needs_fixing("ab\tc", 3, InputLines::one));
  EXPECT_STREQ(v_latin1_input_fix_text("a\tb\u20AC", 3, InputLines::one).get(), "a b");
  EXPECT_STREQ(v_latin1_input_fix_text("a\tb\u20AC", 0, InputLines::one).get(), "");
  EXPECT_FALSE(v_latin1_input_text_needs_fixing("\t", 0, InputLines::one));
}

TEST(Latin1InputTest, CannotRepairTextThatIsNotUtf8) {
  struct {
    const char *text;
    gssize length;
  } const broken[] = {
      {"a\xE5", -1},        // ISO-8859-1
      {"\xC3", -1},         // cut inside a character
      {"\u00E5", 1},        // likewise, by the length
      {"\xC0\x80", -1},     // overlong
      {"\xED\xA0\x80", -1}, // half of a surrogate pair
      {"a\0b", 3},          // a zero inside
      {"\xF8\x88\x80\x80\x80", -1},
  };
  for (const auto &each : broken) {
    for (const InputLines lines : {InputLines::one, InputLines::several}) {
      EXPECT_TRUE(v_latin1_input_text_needs_fixing(each.text, each.length, lines));
      EXPECT_EQ(v_latin1_input_fix_text(each.text, each.length, lines), nullptr);
    }
  }
}

TEST(Latin1InputTest, ConvertsTheRepairedText) {
  EXPECT_STREQ(v_latin1_input_convert("\u00E5\t\u20AC\u00A0\x01z", InputLines::one).get(),
               "\xE5  z");
  EXPECT_STREQ(v_latin1_input_convert("a\n\tb", InputLines::several).get(), "a\n b");
  EXPECT_STREQ(v_latin1_input_convert("", InputLines::one).get(), "");
  v_error_clear();
  EXPECT_EQ(v_latin1_input_convert("a\xE5", InputLines::one), nullptr);
  EXPECT_STREQ(v_error_get(), "An unknown program error has occured.");
}

} // namespace
