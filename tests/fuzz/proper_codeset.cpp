#include "fuzz/proper_codeset.h"

#include <set>

#include "base/text_encoding.h"
#include "fuzz/fuzzing.h"
#include "support/values/remarks.h"

namespace {

void require_proper(const Translations &translations) {
  std::set<std::string> tags;
  for (const auto &[lang, text] : translations) {
    require(tags.insert(lang).second, "no two translations have the same tag");
    require(v_ascii_test(lang.c_str()) && is_compact_latin1(lang), "tags are normalised ASCII");
    require(!text.empty() && is_compact_latin1(text), "texts are normalised and not empty");
  }
}

void require_proper(const Remarks &remarks) {
  const std::string *before = nullptr;
  for (const auto &[code, description] : remarks) {
    require(!code.empty() && is_compact_latin1(code), "codes are normalised and not empty");
    require(before == nullptr || v_remark_compare_codes(before->c_str(), code.c_str()) < 0,
            "codes are in order, each once");
    require(!description.empty(), "a remark has a description");
    require_proper(description);
    before = &code;
  }
}

} // namespace

void require_proper_texts(const VCodeset *codeset) {
  require_proper(translations_of(codeset->name));
  require_proper(translations_of(codeset->author));
  const char *version = codeset->version.get();
  require(version == nullptr || (*version != '\0' && is_compact_latin1(version)),
          "the version is normalised and not empty");
  require(!v_remark_list_is_empty(codeset->remarks.get()), "a codeset has remarks");
  require_proper(remarks_of(codeset->remarks));
  require(!codeset->outdated && codeset->prev == nullptr && codeset->next == nullptr,
          "a codeset that was read depends on no other");
}

void require_proper_codeset(const VCodeset *codeset) {
  require(codeset->name != nullptr, "a codeset has a name");
  require_proper_texts(codeset);
}
