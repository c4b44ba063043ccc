// The three ways to normalise white space, in both encodings.

#include "base/whitespace.h"

#include <cstring>

#include "fuzz/fuzzing.h"

namespace {

using InPlace = char *(*)(char *);
using InNew = OwnedText (*)(const char *);

struct Normaliser {
  InPlace in_place;
  InNew in_new; // null when there is none
  const char *white_space_left;
  bool is_compact;
};

constexpr Normaliser latin1_normalisers[] = {
    {v_strip_surrounding_and_detabify_within_original_for_latin1,
     v_strip_surrounding_and_detabify_in_new_for_latin1, " \n", false},
    {v_strip_surrounding_and_spacify_within_original_for_latin1,
     v_strip_surrounding_and_spacify_in_new_for_latin1, " ", false},
    {v_strip_surrounding_and_spacify_compactly_within_original_for_latin1,
     v_strip_surrounding_and_spacify_compactly_in_new_for_latin1, " ", true},
    {v_strip_surrounding_and_spacify_compactly_within_original_for_ascii, nullptr, " ", true},
};

constexpr Normaliser utf8_normalisers[] = {
    {v_strip_surrounding_and_detabify_within_original_for_utf8,
     v_strip_surrounding_and_detabify_in_new_for_utf8, " \n", false},
    {v_strip_surrounding_and_spacify_within_original_for_utf8,
     v_strip_surrounding_and_spacify_in_new_for_utf8, " ", false},
    {v_strip_surrounding_and_spacify_compactly_within_original_for_utf8,
     v_strip_surrounding_and_spacify_compactly_in_new_for_utf8, " ", true},
};

// The characters of a text, and whether each is white space.
struct Character {
  std::string bytes;
  bool is_space;
};

std::vector<Character> latin1_characters(const std::string &text) {
  std::vector<Character> characters;
  for (const char byte : text) {
    characters.push_back({std::string(1, byte), std::strchr(" \t\n\v\f\r", byte) != nullptr});
  }
  return characters;
}

// A byte that is not part of valid UTF-8 counts as one character.
std::vector<Character> utf8_characters(const std::string &text) {
  std::vector<Character> characters;
  for (const char *at = text.c_str(); *at != '\0';) {
    const gunichar code_point = g_utf8_get_char_validated(at, -1);
    const bool is_valid = code_point < 0x110000;
    const std::size_t length = is_valid ? static_cast<std::size_t>(g_utf8_next_char(at) - at) : 1;
    characters.push_back({std::string(at, length), is_valid && g_unichar_isspace(code_point)});
    at += length;
  }
  return characters;
}

std::string without_space(const std::vector<Character> &characters) {
  std::string text;
  for (const Character &character : characters) {
    if (!character.is_space) {
      text += character.bytes;
    }
  }
  return text;
}

void require_normalised(const std::vector<Character> &characters, const Normaliser &normaliser) {
  bool after_space = true; // of any kind, or at the beginning
  for (std::size_t i = 0; i < characters.size(); i++) {
    const auto &[bytes, is_space] = characters[i];
    require(!is_space || std::strchr(normaliser.white_space_left, bytes[0]) != nullptr,
            "white space is one of the kinds that stay");
    require(!is_space || (i > 0 && i + 1 < characters.size()), "the ends are not white");
    require(!is_space || !normaliser.is_compact || !after_space, "compact text has single spaces");
    after_space = is_space;
  }
}

void check(const std::string &text, const Normaliser &normaliser,
           std::vector<Character> (*characters_of)(const std::string &)) {
  std::string buffer = text;
  require(normaliser.in_place(buffer.data()) == buffer.data(), "the text stays where it is");
  const std::string result = buffer.c_str();
  require(result.size() <= text.size(), "a text never grows");
  require(!g_utf8_validate(text.c_str(), -1, nullptr) ||
              g_utf8_validate(result.c_str(), -1, nullptr),
          "UTF-8 stays UTF-8");
  require_normalised(characters_of(result), normaliser);
  require(without_space(characters_of(result)) == without_space(characters_of(text)),
          "what is not white space stays as it is");
  require(std::string(normaliser.in_place(buffer.data())) == result,
          "what is normalised does not change any more");
  require(normaliser.in_new == nullptr || result == normaliser.in_new(text.c_str()).get(),
          "a new text and one in place become the same");
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  const std::string text = text_of(data, size);
  for (const Normaliser &normaliser : latin1_normalisers) {
    check(text, normaliser, latin1_characters);
  }
  for (const Normaliser &normaliser : utf8_normalisers) {
    check(text, normaliser, utf8_characters);
  }
  return 0;
}
