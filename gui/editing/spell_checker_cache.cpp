#include "gui/editing/spell_checker_cache.h"

#include <algorithm>
#include <vector>

#include "gui/owned_objects.h"

namespace {

// One for each language in which a field has been checked.
std::vector<OwnedObject<GspellChecker>> checkers;
int owner_count = 0;

} // namespace

GspellChecker *v_spell_checker_cache_get(const GspellLanguage *language) {
  const GspellLanguage *wanted = language == nullptr ? gspell_language_get_default() : language;
  const auto has_wanted_language = [wanted](const OwnedObject<GspellChecker> &checker) {
    return gspell_checker_get_language(checker.get()) == wanted;
  };
  const auto found = std::find_if(checkers.begin(), checkers.end(), has_wanted_language);
  if (found != checkers.end()) {
    return found->get();
  }
  return checkers.emplace_back(take(gspell_checker_new(language))).get();
}

VSpellCheckerCacheOwner::VSpellCheckerCacheOwner() { ++owner_count; }

VSpellCheckerCacheOwner::~VSpellCheckerCacheOwner() {
  if (--owner_count == 0) {
    checkers.clear();
  }
}
