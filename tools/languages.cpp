#include "tools/languages.h"

#include <string_view>
#include <unordered_set>
#include <utility>

#include "base/owned.h"
#include "langstr/supported_languages.h"
#include "tools/report.h"

namespace {

class Collection {
public:
  void add(const VLangstr *langstr) {
    for (; langstr != nullptr; langstr = langstr->next.get()) {
      if (known.insert(langstr->lang.get()).second) {
        languages.emplace_back(langstr->lang.get());
      }
    }
  }

  std::vector<std::string> languages;

private:
  std::unordered_set<std::string_view> known; // borrowed from the codeset
};

bool has_language(const VCodeset *codeset, const char *language) {
  const VRemarkList *list = codeset->remarks.get();
  for (const VRemark *remark = list->head.next; remark != &list->tail; remark = remark->next) {
    if (v_langstr_get_string(remark->description.get(), language, true) != nullptr) {
      return true;
    }
  }
  return false;
}

} // namespace

std::vector<std::string> v_tools_collect_languages(const VCodeset *codeset, bool with_header) {
  Collection collection;
  if (with_header) {
    collection.add(codeset->name.get());
    collection.add(codeset->author.get());
  }
  const VRemarkList *list = codeset->remarks.get();
  for (const VRemark *remark = list->head.next; remark != &list->tail; remark = remark->next) {
    collection.add(remark->description.get());
  }
  return std::move(collection.languages);
}

std::string v_tools_format_languages(const std::vector<std::string> &languages) {
  if (languages.empty()) {
    return "no language";
  }
  std::string text;
  for (const std::string &language : languages) {
    text += text.empty() ? "" : ", ";
    text += v_tools_name_language(language.c_str());
  }
  return text;
}

const char *v_tools_name_language(const char *tag) { return *tag == '\0' ? "undefined" : tag; }

std::optional<std::string> v_tools_find_unknown_language(const char *tag) {
  if (*tag == '\0' || v_supported_languages_get_index_for_tag(tag) >= 0) {
    return std::nullopt;
  }
  return std::string("The language \"") + tag + "\" is not one of the program's.";
}

OwnedSettings v_tools_prefer_language(const char *language) {
  OwnedSettings settings = v_settings_new("");
  if (language != nullptr) {
    settings->preferred_languages.insert(settings->preferred_languages.begin(), language);
  }
  return settings;
}

void v_tools_warn_of_missing_language(const char *file, const VCodeset *codeset,
                                      const char *language) {
  if (!has_language(codeset, language)) {
    const OwnedText message(g_strdup_printf("No description in %s.", language));
    v_report_warning(file, message.get());
  }
}
