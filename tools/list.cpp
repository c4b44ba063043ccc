#include "base/text_encoding.h"
#include "tools/codeset_files.h"
#include "tools/commands.h"
#include "tools/languages.h"
#include "tools/options.h"
#include "tools/report.h"
#include "workspace/display_text.h"

namespace {

OwnedUtf8String write_list(const VCodeset *codeset, const VSettings *settings) {
  OwnedUtf8String lines = v_utf8_string_new(nullptr);
  const VRemarkList *list = codeset->remarks.get();
  for (const VRemark *remark = list->head.next; remark != &list->tail; remark = remark->next) {
    v_utf8_string_append_latin1(lines.get(), remark->code.get());
    v_utf8_string_append_byte(lines.get(), '\t');
    v_utf8_string_append_latin1(lines.get(),
                                v_util_get_langstr_string(settings, remark->description.get()));
    v_utf8_string_append_byte(lines.get(), '\n');
  }
  return lines;
}

} // namespace

int v_tools_list(int argc, char **argv) {
  VCommandOptions options(
      "FILE",
      "Prints one line for each code, in the order of the codes: the code, a tab and the\n"
      "description.",
      "A description is shown in the wanted language, else in your own, else in English, else\n"
      "in the first one that it has. \"en\" is also any kind of English.");
  OwnedText language;
  options.add_text("language", 'l', "Show descriptions in this language", "TAG", language);
  if (const std::optional<int> status = options.parse(argc, argv, 1, 1)) {
    return *status;
  }
  const char *file = options.files[0].c_str();
  const OwnedCodeset codeset = v_tools_read_codeset(file);
  if (!codeset) {
    return v_tools_fail_with_last_error(file);
  }
  if (language) {
    v_tools_warn_of_missing_language(file, codeset.get(), language.get());
  }
  const OwnedSettings settings = v_tools_prefer_language(language.get());
  const OwnedUtf8String lines = write_list(codeset.get(), settings.get());
  return v_tools_print({lines->str, lines->len}) ? v_tools_good : v_tools_failed;
}
