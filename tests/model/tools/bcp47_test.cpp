#include "bcp47.h"

#include <set>

#include <gtest/gtest.h>

#include "langstr/supported_languages.h"

namespace {

struct Row {
  const char *tag;
  const char *bcp47;
};

TEST(Bcp47, HasTheRecommendedCase) {
  constexpr Row rows[] = {
      {"sv", "sv"},
      {"sv-fi", "sv-FI"},
      {"pt-br", "pt-BR"},
      {"SV-FI", "sv-FI"},
      {"zh-hant-tw", "zh-Hant-TW"},
      {"es-419", "es-419"},
      {"de-ch-1901", "de-CH-1901"},
      {"zh-cmn-hans-cn", "zh-cmn-Hans-CN"},
      {"sl-it-nedis", "sl-IT-nedis"},
      {"en-us-u-islamcal", "en-US-u-islamcal"},
      {"de-ch-x-phonebk", "de-CH-x-phonebk"},
      {"az-arab-x-aze-derbend", "az-Arab-x-aze-derbend"},
      {"en-ca-x-ca", "en-CA-x-ca"},
      {"x-whatever", "x-whatever"},
  };
  for (const Row &row : rows) {
    EXPECT_EQ(v_bcp47_from_tag(row.tag), row.bcp47);
  }
}

TEST(Bcp47, KnowsTheUnitedKingdomByItsRegionCode) {
  EXPECT_EQ(v_bcp47_from_tag("en-uk"), "en-GB");
  EXPECT_EQ(v_bcp47_from_tag("cy-uk"), "cy-GB");
  EXPECT_EQ(v_bcp47_from_tag("uk"), "uk") << "Ukrainian";
}

TEST(Bcp47, KeepsWhatItCanOfATagThatTheSyntaxForbids) {
  constexpr Row rows[] = {
      {"s", "x-s"},
      {"old_swedish", "x-old-swedish"},
      {"sv-", "x-sv"},
      {"-sv", "x-sv"},
      {"sv--fi", "x-sv-fi"},
      {"12", "x-12"},
      {"sv\n", "x-sv"},
      {"sv@en", "x-sv-en"},
      {"sv-x", "x-sv-x"},
      {"norwegianbokmaal", "x-norwegia-nbokmaal"},
      {"norwegianbokmaal2", "x-norwegia-nbokmaal-2"},
  };
  for (const Row &row : rows) {
    EXPECT_EQ(v_bcp47_from_tag(row.tag), row.bcp47);
  }
}

TEST(Bcp47, HasNoTagForATextWithoutLanguage) {
  for (const char *tag : {"", "-", "--", "?"}) {
    EXPECT_EQ(v_bcp47_from_tag(tag), "") << tag;
  }
}

TEST(Bcp47, KeepsAllSupportedLanguagesApart) {
  std::set<std::string> tags;
  for (int i = 0; i < v_supported_languages_get_count(); i++) {
    const std::string tag = v_bcp47_from_tag(v_supported_languages_get_tag(i));
    EXPECT_NE(tag.substr(0, 2), "x-");
    EXPECT_TRUE(tags.insert(tag).second) << tag;
  }
}

} // namespace
