// Between ISO-8859-1, UTF-8 and ASCII.

#include "base/text_encoding.h"

#include <algorithm>

#include "fuzz/fuzzing.h"

namespace {

bool is_high(char byte) { return static_cast<unsigned char>(byte) >= 0x80; }

void check_latin1(const std::string &text) {
  const std::string utf8_text = v_convert_latin1_to_utf8(text.c_str()).get();
  const auto high_count =
      static_cast<std::size_t>(std::count_if(text.begin(), text.end(), is_high));
  require(g_utf8_validate(utf8_text.c_str(), -1, nullptr), "what is made from ISO-8859-1 is UTF-8");
  require(utf8_text.size() == text.size() + high_count, "a high byte becomes two, others stay one");
  const OwnedText back = v_convert_utf8_to_latin1(utf8_text.c_str());
  require(back != nullptr && back.get() == text, "ISO-8859-1 survives UTF-8");
}

// The expected conversion of valid UTF-8; false when there is none.
bool expected_latin1(const std::string &utf8_text, std::string &latin1_text) {
  for (const char *at = utf8_text.c_str(); *at != '\0'; at = g_utf8_next_char(at)) {
    const gunichar code_point = g_utf8_get_char(at);
    require(v_convert_test_utf8_char_for_latin1(at) == (code_point <= 0xFF),
            "ISO-8859-1 has the first 256 characters");
    if (code_point > 0xFF) {
      return false;
    }
    latin1_text += static_cast<char>(code_point);
  }
  return true;
}

void check_utf8(const std::string &text) {
  set_old_message();
  const OwnedText latin1_text = v_convert_utf8_to_latin1(text.c_str());
  std::string expected;
  if (g_utf8_validate(text.c_str(), -1, nullptr) && expected_latin1(text, expected)) {
    require(latin1_text != nullptr && latin1_text.get() == expected,
            "UTF-8 of the first 256 characters becomes ISO-8859-1");
    require(expected.size() <= text.size(), "ISO-8859-1 is never longer than UTF-8");
    require(has_old_message(), "success leaves the message alone");
  } else {
    require(latin1_text == nullptr, "anything else is refused");
    require_message();
  }
}

void check_ascii(const std::string &text) {
  set_old_message();
  const bool is_ascii = std::none_of(text.begin(), text.end(), is_high);
  require(v_ascii_test(text.c_str()) == is_ascii, "ASCII is what has no high byte");
  require(has_old_message(), "the mere test sets no message");
  for (const auto assert_ascii : {v_ascii_assert_in_utf8, v_ascii_assert_in_latin1}) {
    set_old_message();
    const char *result = assert_ascii(text.c_str());
    require(result == (is_ascii ? text.c_str() : nullptr), "ASCII text is returned itself");
    if (!is_ascii) {
      require_message();
    }
  }
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  const std::string text = text_of(data, size);
  check_latin1(text);
  check_utf8(text);
  check_ascii(text);
  return 0;
}
