#pragma once
// The kinds of files that the suite knows: name, media type and file name extensions. Results are
// static ASCII texts. A value past the last member is unknown, not an error.

enum class VFileType {
  remark_codeset = 0,
  csv,
  object,
  jpeg,
  layout,
  ms_word,
  opendocument_text,
  pdf,
  png,
  svg,
  template_, // "template" is a keyword
  tiff,
  truetype,
  xml,
};

// "Unknown" for an unknown value.
const char *v_file_type_get_name(VFileType file_type);
// Null for a type without one and for an unknown value.
const char *v_file_type_get_media_type(VFileType file_type);
// ".codeset"; ".unknown" for an unknown value.
const char *v_file_type_get_default_file_name_extension_with_period(VFileType file_type);
// "*.codeset"; "*.unknown" for an unknown value.
const char *v_file_type_get_default_file_name_extension_wildcard_pattern(VFileType file_type);
// "*.jpeg"; null for a type without a second extension and for an unknown value.
const char *v_file_type_get_alternative_file_name_extension_wildcard_pattern(VFileType file_type);
