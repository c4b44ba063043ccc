#include "workspace/settings.h"

#include <cstring>

#include "base/fs_utils.h"
#include "base/xml_reading.h"
#include "codeset/remark_xml.h"
#include "langstr/supported_languages.h"
#include "langstr/user_language.h"

namespace {

// Applies one element to the record. False when the element has something invalid that loading must
// report; an incomplete element is skipped silently.
using Reader = bool (*)(VSettings &settings, xmlDoc *document, const xmlNode *element);

struct ElementReader {
  const char *name;
  unsigned bit;
  Reader read;
};

// Checks the type because processing instructions and references to entities also have names.
bool is_element(const xmlNode *node, const char *name) {
  return node->type == XML_ELEMENT_NODE && v_xml_node_has_name(node, name);
}

void set_flag(bool &flag, const xmlNode *element, const char *attribute) {
  v_xml_get_required_attribute_value_as_boolean(flag, element, attribute);
}

void set_text(OwnedText &text, const xmlNode *element, const char *attribute) {
  if (OwnedText value = v_xml_get_required_attribute_value_as_utf8(element, attribute)) {
    text = std::move(value);
  }
}

// The level whose name equals the text; else the fallback.
template <typename Level, std::size_t count>
Level level_of(const char *text, const std::pair<const char *, Level> (&levels)[count],
               Level fallback) {
  for (const auto &[name, level] : levels) {
    if (std::strcmp(name, text) == 0) {
      return level;
    }
  }
  return fallback;
}

constexpr std::pair<const char *, VIdentifierSetting> identifier_settings[] = {
    {"None", VIdentifierSetting::none},
    {"Object ID", VIdentifierSetting::object_id},
    {"Inventory ID", VIdentifierSetting::inventory_id},
    {"Inventory ID or Object ID", VIdentifierSetting::inventory_id_or_object_id},
};

constexpr std::pair<const char *, VCodesetFilterLevel> codeset_filters[] = {
    {"From all codesets", VCodesetFilterLevel::from_all},
    {"From no codeset", VCodesetFilterLevel::from_none},
};

constexpr std::pair<const char *, VMarkFilterLevel> mark_filters[] = {
    {"From this view only", VMarkFilterLevel::from_this_view_only},
    {"From no view", VMarkFilterLevel::from_no_view},
};

VCodesetFilterLevel codeset_filter_of(const char *text) {
  return level_of(text, codeset_filters, VCodesetFilterLevel::from_primary_only);
}

VMarkFilterLevel mark_filter_of(const char *text) {
  return level_of(text, mark_filters, VMarkFilterLevel::from_all_views);
}

void read_identifier(VPrintoutSettings &printout, const xmlNode *element) {
  if (const OwnedText text = v_xml_get_required_attribute_value_as_utf8(element, "setting")) {
    printout.identifier = level_of(text.get(), identifier_settings, printout.identifier);
  }
}

void read_layout(VPrintoutSettings &printout, const xmlNode *element) {
  set_text(printout.layout_file_name, element, "filename");
}

// Reads only the orientation, because only the print module knows the papers by name.
void read_paper(VPrintoutSettings &printout, const xmlNode *element) {
  const OwnedText name = v_xml_get_required_attribute_value_as_utf8(element, "name");
  const OwnedText orientation = v_xml_get_required_attribute_value_as_utf8(element, "orientation");
  if (name && orientation) {
    printout.landscape = std::strcmp(orientation.get(), "Landscape") == 0;
  }
}

bool read_page_flags(bool &on_text_page, bool &on_view_pages, const xmlNode *element) {
  bool text_page = false;
  bool view_pages = false;
  if (!v_xml_get_required_attribute_value_as_boolean(text_page, element, "show-on-text-page") ||
      !v_xml_get_required_attribute_value_as_boolean(view_pages, element, "show-on-view-pages")) {
    return false;
  }
  on_text_page = text_page;
  on_view_pages = view_pages;
  return true;
}

void read_details(VPrintoutSettings &printout, const xmlNode *element) {
  read_page_flags(printout.details_on_text_page, printout.details_on_view_pages, element);
}

void read_legend(VPrintoutSettings &printout, const xmlNode *element) {
  const auto filter = [element](const char *name) {
    return v_xml_get_required_attribute_value_as_utf8(element, name);
  };
  const OwnedText text_page_codeset = filter("text-page-codeset-filter-level");
  const OwnedText text_page_mark = filter("text-page-mark-filter-level");
  const OwnedText view_page_codeset = filter("view-page-codeset-filter-level");
  const OwnedText view_page_mark = filter("view-page-mark-filter-level");
  if (!text_page_codeset || !text_page_mark || !view_page_codeset || !view_page_mark ||
      !read_page_flags(printout.legend_on_text_page, printout.legend_on_view_pages, element)) {
    return;
  }
  printout.text_page_codeset_filter = codeset_filter_of(text_page_codeset.get());
  printout.text_page_mark_filter = mark_filter_of(text_page_mark.get());
  printout.view_page_codeset_filter = codeset_filter_of(view_page_codeset.get());
  printout.view_page_mark_filter = mark_filter_of(view_page_mark.get());
}

void read_page_numbers(VPrintoutSettings &printout, const xmlNode *element) {
  set_flag(printout.page_numbers_shown, element, "show");
}

void read_report_type(VPrintoutSettings &printout, const xmlNode *element) {
  set_flag(printout.report_type_shown, element, "show");
}

constexpr std::pair<const char *, void (*)(VPrintoutSettings &, const xmlNode *)>
    printout_readers[] = {
        {"identifier", read_identifier},
        {"layout", read_layout},
        {"paper", read_paper},
        {"details", read_details},
        {"legend", read_legend},
        {"page-numbers", read_page_numbers},
        {"report-type", read_report_type},
};

bool read_default_printout(VSettings &settings, xmlDoc *, const xmlNode *element) {
  for (const xmlNode *child = element->children; child != nullptr; child = child->next) {
    for (const auto &[name, read] : printout_readers) {
      if (is_element(child, name)) {
        read(settings.default_printout, child);
      }
    }
  }
  return true;
}

bool read_archive(VSettings &settings, xmlDoc *, const xmlNode *element) {
  set_text(settings.archive_path, element, "path");
  return true;
}

bool read_automatically_place_id(VSettings &settings, xmlDoc *, const xmlNode *element) {
  set_flag(settings.automatically_place_id, element, "active");
  return true;
}

bool read_default_mark_id_style(VSettings &settings, xmlDoc *, const xmlNode *element) {
  v_xml_get_required_attribute_value_as_int_in_range(settings.default_mark_id_style, element,
                                                     "style", 0, 2);
  return true;
}

bool read_export(VSettings &settings, xmlDoc *, const xmlNode *element) {
  for (const xmlNode *child = element->children; child != nullptr; child = child->next) {
    if (is_element(child, "folder")) {
      set_text(settings.export_folder_path, child, "path");
    }
  }
  return true;
}

bool read_last_used_layout(VSettings &settings, xmlDoc *, const xmlNode *element) {
  set_text(settings.last_used_layout_file_name, element, "filename");
  return true;
}

bool read_last_used_paper(VSettings &settings, xmlDoc *, const xmlNode *element) {
  if (OwnedText id = v_xml_get_required_attribute_value_as_ascii(element, "id")) {
    settings.last_used_paper_id = std::move(id);
    return true;
  }
  return !v_xml_node_has_attribute(element, "id");
}

bool read_left_handed(VSettings &settings, xmlDoc *, const xmlNode *element) {
  set_flag(settings.left_handed, element, "active");
  return true;
}

bool read_preferred_languages(VSettings &settings, xmlDoc *, const xmlNode *element) {
  bool all_are_ascii = true;
  settings.preferred_languages.clear();
  for (const xmlNode *child = element->children; child != nullptr; child = child->next) {
    if (!is_element(child, "language")) {
      continue;
    }
    OwnedText tag;
    if (!v_xml_get_attribute_value_as_ascii(tag, child, "tag")) {
      all_are_ascii = false;
    } else if (tag) {
      settings.preferred_languages.emplace_back(tag.get());
    }
  }
  return all_are_ascii;
}

bool read_recent_custom_remarks(VSettings &settings, xmlDoc *document, const xmlNode *element) {
  bool all_are_readable = true;
  v_remark_list_destroy_remarks(settings.recent_custom_remarks.get());
  for (const xmlNode *child = element->children; child != nullptr; child = child->next) {
    if (!is_element(child, "remark")) {
      continue;
    }
    if (OwnedRemark remark = v_xml_parse_remark(document, child)) {
      v_remark_list_add_remark_last(settings.recent_custom_remarks.get(), std::move(remark));
    } else {
      all_are_readable = false;
    }
  }
  return all_are_readable;
}

bool read_remember_tool_choice(VSettings &settings, xmlDoc *, const xmlNode *element) {
  set_flag(settings.remember_tool_choice, element, "active");
  return true;
}

constexpr ElementReader element_readers[] = {
    {"archive", v_settings_archive, read_archive},
    {"automatically-place-id", v_settings_automatically_place_id, read_automatically_place_id},
    {"default-mark-id-style", v_settings_default_mark_id_style, read_default_mark_id_style},
    {"default-printout-settings", v_settings_default_printout, read_default_printout},
    {"export", v_settings_export, read_export},
    {"last-used-layout", v_settings_last_used_layout, read_last_used_layout},
    {"last-used-paper", v_settings_last_used_paper, read_last_used_paper},
    {"left-handed", v_settings_left_handed, read_left_handed},
    {"preferred-languages", v_settings_preferred_languages, read_preferred_languages},
    {"recent-custom-remarks", v_settings_recent_custom_remarks, read_recent_custom_remarks},
    {"remember-tool-choice", v_settings_remember_tool_choice, read_remember_tool_choice},
};

bool apply(VSettings &settings, unsigned which, xmlDoc *document, const xmlNode *child) {
  for (const ElementReader &reader : element_readers) {
    if ((which & reader.bit) != 0 && is_element(child, reader.name)) {
      return reader.read(settings, document, child);
    }
  }
  return true;
}

std::vector<std::string> default_preferred_languages() {
  std::vector<std::string> languages;
  if (const int index = v_platform_get_user_language_index(); index >= 0) {
    const char *dialect = v_supported_languages_get_default_dialect_tag(index);
    const std::string tag = dialect != nullptr ? dialect : v_supported_languages_get_tag(index);
    languages.push_back(tag);
    if (const auto hyphen = tag.find('-'); hyphen != std::string::npos) {
      languages.push_back(tag.substr(0, hyphen));
    }
    if (tag.starts_with("en")) {
      return languages;
    }
  }
  languages.insert(languages.end(), {"en-uk", "en"});
  return languages;
}

} // namespace

OwnedSettings v_settings_new(const char *workspace_folder) {
  OwnedSettings settings(new VSettings);
  settings->file_path = v_fs_utils_create_path_in_folder(workspace_folder, "settings.xml");
  settings->archive_path = copy_text("");
  settings->export_folder_path = copy_text("");
  settings->last_used_layout_file_name = copy_text("");
  settings->last_used_paper_id = copy_text("A4_P");
  settings->preferred_languages = default_preferred_languages();
  settings->recent_custom_remarks = v_remark_list_new();
  return settings;
}

void v_settings_destroy(VSettings *settings) { delete settings; }

bool v_settings_load(VSettings *settings, int which) {
  OwnedXmlDoc document;
  if (!v_xml_parse_file_if_exists(document, settings->file_path.get())) {
    return false;
  }
  if (!document) {
    return true;
  }
  const xmlNode *root = v_xml_get_root_element(document.get());
  if (root == nullptr || !v_xml_node_has_name(root, "settings")) {
    return false;
  }
  bool all_is_usable = true;
  for (const xmlNode *child = root->children; child != nullptr; child = child->next) {
    all_is_usable &= apply(*settings, static_cast<unsigned>(which), document.get(), child);
  }
  return all_is_usable;
}
