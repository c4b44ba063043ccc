#include "images/image.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>

#include <gmodule.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/error.h"
#include "encoded_images.h"
#include "handover.h"
#include "images/image_reading.h"

// Sanitizers end the process when a block of impossible size is requested. With this option the
// allocation fails, as it does without sanitizers.
extern "C" const char *__asan_default_options() { return "allocator_may_return_null=1"; }

namespace {

bool svg_library_is_missing = false;

} // namespace

// The linker option --wrap redirects the program's calls to these functions.
GModule *real_module_open(const char *name, GModuleFlags flags) __asm__("__real_g_module_open");
GModule *wrapped_module_open(const char *name, GModuleFlags flags) __asm__("__wrap_g_module_open");

GModule *wrapped_module_open(const char *name, GModuleFlags flags) {
  return real_module_open(svg_library_is_missing ? "no-such-library.so" : name, flags);
}

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

const std::string half_red_png = encode_png({.width = 2,
                                             .colour_type = PNG_COLOR_TYPE_RGB_ALPHA,
                                             .samples = "\xff\x01\x01\x80\x01\x02\x03\xff"});
const std::string opaque_png = encode_png({.width = 3, .samples = "abcdefghi"});
const std::string grey_jpeg = encode_jpeg(JpegKind::grey, 8, 8, std::string(64, '\x80'));

std::string create_svg(const std::string &attributes) {
  return "<svg xmlns=\"http://www.w3.org/2000/svg\" " + attributes +
         "><rect width=\"3\" height=\"3\"/></svg>";
}

TEST(Image, TheGraphicsLibrarysFailuresAreKnownByTheirNumbers) {
  const struct {
    cairo_status_t status;
    const char *message;
  } rows[] = {
      {CAIRO_STATUS_NO_MEMORY, "The program has run out of memory."},
      {CAIRO_STATUS_READ_ERROR, "Error reading data."},
      {CAIRO_STATUS_WRITE_ERROR, "Error writing data."},
      {CAIRO_STATUS_FILE_NOT_FOUND, "File not found error."},
      {CAIRO_STATUS_PNG_ERROR, "PNG error."},
      {CAIRO_STATUS_SURFACE_FINISHED, "An internal error in the graphics subsystem occurred."},
  };
  for (const auto &row : rows) {
    v_error_set_from_cairo_status(row.status);
    EXPECT_STREQ(v_error_get(), row.message);
  }
}

TEST(Pixels, DimensionsHaveALimit) {
  struct {
    std::int64_t width;
    std::int64_t height;
  } const sizes[] = {{-1, 1}, {1, -1},        {0x1000001, 1}, {1, 0x1000001},
                     {0, -1}, {0x1000001, 0}, {INT64_MIN, 1}, {1, INT64_MAX}};
  for (const auto &size : sizes) {
    v_error_clear();
    EXPECT_FALSE(v_gfx_pixels_new(size.width, size.height));
    EXPECT_STREQ(v_error_get(), "Pixel buffer dimension out of range.");
  }
  EXPECT_TRUE(v_gfx_pixels_new(0x1000000, 1));
  EXPECT_TRUE(v_gfx_pixels_new(1, 0x1000000));
}

TEST(Pixels, AnEmptySizeIsRefusedWithoutAMessage) {
  for (const auto &[width, height] : {std::pair{0, 5}, std::pair{5, 0}, std::pair{0, 0}}) {
    v_error_set("An old message.");
    EXPECT_FALSE(v_gfx_pixels_new(width, height));
    EXPECT_STREQ(v_error_get(), "An old message.");
  }
}

TEST(Pixels, ExhaustedMemoryIsReported) {
  EXPECT_FALSE(v_gfx_pixels_new(0x1000000, 0x1000000)); // 2^50 bytes
  EXPECT_TRUE(v_error_did_run_out_of_memory());
  EXPECT_STREQ(v_error_get(), "The program has run out of memory.");
}

TEST(Image, TransparencyChoosesTheSurfaceFormat) {
  for (const bool opaque : {false, true}) {
    OwnedPixels pixels = v_gfx_pixels_new(3, 2);
    std::fill_n(pixels.get(), 6, 0x80402010U);
    pixels.get()[5] = 0x11223344;
    const std::uint32_t *data = pixels.get();
    const OwnedImage image = v_gfx_image_new_for_pixels(std::move(pixels), 3, 2, opaque);
    ASSERT_TRUE(image) << v_error_get();
    EXPECT_EQ(image->kind, VImageKind::pixels);
    EXPECT_EQ(image->width, 3);
    EXPECT_EQ(image->height, 2);
    EXPECT_FALSE(image->svg);
    cairo_surface_t *surface = image->surface.get();
    EXPECT_EQ(cairo_image_surface_get_format(surface),
              opaque ? CAIRO_FORMAT_RGB24 : CAIRO_FORMAT_ARGB32);
    EXPECT_EQ(cairo_image_surface_get_width(surface), 3);
    EXPECT_EQ(cairo_image_surface_get_height(surface), 2);
    EXPECT_EQ(cairo_image_surface_get_stride(surface), 12);
    // The surface uses the pixels themselves, not a copy.
    EXPECT_EQ(cairo_image_surface_get_data(surface), reinterpret_cast<const unsigned char *>(data));
    cairo_surface_t *drawn = nullptr;
    ASSERT_EQ(cairo_pattern_get_surface(image->pattern.get(), &drawn), CAIRO_STATUS_SUCCESS);
    EXPECT_EQ(drawn, surface);
  }
}

// A reference to the surface keeps the pixels alive.
TEST(Image, PixelsLiveAsLongAsTheSurface) {
  OwnedPixels pixels = v_gfx_pixels_new(1, 1);
  *pixels = 0xff123456;
  OwnedImage image = v_gfx_image_new_for_pixels(std::move(pixels), 1, 1, false);
  ASSERT_TRUE(image);
  const OwnedSurface surface(cairo_surface_reference(image->surface.get()));
  image.reset();
  std::uint32_t pixel = 0;
  std::memcpy(&pixel, cairo_image_surface_get_data(surface.get()), sizeof pixel);
  EXPECT_EQ(pixel, 0xff123456);
}

TEST(Image, OnlyTheSurfaceOwnsThePixels) {
  Handover handover;
  OwnedImage image = v_gfx_image_new_for_pixels(v_gfx_pixels_new(2, 2), 2, 2, true);
  ASSERT_TRUE(image) << v_error_get();
  EXPECT_THAT(handover.alive, ElementsAre(cairo_image_surface_get_data(image->surface.get())));
  image.reset();
  EXPECT_THAT(handover.alive, IsEmpty());
}

TEST(Image, PixelsThatTheSurfaceRefusesAreFreedAndReported) {
  Handover handover;
  handover.fails_for_pixels = true;
  OwnedPixels pixels = v_gfx_pixels_new(2, 2);
  v_error_set("An old message.");
  EXPECT_FALSE(v_gfx_image_new_for_pixels(std::move(pixels), 2, 2, false));
  EXPECT_STREQ(v_error_get(), "Error transferring pixel buffer ownership to image surface.");
  EXPECT_EQ(handover.count, 1);
  EXPECT_THAT(handover.alive, IsEmpty());
}

// The graphics library has a limit of its own, far below that of the buffers.
TEST(Image, TooLargeForASurface) {
  EXPECT_FALSE(v_gfx_image_new_for_pixels(v_gfx_pixels_new(40000, 1), 40000, 1, true));
  EXPECT_STREQ(v_error_get(), "An internal error in the graphics subsystem occurred.");
}

TEST(Image, NoneCanBeDestroyed) { v_gfx_image_destroy(nullptr); }

TEST(ImageReading, Png) {
  const Archive archive({{"half.png", half_red_png}, {"opaque.png", opaque_png}});
  const OwnedImage half =
      v_gfx_image_io_read_from_zip_file_path(archive.get(), "half.png", VFileType::png, false);
  ASSERT_TRUE(half) << v_error_get();
  EXPECT_EQ(half->width, 2);
  EXPECT_EQ(half->height, 1);
  EXPECT_EQ(cairo_image_surface_get_format(half->surface.get()), CAIRO_FORMAT_ARGB32);
  std::uint32_t pixels[2];
  std::memcpy(pixels, cairo_image_surface_get_data(half->surface.get()), sizeof pixels);
  EXPECT_EQ(pixels[0], 0x80800101); // premultiplied: 1 * 128 / 255 rounds up
  EXPECT_EQ(pixels[1], 0xff010203);
  const OwnedImage opaque =
      v_gfx_image_io_read_from_zip_file_path(archive.get(), "opaque.png", VFileType::png, false);
  ASSERT_TRUE(opaque) << v_error_get();
  EXPECT_EQ(cairo_image_surface_get_format(opaque->surface.get()), CAIRO_FORMAT_RGB24);
}

TEST(ImageReading, JpegIsOpaque) {
  const Archive archive({{"grey.jpg", grey_jpeg}});
  const OwnedImage image =
      v_gfx_image_io_read_from_zip_file_path(archive.get(), "grey.jpg", VFileType::jpeg, false);
  ASSERT_TRUE(image) << v_error_get();
  EXPECT_EQ(image->width, 8);
  EXPECT_EQ(image->height, 8);
  EXPECT_EQ(cairo_image_surface_get_format(image->surface.get()), CAIRO_FORMAT_RGB24);
}

TEST(ImageReading, EncodedDataIsKeptOnlyWhenAskedFor) {
  const struct {
    const char *entry_name;
    const std::string &file;
    VFileType file_type;
    const char *media_type;
  } kinds[] = {{"a.png", half_red_png, VFileType::png, "image/png"},
               {"a.jpg", grey_jpeg, VFileType::jpeg, "image/jpeg"}};
  for (const auto &kind : kinds) {
    const Archive archive({{kind.entry_name, kind.file}});
    for (const bool keep : {false, true}) {
      const OwnedImage image = v_gfx_image_io_read_from_zip_file_path(
          archive.get(), kind.entry_name, kind.file_type, keep);
      ASSERT_TRUE(image) << v_error_get();
      const unsigned char *data = nullptr;
      unsigned long length = 0;
      cairo_surface_get_mime_data(image->surface.get(), kind.media_type, &data, &length);
      EXPECT_EQ(data != nullptr, keep);
      EXPECT_EQ(std::string(reinterpret_cast<const char *>(data), length), keep ? kind.file : "");
    }
  }
}

struct KeptKind {
  const char *entry_name;
  VFileType file_type;
  const char *failure;
};

const KeptKind kept_kinds[] = {{"a.png", VFileType::png, "Could not load PNG.\n\n"},
                               {"a.jpg", VFileType::jpeg, "Could not load JPEG.\n\n"}};

TEST(ImageReading, DataThatTheSurfaceRefusesIsFreedAndReported) {
  const Archive archive({{"a.png", half_red_png}, {"a.jpg", grey_jpeg}});
  const struct {
    bool Handover::*fails;
    const char *message;
    int handover_count;
  } refusals[] = {
      {&Handover::fails_for_pixels, "Error transferring pixel buffer ownership to image surface.",
       1},
      {&Handover::fails_for_encoded_data, "An internal error in the graphics subsystem occurred.",
       2},
  };
  for (const KeptKind &kind : kept_kinds) {
    for (const auto &refusal : refusals) {
      Handover handover;
      handover.*refusal.fails = true;
      v_error_set("An old message.");
      EXPECT_FALSE(v_gfx_image_io_read_from_zip_file_path(archive.get(), kind.entry_name,
                                                          kind.file_type, true));
      EXPECT_EQ(v_error_get(), std::string(kind.failure) + refusal.message);
      EXPECT_EQ(handover.count, refusal.handover_count);
      EXPECT_THAT(handover.alive, IsEmpty());
    }
  }
}

TEST(ImageReading, EncodedDataLivesAsLongAsTheSurface) {
  const Archive archive({{"a.png", half_red_png}, {"a.jpg", grey_jpeg}});
  for (const KeptKind &kind : kept_kinds) {
    Handover handover;
    OwnedImage image = v_gfx_image_io_read_from_zip_file_path(archive.get(), kind.entry_name,
                                                              kind.file_type, true);
    ASSERT_TRUE(image) << v_error_get();
    EXPECT_EQ(handover.alive.size(), 2U);
    image.reset();
    EXPECT_THAT(handover.alive, IsEmpty());
  }
}

TEST(ImageReading, SvgSize) {
  const struct {
    const char *attributes;
    double width;
    double height;
  } sizes[] = {{"width=\"24\" height=\"16\"", 24, 16},
               {"width=\"12.5\" height=\"7.25\"", 12.5, 7.25},
               {"viewBox=\"0 0 30 40\"", 30, 40}};
  for (const auto &size : sizes) {
    const Archive archive({{"a.svg", create_svg(size.attributes)}});
    const OwnedImage image =
        v_gfx_image_io_read_from_zip_file_path(archive.get(), "a.svg", VFileType::svg, false);
    ASSERT_TRUE(image) << v_error_get();
    EXPECT_EQ(image->kind, VImageKind::svg);
    EXPECT_EQ(image->width, size.width);
    EXPECT_EQ(image->height, size.height);
    EXPECT_TRUE(image->svg);
    EXPECT_FALSE(image->surface);
    EXPECT_FALSE(image->pattern);
  }
}

struct Rejection {
  const char *entry_name;
  VFileType file_type;
  const char *message;
};

TEST(ImageReading, EveryLayerAddsItsMessage) {
  const Archive archive({{"text.txt", "No picture at all"},
                         {"empty", ""},
                         {"short.png", opaque_png.substr(0, 40)},
                         {"wide.png", encode_png({.width = 40000,
                                                  .depth = 1,
                                                  .colour_type = PNG_COLOR_TYPE_GRAY,
                                                  .samples = std::string(5000, 'w')})},
                         {"cmyk.jpg", encode_jpeg(JpegKind::cmyk, 1, 1, "abcd")}});
  const Rejection rejections[] = {
      {"text.txt", VFileType::png, "Could not load PNG.\n\nThe input data is not a PNG image."},
      {"empty", VFileType::png, "Could not load PNG.\n\nThe input data is not a PNG image."},
      {"short.png", VFileType::png, "Could not load PNG.\n\nError reading PNG data."},
      {"wide.png", VFileType::png,
       "Could not load PNG.\n\nAn internal error in the graphics subsystem occurred."},
      {"missing", VFileType::png,
       "Could not load PNG.\n\nOpening compressed input file failed.\n\n"
       "Could not open compressed file.\n\nNo such file"},
      {"text.txt", VFileType::jpeg,
       "Could not load JPEG.\n\nFailed decompressing JPEG image.\n\n"
       "Not a JPEG file: starts with 0x4e 0x6f"},
      {"cmyk.jpg", VFileType::jpeg,
       "Could not load JPEG.\n\nFailed decompressing JPEG image.\n\n"
       "Unsupported color conversion request"},
      {"text.txt", VFileType::csv, "Unsupported image file type: CSV"},
      {"short.png", VFileType::pdf, "Unsupported image file type: PDF"},
      {"missing", static_cast<VFileType>(99), "Unsupported image file type: Unknown"},
  };
  for (const Rejection &rejection : rejections) {
    for (const bool keep : {false, true}) {
      v_error_set("An old message.");
      EXPECT_FALSE(v_gfx_image_io_read_from_zip_file_path(archive.get(), rejection.entry_name,
                                                          rejection.file_type, keep));
      EXPECT_STREQ(v_error_get(), rejection.message);
    }
  }
}

TEST(ImageReading, MissingJpegIsNotDecodedAtAllWhenItsDataIsKept) {
  const Archive archive({{"a.png", opaque_png}});
  const char *const reason = "Opening compressed input file failed.\n\n"
                             "Could not open compressed file.\n\nNo such file";
  EXPECT_FALSE(
      v_gfx_image_io_read_from_zip_file_path(archive.get(), "b.jpg", VFileType::jpeg, true));
  EXPECT_EQ(v_error_get(), std::string("Could not load JPEG.\n\n") + reason);
  EXPECT_FALSE(
      v_gfx_image_io_read_from_zip_file_path(archive.get(), "b.jpg", VFileType::jpeg, false));
  EXPECT_EQ(v_error_get(),
            std::string("Could not load JPEG.\n\nFailed decompressing JPEG image.\n\n") + reason);
}

TEST(ImageReading, SvgFailures) {
  const Archive archive({{"text.txt", "No picture at all"}, {"empty", ""}});
  EXPECT_FALSE(
      v_gfx_image_io_read_from_zip_file_path(archive.get(), "b.svg", VFileType::svg, false));
  EXPECT_STREQ(v_error_get(),
               "Could not open SVG.\n\nCould not open compressed file.\n\nNo such file");
  for (const char *entry_name : {"text.txt", "empty"}) {
    v_error_set("An old message.");
    EXPECT_FALSE(
        v_gfx_image_io_read_from_zip_file_path(archive.get(), entry_name, VFileType::svg, false));
    EXPECT_TRUE(std::string(v_error_get()).starts_with("GError ")) << v_error_get();
  }
}

// Runs in a process of its own, because a loaded library is never unloaded.
TEST(ImageReading, AMissingSvgLibraryIsReportedAndSearchedForAgain) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const auto read = [] {
    const Archive archive({{"a.svg", create_svg("width=\"24\" height=\"16\"")}});
    svg_library_is_missing = true;
    v_error_set("An old message.");
    EXPECT_FALSE(
        v_gfx_image_io_read_from_zip_file_path(archive.get(), "a.svg", VFileType::svg, false));
    EXPECT_THAT(v_error_get(), HasSubstr("no-such-library.so"));
    EXPECT_THAT(v_error_get(), Not(HasSubstr("An old message.")));
    svg_library_is_missing = false;
    EXPECT_TRUE(
        v_gfx_image_io_read_from_zip_file_path(archive.get(), "a.svg", VFileType::svg, false));
  };
  EXPECT_EXIT(
      {
        read();
        std::exit(testing::Test::HasFailure() ? 1 : 0);
      },
      testing::ExitedWithCode(0), "");
}

} // namespace
