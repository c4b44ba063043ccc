#include "base/file_types.h"

#include <cstddef>
#include <iterator>

namespace {

struct FileTypeRow {
  const char *name;
  const char *media_type;
  const char *default_pattern;
  const char *alternative_pattern;
};

constexpr FileTypeRow rows[] = {
    {"Remark codeset", nullptr, "*.codeset", nullptr},
    {"CSV", "text/csv", "*.csv", nullptr},
    {"Vantorelle object", nullptr, "*.vantorelle", nullptr},
    {"JPEG", "image/jpeg", "*.jpg", "*.jpeg"},
    {"Layout", nullptr, "*.layout", nullptr},
    {"MS Word", "application/msword", "*.doc", nullptr},
    {"OpenDocument text", "application/vnd.oasis.opendocument.text", "*.odt", nullptr},
    {"PDF", "application/pdf", "*.pdf", nullptr},
    {"PNG", "image/png", "*.png", nullptr},
    {"SVG", "image/svg+xml", "*.svg", nullptr},
    {"Template", nullptr, "*.template", nullptr},
    {"TIFF", "image/tiff", "*.tif", "*.tiff"},
    {"TrueType", "application/x-font-ttf", "*.ttf", nullptr},
    {"XML", "text/xml", "*.xml", nullptr},
};
static_assert(std::size(rows) == static_cast<std::size_t>(VFileType::xml) + 1);

constexpr FileTypeRow unknown_row = {"Unknown", nullptr, "*.unknown", nullptr};

const FileTypeRow &find_row(VFileType file_type) {
  const auto index = static_cast<std::size_t>(file_type);
  return index < std::size(rows) ? rows[index] : unknown_row;
}

} // namespace

const char *v_file_type_get_name(VFileType file_type) { return find_row(file_type).name; }

const char *v_file_type_get_media_type(VFileType file_type) {
  return find_row(file_type).media_type;
}

const char *v_file_type_get_default_file_name_extension_with_period(VFileType file_type) {
  return find_row(file_type).default_pattern + 1; // without the "*"
}

const char *v_file_type_get_default_file_name_extension_wildcard_pattern(VFileType file_type) {
  return find_row(file_type).default_pattern;
}

const char *v_file_type_get_alternative_file_name_extension_wildcard_pattern(VFileType file_type) {
  return find_row(file_type).alternative_pattern;
}
