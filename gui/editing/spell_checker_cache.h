#pragma once
// One spell checker for each language, shared by all text fields. A checker loads a dictionary of
// its own, which takes 50 to 90 ms, and without the cache each field and each new window would load
// it again.

#include <gspell/gspell.h>

// The checker of the language (null: gspell's default), borrowed. Callers must not change it: a
// field that adds words or switches the language needs a checker of its own.
GspellChecker *v_spell_checker_cache_get(const GspellLanguage *language);

// Owns the cache, with any other owner; each run of the tool has one. The last owner frees all
// checkers when it is destroyed, and no field may use one then. Without an owner the checkers would
// outlive the libraries behind them, which are shut down before static objects.
class VSpellCheckerCacheOwner {
public:
  VSpellCheckerCacheOwner();
  ~VSpellCheckerCacheOwner();
  VSpellCheckerCacheOwner(const VSpellCheckerCacheOwner &) = delete;
  VSpellCheckerCacheOwner &operator=(const VSpellCheckerCacheOwner &) = delete;
};
