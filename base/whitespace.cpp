#include "base/whitespace.h"

#include <cstddef>
#include <cstring>

namespace {

enum class Rule { strip, detabify, spacify, compact };

// Length in bytes of the whitespace character at the pointer; 0 for any other character, which is
// then copied byte by byte.
int latin1_space_length(const char *text) { return v_ascii_is_space(*text) ? 1 : 0; }

int utf8_space_length(const char *text) {
  const gunichar code_point = g_utf8_get_char_validated(text, -1);
  // The range check excludes invalid UTF-8, which is not whitespace.
  const bool is_space = code_point < 0x110000 && g_unichar_isspace(code_point);
  return is_space ? g_utf8_skip[static_cast<unsigned char>(*text)] : 0;
}

// True when the text consists of words separated by single spaces, as most texts do; no rule
// changes such a text. The loop has no branches and no early exit, so that the compiler can
// vectorise it, which makes it several times faster than normalising.
bool is_normal_latin1(const char *text) {
  const std::size_t length = std::strlen(text);
  if (length == 0) {
    return true;
  }
  unsigned char faults = 0;
  for (std::size_t i = 0; i < length; i++) {
    const auto is_control = static_cast<unsigned char>(text[i] >= '\t' && text[i] <= '\r');
    const auto is_pair = static_cast<unsigned char>((text[i] == ' ') & (text[i + 1] == ' '));
    faults = static_cast<unsigned char>(faults | is_control | is_pair);
  }
  return faults == 0 && text[0] != ' ' && text[length - 1] != ' ';
}

// Writes the replacement for a whitespace character inside a text; returns the end of the output.
char *write_space(char *out, const char *space, int length, Rule rule) {
  if (rule == Rule::strip) {
    std::memmove(out, space, static_cast<std::size_t>(length));
    return out + length;
  }
  *out = rule == Rule::detabify && *space == '\n' ? '\n' : ' ';
  return out + 1;
}

template <int (*space_length)(const char *)>
char *normalise(char *text, Rule rule) {
  char *out = text;
  char *end = text; // after the last character that is not whitespace
  for (const char *in = text; *in != '\0';) {
    const int length = space_length(in);
    if (length == 0) {
      *out++ = *in++;
      end = out;
      continue;
    }
    const bool is_leading = out == text;
    const bool continues_a_run = rule == Rule::compact && out != end;
    if (!is_leading && !continues_a_run) {
      out = write_space(out, in, length, rule);
    }
    in += length;
  }
  *end = '\0';
  return text;
}

char *normalise_latin1(char *text, Rule rule) {
  return is_normal_latin1(text) ? text : normalise<latin1_space_length>(text, rule);
}

char *normalise_utf8(char *text, Rule rule) { return normalise<utf8_space_length>(text, rule); }

template <char *(*normalise_text)(char *, Rule)>
OwnedText normalise_copy(const char *text, Rule rule) {
  OwnedText copy = copy_text(text);
  normalise_text(copy.get(), rule);
  return copy;
}

} // namespace

OwnedText v_strip_surrounding_in_new_for_utf8(const char *utf8_text) {
  return normalise_copy<normalise_utf8>(utf8_text, Rule::strip);
}

char *v_strip_surrounding_and_detabify_within_original_for_latin1(char *latin1_text) {
  return normalise_latin1(latin1_text, Rule::detabify);
}

OwnedText v_strip_surrounding_and_detabify_in_new_for_latin1(const char *latin1_text) {
  return normalise_copy<normalise_latin1>(latin1_text, Rule::detabify);
}

char *v_strip_surrounding_and_detabify_within_original_for_utf8(char *utf8_text) {
  return normalise_utf8(utf8_text, Rule::detabify);
}

OwnedText v_strip_surrounding_and_detabify_in_new_for_utf8(const char *utf8_text) {
  return normalise_copy<normalise_utf8>(utf8_text, Rule::detabify);
}

char *v_strip_surrounding_and_spacify_within_original_for_latin1(char *latin1_text) {
  return normalise_latin1(latin1_text, Rule::spacify);
}

OwnedText v_strip_surrounding_and_spacify_in_new_for_latin1(const char *latin1_text) {
  return normalise_copy<normalise_latin1>(latin1_text, Rule::spacify);
}

char *v_strip_surrounding_and_spacify_within_original_for_utf8(char *utf8_text) {
  return normalise_utf8(utf8_text, Rule::spacify);
}

OwnedText v_strip_surrounding_and_spacify_in_new_for_utf8(const char *utf8_text) {
  return normalise_copy<normalise_utf8>(utf8_text, Rule::spacify);
}

char *v_strip_surrounding_and_spacify_compactly_within_original_for_ascii(char *ascii_text) {
  return normalise_latin1(ascii_text, Rule::compact);
}

char *v_strip_surrounding_and_spacify_compactly_within_original_for_latin1(char *latin1_text) {
  return normalise_latin1(latin1_text, Rule::compact);
}

OwnedText v_strip_surrounding_and_spacify_compactly_in_new_for_latin1(const char *latin1_text) {
  return normalise_copy<normalise_latin1>(latin1_text, Rule::compact);
}

char *v_strip_surrounding_and_spacify_compactly_within_original_for_utf8(char *utf8_text) {
  return normalise_utf8(utf8_text, Rule::compact);
}

OwnedText v_strip_surrounding_and_spacify_compactly_in_new_for_utf8(const char *utf8_text) {
  return normalise_copy<normalise_utf8>(utf8_text, Rule::compact);
}
