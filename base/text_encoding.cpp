#include "base/text_encoding.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <utility>

#include "base/error.h"

namespace {

// ASCII is tested eight bytes at a time, because nearly all text that is read passes through here.
using Word = std::uint64_t;

bool is_ascii(Word word) { return (word & 0x8080808080808080) == 0; }

bool is_ascii(char byte) { return static_cast<unsigned char>(byte) < 0x80; }

bool has_word(const char *text, const char *end) {
  return end - text >= static_cast<std::ptrdiff_t>(sizeof(Word));
}

// The first byte that is not ASCII, or the end.
const char *skip_ascii(const char *text, const char *end) {
  Word word;
  while (has_word(text, end)) {
    std::memcpy(&word, text, sizeof word);
    if (!is_ascii(word)) {
      break;
    }
    text += sizeof word;
  }
  while (text != end && is_ascii(*text)) {
    text++;
  }
  return text;
}

// Like skip_ascii, but copies the skipped bytes to out, which must have space for the whole text.
const char *copy_ascii(char *&out, const char *text, const char *end) {
  Word word;
  while (has_word(text, end)) {
    std::memcpy(&word, text, sizeof word);
    if (!is_ascii(word)) {
      break;
    }
    std::copy_n(text, sizeof word, out);
    text += sizeof word;
    out += sizeof word;
  }
  while (text != end && is_ascii(*text)) {
    *out++ = *text++;
  }
  return text;
}

bool is_latin1_pair(unsigned char first, unsigned char second) {
  return (first == 0xC2 || first == 0xC3) && (second & 0xC0) == 0x80;
}

// The text in ISO-8859-1; null when it has a character above U+00FF or is not UTF-8.
OwnedText decode_latin1(std::string_view utf8_text) {
  const char *end = utf8_text.data() + utf8_text.size();
  OwnedText latin1_text(g_new(char, utf8_text.size() + 1));
  char *out = latin1_text.get();
  for (const char *in = utf8_text.data();;) {
    const char *run_end = copy_ascii(out, in, end);
    if (run_end == end) {
      break;
    }
    if (end - run_end < 2) {
      return nullptr;
    }
    const auto first = static_cast<unsigned char>(run_end[0]);
    const auto second = static_cast<unsigned char>(run_end[1]);
    if (!is_latin1_pair(first, second)) {
      return nullptr;
    }
    *out++ = static_cast<char>(((first & 0x03) << 6) | (second & 0x3F));
    in = run_end + 2;
  }
  *out = '\0';
  return latin1_text;
}

void set_ascii_error() { v_error_set("Non-ascii byte found where not allowed."); }

} // namespace

OwnedText v_convert_latin1_to_utf8(const char *latin1_text) {
  // Large enough for ASCII, which most texts are.
  OwnedUtf8String utf8_text(g_string_sized_new(std::strlen(latin1_text) + 1));
  v_utf8_string_append_latin1(utf8_text.get(), latin1_text);
  return v_utf8_string_free(std::move(utf8_text), false);
}

void v_utf8_string_append_latin1(VUtf8String *string, const char *latin1_text) {
  const char *end = latin1_text + std::strlen(latin1_text);
  for (const char *in = latin1_text;;) {
    const char *run_end = skip_ascii(in, end);
    g_string_append_len(string, in, run_end - in);
    if (run_end == end) {
      break;
    }
    const auto byte = static_cast<unsigned char>(*run_end);
    v_utf8_string_append_byte(string, static_cast<char>(0xC0 | (byte >> 6)));
    v_utf8_string_append_byte(string, static_cast<char>(0x80 | (byte & 0x3F)));
    in = run_end + 1;
  }
}

OwnedText v_convert_utf8_to_latin1(std::string_view utf8_text) {
  // Uses no iconv converter: opening one takes as long as parsing a whole remark, and some systems'
  // converters drop characters that they treat as invisible instead of refusing them.
  OwnedText latin1_text = decode_latin1(utf8_text);
  if (!latin1_text) {
    v_error_set("Character incompatible with ISO-8859-1 found where not allowed.");
  }
  return latin1_text;
}

OwnedText v_convert_utf8_to_ascii(std::string_view utf8_text) {
  const char *end = utf8_text.data() + utf8_text.size();
  OwnedText ascii_text(g_new(char, utf8_text.size() + 1));
  char *out = ascii_text.get();
  if (copy_ascii(out, utf8_text.data(), end) != end) {
    set_ascii_error();
    return nullptr;
  }
  *out = '\0';
  return ascii_text;
}

bool v_convert_test_utf8_char_for_latin1(const char *utf8_character) {
  return g_utf8_get_char(utf8_character) <= 0xFF;
}

bool v_ascii_test(const char *text) {
  const char *end = text + std::strlen(text);
  return skip_ascii(text, end) == end;
}

const char *v_ascii_assert_in_utf8(const char *utf8_text) {
  if (v_ascii_test(utf8_text)) {
    return utf8_text;
  }
  set_ascii_error();
  return nullptr;
}

// ASCII characters are the same bytes in both encodings.
const char *v_ascii_assert_in_latin1(const char *latin1_text) {
  return v_ascii_assert_in_utf8(latin1_text);
}

const char *v_latin1_assert_nonempty(const char *latin1_text) {
  if (latin1_text == nullptr) {
    v_error_set("Text content does not exist.");
    return nullptr;
  }
  if (*latin1_text == '\0') {
    v_error_set("Text content is empty.");
    return nullptr;
  }
  return latin1_text;
}

OwnedText v_latin1_assert_nonempty_or_free(OwnedText latin1_text) {
  if (v_latin1_assert_nonempty(latin1_text.get()) == nullptr) {
    return nullptr;
  }
  return latin1_text;
}
