#include "images/resources.h"

#include <set>
#include <string>

#include <gtest/gtest.h>
#include <zip.h>

#include "base/error.h"
#include "base/xml_reading.h"
#include "images/resources_archive.h"

namespace {

const char *const png_names[] = {"text_tab_menu.png",
                                 "save.png",
                                 "add_object_file.png",
                                 "menu.png",
                                 "checkbox_on.png",
                                 "splash.png",
                                 "delete_object_file.png",
                                 "zoom_to_window.png",
                                 "teleport.png",
                                 "arrow_down.png",
                                 "add_closeup.png",
                                 "about.png",
                                 "object_file_setup.png",
                                 "zoom_out.png",
                                 "add_mark.png",
                                 "snapshot.png",
                                 "settings.png",
                                 "checkbox_off.png",
                                 "arrow_up.png",
                                 "print.png",
                                 "report_setup.png",
                                 "start_window_logo.png",
                                 "show_view_summary.png",
                                 "archive.png",
                                 "positive.png",
                                 "open_object_file.png",
                                 "peek_at_object_file.png",
                                 "zoom_in.png"};
const char *const svg_names[] = {"logo.svg", "checkbox_on.svg", "checkbox_off.svg"};
const char *const xml_names[] = {"markup.xsl"};

class Resources : public ::testing::Test {
protected:
  void SetUp() override { ASSERT_TRUE(v_resources_open()) << v_error_get(); }
  void TearDown() override { v_resources_clean_up(); }
};

TEST(ResourcesArchive, HoldsItsEntriesAndNoOthers) {
  std::set<std::string> expected;
  expected.insert(std::begin(png_names), std::end(png_names));
  expected.insert(std::begin(svg_names), std::end(svg_names));
  expected.insert(std::begin(xml_names), std::end(xml_names));
  ASSERT_EQ(expected.size(), 32U);

  zip_t *archive = zip_open_from_source(
      zip_source_buffer_create(v_resources_archive_data, v_resources_archive_length, 0, nullptr),
      ZIP_RDONLY | ZIP_CHECKCONS, nullptr);
  ASSERT_TRUE(archive);
  std::set<std::string> names;
  const auto count = static_cast<zip_uint64_t>(zip_get_num_entries(archive, 0));
  EXPECT_EQ(count, 32U);
  for (zip_uint64_t i = 0; i < count; i++) {
    zip_stat_t entry;
    ASSERT_EQ(zip_stat_index(archive, i, 0, &entry), 0);
    names.insert(entry.name);
    EXPECT_EQ(entry.comp_method, ZIP_CM_DEFLATE) << entry.name;
  }
  zip_discard(archive);
  EXPECT_EQ(names, expected);
}

TEST_F(Resources, EveryPngIsAPicture) {
  for (const char *name : png_names) {
    const OwnedImage image = v_resources_load_image(name, VFileType::png, false);
    ASSERT_TRUE(image) << name << ": " << v_error_get();
    EXPECT_GE(image->width, 16) << name;
    EXPECT_GE(image->height, 16) << name;
  }
}

TEST_F(Resources, EverySvgIsAPicture) {
  for (const char *name : svg_names) {
    const OwnedImage image = v_resources_load_image(name, VFileType::svg, false);
    ASSERT_TRUE(image) << name << ": " << v_error_get();
    EXPECT_GE(image->width, 16) << name;
    EXPECT_GE(image->height, 16) << name;
  }
}

TEST_F(Resources, TheStyleSheetIsADocument) {
  const OwnedXmlDoc document = v_resources_load_xml_doc("markup.xsl");
  ASSERT_TRUE(document) << v_error_get();
  EXPECT_TRUE(v_xml_node_has_name(v_xml_get_root_element(document.get()), "stylesheet"));
}

TEST_F(Resources, BothCheckboxesHaveOneSize) {
  const OwnedImage off = v_resources_load_image("checkbox_off.png", VFileType::png, false);
  const OwnedImage on = v_resources_load_image("checkbox_on.png", VFileType::png, false);
  ASSERT_TRUE(off && on);
  EXPECT_EQ(off->width, on->width);
  EXPECT_EQ(off->height, on->height);
}

TEST_F(Resources, MissingEntries) {
  EXPECT_FALSE(v_resources_load_image("missing.png", VFileType::png, false));
  EXPECT_STREQ(v_error_get(), "Could not load image resource.\n\nCould not load PNG.\n\n"
                              "Opening compressed input file failed.\n\n"
                              "Could not open compressed file.\n\nNo such file");
  EXPECT_FALSE(v_resources_load_image("Save.png", VFileType::png, false)); // case counts
  EXPECT_FALSE(v_resources_load_xml_doc("missing.xsl"));
  EXPECT_STREQ(v_error_get(),
               "Could not open XML resource.\n\nOpening compressed input file failed.\n\n"
               "Could not open compressed file.\n\nNo such file");
}

TEST_F(Resources, EntriesOfAnotherKind) {
  EXPECT_FALSE(v_resources_load_image("logo.svg", VFileType::png, false));
  EXPECT_STREQ(v_error_get(), "Could not load image resource.\n\nCould not load PNG.\n\n"
                              "The input data is not a PNG image.");
  EXPECT_FALSE(v_resources_load_image("save.png", VFileType::template_, false));
  EXPECT_STREQ(v_error_get(), "Could not load image resource.\n\n"
                              "Unsupported image file type: Template");
  EXPECT_FALSE(v_resources_load_xml_doc("save.png"));
  EXPECT_TRUE(std::string(v_error_get())
                  .starts_with("Could not open XML resource.\n\nCould not parse XML data.\n\n"))
      << v_error_get();
}

TEST_F(Resources, ImagesOutliveTheArchive) {
  const OwnedImage pixels = v_resources_load_image("save.png", VFileType::png, true);
  const OwnedImage svg = v_resources_load_image("logo.svg", VFileType::svg, false);
  v_resources_clean_up();
  ASSERT_TRUE(pixels && svg);
  const unsigned char *data = nullptr;
  unsigned long length = 0;
  cairo_surface_get_mime_data(pixels->surface.get(), "image/png", &data, &length);
  ASSERT_GT(length, 8U);
  EXPECT_EQ(std::string(reinterpret_cast<const char *>(data) + 1, 3), "PNG");
}

TEST_F(Resources, CanBeClosedTwiceAndOpenedAgain) {
  v_resources_clean_up();
  v_resources_clean_up();
  ASSERT_TRUE(v_resources_open());
  ASSERT_TRUE(v_resources_open());
  EXPECT_TRUE(v_resources_load_image("save.png", VFileType::png, false));
}

} // namespace
