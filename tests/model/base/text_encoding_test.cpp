#include "base/text_encoding.h"

#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "base/error.h"

namespace {

constexpr const char *incompatible =
    "Character incompatible with ISO-8859-1 found where not allowed.";
constexpr const char *not_ascii = "Non-ascii byte found where not allowed.";

class TextEncoding : public testing::Test {
protected:
  void SetUp() override { v_error_clear(); }
};

// All bytes but NUL.
std::string all_latin1_bytes() {
  std::string bytes;
  for (int byte = 1; byte < 256; byte++) {
    bytes.push_back(static_cast<char>(byte));
  }
  return bytes;
}

std::string utf8_of(gunichar code_point) {
  char bytes[6];
  return {bytes, static_cast<std::size_t>(g_unichar_to_utf8(code_point, bytes))};
}

TEST_F(TextEncoding, Latin1LetterBecomesTwoBytes) {
  EXPECT_STREQ(v_convert_latin1_to_utf8("\xE5").get(), "\xC3\xA5");
  EXPECT_STREQ(v_convert_latin1_to_utf8("").get(), "");
  EXPECT_STREQ(v_convert_latin1_to_utf8("a\x80\xFFz").get(), "a\xC2\x80\xC3\xBFz");
}

TEST_F(TextEncoding, EveryLatin1CharacterSurvivesARoundTrip) {
  std::string expected;
  for (gunichar code_point = 1; code_point < 256; code_point++) {
    expected += utf8_of(code_point);
  }
  const OwnedText utf8_text = v_convert_latin1_to_utf8(all_latin1_bytes().c_str());
  EXPECT_EQ(utf8_text.get(), expected);
  const OwnedText latin1_text = v_convert_utf8_to_latin1(utf8_text.get());
  ASSERT_NE(latin1_text, nullptr);
  EXPECT_EQ(latin1_text.get(), all_latin1_bytes());
}

TEST_F(TextEncoding, Latin1IsAppendedToAUtf8String) {
  const OwnedUtf8String string = v_utf8_string_new("\xE2\x82\xAC ");
  for (const char *latin1_text : {"", "eight or more: \xE5", "\x80\xFF", "plain"}) {
    v_utf8_string_append_latin1(string.get(), latin1_text);
  }
  EXPECT_STREQ(string->str, "\xE2\x82\xAC eight or more: \xC3\xA5\xC2\x80\xC3\xBFplain");
}

TEST_F(TextEncoding, AppendingAndConvertingAgreeOnEveryLatin1Character) {
  const OwnedUtf8String string = v_utf8_string_new(nullptr);
  v_utf8_string_append_latin1(string.get(), all_latin1_bytes().c_str());
  EXPECT_STREQ(string->str, v_convert_latin1_to_utf8(all_latin1_bytes().c_str()).get());
}

TEST_F(TextEncoding, EmptyAndAsciiTextsStayUnchanged) {
  EXPECT_STREQ(v_convert_utf8_to_latin1("").get(), "");
  EXPECT_STREQ(v_convert_utf8_to_latin1("100 %s <&>\t\n").get(), "100 %s <&>\t\n");
  EXPECT_STREQ(v_error_get(), "");
}

TEST_F(TextEncoding, CharactersOutsideLatin1AreRefused) {
  for (const char *utf8_text : {
           "\xE2\x82\xAC",              // the euro sign
           "price: 5 \xE2\x82\xAC",     // at the end
           "\xC4\x80",                  // U+0100, the first one outside
           "\xE2\x80\x9Cq\xE2\x80\x9D", // quotation marks, which a converter might replace
                                        // by ASCII ones
           "\xC5\x93",                  // the oe ligature
           "a\xCC\x8A",                 // a letter and a combining ring
           "\xF0\x9F\x98\x80",          // outside the basic plane
           "a\xF3\xA0\x81\x81z",        // a language tag character, which some converters drop
       }) {
    v_error_clear();
    EXPECT_EQ(v_convert_utf8_to_latin1(utf8_text), nullptr) << utf8_text;
    EXPECT_STREQ(v_error_get(), incompatible);
  }
}

TEST_F(TextEncoding, EveryCharacterOutsideLatin1IsRefused) {
  gunichar passed_over = 0;
  for (gunichar character = 0x100; character <= 0x10FFFF && passed_over == 0; character++) {
    char utf8_text[7] = {};
    g_unichar_to_utf8(character, utf8_text);
    if (g_unichar_validate(character) && v_convert_utf8_to_latin1(utf8_text)) {
      passed_over = character;
    }
  }
  EXPECT_EQ(passed_over, 0u);
}

TEST_F(TextEncoding, BytesThatAreNotUtf8AreRefused) {
  for (const char *bytes : {"\xE5", "a\xC3", "\xC0\xAF", "\xED\xA0\x80", "\xFF"}) {
    v_error_clear();
    EXPECT_EQ(v_convert_utf8_to_latin1(bytes), nullptr);
    EXPECT_STREQ(v_error_get(), incompatible);
  }
}

TEST_F(TextEncoding, EveryTwoBytesAreRefusedOrGiveOneCharacter) {
  for (int first = 0x80; first < 256; first++) {
    for (int second = 1; second < 256; second++) {
      const std::string bytes = {static_cast<char>(first), static_cast<char>(second)};
      std::string expected = "refused";
      if (g_utf8_validate(bytes.data(), 2, nullptr) && g_utf8_get_char(bytes.data()) < 256) {
        expected = static_cast<char>(g_utf8_get_char(bytes.data()));
      }
      const OwnedText latin1_text = v_convert_utf8_to_latin1(bytes.c_str());
      ASSERT_EQ(latin1_text ? latin1_text.get() : "refused", expected) << first << " " << second;
    }
  }
}

TEST_F(TextEncoding, OneCharacterIsTestedWithoutAnError) {
  const struct {
    gunichar code_point;
    bool is_latin1;
  } rows[] = {{'a', true},     {0x7F, true},    {0x80, true},    {0xA0, true},
              {0xE5, true},    {0xFF, true},    {0x100, false},  {0x152, false},
              {0x2003, false}, {0x20AC, false}, {0xFFFD, false}, {0x1F600, false}};
  for (const auto &row : rows) {
    // Only the first character counts.
    for (const char *rest : {"", "a", "\xE2\x82\xAC"}) {
      const std::string text = utf8_of(row.code_point) + rest;
      EXPECT_EQ(v_convert_test_utf8_char_for_latin1(text.c_str()), row.is_latin1) << row.code_point;
    }
  }
  EXPECT_STREQ(v_error_get(), "");
}

TEST_F(TextEncoding, AsciiIsEveryByteBelow128) {
  for (int byte = 1; byte < 256; byte++) {
    const std::string text = {'a', static_cast<char>(byte), 'b'};
    EXPECT_EQ(v_ascii_test(text.c_str()), byte < 128) << byte;
  }
  EXPECT_TRUE(v_ascii_test(""));
  EXPECT_STREQ(v_error_get(), "");
}

TEST_F(TextEncoding, OnlyTheGivenPartIsConverted) {
  const std::string_view text = "abcdefgh\u00E5\u20AC";
  EXPECT_STREQ(v_convert_utf8_to_latin1(text.substr(0, 10)).get(), "abcdefgh\xE5");
  EXPECT_STREQ(v_convert_utf8_to_ascii(text.substr(0, 8)).get(), "abcdefgh");
  EXPECT_EQ(v_convert_utf8_to_latin1(text.substr(0, 9)), nullptr) << "half a character";
}

TEST_F(TextEncoding, AsciiIsCopiedAndAnythingElseIsRefused) {
  for (const char *text : {"", "en-uk", "\t100 %s <&> \x7F, longer than a word"}) {
    EXPECT_STREQ(v_convert_utf8_to_ascii(text).get(), text);
  }
  for (const char *text : {"\u00E5", "abcdefgh\u00E5", "abc\u20AC"}) {
    v_error_clear();
    EXPECT_EQ(v_convert_utf8_to_ascii(text), nullptr) << text;
    EXPECT_STREQ(v_error_get(), not_ascii);
  }
}

TEST_F(TextEncoding, AsciiAssertionsReturnTheSameTextOrFail) {
  for (const auto assertion : {v_ascii_assert_in_utf8, v_ascii_assert_in_latin1}) {
    v_error_clear();
    for (const char *text : {"", "a", "a\x7F", "%s"}) {
      EXPECT_EQ(assertion(text), text);
    }
    EXPECT_STREQ(v_error_get(), "");
    for (const char *text : {"\x80", "a\xE5", "\xC3\xA5z"}) {
      v_error_clear();
      EXPECT_EQ(assertion(text), nullptr);
      EXPECT_STREQ(v_error_get(), not_ascii);
    }
  }
}

TEST_F(TextEncoding, NonemptyAssertionRefusesNullAndEmptyTexts) {
  const char *const text = " ";
  EXPECT_EQ(v_latin1_assert_nonempty(text), text);
  EXPECT_STREQ(v_error_get(), "");
  EXPECT_EQ(v_latin1_assert_nonempty(nullptr), nullptr);
  EXPECT_STREQ(v_error_get(), "Text content does not exist.");
  EXPECT_EQ(v_latin1_assert_nonempty(""), nullptr);
  EXPECT_STREQ(v_error_get(), "Text content is empty.");
}

TEST_F(TextEncoding, OwningNonemptyAssertionRefusesNullAndEmptyTexts) {
  OwnedText text = copy_text("\xE5");
  const char *const address = text.get();
  const OwnedText same = v_latin1_assert_nonempty_or_free(std::move(text));
  EXPECT_EQ(same.get(), address);
  EXPECT_STREQ(v_error_get(), "");
  EXPECT_EQ(v_latin1_assert_nonempty_or_free(nullptr), nullptr);
  EXPECT_STREQ(v_error_get(), "Text content does not exist.");
  EXPECT_EQ(v_latin1_assert_nonempty_or_free(copy_text("")), nullptr);
  EXPECT_STREQ(v_error_get(), "Text content is empty.");
}

} // namespace
