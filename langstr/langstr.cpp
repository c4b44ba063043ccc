#include "langstr/langstr.h"

#include <cstring>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace {

bool equal(const char *a, const char *b) { return std::strcmp(a, b) == 0; }

bool equal(const OwnedText &a, const OwnedText &b) { return equal(a.get(), b.get()); }

bool is_untagged(const VLangstr &translation) { return *translation.lang == '\0'; }

VLangstr *find_tag(VLangstr *langstr, const char *lang) {
  while (langstr != nullptr && !equal(langstr->lang.get(), lang)) {
    langstr = langstr->next.get();
  }
  return langstr;
}

bool has_text(const VLangstr *langstr, const char *text) {
  while (langstr != nullptr && !equal(langstr->text.get(), text)) {
    langstr = langstr->next.get();
  }
  return langstr != nullptr;
}

bool is_dialect_of(const char *tag, const char *lang, std::size_t lang_length) {
  return std::strncmp(tag, lang, lang_length) == 0 && tag[lang_length] == '-';
}

// A string without an index: each look-up searches the list.
class WalkedLangstr {
public:
  explicit WalkedLangstr(OwnedLangstr &walked) : langstr(walked) {}

  VLangstr *find(const char *lang) const { return find_tag(langstr.get(), lang); }
  bool has(const char *text) const { return has_text(langstr.get(), text); }
  void set_text(VLangstr &translation, OwnedText text) { translation.text = std::move(text); }
  void set_lang(VLangstr &translation, OwnedText lang) { translation.lang = std::move(lang); }
  void append(OwnedText lang, OwnedText text) {
    OwnedLangstr *end = &langstr;
    while (*end) {
      end = &(*end)->next;
    }
    end->reset(new VLangstr{std::move(lang), std::move(text), nullptr});
  }

private:
  OwnedLangstr &langstr;
};

// The rules of v_langstr_set_translation, with or without an index.
template <typename Langstr>
bool set_translation(Langstr &&langstr, OwnedText lang, OwnedText text) {
  if (VLangstr *same_tag = langstr.find(lang.get())) {
    if (equal(same_tag->text, text)) {
      return false;
    }
    langstr.set_text(*same_tag, std::move(text));
    return true;
  }
  if (*lang == '\0') {
    if (langstr.has(text.get())) {
      return false;
    }
  } else if (VLangstr *untagged = langstr.find("");
             untagged != nullptr && equal(untagged->text, text)) {
    langstr.set_lang(*untagged, std::move(lang));
    return true;
  }
  langstr.append(std::move(lang), std::move(text));
  return true;
}

// Up to this length, searching the list is as fast as an index.
constexpr int longest_walk = 32;

// True when b has the translation; see v_langstr_is_subset.
bool holds(const VLangstr *b, const VLangstr &translation) {
  if (is_untagged(translation)) {
    return has_text(b, translation.text.get());
  }
  for (; b != nullptr; b = b->next.get()) {
    if (equal(b->lang, translation.lang) && equal(b->text, translation.text)) {
      return true;
    }
  }
  return false;
}

} // namespace

void v_langstr_free(VLangstr *langstr) {
  // Frees in a loop: destroying the list through its owning pointers would recurse once per
  // translation.
  while (langstr != nullptr) {
    VLangstr *next = langstr->next.release();
    delete langstr;
    langstr = next;
  }
}

bool v_langstr_set_translation(OwnedLangstr &langstr, const char *lang, const char *text) {
  return v_langstr_set_owned_translation(langstr, copy_text(lang), copy_text(text));
}

bool v_langstr_set_owned_translation(OwnedLangstr &langstr, OwnedText lang, OwnedText text) {
  return set_translation(WalkedLangstr(langstr), std::move(lang), std::move(text));
}

// Index of a string that changes only through the collection.
struct VLangstrIndex {
  explicit VLangstrIndex(VLangstr *langstr) {
    for (; langstr != nullptr; langstr = langstr->next.get()) {
      add(langstr);
    }
  }

  VLangstr *find(const char *lang) const {
    const auto found = translations.find(lang);
    return found == translations.end() ? nullptr : found->second;
  }
  bool has(const char *text) const { return texts.contains(text); }
  void set_text(VLangstr &translation, OwnedText text) {
    if (const auto old = texts.find(translation.text.get()); --old->second == 0) {
      texts.erase(old);
    }
    texts[text.get()]++;
    translation.text = std::move(text);
  }
  void set_lang(VLangstr &translation, OwnedText lang) {
    translations.erase(translation.lang.get());
    translation.lang = std::move(lang);
    translations[translation.lang.get()] = &translation;
  }
  void append(OwnedText lang, OwnedText text) {
    last->next.reset(new VLangstr{std::move(lang), std::move(text), nullptr});
    add(last->next.get());
  }

private:
  void add(VLangstr *translation) {
    translations[translation->lang.get()] = translation;
    texts[translation->text.get()]++;
    last = translation;
  }

  std::unordered_map<std::string_view, VLangstr *>
      translations;                           // the keys are borrowed from the translations
  std::unordered_map<std::string, int> texts; // number of occurrences
  VLangstr *last = nullptr;
};

void v_langstr_index_free(VLangstrIndex *index) { delete index; }

bool v_langstr_collect_translation(VLangstrCollection &collection, OwnedText lang, OwnedText text) {
  if (collection.index) {
    return set_translation(*collection.index, std::move(lang), std::move(text));
  }
  const bool has_changed =
      v_langstr_set_owned_translation(collection.langstr, std::move(lang), std::move(text));
  if (++collection.walks == longest_walk) {
    collection.index.reset(new VLangstrIndex(collection.langstr.get()));
  }
  return has_changed;
}

const char *v_langstr_get_string(const VLangstr *langstr, const char *lang, bool allow_dialect) {
  for (const VLangstr *t = langstr; t != nullptr; t = t->next.get()) {
    if (equal(t->lang.get(), lang)) {
      return t->text.get();
    }
  }
  const std::size_t lang_length = std::strlen(lang);
  if (!allow_dialect || lang_length < 2) {
    return nullptr;
  }
  for (const VLangstr *t = langstr; t != nullptr; t = t->next.get()) {
    if (is_dialect_of(t->lang.get(), lang, lang_length)) {
      return t->text.get();
    }
  }
  return nullptr;
}

OwnedLangstr v_langstr_clone(const VLangstr *langstr) {
  OwnedLangstr copy;
  OwnedLangstr *end = &copy;
  for (; langstr != nullptr; langstr = langstr->next.get()) {
    end->reset(
        new VLangstr{copy_text(langstr->lang.get()), copy_text(langstr->text.get()), nullptr});
    end = &(*end)->next;
  }
  return copy;
}

bool v_langstr_remove_lang(OwnedLangstr &langstr, const char *lang) {
  OwnedLangstr *place = &langstr;
  while (*place && !equal((*place)->lang.get(), lang)) {
    place = &(*place)->next;
  }
  if (!*place) {
    return false;
  }
  const OwnedLangstr removed = std::exchange(*place, std::move((*place)->next));
  return true;
}

bool v_langstr_is_identical(const VLangstr *a, const VLangstr *b) {
  while (a != nullptr && b != nullptr && equal(a->lang, b->lang) && equal(a->text, b->text)) {
    a = a->next.get();
    b = b->next.get();
  }
  return a == nullptr && b == nullptr;
}

bool v_langstr_is_subset(const VLangstr *a, const VLangstr *b) {
  while (a != nullptr && holds(b, *a)) {
    a = a->next.get();
  }
  return a == nullptr;
}

bool v_langstr_is_mergeable(const VLangstr *a, const VLangstr *b) {
  bool has_common_text = false;
  for (const VLangstr *x = a; x != nullptr; x = x->next.get()) {
    for (const VLangstr *y = b; y != nullptr; y = y->next.get()) {
      const bool same_tag = equal(x->lang, y->lang);
      if (!same_tag && !is_untagged(*x) && !is_untagged(*y)) {
        continue;
      }
      if (equal(x->text, y->text)) {
        has_common_text = true;
      } else if (same_tag && !is_untagged(*x)) {
        return false;
      }
    }
  }
  return has_common_text;
}

bool v_langstr_merge(OwnedLangstr &a, const VLangstr *b) {
  if (!v_langstr_is_mergeable(a.get(), b)) {
    return false;
  }
  bool has_changed = false;
  for (; b != nullptr; b = b->next.get()) {
    has_changed |= v_langstr_set_translation(a, b->lang.get(), b->text.get());
  }
  return has_changed;
}
