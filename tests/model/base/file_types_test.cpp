#include "base/file_types.h"

#include <climits>

#include <gtest/gtest.h>

namespace {

struct Row {
  int number;
  VFileType file_type;
  const char *name;
  const char *media_type;
  const char *extension;
  const char *pattern;
  const char *alternative_pattern;
};

constexpr Row rows[] = {
    {0, VFileType::remark_codeset, "Remark codeset", nullptr, ".codeset", "*.codeset", nullptr},
    {1, VFileType::csv, "CSV", "text/csv", ".csv", "*.csv", nullptr},
    {2, VFileType::object, "Vantorelle object", nullptr, ".vantorelle", "*.vantorelle", nullptr},
    {3, VFileType::jpeg, "JPEG", "image/jpeg", ".jpg", "*.jpg", "*.jpeg"},
    {4, VFileType::layout, "Layout", nullptr, ".layout", "*.layout", nullptr},
    {5, VFileType::ms_word, "MS Word", "application/msword", ".doc", "*.doc", nullptr},
    {6, VFileType::opendocument_text, "OpenDocument text",
     "application/vnd.oasis.opendocument.text", ".odt", "*.odt", nullptr},
    {7, VFileType::pdf, "PDF", "application/pdf", ".pdf", "*.pdf", nullptr},
    {8, VFileType::png, "PNG", "image/png", ".png", "*.png", nullptr},
    {9, VFileType::svg, "SVG", "image/svg+xml", ".svg", "*.svg", nullptr},
    {10, VFileType::template_, "Template", nullptr, ".template", "*.template", nullptr},
    {11, VFileType::tiff, "TIFF", "image/tiff", ".tif", "*.tif", "*.tiff"},
    {12, VFileType::truetype, "TrueType", "application/x-font-ttf", ".ttf", "*.ttf", nullptr},
    {13, VFileType::xml, "XML", "text/xml", ".xml", "*.xml", nullptr},
    {14, static_cast<VFileType>(14), "Unknown", nullptr, ".unknown", "*.unknown", nullptr},
    {-1, static_cast<VFileType>(-1), "Unknown", nullptr, ".unknown", "*.unknown", nullptr},
    {INT_MAX, static_cast<VFileType>(INT_MAX), "Unknown", nullptr, ".unknown", "*.unknown",
     nullptr},
    {INT_MIN, static_cast<VFileType>(INT_MIN), "Unknown", nullptr, ".unknown", "*.unknown",
     nullptr},
};

class FileTypes : public testing::TestWithParam<Row> {};
INSTANTIATE_TEST_SUITE_P(Rows, FileTypes, testing::ValuesIn(rows));

TEST_P(FileTypes, AreTheTable) {
  const Row &row = GetParam();
  EXPECT_EQ(static_cast<int>(row.file_type), row.number);
  EXPECT_STREQ(v_file_type_get_name(row.file_type), row.name);
  EXPECT_STREQ(v_file_type_get_media_type(row.file_type), row.media_type);
  EXPECT_STREQ(v_file_type_get_default_file_name_extension_with_period(row.file_type),
               row.extension);
  EXPECT_STREQ(v_file_type_get_default_file_name_extension_wildcard_pattern(row.file_type),
               row.pattern);
  EXPECT_STREQ(v_file_type_get_alternative_file_name_extension_wildcard_pattern(row.file_type),
               row.alternative_pattern);
}

} // namespace
