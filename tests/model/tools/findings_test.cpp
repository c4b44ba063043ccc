#include "findings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/values/remarks.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> findings_of(const Remarks &remarks, const Translations &name = {}) {
  const OwnedCodeset codeset = v_codeset_new();
  codeset->name = langstr_of(name);
  codeset->remarks = list_of(remarks);
  return v_findings_collect(codeset.get()).messages;
}

TEST(Findings, CountTheCodesAndNameTheLanguages) {
  const OwnedCodeset codeset = v_codeset_new();
  codeset->remarks = list_of({{"1", {{"sv", "a"}, {"", "b"}}},
                              {"2", {{"", "c"}, {"sv", "d"}}},
                              {"3", {{"sv", "e"}, {"de", "f"}, {"", "g"}}}});
  const Findings findings = v_findings_collect(codeset.get());
  EXPECT_EQ(findings.codes, 3u);
  EXPECT_THAT(findings.languages, ElementsAre("sv", "", "de"));
}

TEST(Findings, AreNoneInACodesetWithoutMistakes) {
  EXPECT_THAT(findings_of({{"1", {{"sv", "a"}, {"", "x"}}}, {"2", {{"sv", "b"}}}}), IsEmpty());
}

TEST(Findings, ReportCodesThatCouldNotBeReadBack) {
  const char *const reason =
      " could not be read back after saving: it has \"&\", \"<\" or \"]]>\".";
  EXPECT_THAT(findings_of({{"A&\xe4", {{"sv", "a"}}},
                           {"B<", {{"sv", "b"}}},
                           {"C]]>", {{"sv", "c"}}},
                           {"D]]", {{"sv", "d"}}}}),
              ElementsAre(std::string("The code \"A&\xc3\xa4\"") + reason,
                          std::string("The code \"B<\"") + reason,
                          std::string("The code \"C]]>\"") + reason));
}

TEST(Findings, ReportLanguagesThatTheProgramDoesNotKnow) {
  EXPECT_THAT(findings_of({{"1", {{"en-gb", "a"}}}, {"2", {{"en-uk", "b"}}}}, {{"SV", "Namn"}}),
              ElementsAre("The language \"SV\" is not one of the program's.",
                          "The language \"en-gb\" is not one of the program's."));
}

TEST(Findings, ReportCodesThatLackATranslationThatMostHave) {
  EXPECT_THAT(findings_of({{"1", {{"sv", "a"}}},
                           {"2", {{"sv", "b"}, {"de", "b"}}},
                           {"3", {{"sv", "c"}, {"de", "c"}}}}),
              ElementsAre("1 of 3 codes has no description in de: 1"));
}

TEST(Findings, DoNotExpectATranslationThatOnlyHalfOfTheCodesHave) {
  EXPECT_THAT(findings_of({{"1", {{"sv", "a"}}}, {"2", {{"sv", "b"}, {"de", "b"}}}}), IsEmpty());
}

TEST(Findings, NameOnlyTheFirstOfManyCodes) {
  Remarks remarks;
  for (int i = 10; i < 16; i++) {
    remarks.push_back({std::to_string(i), {{"de", std::to_string(i)}}});
  }
  for (int i = 20; i < 27; i++) {
    remarks.push_back({std::to_string(i), {{"de", std::to_string(i)}, {"sv", std::to_string(i)}}});
  }
  EXPECT_THAT(findings_of(remarks),
              ElementsAre("6 of 13 codes have no description in sv: 10, 11, 12, 13, 14, ..."));
}

TEST(Findings, ReportCodesWithTheSameDescription) {
  EXPECT_THAT(findings_of({{"1", {{"sv", "Spr\xe5ng"}}},
                           {"2", {{"sv", "b"}}},
                           {"3", {{"sv", "Spr\xe5ng"}}},
                           {"4", {{"sv", "spr\xe5ng"}}},
                           {"5", {{"sv", "Spr\xe5ng"}}}}),
              ElementsAre("3 codes have the same description in sv: 1, 3, 5 (\"Spr\xc3\xa5ng\")"));
}

TEST(Findings, NameAllLanguagesOfTheSameDescriptionAtOnce) {
  EXPECT_THAT(findings_of({{"1", {{"sv", "a"}, {"de", "x"}, {"", "u"}}},
                           {"2", {{"sv", "a"}, {"de", "x"}, {"", "u"}}},
                           {"3", {{"sv", "c"}, {"de", "x"}, {"", "v"}}}}),
              ElementsAre("2 codes have the same description in sv, undefined: 1, 2 (\"a\")",
                          "3 codes have the same description in de: 1, 2, 3 (\"x\")"));
}

TEST(Findings, QuoteOnlyTheBeginningOfALongDescription) {
  const std::string text(50, 'x');
  EXPECT_THAT(findings_of({{"1", {{"sv", text}}}, {"2", {{"sv", text}}}}),
              ElementsAre("2 codes have the same description in sv: 1, 2 (\"" +
                          std::string(40, 'x') + "\u2026\")"));
}

TEST(Findings, DoNotCompareTextsOfDifferentLanguages) {
  EXPECT_THAT(
      findings_of({{"1", {{"sv", "Spor"}, {"nb", "a"}}}, {"2", {{"sv", "b"}, {"nb", "Spor"}}}}),
      IsEmpty());
}

} // namespace
