#include "workspace/display_text.h"

#include <gtest/gtest.h>

#include "support/values/remarks.h"

namespace {

OwnedSettings settings_for(const std::vector<std::string> &languages) {
  OwnedSettings settings = v_settings_new("/nowhere");
  settings->preferred_languages = languages;
  return settings;
}

struct Choice {
  std::vector<std::string> languages;
  const char *text;
};

TEST(DisplayText, UsesTheFirstAvailablePreferredLanguage) {
  const OwnedLangstr langstr = langstr_of({{"fr", "fran\xE7"
                                                  "ais"},
                                           {"en-us", "American"},
                                           {"sv-fi", "Finland"},
                                           {"", "?"}});
  const Choice choices[] = {
      {{"fr"},
       "fran\xE7"
       "ais"},
      {{"sv-fi", "fr"}, "Finland"},
      {{"sv", "fr"}, "Finland"},
      {{"de", "en"}, "American"},
      {{"en-uk", "fr"},
       "fran\xE7"
       "ais"},
      {{"en-uk", "en"}, "American"},
      {{"de"},
       "fran\xE7"
       "ais"},
      {{},
       "fran\xE7"
       "ais"},
      {{"", "fr"}, "?"},
      {{"f", "sv"}, "Finland"},
      {{"FR", "sv"}, "Finland"},
  };
  for (const Choice &choice : choices) {
    const OwnedSettings settings = settings_for(choice.languages);
    EXPECT_STREQ(v_util_get_langstr_string(settings.get(), langstr.get()), choice.text)
        << testing::PrintToString(choice.languages);
  }
}

TEST(DisplayText, AnEmptyStringHasNoText) {
  EXPECT_EQ(v_util_get_langstr_string(settings_for({"sv"}).get(), nullptr), nullptr);
  EXPECT_EQ(v_util_get_langstr_string(settings_for({}).get(), nullptr), nullptr);
}

struct Summary {
  Translations name;
  Translations author;
  const char *version;
  bool outdated;
  const char *text;
};

TEST(DisplayText, SummarisesACodeset) {
  const OwnedSettings settings = settings_for({"sv", "en"});
  const Summary summaries[] = {
      {{{"sv", "Ytskador"}}, {{"sv", "Anna"}}, "1.2", false, "Ytskador (Anna) 1.2"},
      {{{"sv", "Ytskador"}}, {}, nullptr, false, "Ytskador"},
      {{{"sv", "Ytskador"}}, {{"", "Anna"}}, nullptr, false, "Ytskador (Anna)"},
      {{{"sv", "Ytskador"}}, {}, "1.2", false, "Ytskador 1.2"},
      {{{"sv", "Ytskador"}}, {{"sv", "Anna"}}, "1.2", true, "Ytskador (Anna) 1.2 (outdated?)"},
      {{{"sv", "Ytskador"}}, {}, nullptr, true, "Ytskador (outdated?)"},
      {{{"de", "Sch\xE4"
               "den"},
        {"en-uk", "Damage"}},
       {{"de", "J\xFCrgen"}, {"fr", "Ren\xE9"}},
       "\xDF",
       false,
       "Damage (J\xC3\xBCrgen) \xC3\x9F"},
      {{{"sv", "100% %s <b>&"}}, {{"sv", "%n"}}, "%d", false, "100% %s <b>& (%n) %d"},
  };
  for (const Summary &summary : summaries) {
    OwnedCodeset codeset = v_codeset_new();
    codeset->name = langstr_of(summary.name);
    codeset->author = langstr_of(summary.author);
    codeset->version = copy_text(summary.version);
    codeset->outdated = summary.outdated;
    EXPECT_STREQ(v_util_get_codeset_string(settings.get(), codeset.get()).get(), summary.text);
  }
}

} // namespace
