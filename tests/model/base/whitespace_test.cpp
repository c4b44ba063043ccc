#include "base/whitespace.h"

#include <cstring>
#include <iterator>
#include <string>

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

namespace {

using WithinOriginal = char *(*)(char *);
using InNew = OwnedText (*)(const char *);

// One kind of normalisation in one encoding. For ASCII there is only the in-place form.
struct Normalisation {
  const char *name;
  WithinOriginal within_original;
  InNew in_new;
};

constexpr Normalisation latin1[] = {
    {"detabify", v_strip_surrounding_and_detabify_within_original_for_latin1,
     v_strip_surrounding_and_detabify_in_new_for_latin1},
    {"spacify", v_strip_surrounding_and_spacify_within_original_for_latin1,
     v_strip_surrounding_and_spacify_in_new_for_latin1},
    {"compact", v_strip_surrounding_and_spacify_compactly_within_original_for_latin1,
     v_strip_surrounding_and_spacify_compactly_in_new_for_latin1},
    {"compact ASCII", v_strip_surrounding_and_spacify_compactly_within_original_for_ascii, nullptr},
};

constexpr Normalisation utf8[] = {
    {"detabify", v_strip_surrounding_and_detabify_within_original_for_utf8,
     v_strip_surrounding_and_detabify_in_new_for_utf8},
    {"spacify", v_strip_surrounding_and_spacify_within_original_for_utf8,
     v_strip_surrounding_and_spacify_in_new_for_utf8},
    {"compact", v_strip_surrounding_and_spacify_compactly_within_original_for_utf8,
     v_strip_surrounding_and_spacify_compactly_in_new_for_utf8},
};

void expect_normalised(const Normalisation &normalisation, const std::string &text,
                       const std::string &expected) {
  SCOPED_TRACE(testing::Message() << normalisation.name << " of \"" << text << "\"");
  std::string buffer = text;
  char *const result = normalisation.within_original(buffer.data());
  EXPECT_GE(result, buffer.data());
  EXPECT_LE(result, buffer.data() + buffer.size());
  EXPECT_EQ(result, expected);
  if (normalisation.in_new != nullptr) {
    const std::string original = text;
    EXPECT_EQ(normalisation.in_new(original.c_str()).get(), expected);
    EXPECT_EQ(original, text);
  }
}

struct Row {
  std::string text, detabified, spacified, compact;
};

void expect_row(const Normalisation *normalisations, std::size_t count, const Row &row) {
  const std::string *const expected[] = {&row.detabified, &row.spacified, &row.compact,
                                         &row.compact};
  for (std::size_t kind = 0; kind < count; kind++) {
    expect_normalised(normalisations[kind], row.text, *expected[kind]);
  }
}

void expect_in_latin1(const Row &row) { expect_row(latin1, std::size(latin1), row); }
void expect_in_utf8(const Row &row) { expect_row(utf8, std::size(utf8), row); }

// Rows that hold in both encodings.
const Row common[] = {
    {"", "", "", ""},
    {"a", "a", "a", "a"},
    {" ", "", "", ""},
    {"     ", "", "", ""},
    {" \t\n\f\r ", "", "", ""},
    {"\ta  \nb ", "a  \nb", "a   b", "a b"},
    {" a", "a", "a", "a"},
    {"a ", "a", "a", "a"},
    {"a b", "a b", "a b", "a b"},
    {"a  b", "a  b", "a  b", "a b"},
    {"a\t\tb", "a  b", "a  b", "a b"},
    {"a\nb", "a\nb", "a b", "a b"},
    {"a\n\n\nb", "a\n\n\nb", "a   b", "a b"},
    {"a \n b", "a \n b", "a   b", "a b"},
    {"a\r\nb", "a \nb", "a  b", "a b"},
    {"\n\na\n\n", "a", "a", "a"},
    {"\r\f\ta", "a", "a", "a"},
    {"a \t\n", "a", "a", "a"},
    {" a b  c ", "a b  c", "a b  c", "a b c"},
    {"%s %n", "%s %n", "%s %n", "%s %n"},
    {"a\x1Cz\x7F\x01 ", "a\x1Cz\x7F\x01", "a\x1Cz\x7F\x01", "a\x1Cz\x7F\x01"},
};

TEST(Whitespace, FollowsTheCommonRules) {
  for (const Row &row : common) {
    expect_in_latin1(row);
    expect_in_utf8(row);
  }
}

TEST(Whitespace, NothingBehindATextIsRead) {
  const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  void *const pages =
      mmap(nullptr, 2 * page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  ASSERT_NE(pages, MAP_FAILED);
  char *const end = static_cast<char *>(pages) + page;
  ASSERT_EQ(mprotect(end, page, PROT_NONE), 0);
  for (const Normalisation &normalisation : latin1) {
    EXPECT_STREQ(normalisation.within_original(std::strcpy(end - 4, "a b")), "a b");
  }
  for (const Normalisation &normalisation : utf8) {
    EXPECT_STREQ(normalisation.within_original(std::strcpy(end - 4, "a b")), "a b");
  }
  EXPECT_EQ(munmap(pages, 2 * page), 0);
}

TEST(Whitespace, StrippingKeepsInnerWhitespace) {
  const std::pair<const char *, const char *> rows[] = {
      {"", ""},
      {"a", "a"},
      {" \t\n\r\f", ""},
      {"\u00a0\u2003\u3000", ""},
      {" a \t\n b\u00a0\u00a0c ", "a \t\n b\u00a0\u00a0c"},
      {"\u00a0a\u2003\u3000b\u00a0 ", "a\u2003\u3000b"},
      {"\xA0 a \xA0", "\xA0 a \xA0"}, // not UTF-8
      {"\va\v", "\va\v"},
  };
  for (const auto &[text, stripped] : rows) {
    EXPECT_STREQ(v_strip_surrounding_in_new_for_utf8(text).get(), stripped) << text;
  }
}

TEST(Whitespace, OnlySixAsciiCharactersAreWhitespace) {
  for (int byte = 0; byte < 256; byte++) {
    const bool expected =
        byte == ' ' || byte == '\t' || byte == '\n' || byte == '\v' || byte == '\f' || byte == '\r';
    EXPECT_EQ(v_ascii_is_space(static_cast<char>(byte)), expected) << byte;
  }
}

TEST(Whitespace, NormalisesEveryLatin1Byte) {
  for (int byte = 1; byte < 256; byte++) {
    const std::string c(1, static_cast<char>(byte));
    const std::string text = c + "a" + c + c + "b" + c;
    if (byte == '\n') {
      expect_in_latin1({text, "a\n\nb", "a  b", "a b"});
    } else if (v_ascii_is_space(static_cast<char>(byte))) {
      expect_in_latin1({text, "a  b", "a  b", "a b"});
    } else {
      expect_in_latin1({text, text, text, text});
    }
  }
}

TEST(Whitespace, NormalisesEveryUtf8WhitespaceCharacter) {
  for (const char *space :
       {" ", "\t", "\f", "\r",
        "\xC2\xA0",                                     // no-break space
        "\xE1\x9A\x80",                                 // ogham space mark
        "\xE2\x80\x80", "\xE2\x80\x83", "\xE2\x80\x8A", // en quad, em space, hair space
        "\xE2\x80\xA8", "\xE2\x80\xA9",                 // line and paragraph separators
        "\xE2\x80\xAF", "\xE2\x81\x9F",                 // narrow no-break, mathematical
        "\xE3\x80\x80"}) {                              // ideographic space
    const std::string s = space;
    expect_in_utf8({s + "a" + s + s + "\xC3\xA5" + s, "a  \xC3\xA5", "a  \xC3\xA5", "a \xC3\xA5"});
    expect_in_utf8({s + s, "", "", ""});
    expect_in_utf8({"a" + s + "\nb", "a \nb", "a  b", "a b"});
  }
}

TEST(Whitespace, KeepsUtf8CharactersThatAreNotWhitespace) {
  for (const char *character : {"\v",           // ASCII whitespace, but not in UTF-8 texts
                                "\xC2\x85",     // next line
                                "\xE2\x80\x8B", // zero width space
                                "\xEF\xBB\xBF", // byte order mark
                                "\xC3\xA0",     // ends in the byte of a no-break space
                                "\xE2\x82\xAC", "\xF0\x9F\x98\x80"}) {
    const std::string c = character;
    const std::string text = c + "a" + c + c + "b" + c;
    expect_in_utf8({text, text, text, text});
    expect_in_utf8({" " + c + "\t ", c, c, c});
  }
}

TEST(Whitespace, AgreesWithTheLibraryOnEveryCodePoint) {
  for (gunichar code_point = 1; code_point <= 0x10FFFF; code_point++) {
    if (!g_unichar_validate(code_point)) {
      continue;
    }
    char character[7] = {};
    g_unichar_to_utf8(code_point, character);
    std::string text = character;
    const std::string expected = g_unichar_isspace(code_point) ? "" : text;
    ASSERT_EQ(v_strip_surrounding_and_spacify_within_original_for_utf8(text.data()), expected)
        << code_point;
  }
}

TEST(Whitespace, BytesThatAreNotUtf8PassThrough) {
  for (const char *bytes : {"\xA0", "\xC2", "\xE2\x80", "\xFF", "\xC0\xA0", "\xED\xA0\x80",
                            "\xF8\x88\x80\x80\x80", "\x85"}) {
    const std::string b = bytes;
    expect_in_utf8({" " + b + " \t" + b + "\n", b + "  " + b, b + "  " + b, b + " " + b});
    // At the very end of the text, where nothing past it may be read.
    expect_in_utf8({"a " + b, "a " + b, "a " + b, "a " + b});
  }
}

TEST(Whitespace, InPlaceNeverWritesPastTheText) {
  std::string buffer = std::string("\t a \xE2\x80\x83\n b ") + '\0' + "guard";
  v_strip_surrounding_and_detabify_within_original_for_utf8(buffer.data());
  EXPECT_EQ(buffer.substr(buffer.size() - 5), "guard");
}

TEST(Whitespace, NormalisingTwiceChangesNothingMore) {
  for (const Row &row : common) {
    for (const Normalisation &normalisation : utf8) {
      const OwnedText once = normalisation.in_new(row.text.c_str());
      expect_normalised(normalisation, once.get(), once.get());
    }
  }
}

} // namespace
