#include "gui/editing/spell_checker_cache.h"

#include <optional>

#include <gtest/gtest.h>

namespace {

class SpellCheckerCache : public ::testing::Test {
protected:
  void SetUp() override {
    ASSERT_NE(english, nullptr);
    ASSERT_NE(swedish, nullptr);
  }

  std::optional<VSpellCheckerCacheOwner> owner = std::make_optional<VSpellCheckerCacheOwner>();
  const GspellLanguage *english = gspell_language_lookup("en_GB");
  const GspellLanguage *swedish = gspell_language_lookup("sv_SE");
};

TEST_F(SpellCheckerCache, LoadsALanguageOnce) {
  GspellChecker *checker = v_spell_checker_cache_get(english);
  EXPECT_EQ(gspell_checker_get_language(checker), english);
  EXPECT_NE(v_spell_checker_cache_get(swedish), checker);
  EXPECT_EQ(v_spell_checker_cache_get(english), checker);
}

TEST_F(SpellCheckerCache, UsesTheDefaultLanguageForNull) {
  GspellChecker *checker = v_spell_checker_cache_get(nullptr);
  EXPECT_EQ(gspell_checker_get_language(checker), gspell_language_get_default());
  EXPECT_EQ(v_spell_checker_cache_get(gspell_language_get_default()), checker);
}

TEST_F(SpellCheckerCache, FreesEachCheckerWithItsOwner) {
  gpointer english_checker = v_spell_checker_cache_get(english);
  gpointer swedish_checker = v_spell_checker_cache_get(swedish);
  g_object_add_weak_pointer(G_OBJECT(english_checker), &english_checker);
  g_object_add_weak_pointer(G_OBJECT(swedish_checker), &swedish_checker);
  owner.reset();
  EXPECT_EQ(english_checker, nullptr);
  EXPECT_EQ(swedish_checker, nullptr);
  owner.emplace();
  EXPECT_NE(v_spell_checker_cache_get(english), nullptr);
}

TEST_F(SpellCheckerCache, KeepsCheckersForAnotherOwner) {
  gpointer checker = v_spell_checker_cache_get(english);
  g_object_add_weak_pointer(G_OBJECT(checker), &checker);
  { const VSpellCheckerCacheOwner another; }
  ASSERT_NE(checker, nullptr);
  g_object_remove_weak_pointer(G_OBJECT(checker), &checker);
}

} // namespace
