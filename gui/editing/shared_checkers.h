#pragma once
// Spell checkers that text fields have in common. A checker holds a dictionary of its own, which
// takes some 50 to 90 ms to load: fields of the same language would load and keep the same one
// several times over, and windows that are opened one after the other load it again each time.

#include <gspell/gspell.h>

// The checker of the language (null: gspell's default), borrowed. Nothing that changes a checker
// may be done to it: who wants to makes one of the field's own.
GspellChecker *v_shared_checkers_get(const GspellLanguage *language);
// Lets go of all checkers, when no field is left. To be called before the program ends: the
// libraries that a checker uses are torn down before this module's static objects.
void v_shared_checkers_clean_up();
