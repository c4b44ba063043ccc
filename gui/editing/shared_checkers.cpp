#include "gui/editing/shared_checkers.h"

#include <algorithm>
#include <vector>

namespace {

// Those that some field has; each leaves when the last of its fields has gone.
std::vector<GspellChecker *> checkers;

void forget(void *, GObject *gone) {
  const auto is_gone = [gone](const GspellChecker *checker) {
    return static_cast<const void *>(checker) == gone;
  };
  checkers.erase(std::find_if(checkers.begin(), checkers.end(), is_gone));
}

} // namespace

OwnedObject<GspellChecker> v_shared_checkers_get(const GspellLanguage *language) {
  const GspellLanguage *wanted = language == nullptr ? gspell_language_get_default() : language;
  const auto found =
      std::find_if(checkers.begin(), checkers.end(), [wanted](GspellChecker *checker) {
        return gspell_checker_get_language(checker) == wanted;
      });
  if (found != checkers.end()) {
    return share(*found);
  }
  OwnedObject<GspellChecker> checker = take(gspell_checker_new(language));
  g_object_weak_ref(G_OBJECT(checker.get()), forget, nullptr);
  checkers.push_back(checker.get());
  return checker;
}
