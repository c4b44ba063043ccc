#pragma once
// One spell checker for each language, shared by all text fields. A checker loads a dictionary of
// its own, which takes 50 to 90 ms, and without the cache each field and each new window would load
// it again.

#include <gspell/gspell.h>

// The checker of the language (null: gspell's default), borrowed. Callers must not change it: a
// field that adds words or switches the language needs a checker of its own.
GspellChecker *v_spell_checker_cache_get(const GspellLanguage *language);
// Releases all checkers; no field may use one any more. Must be called before the program ends,
// because the libraries behind a checker are shut down before static objects.
void v_spell_checker_cache_clean_up();
