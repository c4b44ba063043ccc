#include <algorithm>
#include <cstring>
#include <initializer_list>
#include <string>
#include <string_view>
#include <unordered_map>

#include "base/text_encoding.h"
#include "tools/codeset_files.h"
#include "tools/commands.h"
#include "tools/languages.h"
#include "tools/options.h"
#include "tools/report.h"

namespace {

using TextsByLanguage = std::unordered_map<std::string_view, const char *>;

TextsByLanguage index_texts(const VLangstr *langstr) {
  TextsByLanguage texts;
  for (; langstr != nullptr; langstr = langstr->next.get()) {
    texts.emplace(langstr->lang.get(), langstr->text.get());
  }
  return texts;
}

// Each difference is one line of fields separated by tabs: a sign, the code or the part of the
// codeset, the language tag and the texts.
class Differences {
public:
  void compare_codesets(const VCodeset *a, const VCodeset *b);
  const OwnedUtf8String &text() const { return lines; }

private:
  void add(std::initializer_list<const char *> latin1_fields);
  void add_description(const char *sign, const VRemark *remark);
  void compare_texts(const char *sign, const char *subject, const VLangstr *a, const VLangstr *b);
  void compare_versions(const char *a, const char *b);
  void compare_remarks(const VRemarkList *a, const VRemarkList *b);

  OwnedUtf8String lines = v_utf8_string_new(nullptr);
};

constexpr const char *added = "+";
constexpr const char *removed = "-";
constexpr const char *changed = "~";
constexpr const char *changed_part = "*";

void Differences::add(std::initializer_list<const char *> latin1_fields) {
  bool is_first = true;
  for (const char *field : latin1_fields) {
    if (!is_first) {
      v_utf8_string_append_byte(lines.get(), '\t');
    }
    v_utf8_string_append_latin1(lines.get(), field);
    is_first = false;
  }
  v_utf8_string_append_byte(lines.get(), '\n');
}

void Differences::add_description(const char *sign, const VRemark *remark) {
  for (const VLangstr *t = remark->description.get(); t != nullptr; t = t->next.get()) {
    add({sign, remark->code.get(), v_tools_name_language(t->lang.get()), t->text.get()});
  }
}

// The order of the translations does not count.
void Differences::compare_texts(const char *sign, const char *subject, const VLangstr *a,
                                const VLangstr *b) {
  if (v_langstr_is_identical(a, b)) {
    return;
  }
  const TextsByLanguage texts_of_a = index_texts(a);
  const TextsByLanguage texts_of_b = index_texts(b);
  for (const VLangstr *t = a; t != nullptr; t = t->next.get()) {
    const auto other = texts_of_b.find(t->lang.get());
    const bool is_removed = other == texts_of_b.end();
    if (is_removed || std::strcmp(t->text.get(), other->second) != 0) {
      add({sign, subject, v_tools_name_language(t->lang.get()), t->text.get(),
           is_removed ? "" : other->second});
    }
  }
  for (const VLangstr *t = b; t != nullptr; t = t->next.get()) {
    if (!texts_of_a.contains(t->lang.get())) {
      add({sign, subject, v_tools_name_language(t->lang.get()), "", t->text.get()});
    }
  }
}

void Differences::compare_versions(const char *a, const char *b) {
  if (g_strcmp0(a, b) != 0) {
    add({changed_part, "version", "", a == nullptr ? "" : a, b == nullptr ? "" : b});
  }
}

void Differences::compare_remarks(const VRemarkList *a, const VRemarkList *b) {
  const VRemark *x = a->head.next;
  const VRemark *y = b->head.next;
  while (x != &a->tail || y != &b->tail) {
    const int order = x == &a->tail   ? 1
                      : y == &b->tail ? -1
                                      : v_remark_compare_codes(x->code.get(), y->code.get());
    if (order == 0) {
      compare_texts(changed, x->code.get(), x->description.get(), y->description.get());
    } else if (order < 0) {
      add_description(removed, x);
    } else {
      add_description(added, y);
    }
    x = order <= 0 ? x->next : x;
    y = order >= 0 ? y->next : y;
  }
}

void Differences::compare_codesets(const VCodeset *a, const VCodeset *b) {
  compare_texts(changed_part, "name", a->name.get(), b->name.get());
  compare_texts(changed_part, "author", a->author.get(), b->author.get());
  compare_versions(a->version.get(), b->version.get());
  compare_remarks(a->remarks.get(), b->remarks.get());
}

OwnedCodeset read_or_report(const std::string &file) {
  OwnedCodeset codeset = v_tools_read_codeset(file.c_str());
  if (!codeset) {
    v_report_last_error(file.c_str());
  }
  return codeset;
}

} // namespace

int v_tools_diff(int argc, char **argv) {
  VCommandOptions options(
      "A B", "Prints what has changed from codeset A to codeset B, one line for each language:",
      "  +  CODE  TAG  TEXT           a code that only B has\n"
      "  -  CODE  TAG  TEXT           a code that only A has\n"
      "  ~  CODE  TAG  TEXT  TEXT     a description, in A and in B; empty when there is none\n"
      "  *  name  TAG  TEXT  TEXT     the name, likewise the author and the version\n\n"
      "Fields are separated by tabs. The order of translations is not compared.\n\n"
      "Exit status: 0 when there is no difference; 1 when there is one; 2 when a file was\n"
      "refused.");
  if (const std::optional<int> status = options.parse(argc, argv, 2, 2)) {
    return *status;
  }
  const OwnedCodeset a = read_or_report(options.files[0]);
  const OwnedCodeset b = read_or_report(options.files[1]);
  if (!a || !b) {
    return v_tools_failed;
  }
  Differences differences;
  differences.compare_codesets(a.get(), b.get());
  const OwnedUtf8String &text = differences.text();
  if (!v_tools_print({text->str, text->len})) {
    return v_tools_failed;
  }
  return text->len == 0 ? v_tools_good : v_tools_noticed;
}
