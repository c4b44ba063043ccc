#include "findings.h"

#include <algorithm>
#include <cstring>
#include <deque>
#include <map>
#include <set>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "base/text_encoding.h"
#include "codeset/codeset_io.h"
#include "codeset_texts.h"
#include "tools/languages.h"

namespace {

constexpr std::size_t maximum_codes_named = 5;

// A description in one language.
struct Text {
  std::size_t hash;
  std::size_t remark; // index in remark code order
  const char *text;   // ISO-8859-1, borrowed from the remark
};

struct Language {
  std::string tag;
  std::vector<Text> texts; // in remark code order
};

// The texts to compare, gathered in one pass: the remarks are scattered in memory, and a pass over
// them takes a considerable part of the time that reading the file does.
class Contents {
public:
  explicit Contents(const VCodeset *codeset) {
    const VRemarkList *list = codeset->remarks.get();
    for (const VRemark *remark = list->head.next; remark != &list->tail; remark = remark->next) {
      add(remark);
    }
  }

  std::vector<const VRemark *> remarks;
  std::deque<Language> languages; // in order of first appearance

private:
  void add(const VRemark *remark);
  Language &find_language(const char *tag, std::size_t likely_index);

  std::unordered_map<std::string_view, Language *> language_of; // borrowed from languages
};

void Contents::add(const VRemark *remark) {
  std::size_t place = 0;
  for (const VLangstr *t = remark->description.get(); t != nullptr; t = t->next.get()) {
    const std::size_t hash = std::hash<std::string_view>()(t->text.get());
    find_language(t->lang.get(), place).texts.push_back({hash, remarks.size(), t->text.get()});
    place++;
  }
  remarks.push_back(remark);
}

// In most codesets all descriptions have the same languages in the same order.
Language &Contents::find_language(const char *tag, std::size_t likely_index) {
  if (likely_index < languages.size() && languages[likely_index].tag == tag) {
    return languages[likely_index];
  }
  if (const auto found = language_of.find(tag); found != language_of.end()) {
    return *found->second;
  }
  languages.push_back({tag, {}});
  language_of[languages.back().tag] = &languages.back();
  return languages.back();
}

std::string convert(const char *latin1_text) {
  return OwnedText(v_convert_latin1_to_utf8(latin1_text)).get();
}

std::string quote(const char *latin1_text) { return v_tools_quote_text(latin1_text).get(); }

// The codes of the remarks with these indices, at most the first few: "Ab1, Ab2, ...".
std::string name_codes(const Contents &contents, const std::vector<std::size_t> &indices) {
  std::string codes;
  for (std::size_t i = 0; i < std::min(indices.size(), maximum_codes_named); i++) {
    codes += i == 0 ? "" : ", ";
    codes += convert(contents.remarks[indices[i]]->code.get());
  }
  return indices.size() > maximum_codes_named ? codes + ", ..." : codes;
}

void find_codes_not_read_back(const Contents &contents, std::vector<std::string> &findings) {
  for (const VRemark *remark : contents.remarks) {
    if (!v_codeset_io_can_code_be_read_back(remark->code.get())) {
      findings.push_back("The code " + quote(remark->code.get()) +
                         " could not be read back after saving: it has \"&\", \"<\" or \"]]>\".");
    }
  }
}

void find_unknown_languages(const VCodeset *codeset, const Contents &contents,
                            std::vector<std::string> &findings) {
  std::set<std::string_view> known;
  const auto find = [&](const char *tag) {
    const bool is_new = known.insert(tag).second;
    if (const auto warning = v_tools_find_unknown_language(tag); warning && is_new) {
      findings.push_back(*warning);
    }
  };
  for (const VLangstr *langstr : {codeset->name.get(), codeset->author.get()}) {
    for (const VLangstr *t = langstr; t != nullptr; t = t->next.get()) {
      find(t->lang.get());
    }
  }
  for (const Language &language : contents.languages) {
    find(language.tag.c_str());
  }
}

std::vector<std::size_t> remarks_without(const Language &language, std::size_t count) {
  std::vector<std::size_t> missing;
  auto text = language.texts.begin();
  for (std::size_t i = 0; i < count; i++) {
    if (text != language.texts.end() && text->remark == i) {
      ++text;
    } else {
      missing.push_back(i);
    }
  }
  return missing;
}

void find_missing_translations(const Contents &contents, std::vector<std::string> &findings) {
  const std::size_t all = contents.remarks.size();
  for (const Language &language : contents.languages) {
    const std::size_t count = language.texts.size();
    if (language.tag.empty() || count == all || count * 2 <= all) {
      continue;
    }
    const std::vector<std::size_t> missing = remarks_without(language, all);
    const bool is_one = missing.size() == 1;
    findings.push_back(std::to_string(missing.size()) + " of " + std::to_string(all) + " codes " +
                       (is_one ? "has" : "have") + " no description in " + language.tag + ": " +
                       name_codes(contents, missing));
  }
}

// The languages in which the same codes share a description.
struct Duplicate {
  std::vector<std::string> languages;
  const char *text; // ISO-8859-1, in the first of the languages
};
using Duplicates = std::map<std::vector<std::size_t>, Duplicate>;

using Texts = std::vector<Text>;

// Moves the texts equal to *first to the front of the range, and adds their codes if there are
// several. Returns the first text that differs.
Texts::iterator add_duplicate(const std::string &tag, Texts::iterator first, Texts::iterator end,
                              Duplicates &duplicates) {
  const auto others = std::stable_partition(first, end, [text = first->text](const Text &t) {
    return t.text == text || std::strcmp(t.text, text) == 0;
  });
  if (others - first > 1) {
    std::vector<std::size_t> indices;
    std::for_each(first, others, [&](const Text &t) { indices.push_back(t.remark); });
    const auto added = duplicates.try_emplace(std::move(indices), Duplicate{{}, first->text}).first;
    added->second.languages.push_back(tag);
  }
  return others;
}

void collect_duplicates(Language &language, Duplicates &duplicates) {
  Texts &texts = language.texts;
  std::sort(texts.begin(), texts.end(), [](const Text &a, const Text &b) {
    return a.hash != b.hash ? a.hash < b.hash : a.remark < b.remark;
  });
  for (auto first = texts.begin(); first != texts.end();) {
    const auto end = std::find_if(first, texts.end(),
                                  [hash = first->hash](const Text &t) { return t.hash != hash; });
    // Different texts can have the same hash.
    while (first != end) {
      first = add_duplicate(language.tag, first, end, duplicates);
    }
  }
}

void find_same_descriptions(Contents &contents, std::vector<std::string> &findings) {
  Duplicates duplicates;
  for (Language &language : contents.languages) {
    collect_duplicates(language, duplicates);
  }
  for (const auto &[indices, duplicate] : duplicates) {
    findings.push_back(std::to_string(indices.size()) + " codes have the same description in " +
                       v_tools_format_languages(duplicate.languages) + ": " +
                       name_codes(contents, indices) + " (" + quote(duplicate.text) + ")");
  }
}

} // namespace

Findings v_findings_collect(const VCodeset *codeset) {
  Contents contents(codeset);
  Findings findings;
  findings.codes = contents.remarks.size();
  for (const Language &language : contents.languages) {
    findings.languages.push_back(language.tag);
  }
  find_codes_not_read_back(contents, findings.messages);
  find_unknown_languages(codeset, contents, findings.messages);
  find_missing_translations(contents, findings.messages);
  find_same_descriptions(contents, findings.messages);
  return findings;
}
