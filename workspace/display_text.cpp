#include "workspace/display_text.h"

#include "base/text_buffer.h"
#include "base/text_encoding.h"

const char *v_util_get_langstr_string(const VSettings *settings, const VLangstr *langstr) {
  for (const std::string &tag : settings->preferred_languages) {
    if (const char *text = v_langstr_get_string(langstr, tag.c_str(), true)) {
      return text;
    }
  }
  return langstr == nullptr ? nullptr : langstr->text.get();
}

OwnedText v_util_get_codeset_string(const VSettings *settings, const VCodeset *codeset) {
  OwnedLatin1String summary =
      v_latin1_string_new(v_util_get_langstr_string(settings, codeset->name.get()));
  if (const char *author = v_util_get_langstr_string(settings, codeset->author.get())) {
    v_latin1_string_append_printf(summary.get(), " (%s)", author);
  }
  if (codeset->version) {
    v_latin1_string_append_printf(summary.get(), " %s", codeset->version.get());
  }
  if (codeset->outdated) {
    v_latin1_string_append(summary.get(), " (outdated?)");
  }
  return v_convert_latin1_to_utf8(summary->str);
}
