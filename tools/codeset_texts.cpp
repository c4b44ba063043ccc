#include "codeset_texts.h"

#include <cstring>
#include <string>

#include "base/error.h"
#include "base/text_encoding.h"
#include "base/whitespace.h"

namespace {

// Characters outside ISO-8859-1 that word processors and keyboards put into Western European texts,
// and substitutes for them.
struct Replacement {
  gunichar character;
  const char *text;
};

constexpr Replacement replacements[] = {
    {0x0152, "OE"}, {0x0153, "oe"},       {0x0160, "S"},        {0x0161, "s"},   {0x0178, "Y"},
    {0x017D, "Z"},  {0x017E, "z"},        {0x2010, "-"},        {0x2011, "-"},   {0x2013, "-"},
    {0x2014, "-"},  {0x2018, "'"},        {0x2019, "'"},        {0x201A, "'"},   {0x201C, "\""},
    {0x201D, "\""}, {0x201E, "\""},       {0x2022, "-"},        {0x2026, "..."}, {0x2032, "'"},
    {0x2033, "\""}, {0x2039, "\xC2\xAB"}, {0x203A, "\xC2\xBB"}, {0x20AC, "EUR"}, {0x2122, "TM"},
    {0x2212, "-"},
};

const char *find_replacement(gunichar character) {
  for (const Replacement &replacement : replacements) {
    if (replacement.character == character) {
      return replacement.text;
    }
  }
  return nullptr;
}

// "U+2019 (’)", or only the number when the character is not visible.
std::string describe(gunichar character) {
  const OwnedText number(g_strdup_printf("U+%04X", character));
  if (!g_unichar_isgraph(character)) {
    return number.get();
  }
  char utf8_character[6];
  const int length = g_unichar_to_utf8(character, utf8_character);
  return std::string(number.get()) + " (" + std::string(utf8_character, utf8_character + length) +
         ")";
}

void set_character_error(gunichar character) {
  const char *replacement = find_replacement(character);
  v_error_set_utf8_printf(
      "the character %s is not among those that a codeset can hold, the "
      "Western European ones of ISO-8859-1. %s%s%s",
      describe(character).c_str(), replacement != nullptr ? "Write " : "Replace it by others",
      replacement != nullptr ? replacement : "", replacement != nullptr ? " instead." : ".");
}

void set_control_character_error(char byte) {
  v_error_set_utf8_printf("the control character U+%04X cannot be in a codeset. Delete it.",
                          static_cast<unsigned>(byte));
}

void set_encoding_error() {
  v_error_set("this text is not UTF-8. Save it again with the character set Unicode (UTF-8).");
}

// The first character that ISO-8859-1 does not have; 0 when there is none.
gunichar find_outsider(const char *utf8_text) {
  while (*utf8_text != '\0' && v_convert_test_utf8_char_for_latin1(utf8_text)) {
    utf8_text = g_utf8_next_char(utf8_text);
  }
  return g_utf8_get_char(utf8_text);
}

// A letter followed by a combining accent, as some systems write it, is one character in
// ISO-8859-1.
OwnedText compose(std::string_view utf8_text) {
  const auto length = static_cast<gssize>(utf8_text.size());
  if (!g_utf8_validate(utf8_text.data(), length, nullptr)) {
    set_encoding_error();
    return nullptr;
  }
  const OwnedText composed(g_utf8_normalize(utf8_text.data(), length, G_NORMALIZE_NFC));
  if (const gunichar outsider = find_outsider(composed.get()); outsider != 0) {
    set_character_error(outsider);
    return nullptr;
  }
  return v_convert_utf8_to_latin1(composed.get());
}

// Once whitespace is normalised, the only C0 control characters left are those that XML forbids.
bool has_no_control_characters(const char *latin1_text) {
  for (; *latin1_text != '\0'; latin1_text++) {
    if (*latin1_text > '\0' && *latin1_text < ' ') {
      set_control_character_error(*latin1_text);
      return false;
    }
  }
  return true;
}

constexpr glong longest_quotation = 40; // characters

} // namespace

OwnedText v_tools_make_text(std::string_view utf8_text) {
  if (utf8_text.find('\0') != std::string_view::npos) {
    set_control_character_error('\0');
    return nullptr;
  }
  OwnedText text = v_convert_utf8_to_latin1(utf8_text);
  if (!text) {
    text = compose(utf8_text);
  }
  if (!text) {
    return nullptr;
  }
  v_strip_surrounding_and_spacify_compactly_within_original_for_latin1(text.get());
  return has_no_control_characters(text.get()) ? std::move(text) : nullptr;
}

OwnedText v_tools_make_tag(std::string_view utf8_text) {
  if (!v_convert_utf8_to_ascii(utf8_text)) {
    v_error_set("a language tag has ASCII characters alone, as \"sv\" or \"en-uk\".");
    return nullptr;
  }
  return v_tools_make_text(utf8_text);
}

OwnedText v_tools_quote_text(const char *latin1_text) {
  const std::string text(latin1_text);
  const bool is_long = text.size() > longest_quotation;
  const OwnedText utf8_text =
      v_convert_latin1_to_utf8(text.substr(0, static_cast<std::size_t>(longest_quotation)).c_str());
  return OwnedText(g_strconcat("\"", utf8_text.get(), is_long ? "\xE2\x80\xA6\"" : "\"", nullptr));
}
