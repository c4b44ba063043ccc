#include "langstr/supported_languages.h"

#include <fstream>
#include <iterator>
#include <set>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "base/error.h"

namespace {

struct Row {
  const char *tag;
  const char *name;
};

constexpr Row rows[] = {
    {"af", "Afrikaans"},
    {"sq", "Albanian"},
    {"eu", "Basque"},
    {"ca", "Catalan"},
    {"da", "Danish"},
    {"nl", "Dutch"},
    {"nl-be", "Dutch/Belgium"},
    {"en", "English"},
    {"en-au", "English/Australia"},
    {"en-bz", "English/Belize"},
    {"en-ca", "English/Canada"},
    {"en-ie", "English/Ireland"},
    {"en-jm", "English/Jamaica"},
    {"en-nz", "English/New Zeeland"},
    {"en-ph", "English/Philippines"},
    {"en-za", "English/South Africa"},
    {"en-tt", "English/Trinidad"},
    {"en-uk", "English/United Kingdom"},
    {"en-us", "English/United States"},
    {"en-zw", "English/Zimbabwe"},
    {"fo", "Faroese"},
    {"fi", "Finnish"},
    {"fr", "French"},
    {"fr-be", "French/Belgium"},
    {"fr-ca", "French/Canada"},
    {"fr-fr", "French/France"},
    {"fr-lu", "French/Luxembourg"},
    {"fr-mc", "French/Monaco"},
    {"fr-ch", "French/Switzerland"},
    {"de", "German"},
    {"de-at", "German/Austria"},
    {"de-de", "German/Germany"},
    {"de-li", "German/Liechtenstein"},
    {"de-lu", "German/Luxembourg"},
    {"de-ch", "German/Switzerland"},
    {"is", "Icelandic"},
    {"ga", "Irish"},
    {"it", "Italian"},
    {"it-ch", "Italian/Switzerland"},
    {"no", "Norwegian"},
    {"nb", "Norwegian Bokmål"},
    {"nn", "Norwegian Nynorsk"},
    {"pt", "Portuguese"},
    {"pt-br", "Portuguese/Brazil"},
    {"rm", "Rhaeto-Romance"},
    {"gd", "Scots Gaelic"},
    {"es", "Spanish"},
    {"es-ar", "Spanish/Argentina"},
    {"es-bo", "Spanish/Bolivia"},
    {"es-cl", "Spanish/Chile"},
    {"es-co", "Spanish/Colombia"},
    {"es-cr", "Spanish/Costa Rica"},
    {"es-cu", "Spanish/Cuba"},
    {"es-do", "Spanish/Dominican Republic"},
    {"es-ec", "Spanish/Ecuador"},
    {"es-sv", "Spanish/El Salvador"},
    {"es-gt", "Spanish/Guatemala"},
    {"es-hn", "Spanish/Honduras"},
    {"es-mx", "Spanish/Mexico"},
    {"es-ni", "Spanish/Nicaragua"},
    {"es-pa", "Spanish/Panama"},
    {"es-py", "Spanish/Paraguay"},
    {"es-pe", "Spanish/Peru"},
    {"es-pr", "Spanish/Puerto Rico"},
    {"es-es", "Spanish/Spain"},
    {"es-us", "Spanish/United States"},
    {"es-uy", "Spanish/Uruguay"},
    {"es-ve", "Spanish/Venezuela"},
    {"sw", "Swahili"},
    {"sv", "Swedish"},
    {"sv-fi", "Swedish/Finland"},
};
static_assert(std::size(rows) == 71);

struct DefaultDialect {
  const char *tag;
  const char *dialect;
};

constexpr DefaultDialect default_dialects[] = {
    {"en", "en-uk"}, {"fr", "fr-fr"}, {"de", "de-de"}, {"es", "es-es"}};

const char *default_dialect_of(const std::string &tag) {
  for (const DefaultDialect &row : default_dialects) {
    if (row.tag == tag) {
      return row.dialect;
    }
  }
  return nullptr;
}

TEST(SupportedLanguages, MatchTheTable) {
  ASSERT_EQ(v_supported_languages_get_count(), 71);
  for (int i = 0; i < 71; i++) {
    const char *tag = rows[i].tag;
    EXPECT_STREQ(v_supported_languages_get_tag(i), tag);
    EXPECT_STREQ(v_supported_languages_get_name(i), rows[i].name);
    EXPECT_STREQ(v_supported_languages_get_default_dialect_tag(i), default_dialect_of(tag)) << tag;
    EXPECT_EQ(v_supported_languages_get_index_for_tag(tag), i);
    EXPECT_STREQ(v_supported_languages_get_name_for_tag(tag), rows[i].name);
  }
}

TEST(SupportedLanguages, EveryDefaultDialectIsInTheTable) {
  for (const DefaultDialect &row : default_dialects) {
    EXPECT_GE(v_supported_languages_get_index_for_tag(row.dialect), 0) << row.dialect;
  }
}

TEST(SupportedLanguages, TagsCompareExactly) {
  EXPECT_EQ(v_supported_languages_get_index_for_tag("en"), 7);
  for (const char *tag : {"EN", "En", "", "e", "en-", "en-gb", "en_uk", " en", "en ", "xx"}) {
    EXPECT_EQ(v_supported_languages_get_index_for_tag(tag), -1) << tag;
    EXPECT_STREQ(v_supported_languages_get_name_for_tag(tag), "Unknown language") << tag;
  }
}

std::string formatted(const char *tag) {
  return v_supported_languages_format_language_string(tag).get();
}

TEST(SupportedLanguages, AreFormattedForTheUser) {
  EXPECT_EQ(formatted(""), "Undefined");
  EXPECT_EQ(formatted("en-uk"), "English/United Kingdom [en-uk]");
  EXPECT_EQ(formatted("nb"), "Norwegian Bokm\xC3\xA5l [nb]");
  EXPECT_EQ(formatted("pl"), "Unknown language [pl]");
  EXPECT_EQ(formatted("%s[%n]"), "Unknown language [%s[%n]]");
}

TEST(SupportedLanguages, ReadBackFromTheirFormattedText) {
  std::set<std::string> texts;
  for (const Row &row : rows) {
    const std::string text = formatted(row.tag);
    EXPECT_TRUE(texts.insert(text).second) << text;
    EXPECT_STREQ(v_supported_languages_get_tag_from_language_string(text.c_str()).get(), row.tag);
  }
  EXPECT_STREQ(v_supported_languages_get_tag_from_language_string("Undefined").get(), "");
}

struct Reading {
  const char *text;
  const char *tag; // null: fails
  const char *message;
};

TEST(SupportedLanguages, AreReadFromALanguageString) {
  constexpr const char *unknown = "An unknown program error has occured.";
  constexpr const char *not_ascii = "Non-ascii byte found where not allowed.";
  const Reading readings[] = {
      {"", "", ""},
      {"no bracket", "", ""},
      {"sv]", "", ""},
      {"[sv]", "sv", ""},
      {"Anything [sv]", "sv", ""},
      {"The last character is dropped unseen [sv)", "sv", ""},
      {"Unknown language [xx]", nullptr, unknown},
      {"Unknown language [pl]", nullptr, unknown},
      {"Upper case [SV]", nullptr, unknown},
      {"No bracket at the end [sv", nullptr, unknown},
      {"Space behind [sv] ", nullptr, unknown},
      {"Two [a] [sv]", nullptr, unknown},
      {"Nothing [", nullptr, unknown},
      {"Nothing []", nullptr, unknown},
      {"\xC3\xA5 [sv]", "sv", ""},
      {"Not ASCII [s\xC3\xA5]", nullptr, not_ascii},
  };
  for (const Reading &reading : readings) {
    SCOPED_TRACE(reading.text);
    v_error_clear();
    const OwnedText tag = v_supported_languages_get_tag_from_language_string(reading.text);
    EXPECT_STREQ(tag.get(), reading.tag);
    EXPECT_STREQ(v_error_get(), reading.message);
  }
}

// The table in the guide is made of this one: after a change, replace it by the text expected here.
TEST(SupportedLanguages, AreAllInTheUserGuide) {
  std::ifstream guide(VANTORELLE_TEST_SOURCE_FOLDER "/../../../docs/user-guide.md");
  std::ostringstream text;
  text << guide.rdbuf();
  const std::string heading = "\n| Language | Tag |\n";
  const std::size_t begin = text.str().find(heading);
  ASSERT_NE(begin, std::string::npos);
  std::string expected = heading + "|---|---|\n";
  for (int i = 0; i < v_supported_languages_get_count(); i++) {
    expected += std::string("| ") + v_supported_languages_get_name(i) + " | " +
                v_supported_languages_get_tag(i) + " |\n";
  }
  EXPECT_EQ(text.str().substr(begin), expected);
}

} // namespace
