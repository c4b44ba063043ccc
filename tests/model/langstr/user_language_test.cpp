#include "langstr/user_language.h"

#include <gtest/gtest.h>

#include "langstr/supported_languages.h"
#include "support/environment.h"

namespace {

// "" if the user's language is not supported.
std::string user_tag() {
  const int index = v_platform_get_user_language_index();
  EXPECT_GE(index, -1);
  return index < 0 ? "" : v_supported_languages_get_tag(index);
}

struct LocaleName {
  const char *name;
  const char *tag;
};

TEST(UserLanguage, FollowsTheLocale) {
  const LocaleName names[] = {
      {"sv", "sv"},          {"sv_FI", "sv-fi"},    {"sv_FI.UTF-8", "sv"},
      {"sv_SE.UTF-8", "sv"}, {"en_GB", "en"},       {"en_GB.UTF-8", "en"},
      {"en_US", "en-us"},    {"en_US.UTF-8", "en"}, {"de_AT", "de-at"},
      {"de_AT@euro", "de"},  {"de_DE", "de-de"},    {"fr", "fr"},
      {"fr_FR.UTF-8", "fr"}, {"nb_NO", "nb"},       {"C", ""},
      {"C.UTF-8", ""},       {"POSIX", ""},         {"xx", ""},
      {"xx_YY.UTF-8", ""},   {"tlh_SV", ""},        {"af", "af"},
      {"af_ZA.UTF-8", "af"},
  };
  for (const LocaleName &name : names) {
    const UserLocale locale(name.name);
    EXPECT_EQ(user_tag(), name.tag) << name.name;
  }
}

TEST(UserLanguage, TakesTheFirstSupportedLanguageOfTheUser) {
  const UserLocale locale("de_DE");
  const EnvironmentVariable languages("LANGUAGE", "xx:tlh_AA:sv_FI:fr");
  EXPECT_EQ(user_tag(), "sv-fi");
}

TEST(UserLanguage, ANameThatIsNotAsciiMatchesNothing) {
  const UserLocale locale("s\xC3\xA5_SE");
  EXPECT_EQ(user_tag(), "");
}

TEST(UserLanguage, TheVariableOverridesTheLocale) {
  const UserLocale locale("fr");
  const LocaleName names[] = {
      {"de_AT", "de-at"},   {"DE_at", "de-at"}, {"sv", "sv"},       {"SV", "sv"},
      {"sv-fi", "sv-fi"},   {"en-uk", "en-uk"}, {"en_UK", "en-uk"}, {"en_GB", "en"},
      {"en-gb", "fr"},      {"de_AT_x", "de"},  {"de_", "de"},      {"_de", "fr"},
      {"xx", "fr"},         {"", "fr"},         {"_", "fr"},        {"C", "fr"},
      {"sv\xC3\xA5", "fr"}, {" sv", "fr"},      {"sv.UTF-8", "fr"}, {"af", "af"},
  };
  for (const LocaleName &name : names) {
    const EnvironmentVariable chosen("VANTORELLE_USER_LANGUAGE", name.name);
    EXPECT_EQ(user_tag(), name.tag) << name.name;
  }
}

TEST(UserLanguage, TheVariableAppliesWithoutALocale) {
  const UserLocale locale("C");
  const EnvironmentVariable chosen("VANTORELLE_USER_LANGUAGE", "de_AT");
  EXPECT_EQ(v_platform_get_user_language_index(), 30);
}

} // namespace
