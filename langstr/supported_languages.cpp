#include "langstr/supported_languages.h"

#include <cstring>
#include <iterator>

#include "base/error.h"
#include "base/text_encoding.h"

namespace {

struct Language {
  const char *tag;
  const char *name;
  const char *default_dialect_tag;
};

// Other tools rely on the order, which defines the indices. Files contain the tags, and windows the
// names, exactly as they are here.
constexpr Language languages[] = {
    {"af", "Afrikaans", nullptr},
    {"sq", "Albanian", nullptr},
    {"eu", "Basque", nullptr},
    {"ca", "Catalan", nullptr},
    {"da", "Danish", nullptr},
    {"nl", "Dutch", nullptr},
    {"nl-be", "Dutch/Belgium", nullptr},
    {"en", "English", "en-uk"},
    {"en-au", "English/Australia", nullptr},
    {"en-bz", "English/Belize", nullptr},
    {"en-ca", "English/Canada", nullptr},
    {"en-ie", "English/Ireland", nullptr},
    {"en-jm", "English/Jamaica", nullptr},
    {"en-nz", "English/New Zeeland", nullptr},
    {"en-ph", "English/Philippines", nullptr},
    {"en-za", "English/South Africa", nullptr},
    {"en-tt", "English/Trinidad", nullptr},
    {"en-uk", "English/United Kingdom", nullptr},
    {"en-us", "English/United States", nullptr},
    {"en-zw", "English/Zimbabwe", nullptr},
    {"fo", "Faroese", nullptr},
    {"fi", "Finnish", nullptr},
    {"fr", "French", "fr-fr"},
    {"fr-be", "French/Belgium", nullptr},
    {"fr-ca", "French/Canada", nullptr},
    {"fr-fr", "French/France", nullptr},
    {"fr-lu", "French/Luxembourg", nullptr},
    {"fr-mc", "French/Monaco", nullptr},
    {"fr-ch", "French/Switzerland", nullptr},
    {"de", "German", "de-de"},
    {"de-at", "German/Austria", nullptr},
    {"de-de", "German/Germany", nullptr},
    {"de-li", "German/Liechtenstein", nullptr},
    {"de-lu", "German/Luxembourg", nullptr},
    {"de-ch", "German/Switzerland", nullptr},
    {"is", "Icelandic", nullptr},
    {"ga", "Irish", nullptr},
    {"it", "Italian", nullptr},
    {"it-ch", "Italian/Switzerland", nullptr},
    {"no", "Norwegian", nullptr},
    {"nb", "Norwegian Bokmål", nullptr},
    {"nn", "Norwegian Nynorsk", nullptr},
    {"pt", "Portuguese", nullptr},
    {"pt-br", "Portuguese/Brazil", nullptr},
    {"rm", "Rhaeto-Romance", nullptr},
    {"gd", "Scots Gaelic", nullptr},
    {"es", "Spanish", "es-es"},
    {"es-ar", "Spanish/Argentina", nullptr},
    {"es-bo", "Spanish/Bolivia", nullptr},
    {"es-cl", "Spanish/Chile", nullptr},
    {"es-co", "Spanish/Colombia", nullptr},
    {"es-cr", "Spanish/Costa Rica", nullptr},
    {"es-cu", "Spanish/Cuba", nullptr},
    {"es-do", "Spanish/Dominican Republic", nullptr},
    {"es-ec", "Spanish/Ecuador", nullptr},
    {"es-sv", "Spanish/El Salvador", nullptr},
    {"es-gt", "Spanish/Guatemala", nullptr},
    {"es-hn", "Spanish/Honduras", nullptr},
    {"es-mx", "Spanish/Mexico", nullptr},
    {"es-ni", "Spanish/Nicaragua", nullptr},
    {"es-pa", "Spanish/Panama", nullptr},
    {"es-py", "Spanish/Paraguay", nullptr},
    {"es-pe", "Spanish/Peru", nullptr},
    {"es-pr", "Spanish/Puerto Rico", nullptr},
    {"es-es", "Spanish/Spain", nullptr},
    {"es-us", "Spanish/United States", nullptr},
    {"es-uy", "Spanish/Uruguay", nullptr},
    {"es-ve", "Spanish/Venezuela", nullptr},
    {"sw", "Swahili", nullptr},
    {"sv", "Swedish", nullptr},
    {"sv-fi", "Swedish/Finland", nullptr},
};

} // namespace

int v_supported_languages_get_count() { return static_cast<int>(std::size(languages)); }

const char *v_supported_languages_get_tag(int index) { return languages[index].tag; }

const char *v_supported_languages_get_name(int index) { return languages[index].name; }

const char *v_supported_languages_get_default_dialect_tag(int index) {
  return languages[index].default_dialect_tag;
}

int v_supported_languages_get_index_for_tag(const char *tag) {
  for (int i = 0; i < v_supported_languages_get_count(); i++) {
    if (std::strcmp(languages[i].tag, tag) == 0) {
      return i;
    }
  }
  return -1;
}

const char *v_supported_languages_get_name_for_tag(const char *tag) {
  const int index = v_supported_languages_get_index_for_tag(tag);
  return index < 0 ? "Unknown language" : languages[index].name;
}

OwnedText v_supported_languages_format_language_string(const char *tag) {
  if (*tag == '\0') {
    return copy_text("Undefined");
  }
  return OwnedText(g_strdup_printf("%s [%s]", v_supported_languages_get_name_for_tag(tag), tag));
}

OwnedText v_supported_languages_get_tag_from_language_string(const char *language_string) {
  const char *bracket = std::strchr(language_string, '[');
  if (bracket == nullptr) {
    return copy_text("");
  }
  OwnedText tag = copy_text(bracket + 1);
  if (const std::size_t length = std::strlen(tag.get()); length > 0) {
    tag.get()[length - 1] = '\0';
  }
  if (v_ascii_assert_in_utf8(tag.get()) == nullptr) {
    return nullptr;
  }
  if (v_supported_languages_get_index_for_tag(tag.get()) < 0) {
    v_error_set_unknown();
    return nullptr;
  }
  return tag;
}
