#include "langstr/spelling_dictionaries.h"

#include <map>
#include <string>

#include <gtest/gtest.h>

#include "langstr/supported_languages.h"

namespace {

const std::map<std::string, std::string> dictionaries = {
    {"af", "af_ZA"},    {"ca", "ca"},       {"da", "da_DK"},    {"de-de", "de_DE"},
    {"en-au", "en_AU"}, {"en-ca", "en_CA"}, {"en-uk", "en_GB"}, {"en-us", "en_US"},
    {"en-za", "en_ZA"}, {"fo", "fo"},       {"fr-fr", "fr"},    {"is", "is"},
    {"nl", "nl_NL"},    {"pt", "pt_PT"},    {"pt-br", "pt_BR"}, {"sv", "sv_SE"},
    {"sv-fi", "sv_FI"}, {"sw", "sw_TZ"},
};

// All regional variants of Spanish use the dictionary of Spain.
const std::string spanish_regions[] = {"ar", "bo", "cl", "co", "cr", "cu", "do",
                                       "ec", "es", "gt", "hn", "mx", "ni", "pa",
                                       "pe", "pr", "py", "sv", "us", "uy", "ve"};

TEST(SpellingDictionaries, EverySupportedLanguageHasItsDictionaryOrNone) {
  std::map<std::string, std::string> expected = dictionaries;
  for (const std::string &region : spanish_regions) {
    expected["es-" + region] = "es_ES";
  }
  ASSERT_EQ(expected.size(), 39U);
  std::map<std::string, std::string> found;
  for (int i = 0; i < v_supported_languages_get_count(); i++) {
    const char *tag = v_supported_languages_get_tag(i);
    if (const char *name = v_spellcheck_get_dict_name_for_langtag(tag)) {
      found[tag] = name;
    }
  }
  EXPECT_EQ(found, expected);
}

TEST(SpellingDictionaries, OnlyTheExactTagIsFound) {
  for (const char *tag : {"", "en", "de", "fr", "es", "xx", "SV", "sv-", "sv-FI", "e"}) {
    EXPECT_EQ(v_spellcheck_get_dict_name_for_langtag(tag), nullptr) << tag;
  }
}

} // namespace
