#include "gui/editing/latin1_input.h"

#include <algorithm>
#include <cstring>

#include <gdk/gdk.h>

#include "base/error.h"
#include "base/text_encoding.h"

namespace {

enum class Fate { keep, become_space, drop };

// utf8_character: a pointer into valid UTF-8 text.
Fate fate_of(const char *utf8_character, InputLines lines) {
  const gunichar character = g_utf8_get_char(utf8_character);
  // g_unichar_isspace does not accept the vertical tab, but normalising treats it as a space. Other
  // programs put it on the clipboard as a line break.
  if (g_unichar_isspace(character) || character == '\v') {
    const bool is_fit = character == ' ' || (character == '\n' && lines == InputLines::several);
    return is_fit ? Fate::keep : Fate::become_space;
  }
  // XML allows no control characters except whitespace, even as character references.
  const bool is_fit = character >= ' ' && v_convert_test_utf8_char_for_latin1(utf8_character);
  return is_fit ? Fate::keep : Fate::drop;
}

gssize byte_count(const char *text, gssize length) {
  return length < 0 ? static_cast<gssize>(std::strlen(text)) : length;
}

} // namespace

bool v_latin1_input_text_needs_fixing(const char *utf8_text, gssize length, InputLines lines) {
  if (!g_utf8_validate(utf8_text, length, nullptr)) {
    return true;
  }
  const char *end = utf8_text + byte_count(utf8_text, length);
  for (const char *at = utf8_text; at < end; at = g_utf8_next_char(at)) {
    if (fate_of(at, lines) != Fate::keep) {
      return true;
    }
  }
  return false;
}

OwnedText v_latin1_input_fix_text(const char *utf8_text, gssize length, InputLines lines) {
  if (!g_utf8_validate(utf8_text, length, nullptr)) {
    return nullptr;
  }
  const gssize count = byte_count(utf8_text, length);
  OwnedText fixed(g_new(char, static_cast<gsize>(count) + 1));
  char *out = fixed.get();
  const char *next = nullptr;
  for (const char *at = utf8_text; at < utf8_text + count; at = next) {
    next = g_utf8_next_char(at);
    const Fate fate = fate_of(at, lines);
    if (fate == Fate::keep) {
      out = std::copy(at, next, out);
    } else if (fate == Fate::become_space) {
      *out++ = ' ';
    }
  }
  *out = '\0';
  return fixed;
}

OwnedText v_latin1_input_convert(const char *utf8_text, InputLines lines) {
  if (!v_latin1_input_text_needs_fixing(utf8_text, -1, lines)) {
    return v_convert_utf8_to_latin1(utf8_text);
  }
  const OwnedText fixed = v_latin1_input_fix_text(utf8_text, -1, lines);
  if (!fixed) {
    v_error_set_unknown();
    return nullptr;
  }
  return v_convert_utf8_to_latin1(fixed.get());
}

void v_latin1_input_repair_insertion(void *instance, const char *utf8_text, gssize length,
                                     InputLines lines,
                                     const std::function<void(const char *repaired)> &insert) {
  if (!v_latin1_input_text_needs_fixing(utf8_text, length, lines)) {
    return;
  }
  const OwnedText fixed = v_latin1_input_fix_text(utf8_text, length, lines);
  if (fixed && *fixed != '\0') {
    // Emits "insert-text" again; the handler accepts the repaired text.
    insert(fixed.get());
  }
  g_signal_stop_emission_by_name(instance, "insert-text");
  gdk_beep();
}
