#pragma once
// The personal settings of a workspace: a record with defaults, and the reader of the file
// "settings.xml", which all tools of the suite share. This program never writes the file.

#include <string>
#include <vector>

#include "codeset/remark.h"

enum class VIdentifierSetting { none, object_id, inventory_id, inventory_id_or_object_id };
enum class VCodesetFilterLevel { from_all = 1, from_primary_only, from_none };
enum class VMarkFilterLevel { from_all_views = 1, from_this_view_only, from_no_view };

struct VPrintoutSettings {
  VIdentifierSetting identifier = VIdentifierSetting::object_id;
  OwnedText layout_file_name; // UTF-8, null for none
  int paper_id = 0; // assigned by the print module, which knows the papers; 0 is its default
  bool landscape = false;
  bool details_on_text_page = true;
  bool details_on_view_pages = false;
  bool legend_on_text_page = false;
  bool legend_on_view_pages = true;
  bool page_numbers_shown = true;
  bool report_type_shown = true;
  VCodesetFilterLevel text_page_codeset_filter = VCodesetFilterLevel::from_primary_only;
  VMarkFilterLevel text_page_mark_filter = VMarkFilterLevel::from_all_views;
  VCodesetFilterLevel view_page_codeset_filter = VCodesetFilterLevel::from_primary_only;
  VMarkFilterLevel view_page_mark_filter = VMarkFilterLevel::from_all_views;
};

// Texts are UTF-8 unless noted otherwise.
struct VSettings {
  OwnedText file_path;
  OwnedText archive_path;
  bool automatically_place_id = false;
  int default_mark_id_style = 0; // 0 to 2
  VPrintoutSettings default_printout;
  OwnedText export_folder_path;
  OwnedText last_used_layout_file_name;
  OwnedText last_used_paper_id; // ASCII
  bool left_handed = false;
  std::vector<std::string> preferred_languages; // tags, ASCII, most preferred first
  OwnedRemarkList recent_custom_remarks;        // in the file's order
  bool remember_tool_choice = false;
};

void v_settings_destroy(VSettings *settings);
using OwnedSettings = Owned<VSettings, v_settings_destroy>;

// The elements of the file, for the mask of v_settings_load.
enum VSettingsElement : unsigned {
  v_settings_archive = 1,
  v_settings_automatically_place_id = 2,
  v_settings_default_mark_id_style = 4,
  v_settings_default_printout = 8,
  v_settings_export = 16,
  v_settings_last_used_layout = 32,
  v_settings_last_used_paper = 64,
  v_settings_left_handed = 128,
  v_settings_preferred_languages = 256,
  v_settings_recent_custom_remarks = 512,
  v_settings_remember_tool_choice = 1024,
};

// The defaults for the workspace in that folder (UTF-8). The preferred languages are the user's own
// (in the default dialect, if there is one), the same without a region, and, unless the user's
// language is English, "en-uk" and "en".
OwnedSettings v_settings_new(const char *workspace_folder);

// Applies the elements that the mask selects (-1: all) to the record. True without a change when
// there is no file. An element whose attributes are missing or invalid is skipped. False when the
// file cannot be read or is not a settings file, and also, after everything else has been applied,
// when a paper id or a language tag is not ASCII or a remark cannot be read.
bool v_settings_load(VSettings *settings, int which);
