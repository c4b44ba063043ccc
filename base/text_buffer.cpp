#include "base/text_buffer.h"

#include <cstring>

OwnedUtf8String v_utf8_string_new(const char *text) { return OwnedUtf8String(g_string_new(text)); }

void v_utf8_string_append(VUtf8String *string, const char *text) { g_string_append(string, text); }

void v_utf8_string_append_byte(VUtf8String *string, char byte) { g_string_append_c(string, byte); }

void v_utf8_string_append_printf(VUtf8String *string, const char *format, ...) {
  V_FORMAT_ARGUMENTS(text, format);
  v_utf8_string_append(string, text.get());
}

void v_utf8_string_append_vprintf(VUtf8String *string, const char *format, va_list arguments) {
  g_string_append_vprintf(string, format, arguments);
}

OwnedText v_utf8_string_free(OwnedUtf8String string, bool free_data) {
  return OwnedText(g_string_free(string.release(), free_data));
}

OwnedLatin1String v_latin1_string_new(const char *text) { return v_utf8_string_new(text); }

void v_latin1_string_append(VLatin1String *string, const char *text) {
  v_utf8_string_append(string, text);
}

void v_latin1_string_append_byte(VLatin1String *string, char byte) {
  v_utf8_string_append_byte(string, byte);
}

void v_latin1_string_append_printf(VLatin1String *string, const char *format, ...) {
  V_FORMAT_ARGUMENTS(text, format);
  v_latin1_string_append(string, text.get());
}

void v_latin1_string_append_vprintf(VLatin1String *string, const char *format, va_list arguments) {
  v_utf8_string_append_vprintf(string, format, arguments);
}

OwnedText v_latin1_string_free(OwnedLatin1String string, bool free_data) {
  return v_utf8_string_free(std::move(string), free_data);
}

OwnedText v_char_strdup_replace(const char *text, const char *find, const char *replacement) {
  if (*find == '\0') {
    return copy_text(text);
  }
  const gsize find_length = std::strlen(find);
  OwnedUtf8String result = v_utf8_string_new(nullptr);
  const char *rest = text;
  while (const char *match = std::strstr(rest, find)) {
    g_string_append_len(result.get(), rest, match - rest);
    v_utf8_string_append(result.get(), replacement);
    rest = match + find_length;
  }
  v_utf8_string_append(result.get(), rest);
  return v_utf8_string_free(std::move(result), false);
}

OwnedText v_char_strdup_replace_and_free(OwnedText text, const char *find,
                                         const char *replacement) {
  return v_char_strdup_replace(text.get(), find, replacement);
}

OwnedText v_utf8_cat_(const char *const *array, int count) {
  OwnedUtf8String result = v_utf8_string_new(nullptr);
  for (int i = 0; i < count; i++) {
    if (array[i] != nullptr) {
      v_utf8_string_append(result.get(), array[i]);
    }
  }
  return v_utf8_string_free(std::move(result), false);
}

bool v_utf8_has_suffix_case_insensitive_ascii(const char *text, const char *suffix) {
  const gsize text_length = std::strlen(text);
  const gsize suffix_length = std::strlen(suffix);
  return text_length >= suffix_length &&
         g_ascii_strcasecmp(text + text_length - suffix_length, suffix) == 0;
}
