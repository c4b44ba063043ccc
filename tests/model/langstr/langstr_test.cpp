#include "langstr/langstr.h"

#include <ctime>
#include <string>

#include <gtest/gtest.h>

#include "support/values/translations.h"

namespace {

struct Setting {
  const char *rule;
  Translations before;
  const char *lang;
  const char *text;
  bool changes;
  Translations after;
};

const Setting settings[] = {
    {"the first translation", {}, "sv", "Rost", true, {{"sv", "Rost"}}},
    {"an untagged first translation", {}, "", "Rost", true, {{"", "Rost"}}},
    {"another tag is appended",
     {{"sv", "Rost"}},
     "de",
     "Rost",
     true,
     {{"sv", "Rost"}, {"de", "Rost"}}},
    {"the same tag takes the later text, at its place",
     {{"sv", "Rost"}, {"de", "Rost"}},
     "sv",
     "Korrosion",
     true,
     {{"sv", "Korrosion"}, {"de", "Rost"}}},
    {"the same tag and text change nothing",
     {{"sv", "Rost"}, {"de", "Eisen"}},
     "de",
     "Eisen",
     false,
     {{"sv", "Rost"}, {"de", "Eisen"}}},
    {"an untagged text that a tagged one repeats is dropped",
     {{"sv", "Rost"}, {"de", "Eisen"}},
     "",
     "Eisen",
     false,
     {{"sv", "Rost"}, {"de", "Eisen"}}},
    {"an untagged text that no translation has is appended",
     {{"de", "Eisen"}},
     "",
     "Rost",
     true,
     {{"de", "Eisen"}, {"", "Rost"}}},
    {"an untagged translation takes another text, even that of a tagged one",
     {{"de", "Eisen"}, {"", "Rost"}},
     "",
     "Eisen",
     true,
     {{"de", "Eisen"}, {"", "Eisen"}}},
    {"the untagged translation with the same text is unchanged",
     {{"", "Rost"}},
     "",
     "Rost",
     false,
     {{"", "Rost"}}},
    {"a tagged text claims the untagged one, which keeps its place",
     {{"sv", "Rost"}, {"", "Eisen"}, {"fr", "Fer"}},
     "de",
     "Eisen",
     true,
     {{"sv", "Rost"}, {"de", "Eisen"}, {"fr", "Fer"}}},
    {"an existing tag takes the text and claims no untagged one",
     {{"de", "Rost"}, {"", "Eisen"}},
     "de",
     "Eisen",
     true,
     {{"de", "Eisen"}, {"", "Eisen"}}},
    {"an untagged text that differs is not claimed",
     {{"", "Eisen"}},
     "de",
     "Rost",
     true,
     {{"", "Eisen"}, {"de", "Rost"}}},
    {"tags compare with case", {{"sv", "a"}}, "SV", "b", true, {{"sv", "a"}, {"SV", "b"}}},
    {"texts compare with case", {{"sv", "a"}}, "", "A", true, {{"sv", "a"}, {"", "A"}}},
    {"texts compare byte for byte",
     {{"sv", "\xE5"}},
     "",
     "\xC5",
     true,
     {{"sv", "\xE5"}, {"", "\xC5"}}},
    {"a dialect is another tag", {{"sv", "a"}}, "sv-fi", "b", true, {{"sv", "a"}, {"sv-fi", "b"}}},
};

TEST(Langstr, SetsATranslation) {
  for (const Setting &setting : settings) {
    SCOPED_TRACE(setting.rule);
    OwnedLangstr langstr = langstr_of(setting.before);
    ASSERT_EQ(translations_of(langstr), setting.before);
    EXPECT_EQ(v_langstr_set_translation(langstr, setting.lang, setting.text), setting.changes);
    EXPECT_EQ(translations_of(langstr), setting.after);
  }
}

TEST(Langstr, SetsATextThatTheStringItselfHolds) {
  OwnedLangstr langstr = langstr_of({{"sv", "a"}, {"de", "b"}});
  EXPECT_TRUE(v_langstr_set_translation(langstr, "sv", langstr->next->text.get()));
  EXPECT_TRUE(v_langstr_set_translation(langstr, langstr->text.get(), langstr->text.get()));
  EXPECT_EQ(translations_of(langstr), (Translations{{"sv", "b"}, {"de", "b"}, {"b", "b"}}));
}

struct Lookup {
  const char *lang;
  const char *exact;   // null: none
  const char *dialect; // with dialects allowed
};

TEST(Langstr, LooksUpTranslations) {
  const OwnedLangstr langstr = langstr_of({{"a-b", "one letter"},
                                           {"en-us", "American"},
                                           {"en-uk", "British"},
                                           {"svx", "no dialect"},
                                           {"sv-fi", "Finland"},
                                           {"de", "plain"},
                                           {"de-at", "Austria"},
                                           {"fr-", "only a hyphen"},
                                           {"", "untagged"},
                                           {"-x", "hyphen first"}});
  const Lookup lookups[] = {
      {"en", nullptr, "American"},      {"en-uk", "British", "British"},
      {"en-u", nullptr, nullptr},       {"sv", nullptr, "Finland"},
      {"sv-fi", "Finland", "Finland"},  {"sv-fi-x", nullptr, nullptr},
      {"de", "plain", "plain"},         {"de-de", nullptr, nullptr},
      {"fr", nullptr, "only a hyphen"}, {"a", nullptr, nullptr},
      {"", "untagged", "untagged"},     {"EN", nullptr, nullptr},
      {"en-", nullptr, nullptr},
  };
  for (const Lookup &lookup : lookups) {
    SCOPED_TRACE(lookup.lang);
    EXPECT_STREQ(v_langstr_get_string(langstr.get(), lookup.lang, false), lookup.exact);
    EXPECT_STREQ(v_langstr_get_string(langstr.get(), lookup.lang, true), lookup.dialect);
  }
}

TEST(Langstr, TheExactTagWinsOverAnEarlierDialect) {
  const OwnedLangstr langstr = langstr_of({{"de-at", "Austria"}, {"de", "plain"}});
  EXPECT_STREQ(v_langstr_get_string(langstr.get(), "de", true), "plain");
}

TEST(Langstr, ADialectDoesNotFallBackToItsLanguage) {
  const OwnedLangstr langstr = langstr_of({{"sv", "svenska"}});
  EXPECT_EQ(v_langstr_get_string(langstr.get(), "sv-fi", true), nullptr);
}

TEST(Langstr, AnEmptyTagHasNoDialects) {
  const OwnedLangstr langstr = langstr_of({{"-x", "text"}});
  EXPECT_EQ(v_langstr_get_string(langstr.get(), "", true), nullptr);
}

TEST(Langstr, TheEmptyStringIsAcceptedEverywhere) {
  OwnedLangstr empty;
  const OwnedLangstr full = langstr_of({{"sv", "a"}});
  EXPECT_EQ(v_langstr_get_string(nullptr, "sv", true), nullptr);
  EXPECT_EQ(v_langstr_clone(nullptr), nullptr);
  EXPECT_FALSE(v_langstr_remove_lang(empty, "sv"));
  EXPECT_TRUE(v_langstr_is_identical(nullptr, nullptr));
  EXPECT_FALSE(v_langstr_is_identical(full.get(), nullptr));
  EXPECT_FALSE(v_langstr_is_identical(nullptr, full.get()));
  EXPECT_TRUE(v_langstr_is_subset(nullptr, full.get()));
  EXPECT_TRUE(v_langstr_is_subset(nullptr, nullptr));
  EXPECT_FALSE(v_langstr_is_subset(full.get(), nullptr));
  EXPECT_FALSE(v_langstr_is_mergeable(nullptr, full.get()));
  EXPECT_FALSE(v_langstr_is_mergeable(full.get(), nullptr));
  EXPECT_FALSE(v_langstr_is_mergeable(nullptr, nullptr));
  EXPECT_FALSE(v_langstr_merge(empty, full.get()));
  EXPECT_EQ(empty, nullptr);
  v_langstr_free(nullptr);
}

TEST(Langstr, ACloneIsDeepAndInOrder) {
  const Translations translations = {{"sv", "a"}, {"", "b"}, {"de", "c"}};
  OwnedLangstr original = langstr_of(translations);
  const OwnedLangstr clone = v_langstr_clone(original.get());
  v_langstr_set_translation(original, "sv", "changed");
  original.reset();
  EXPECT_EQ(translations_of(clone), translations);
}

TEST(Langstr, RemovesALanguage) {
  OwnedLangstr langstr = langstr_of({{"sv", "a"}, {"", "b"}, {"sv-fi", "c"}, {"de", "d"}});
  EXPECT_FALSE(v_langstr_remove_lang(langstr, "s"));
  EXPECT_FALSE(v_langstr_remove_lang(langstr, "SV"));
  EXPECT_TRUE(v_langstr_remove_lang(langstr, "sv-fi"));
  EXPECT_EQ(translations_of(langstr), (Translations{{"sv", "a"}, {"", "b"}, {"de", "d"}}));
  EXPECT_TRUE(v_langstr_remove_lang(langstr, "sv"));
  EXPECT_FALSE(v_langstr_remove_lang(langstr, "sv"));
  EXPECT_TRUE(v_langstr_remove_lang(langstr, "de"));
  EXPECT_EQ(translations_of(langstr), (Translations{{"", "b"}}));
  EXPECT_TRUE(v_langstr_remove_lang(langstr, ""));
  EXPECT_EQ(langstr, nullptr);
}

struct Comparison {
  Translations a;
  Translations b;
  bool is_identical;
  bool is_subset;
  bool is_mergeable;
};

TEST(Langstr, ComparesTwoStrings) {
  const Comparison comparisons[] = {
      {{{"sv", "a"}}, {{"sv", "a"}}, true, true, true},
      {{{"sv", "a"}}, {{"sv", "b"}}, false, false, false},
      {{{"sv", "a"}}, {{"de", "a"}}, false, false, false},
      {{{"sv", "a"}}, {{"de", "b"}}, false, false, false},
      {{{"sv", "a"}, {"de", "b"}}, {{"de", "b"}, {"sv", "a"}}, false, true, true},
      {{{"sv", "a"}}, {{"sv", "a"}, {"de", "b"}}, false, true, true},
      {{{"sv", "a"}, {"de", "b"}}, {{"sv", "a"}}, false, false, true},
      {{{"", "a"}}, {{"sv", "a"}}, false, true, true},
      {{{"sv", "a"}}, {{"", "a"}}, false, false, true},
      {{{"", "a"}}, {{"", "a"}}, true, true, true},
      {{{"", "a"}}, {{"", "b"}}, false, false, false},
      {{{"sv", "a"}, {"", "b"}}, {{"sv", "a"}, {"", "c"}}, false, false, true},
      {{{"sv", "a"}, {"de", "x"}}, {{"sv", "a"}, {"de", "y"}}, false, false, false},
      {{{"", "a"}, {"de", "x"}}, {{"fr", "a"}, {"de", "y"}}, false, false, false},
      {{{"sv", "a"}}, {{"SV", "a"}}, false, false, false},
  };
  for (const Comparison &comparison : comparisons) {
    const OwnedLangstr a = langstr_of(comparison.a);
    const OwnedLangstr b = langstr_of(comparison.b);
    SCOPED_TRACE(testing::PrintToString(comparison.a) + testing::PrintToString(comparison.b));
    EXPECT_EQ(v_langstr_is_identical(a.get(), b.get()), comparison.is_identical);
    EXPECT_EQ(v_langstr_is_subset(a.get(), b.get()), comparison.is_subset);
    EXPECT_EQ(v_langstr_is_mergeable(a.get(), b.get()), comparison.is_mergeable);
  }
}

struct Merge {
  Translations a;
  Translations b;
  bool changes;
  Translations merged;
};

TEST(Langstr, MergesTwoStrings) {
  const Merge merges[] = {
      {{{"sv", "a"}}, {{"sv", "a"}, {"de", "b"}}, true, {{"sv", "a"}, {"de", "b"}}},
      {{{"sv", "a"}, {"de", "b"}}, {{"sv", "a"}}, false, {{"sv", "a"}, {"de", "b"}}},
      {{{"", "a"}}, {{"de", "x"}, {"sv", "a"}}, true, {{"sv", "a"}, {"de", "x"}}},
      {{{"sv", "a"}}, {{"", "a"}}, false, {{"sv", "a"}}},
      {{{"sv", "a"}, {"de", "x"}}, {{"sv", "a"}, {"de", "y"}}, false, {{"sv", "a"}, {"de", "x"}}},
      {{{"sv", "a"}}, {{"de", "b"}}, false, {{"sv", "a"}}},
      {{{"sv", "a"}, {"", "b"}}, {{"sv", "a"}, {"", "c"}}, true, {{"sv", "a"}, {"", "c"}}},
  };
  for (const Merge &merge : merges) {
    OwnedLangstr a = langstr_of(merge.a);
    const OwnedLangstr b = langstr_of(merge.b);
    SCOPED_TRACE(testing::PrintToString(merge.a) + testing::PrintToString(merge.b));
    EXPECT_EQ(v_langstr_merge(a, b.get()), merge.changes);
    EXPECT_EQ(translations_of(a), merge.merged);
    EXPECT_EQ(translations_of(b), merge.b);
  }
}

TEST(Langstr, MergingWithItselfChangesNothing) {
  OwnedLangstr langstr = langstr_of({{"sv", "a"}, {"", "b"}});
  EXPECT_FALSE(v_langstr_merge(langstr, langstr.get()));
  EXPECT_EQ(translations_of(langstr), (Translations{{"sv", "a"}, {"", "b"}}));
}

// Pseudo-random numbers, the same in every run.
class Numbers {
public:
  unsigned below(unsigned limit) {
    state = state * 1'103'515'245U + 12'345U;
    return (state >> 16) % limit;
  }

private:
  unsigned state = 1;
};

TEST(LangstrCollection, EqualsRepeatedSetting) {
  Numbers numbers;
  for (int round = 0; round < 50; round++) {
    // Few tags and texts at first, so that every rule applies, and more in later rounds.
    const unsigned variety = 2 + static_cast<unsigned>(round) * 3;
    OwnedLangstr expected;
    VLangstrCollection collection;
    for (int i = 0; i < 300; i++) {
      const unsigned tag = numbers.below(variety);
      const std::string lang = tag == 0 ? "" : "t" + std::to_string(tag);
      const std::string text = "x" + std::to_string(numbers.below(variety));
      const bool changes = v_langstr_set_translation(expected, lang.c_str(), text.c_str());
      ASSERT_EQ(v_langstr_collect_translation(collection, copy_text(lang.c_str()),
                                              copy_text(text.c_str())),
                changes);
      ASSERT_TRUE(v_langstr_is_identical(collection.langstr.get(), expected.get()));
    }
  }
}

TEST(LangstrCollection, TheRulesHoldInALongCollection) {
  for (const Setting &setting : settings) {
    SCOPED_TRACE(setting.rule);
    Translations many;
    for (int i = 0; i < 100; i++) {
      many.emplace_back("t" + std::to_string(i), "x" + std::to_string(i));
    }
    Translations after = many;
    many.insert(many.end(), setting.before.begin(), setting.before.end());
    after.insert(after.end(), setting.after.begin(), setting.after.end());
    VLangstrCollection collection;
    for (const auto &[tag, text] : many) {
      v_langstr_collect_translation(collection, copy_text(tag.c_str()), copy_text(text.c_str()));
    }
    EXPECT_EQ(
        v_langstr_collect_translation(collection, copy_text(setting.lang), copy_text(setting.text)),
        setting.changes);
    EXPECT_EQ(translations_of(collection.langstr), after);
  }
}

double processor_seconds() {
  return static_cast<double>(std::clock()) / static_cast<double>(CLOCKS_PER_SEC);
}

TEST(LangstrCollection, CollectsAHundredThousandLanguagesQuickly) {
  constexpr int many = 100'000;
  // Seconds: ample for constant time per translation, even in an instrumented build, and far too
  // short for a search of the list for each.
  constexpr double patience = 10;
  VLangstrCollection collection;
  const double start = processor_seconds();
  int collected = 0;
  // Ends early rather than after minutes.
  while (collected < many && processor_seconds() - start < patience) {
    const std::string number = std::to_string(collected);
    v_langstr_collect_translation(collection, copy_text(("t" + number).c_str()),
                                  copy_text(("x" + number).c_str()));
    collected++;
  }
  EXPECT_EQ(collected, many);
}

TEST(LangstrCollection, AnEmptyCollectionIsTheEmptyString) {
  EXPECT_EQ(VLangstrCollection().langstr, nullptr);
  v_langstr_index_free(nullptr);
}

TEST(Langstr, ALongStringIsFreedWithoutRecursion) {
  OwnedLangstr langstr;
  for (int i = 0; i < 1'000'000; i++) {
    langstr.reset(new VLangstr{copy_text("sv"), copy_text("a"), std::move(langstr)});
  }
  const OwnedLangstr clone = v_langstr_clone(langstr.get());
  EXPECT_TRUE(v_langstr_is_identical(langstr.get(), clone.get()));
}

} // namespace
