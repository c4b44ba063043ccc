// Language tags: what the user sees for one and what is read back from it, and the names by which
// the user's own language is found.

#include <cstdlib>

#include "fuzz/fuzzing.h"
#include "langstr/spelling_dictionaries.h"
#include "langstr/supported_languages.h"
#include "langstr/user_language.h"

namespace {

bool is_ascii(const std::string &text) {
  for (const char byte : text) {
    if (static_cast<unsigned char>(byte) >= 0x80) {
      return false;
    }
  }
  return true;
}

// Compares the tag with that of every row.
int row_of(const std::string &tag) {
  int row = v_supported_languages_get_count() - 1;
  while (row >= 0 && tag != v_supported_languages_get_tag(row)) {
    row--;
  }
  return row;
}

void check_display_string(const std::string &text) {
  const std::size_t bracket = text.find('[');
  std::string expected;
  if (bracket != std::string::npos && bracket + 2 <= text.size()) {
    expected = text.substr(bracket + 1, text.size() - bracket - 2);
  }
  const bool is_known = bracket == std::string::npos || row_of(expected) >= 0;
  set_old_message();
  const OwnedText tag = v_supported_languages_get_tag_from_language_string(text.c_str());
  require((tag != nullptr) == is_known, "tags of the table are read back, others are not");
  if (tag) {
    require(tag.get() == expected, "the tag is the text in the brackets");
  } else {
    require_message();
  }
}

void check_tag(const std::string &tag) {
  const int row = v_supported_languages_get_index_for_tag(tag.c_str());
  require(row == row_of(tag), "a tag is found in its row");
  const std::string name = v_supported_languages_get_name_for_tag(tag.c_str());
  require(row < 0 || name == v_supported_languages_get_name(row), "the name is that of the row");
  require(row >= 0 || v_spellcheck_get_dict_name_for_langtag(tag.c_str()) == nullptr,
          "only tags of the table have a dictionary");
  const OwnedText shown = v_supported_languages_format_language_string(tag.c_str());
  const OwnedText read = v_supported_languages_get_tag_from_language_string(shown.get());
  require((read != nullptr) == (row >= 0 || tag.empty()), "what is shown for a tag is read back");
  require(read == nullptr || read.get() == tag, "as the same tag");
}

// -1 when the name has no known language.
int expected_user_language(std::string name) {
  if (!is_ascii(name)) {
    return -1;
  }
  for (char &byte : name) {
    byte = g_ascii_tolower(byte);
  }
  const std::size_t underscore = name.find('_');
  if (underscore == std::string::npos) {
    return row_of(name);
  }
  name[underscore] = '-';
  const int dialect = row_of(name);
  return dialect >= 0 ? dialect : row_of(name.substr(0, underscore));
}

void check_user_language(const std::string &name) {
  unsetenv("VANTORELLE_USER_LANGUAGE");
  const int language_of_locale = v_platform_get_user_language_index();
  setenv("VANTORELLE_USER_LANGUAGE", name.c_str(), 1);
  const int named_language = expected_user_language(name);
  require(v_platform_get_user_language_index() ==
              (named_language >= 0 ? named_language : language_of_locale),
          "a name of a supported language decides, any other is ignored");
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  const std::string text = text_of(data, size);
  check_display_string(text);
  check_tag(text);
  check_user_language(text);
  return 0;
}
