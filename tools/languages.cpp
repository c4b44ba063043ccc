#include "tools/languages.h"

#include <algorithm>

namespace {

void collect(std::vector<std::string> &languages, const VLangstr *langstr) {
  for (; langstr != nullptr; langstr = langstr->next.get()) {
    if (std::find(languages.begin(), languages.end(), langstr->lang.get()) == languages.end()) {
      languages.emplace_back(langstr->lang.get());
    }
  }
}

} // namespace

std::vector<std::string> v_tools_collect_languages(const VCodeset *codeset, bool with_header) {
  std::vector<std::string> languages;
  if (with_header) {
    collect(languages, codeset->name.get());
    collect(languages, codeset->author.get());
  }
  const VRemarkList *list = codeset->remarks.get();
  for (const VRemark *remark = list->head.next; remark != &list->tail; remark = remark->next) {
    collect(languages, remark->description.get());
  }
  return languages;
}

std::string v_tools_format_languages(const std::vector<std::string> &languages) {
  if (languages.empty()) {
    return "no language";
  }
  std::string text;
  for (const std::string &language : languages) {
    text += text.empty() ? "" : ", ";
    text += language.empty() ? "undefined" : language;
  }
  return text;
}
