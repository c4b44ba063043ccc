#include "base/whitespace.h"

#include <cstddef>
#include <cstring>

namespace {

enum class Rule { detabify, spacify, compact };

// What one character of a text is: its length in bytes and whether it is whitespace.
struct Character {
  int length;
  bool is_space;
};

Character latin1_character(const char *text) { return {1, v_ascii_is_space(*text)}; }

Character utf8_character(const char *text) {
  const gunichar code_point = g_utf8_get_char_validated(text, -1);
  // What is not UTF-8 passes through byte by byte.
  if (code_point >= 0x110000) {
    return {1, false};
  }
  return {g_utf8_skip[static_cast<unsigned char>(*text)], g_unichar_isspace(code_point) != FALSE};
}

// The end of the run of characters that are not whitespace.
template <Character (*character_at)(const char *)>
const char *skip_word(const char *text) {
  while (*text != '\0') {
    const Character character = character_at(text);
    if (character.is_space) {
      break;
    }
    text += character.length;
  }
  return text;
}

template <Character (*character_at)(const char *)>
char *normalise(char *text, Rule rule) {
  char *out = text;
  char *end = text; // after the last character that is not whitespace
  for (const char *in = text; *in != '\0';) {
    // Words are moved whole, and in a text that is in order already not at all.
    if (const auto length = skip_word<character_at>(in) - in; length > 0) {
      if (out != in) {
        std::memmove(out, in, static_cast<std::size_t>(length));
      }
      in += length;
      out += length;
      end = out;
      continue;
    }
    const bool is_leading = out == text;
    const bool continues_a_run = rule == Rule::compact && out != end;
    if (!is_leading && !continues_a_run) {
      *out++ = rule == Rule::detabify && *in == '\n' ? '\n' : ' ';
    }
    in += character_at(in).length;
  }
  *end = '\0';
  return text;
}

template <Character (*character_at)(const char *)>
OwnedText normalise_copy(const char *text, Rule rule) {
  OwnedText copy = copy_text(text);
  normalise<character_at>(copy.get(), rule);
  return copy;
}

} // namespace

char *v_strip_surrounding_and_detabify_within_original_for_latin1(char *latin1_text) {
  return normalise<latin1_character>(latin1_text, Rule::detabify);
}

OwnedText v_strip_surrounding_and_detabify_in_new_for_latin1(const char *latin1_text) {
  return normalise_copy<latin1_character>(latin1_text, Rule::detabify);
}

char *v_strip_surrounding_and_detabify_within_original_for_utf8(char *utf8_text) {
  return normalise<utf8_character>(utf8_text, Rule::detabify);
}

OwnedText v_strip_surrounding_and_detabify_in_new_for_utf8(const char *utf8_text) {
  return normalise_copy<utf8_character>(utf8_text, Rule::detabify);
}

char *v_strip_surrounding_and_spacify_within_original_for_latin1(char *latin1_text) {
  return normalise<latin1_character>(latin1_text, Rule::spacify);
}

OwnedText v_strip_surrounding_and_spacify_in_new_for_latin1(const char *latin1_text) {
  return normalise_copy<latin1_character>(latin1_text, Rule::spacify);
}

char *v_strip_surrounding_and_spacify_within_original_for_utf8(char *utf8_text) {
  return normalise<utf8_character>(utf8_text, Rule::spacify);
}

OwnedText v_strip_surrounding_and_spacify_in_new_for_utf8(const char *utf8_text) {
  return normalise_copy<utf8_character>(utf8_text, Rule::spacify);
}

char *v_strip_surrounding_and_spacify_compactly_within_original_for_ascii(char *ascii_text) {
  return normalise<latin1_character>(ascii_text, Rule::compact);
}

char *v_strip_surrounding_and_spacify_compactly_within_original_for_latin1(char *latin1_text) {
  return normalise<latin1_character>(latin1_text, Rule::compact);
}

OwnedText v_strip_surrounding_and_spacify_compactly_in_new_for_latin1(const char *latin1_text) {
  return normalise_copy<latin1_character>(latin1_text, Rule::compact);
}

char *v_strip_surrounding_and_spacify_compactly_within_original_for_utf8(char *utf8_text) {
  return normalise<utf8_character>(utf8_text, Rule::compact);
}

OwnedText v_strip_surrounding_and_spacify_compactly_in_new_for_utf8(const char *utf8_text) {
  return normalise_copy<utf8_character>(utf8_text, Rule::compact);
}
