// Settings files. For any contents of the file the record stays valid.

#include "base/text_encoding.h"
#include "fuzz/fuzzing.h"
#include "support/values/remarks.h"
#include "workspace/settings.h"

namespace {

template <typename Enumeration>
bool is_between(Enumeration value, Enumeration first, Enumeration last) {
  return value >= first && value <= last;
}

void require_proper(VCodesetFilterLevel level) {
  require(is_between(level, VCodesetFilterLevel::from_all, VCodesetFilterLevel::from_none),
          "codeset filters are known");
}

void require_proper(VMarkFilterLevel level) {
  require(is_between(level, VMarkFilterLevel::from_all_views, VMarkFilterLevel::from_no_view),
          "mark filters are known");
}

void require_proper(const VPrintoutSettings &printout) {
  require(is_between(printout.identifier, VIdentifierSetting::none,
                     VIdentifierSetting::inventory_id_or_object_id),
          "the identifier setting is known");
  require_proper(printout.text_page_codeset_filter);
  require_proper(printout.text_page_mark_filter);
  require_proper(printout.view_page_codeset_filter);
  require_proper(printout.view_page_mark_filter);
}

void require_utf8(const OwnedText &text) {
  require(text != nullptr && g_utf8_validate(text.get(), -1, nullptr), "texts are there, in UTF-8");
}

void require_proper(const OwnedSettings &settings) {
  require_utf8(settings->archive_path);
  require_utf8(settings->export_folder_path);
  require_utf8(settings->last_used_layout_file_name);
  if (settings->default_printout.layout_file_name) {
    require_utf8(settings->default_printout.layout_file_name);
  }
  require(settings->default_mark_id_style >= 0 && settings->default_mark_id_style <= 2,
          "the mark id style is known");
  require_proper(settings->default_printout);
  require(v_ascii_test(settings->last_used_paper_id.get()), "the paper id is ASCII");
  for (const std::string &tag : settings->preferred_languages) {
    require(v_ascii_test(tag.c_str()), "language tags are ASCII");
  }
  for (const auto &[code, description] : remarks_of(settings->recent_custom_remarks)) {
    require(!code.empty() && !description.empty(), "remarks are whole");
  }
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  static MemoryFile file;
  file.write(data, size);
  const OwnedSettings settings = v_settings_new("");
  settings->file_path = copy_text(file.path());
  const bool is_loaded = v_settings_load(settings.get(), -1);
  require_proper(settings);
  const std::vector<std::string> languages = settings->preferred_languages;
  const Remarks remarks = remarks_of(settings->recent_custom_remarks);
  require(v_settings_load(settings.get(), -1) == is_loaded, "loading again ends as before");
  require_proper(settings);
  require(settings->preferred_languages == languages, "loading again gives the same languages");
  require(remarks_of(settings->recent_custom_remarks) == remarks, "and the same remarks");
  return 0;
}
