#pragma once
// A language-tagged string as plain values, so that a test can state all of it.

#include <string>
#include <utility>
#include <vector>

#include "langstr/langstr.h"

// Tag and text (ISO-8859-1) of each translation, in order.
using Translations = std::vector<std::pair<std::string, std::string>>;

inline Translations translations_of(const VLangstr *langstr) {
  Translations translations;
  for (; langstr != nullptr; langstr = langstr->next.get()) {
    translations.emplace_back(langstr->lang.get(), langstr->text.get());
  }
  return translations;
}

inline Translations translations_of(const OwnedLangstr &langstr) {
  return translations_of(langstr.get());
}

inline OwnedLangstr langstr_of(const Translations &translations) {
  OwnedLangstr langstr;
  for (const auto &[tag, text] : translations) {
    v_langstr_set_translation(langstr, tag.c_str(), text.c_str());
  }
  return langstr;
}
