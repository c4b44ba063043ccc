#include "gui/editing/spell_checker_cache.h"

#include <gtest/gtest.h>

namespace {

class SpellCheckerCache : public ::testing::Test {
protected:
  void SetUp() override {
    ASSERT_NE(english, nullptr);
    ASSERT_NE(swedish, nullptr);
  }
  void TearDown() override { v_spell_checker_cache_clean_up(); }

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

TEST_F(SpellCheckerCache, CleaningUpFreesEachChecker) {
  gpointer english_checker = v_spell_checker_cache_get(english);
  gpointer swedish_checker = v_spell_checker_cache_get(swedish);
  g_object_add_weak_pointer(G_OBJECT(english_checker), &english_checker);
  g_object_add_weak_pointer(G_OBJECT(swedish_checker), &swedish_checker);
  v_spell_checker_cache_clean_up();
  EXPECT_EQ(english_checker, nullptr);
  EXPECT_EQ(swedish_checker, nullptr);
  EXPECT_NE(v_spell_checker_cache_get(english), nullptr);
}

} // namespace
