#include "langstr/user_language.h"

#include <cstdlib>
#include <cstring>

#include "base/owned.h"
#include "base/text_encoding.h"
#include "langstr/supported_languages.h"

namespace {

// Index of the language for a locale name such as "de_AT" or "sv"; -1 when there is none.
int index_for_locale_name(const char *name) {
  if (!v_ascii_test(name)) {
    return -1;
  }
  const OwnedText tag(g_ascii_strdown(name, -1));
  char *underscore = std::strchr(tag.get(), '_');
  if (underscore == nullptr) {
    return v_supported_languages_get_index_for_tag(tag.get());
  }
  *underscore = '-';
  const int dialect = v_supported_languages_get_index_for_tag(tag.get());
  if (dialect >= 0) {
    return dialect;
  }
  *underscore = '\0';
  return v_supported_languages_get_index_for_tag(tag.get());
}

} // namespace

int v_platform_get_user_language_index() {
  if (const char *chosen = std::getenv("VANTORELLE_USER_LANGUAGE")) {
    const int index = index_for_locale_name(chosen);
    if (index >= 0) {
      return index;
    }
  }
  for (const char *const *name = g_get_language_names(); *name != nullptr; name++) {
    const int index = index_for_locale_name(*name);
    if (index >= 0) {
      return index;
    }
  }
  return -1;
}
