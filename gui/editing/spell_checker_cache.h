#pragma once
// One spell checker per language, shared by all text fields. Each checker loads its dictionary,
// which takes 50 to 90 ms; without the cache, each field in each new window would load it again.

#include <gspell/gspell.h>

// The checker of the language (null: gspell's default), borrowed. Callers must not change it: a
// field that adds words or switches the language needs a checker of its own.
GspellChecker *v_spell_checker_cache_get(const GspellLanguage *language);

// Shares ownership of the cache; each run of the tool has an owner. Destroying the last owner frees
// all checkers, which no field may use any more. Without owners, the checkers would outlive the
// libraries behind them, which are shut down before static objects are destroyed.
class VSpellCheckerCacheOwner {
public:
  VSpellCheckerCacheOwner();
  ~VSpellCheckerCacheOwner();
  VSpellCheckerCacheOwner(const VSpellCheckerCacheOwner &) = delete;
  VSpellCheckerCacheOwner &operator=(const VSpellCheckerCacheOwner &) = delete;
};
