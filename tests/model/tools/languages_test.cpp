#include "tools/languages.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/values/remarks.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

OwnedCodeset codeset_of(const Remarks &remarks) {
  OwnedCodeset codeset = v_codeset_new();
  codeset->remarks = list_of(remarks);
  return codeset;
}

TEST(Languages, AreThoseOfAllDescriptionsInOrderOfFirstAppearance) {
  const OwnedCodeset codeset =
      codeset_of({{"1", {{"sv", "a"}}}, {"2", {{"de", "b"}, {"sv", "c"}}}, {"3", {{"en", "d"}}}});
  EXPECT_THAT(v_tools_collect_languages(codeset.get(), false), ElementsAre("sv", "de", "en"));
}

TEST(Languages, IncludeATextWithoutLanguage) {
  const OwnedCodeset codeset = codeset_of({{"1", {{"sv", "a"}}}, {"2", {{"", "b"}}}});
  EXPECT_THAT(v_tools_collect_languages(codeset.get(), false), ElementsAre("sv", ""));
}

TEST(Languages, OfNameAndAuthorComeFirstWhenWanted) {
  const OwnedCodeset codeset = codeset_of({{"1", {{"sv", "a"}}}});
  codeset->name = langstr_of({{"fr", "Nom"}, {"sv", "Namn"}});
  codeset->author = langstr_of({{"es", "Autor"}});
  EXPECT_THAT(v_tools_collect_languages(codeset.get(), true), ElementsAre("fr", "sv", "es"));
  EXPECT_THAT(v_tools_collect_languages(codeset.get(), false), ElementsAre("sv"));
}

TEST(Languages, AreNoneInACodesetWithoutCodes) {
  EXPECT_THAT(v_tools_collect_languages(v_codeset_new().get(), false), IsEmpty());
}

TEST(Languages, AreShownAsTags) {
  EXPECT_EQ(v_tools_format_languages({"en-uk", "sv"}), "en-uk, sv");
  EXPECT_EQ(v_tools_format_languages({"", "sv"}), "undefined, sv");
  EXPECT_EQ(v_tools_format_languages({}), "no language");
}

} // namespace
