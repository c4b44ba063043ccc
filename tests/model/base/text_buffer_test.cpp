#include "base/text_buffer.h"

#include <string>
#include <utility>

#include <gtest/gtest.h>

namespace {

// The functions of one kind of growable string. Each test runs for both kinds.
struct Kind {
  OwnedUtf8String (*create)(const char *);
  void (*append)(GString *, const char *);
  void (*append_byte)(GString *, char);
  void (*append_printf)(GString *, const char *, ...);
  void (*append_vprintf)(GString *, const char *, va_list);
  OwnedText (*end)(OwnedUtf8String, bool);
};

constexpr Kind kinds[] = {
    {v_utf8_string_new, v_utf8_string_append, v_utf8_string_append_byte,
     v_utf8_string_append_printf, v_utf8_string_append_vprintf, v_utf8_string_free},
    {v_latin1_string_new, v_latin1_string_append, v_latin1_string_append_byte,
     v_latin1_string_append_printf, v_latin1_string_append_vprintf, v_latin1_string_free},
};

void append_through_list(const Kind &kind, GString *string, const char *format, ...)
    G_GNUC_PRINTF(3, 4);
void append_through_list(const Kind &kind, GString *string, const char *format, ...) {
  va_list arguments;
  va_start(arguments, format);
  kind.append_vprintf(string, format, arguments);
  va_end(arguments);
}

TEST(TextBuffer, AppendsTextsBytesAndFormats) {
  for (const Kind &kind : kinds) {
    OwnedUtf8String string = kind.create("a");
    kind.append(string.get(), "100 %s");
    kind.append(string.get(), "");
    kind.append_byte(string.get(), '\xE5');
    kind.append_printf(string.get(), "[%s|%d]", "%n", 5);
    append_through_list(kind, string.get(), "{%s}", "\xE5");
    EXPECT_STREQ(kind.end(std::move(string), false).get(), "a100 %s\xE5[%n|5]{\xE5}");
  }
}

TEST(TextBuffer, StartsEmptyForNullAndForAnEmptyText) {
  for (const Kind &kind : kinds) {
    for (const char *text : {static_cast<const char *>(nullptr), ""}) {
      EXPECT_STREQ(kind.end(kind.create(text), false).get(), "");
    }
  }
}

TEST(TextBuffer, EndingCanDropTheCharacters) {
  for (const Kind &kind : kinds) {
    EXPECT_EQ(kind.end(kind.create("abc"), true), nullptr);
  }
}

TEST(TextBuffer, GrowsLarge) {
  for (const Kind &kind : kinds) {
    OwnedUtf8String string = kind.create(nullptr);
    for (int i = 0; i < 100'000; i++) {
      kind.append(string.get(), "0123456789");
    }
    const OwnedText text = kind.end(std::move(string), false);
    EXPECT_EQ(std::string(text.get()).size(), 1'000'000u);
  }
}

TEST(TextBuffer, ReplacesEveryOccurrence) {
  const struct {
    const char *text, *find, *replacement, *result;
  } rows[] = {
      {"abc", "b", "X", "aXc"},
      {"abab", "ab", "", ""},
      {"abab", "ab", "abab", "abababab"},
      {"aaa", "aa", "b", "ba"},
      {"abc", "d", "X", "abc"},
      {"abc", "abcd", "X", "abc"},
      {"", "a", "X", ""},
      {"aXbX", "X", "%s", "a%sb%s"},
      {"XaX", "X", "-", "-a-"},
      {"a\xE5z", "\xE5", "\xE4", "a\xE4z"},
      {"abc", "", "X", "abc"},
      {"", "", "X", ""},
  };
  for (const auto &row : rows) {
    SCOPED_TRACE(testing::Message() << row.text << ": " << row.find << " by " << row.replacement);
    EXPECT_STREQ(v_char_strdup_replace(row.text, row.find, row.replacement).get(), row.result);
    EXPECT_STREQ(
        v_char_strdup_replace_and_free(copy_text(row.text), row.find, row.replacement).get(),
        row.result);
  }
}

TEST(TextBuffer, JoinsTextsAndSkipsNulls) {
  const char *const texts[] = {nullptr, "a", "", nullptr, "%s", "\xC3\xA5", nullptr};
  EXPECT_STREQ(v_utf8_cat_(texts, 7).get(), "a%s\xC3\xA5");
  EXPECT_STREQ(v_utf8_cat_(texts, 2).get(), "a");
  EXPECT_STREQ(v_utf8_cat_(texts, 1).get(), "");
  EXPECT_STREQ(v_utf8_cat_(texts, 0).get(), "");
  EXPECT_STREQ(v_utf8_cat_(nullptr, 0).get(), "");
}

TEST(TextBuffer, SuffixesMatchWithoutRegardToAsciiCase) {
  const struct {
    const char *text, *suffix;
    bool matches;
  } rows[] = {
      {"a.codeset", ".codeset", true},
      {"a.CodeSet", ".codeset", true},
      {"a.codeset", ".CODESET", true},
      {"title.TIF", ".tif", true}, // also in a Turkish locale
      {".codeset", ".codeset", true},
      {"codeset", ".codeset", false},
      {"a.codeset~", ".codeset", false},
      {"a.codesets", ".codeset", false},
      {"", ".codeset", false},
      {"", "", true},
      {"a", "", true},
      {"b\xC3\xA5", "\xC3\xA5", true},
      {"b\xC3\x85", "\xC3\xA5", false}, // only ASCII letters fold
      {"b\xC5", "\xE5", false},
      {"a[", "{", false}, // 0x20 apart, but no letters
      {"a@", "`", false},
  };
  for (const auto &row : rows) {
    EXPECT_EQ(v_utf8_has_suffix_case_insensitive_ascii(row.text, row.suffix), row.matches)
        << row.text << " " << row.suffix;
  }
}

} // namespace
