#include "gui/editing/shared_checkers.h"

#include <gtest/gtest.h>

namespace {

class SharedCheckers : public ::testing::Test {
protected:
  void SetUp() override {
    ASSERT_NE(english, nullptr);
    ASSERT_NE(swedish, nullptr);
  }
  void TearDown() override { v_shared_checkers_clean_up(); }

  const GspellLanguage *english = gspell_language_lookup("en_GB");
  const GspellLanguage *swedish = gspell_language_lookup("sv_SE");
};

TEST_F(SharedCheckers, ALanguageIsLoadedOnceAndStays) {
  GspellChecker *checker = v_shared_checkers_get(english);
  EXPECT_EQ(gspell_checker_get_language(checker), english);
  EXPECT_NE(v_shared_checkers_get(swedish), checker);
  EXPECT_EQ(v_shared_checkers_get(english), checker);
}

TEST_F(SharedCheckers, NoLanguageIsTheDefaultOne) {
  GspellChecker *checker = v_shared_checkers_get(nullptr);
  EXPECT_EQ(gspell_checker_get_language(checker), gspell_language_get_default());
  EXPECT_EQ(v_shared_checkers_get(gspell_language_get_default()), checker);
}

TEST_F(SharedCheckers, CleaningUpLetsGoOfEachChecker) {
  gpointer english_checker = v_shared_checkers_get(english);
  gpointer swedish_checker = v_shared_checkers_get(swedish);
  g_object_add_weak_pointer(G_OBJECT(english_checker), &english_checker);
  g_object_add_weak_pointer(G_OBJECT(swedish_checker), &swedish_checker);
  v_shared_checkers_clean_up();
  EXPECT_EQ(english_checker, nullptr);
  EXPECT_EQ(swedish_checker, nullptr);
  EXPECT_NE(v_shared_checkers_get(english), nullptr);
}

} // namespace
