#include "base/text_encoding.h"

#include <cstring>

#include "base/error.h"

OwnedText v_convert_latin1_to_utf8(const char *latin1_text) {
  const auto *bytes = reinterpret_cast<const unsigned char *>(latin1_text);
  const gsize length = std::strlen(latin1_text);
  gsize high_bytes = 0;
  for (gsize i = 0; i < length; i++) {
    high_bytes += bytes[i] >> 7;
  }
  OwnedText utf8_text(g_new(char, length + high_bytes + 1));
  char *out = utf8_text.get();
  for (gsize i = 0; i < length; i++) {
    if (bytes[i] < 0x80) {
      *out++ = static_cast<char>(bytes[i]);
    } else {
      *out++ = static_cast<char>(0xC0 | (bytes[i] >> 6));
      *out++ = static_cast<char>(0x80 | (bytes[i] & 0x3F));
    }
  }
  *out = '\0';
  return utf8_text;
}

OwnedText v_convert_utf8_to_latin1(const char *utf8_text) {
  // ASCII, by far the most frequent text, is the same in both and needs no converter.
  if (v_ascii_test(utf8_text)) {
    return copy_text(utf8_text);
  }
  OwnedText latin1_text(g_convert(utf8_text, -1, "ISO-8859-1", "UTF-8", nullptr, nullptr, nullptr));
  if (!latin1_text) {
    v_error_set("Character incompatible with ISO-8859-1 found where not allowed.");
  }
  return latin1_text;
}

bool v_convert_test_utf8_char_for_latin1(const char *utf8_character) {
  return g_utf8_get_char(utf8_character) <= 0xFF;
}

bool v_ascii_test(const char *text) {
  for (const char *byte = text; *byte != '\0'; byte++) {
    if (static_cast<unsigned char>(*byte) >= 0x80) {
      return false;
    }
  }
  return true;
}

const char *v_ascii_assert_in_utf8(const char *utf8_text) {
  if (v_ascii_test(utf8_text)) {
    return utf8_text;
  }
  v_error_set("Non-ascii byte found where not allowed.");
  return nullptr;
}

// ASCII lies in both encodings at the same bytes.
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
