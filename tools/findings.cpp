#include "findings.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "base/text_encoding.h"
#include "codeset/codeset_io.h"
#include "langstr/supported_languages.h"
#include "tools/languages.h"

namespace {

using Remarks = std::vector<const VRemark *>; // in remark code order

// The texts of all remarks in one language.
struct Language {
  struct Text {
    std::size_t hash;
    std::size_t remark; // its index
    const char *text;   // ISO-8859-1, the remark's
  };
  std::string tag;
  std::vector<Text> texts; // in the order of the remarks
};

constexpr std::size_t most_codes_named = 5;

Remarks collect_remarks(const VCodeset *codeset) {
  Remarks remarks;
  const VRemarkList *list = codeset->remarks.get();
  for (const VRemark *remark = list->head.next; remark != &list->tail; remark = remark->next) {
    remarks.push_back(remark);
  }
  return remarks;
}

std::vector<Language> collect_texts(const VCodeset *codeset, const Remarks &remarks) {
  std::vector<Language> languages;
  for (std::string &tag : v_tools_collect_languages(codeset, false)) {
    languages.push_back({std::move(tag), {}});
  }
  std::unordered_map<std::string_view, Language *> language_of;
  for (Language &language : languages) {
    language_of[language.tag] = &language;
  }
  for (std::size_t i = 0; i < remarks.size(); i++) {
    for (const VLangstr *t = remarks[i]->description.get(); t != nullptr; t = t->next.get()) {
      const std::size_t hash = std::hash<std::string_view>()(t->text.get());
      language_of[t->lang.get()]->texts.push_back({hash, i, t->text.get()});
    }
  }
  return languages;
}

std::string convert(const char *latin1_text) {
  return OwnedText(v_convert_latin1_to_utf8(latin1_text)).get();
}

std::string quote(const char *latin1_text) { return "\"" + convert(latin1_text) + "\""; }

// The codes of the remarks with these indices: "Ab1, Ab2", only the first few of many.
std::string name_codes(const Remarks &remarks, const std::vector<std::size_t> &indices) {
  std::string codes;
  for (std::size_t i = 0; i < std::min(indices.size(), most_codes_named); i++) {
    codes += i == 0 ? "" : ", ";
    codes += convert(remarks[indices[i]]->code.get());
  }
  return indices.size() > most_codes_named ? codes + ", ..." : codes;
}

void find_codes_not_read_back(const Remarks &remarks, std::vector<std::string> &findings) {
  for (const VRemark *remark : remarks) {
    if (!v_codeset_io_can_code_be_read_back(remark->code.get())) {
      findings.push_back("The code " + quote(remark->code.get()) +
                         " could not be read back after saving: it has \"&\", \"<\" or \"]]>\".");
    }
  }
}

// A text without a language is no mistake: the window can write such texts.
void find_unknown_languages(const VCodeset *codeset, std::vector<std::string> &findings) {
  for (const std::string &tag : v_tools_collect_languages(codeset, true)) {
    if (!tag.empty() && v_supported_languages_get_index_for_tag(tag.c_str()) < 0) {
      findings.push_back("The language \"" + tag + "\" is not one of the program's.");
    }
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

void find_missing_translations(const Remarks &remarks, const std::vector<Language> &languages,
                               std::vector<std::string> &findings) {
  for (const Language &language : languages) {
    const std::size_t count = language.texts.size();
    if (language.tag.empty() || count == remarks.size() || count * 2 <= remarks.size()) {
      continue;
    }
    const std::vector<std::size_t> missing = remarks_without(language, remarks.size());
    const bool is_one = missing.size() == 1;
    findings.push_back(std::to_string(missing.size()) + " of " + std::to_string(remarks.size()) +
                       " codes " + (is_one ? "has" : "have") + " no description in " +
                       language.tag + ": " + name_codes(remarks, missing));
  }
}

// Codes that have one description in common, and the languages in which they have it.
struct Duplicate {
  std::vector<std::string> languages;
  const char *text; // ISO-8859-1, in the first of the languages
};
using Duplicates = std::map<std::vector<std::size_t>, Duplicate>;

// Sorts the texts so that equal ones are neighbours, each group in the order of the remarks.
void sort_by_text(std::vector<Language::Text> &texts) {
  std::sort(texts.begin(), texts.end(), [](const Language::Text &a, const Language::Text &b) {
    if (a.hash != b.hash) {
      return a.hash < b.hash;
    }
    const int order = std::strcmp(a.text, b.text);
    return order != 0 ? order < 0 : a.remark < b.remark;
  });
}

void collect_duplicates(Language &language, Duplicates &duplicates) {
  sort_by_text(language.texts);
  for (auto first = language.texts.cbegin(); first != language.texts.cend();) {
    const auto end = std::find_if(first, language.texts.cend(), [first](const Language::Text &t) {
      return t.hash != first->hash || std::strcmp(t.text, first->text) != 0;
    });
    if (end - first > 1) {
      std::vector<std::size_t> indices;
      std::for_each(first, end, [&](const Language::Text &t) { indices.push_back(t.remark); });
      const auto added = duplicates.insert({std::move(indices), {{}, first->text}}).first;
      added->second.languages.push_back(language.tag);
    }
    first = end;
  }
}

void find_same_descriptions(const Remarks &remarks, std::vector<Language> &languages,
                            std::vector<std::string> &findings) {
  Duplicates duplicates;
  for (Language &language : languages) {
    collect_duplicates(language, duplicates);
  }
  for (const auto &[indices, duplicate] : duplicates) {
    findings.push_back(std::to_string(indices.size()) + " codes have the same description in " +
                       v_tools_format_languages(duplicate.languages) + ": " +
                       name_codes(remarks, indices) + " (" + quote(duplicate.text) + ")");
  }
}

} // namespace

std::vector<std::string> v_findings_collect(const VCodeset *codeset) {
  std::vector<std::string> findings;
  const Remarks remarks = collect_remarks(codeset);
  std::vector<Language> languages = collect_texts(codeset, remarks);
  find_codes_not_read_back(remarks, findings);
  find_unknown_languages(codeset, findings);
  find_missing_translations(remarks, languages, findings);
  find_same_descriptions(remarks, languages, findings);
  return findings;
}
