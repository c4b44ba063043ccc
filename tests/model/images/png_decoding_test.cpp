#include "images/png_decoding.h"

#include <cmath>
#include <ostream>
#include <string>
#include <vector>

#include <sys/resource.h>
#include <zlib.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/error.h"
#include "encoded_images.h"
#include "support/files.h"

namespace {

using ::testing::ElementsAreArray;

using Pixels = std::vector<std::uint32_t>;

struct Decoded {
  bool is_decoded = false;
  int width = -1;
  int height = -1;
  bool opaque = false;
  Pixels pixels;
  std::string message;
};

Decoded decode(const std::string &file, PngAlphaMode alpha_mode = PngAlphaMode::premultiplied) {
  v_error_set("An old message.");
  Decoded decoded;
  const OwnedPixels pixels = v_png_decompress_from_memory(
      file.data(), file.size(), alpha_mode, decoded.width, decoded.height, decoded.opaque);
  decoded.message = v_error_get();
  if (pixels) {
    decoded.is_decoded = true;
    decoded.pixels.assign(pixels.get(), pixels.get() + decoded.width * decoded.height);
  }
  return decoded;
}

std::string bytes(std::initializer_list<int> values) {
  std::string text;
  for (const int value : values) {
    text += static_cast<char>(value);
  }
  return text;
}

// Samples without any order, the same every time.
std::string noise(std::size_t length) {
  std::string text;
  unsigned state = 1;
  while (text.size() < length) {
    state = state * 1103515245U + 12345U;
    text += static_cast<char>(state >> 16);
  }
  return text;
}

struct Conversion {
  const char *name;
  PngPicture picture;
  PngAlphaMode alpha_mode;
  Pixels pixels;
  bool opaque;
};

std::ostream &operator<<(std::ostream &stream, const Conversion &conversion) {
  return stream << conversion.name;
}

constexpr auto premultiplied = PngAlphaMode::premultiplied;
constexpr auto straight = PngAlphaMode::straight;
constexpr auto on_white = PngAlphaMode::on_white;

const std::vector<png_color> red_green_blue = {{255, 0, 0}, {0, 255, 0}, {0, 0, 255}};
const PngPicture translucent = {
    .width = 4,
    .colour_type = PNG_COLOR_TYPE_RGB_ALPHA,
    // Alpha 255, 128, 1 and 0.
    .samples = bytes({200, 100, 50, 255, 200, 100, 50, 128, 200, 100, 50, 1, 200, 100, 50, 0})};
// Red 0xffff, green 0x8080, blue 0x00ff (rounded to 8 bits: 1; cut to 8 bits: 0), alpha 0x8080.
const PngPicture deep_translucent = {.depth = 16,
                                     .colour_type = PNG_COLOR_TYPE_RGB_ALPHA,
                                     .samples =
                                         bytes({0xff, 0xff, 0x80, 0x80, 0x00, 0xff, 0x80, 0x80})};
const PngPicture grey_translucent = {.width = 3,
                                     .colour_type = PNG_COLOR_TYPE_GRAY_ALPHA,
                                     .samples = bytes({200, 255, 200, 128, 200, 0})};
const PngPicture palette_translucent = {.width = 3,
                                        .colour_type = PNG_COLOR_TYPE_PALETTE,
                                        .samples = bytes({0, 1, 2}),
                                        .palette = red_green_blue,
                                        .palette_alpha = {128, 0}};

const Conversion conversions[] = {
    {"rgb",
     {.width = 2, .samples = bytes({1, 2, 3, 254, 253, 252})},
     premultiplied,
     {0xff010203, 0xfffefdfc},
     true},
    {"rgb_16",
     {.depth = 16, .samples = bytes({0xff, 0xff, 0x80, 0x80, 0x00, 0xff})},
     premultiplied,
     {0xffff8001},
     true},
    // 255 * 128: 32640 + 128 = 32768, (32768 + 128) / 256 = 128.5. 128 * 128: 16512, 16576 / 256 =
    // 64.75. 1 * 128: 256, 257 / 256 = 1.0.
    {"rgba_16", deep_translucent, premultiplied, {0x80804001}, false},
    {"rgba_16_straight", deep_translucent, straight, {0x80ff8001}, false},
    // 200 * 128 / 255 = 100.4, 100 * 128 / 255 = 50.2, 50 * 128 / 255 = 25.1; with alpha 1 0.8, 0.4
    // and 0.2.
    {"rgba", translucent, premultiplied, {0xffc86432, 0x80643219, 0x01010000, 0x00000000}, false},
    {"rgba_straight",
     translucent,
     straight,
     {0xffc86432, 0x80c86432, 0x01c86432, 0x00c86432},
     false},
    // 200 * 128 / 255 + 127 = 227.4, 177.2, 152.1; with alpha 1 254.8, 254.4, 254.2.
    {"rgba_on_white",
     translucent,
     on_white,
     {0xffc86432, 0xffe3b198, 0xfffffefe, 0xffffffff},
     true},
    {"rgba_opaque",
     {.colour_type = PNG_COLOR_TYPE_RGB_ALPHA, .samples = bytes({9, 8, 7, 255})},
     premultiplied,
     {0xff090807},
     true},
    // Black at about one half: 65535 * (65535 - 0x8080) / 65535 = 0x7f7f.
    {"rgba_16_on_white",
     {.depth = 16,
      .colour_type = PNG_COLOR_TYPE_RGB_ALPHA,
      .samples = bytes({0, 0, 0, 0, 0, 0, 0x80, 0x80})},
     on_white,
     {0xff7f7f7f},
     true},
    {"rgb_transparent_colour",
     {.width = 2,
      .samples = bytes({1, 2, 3, 1, 2, 4}),
      .transparent = {{.index = 0, .red = 1, .green = 2, .blue = 3, .gray = 0}}},
     premultiplied,
     {0x00000000, 0xff010204},
     false},
    // The transparent colour is compared before the samples lose their low byte.
    {"rgb_16_transparent_colour",
     {.width = 2,
      .depth = 16,
      .samples = bytes({1, 1, 2, 2, 3, 3, 1, 1, 2, 2, 3, 4}),
      .transparent = {{.index = 0, .red = 0x101, .green = 0x202, .blue = 0x303, .gray = 0}}},
     premultiplied,
     {0x00000000, 0xff010203},
     false},
    {"rgb_transparent_colour_on_white",
     {.width = 2,
      .samples = bytes({1, 2, 3, 1, 2, 4}),
      .transparent = {{.index = 0, .red = 1, .green = 2, .blue = 3, .gray = 0}}},
     on_white,
     {0xffffffff, 0xff010204},
     true},
    // Bits 1 0 1, the rest of the byte is not part of the picture.
    {"grey_1",
     {.width = 3, .depth = 1, .colour_type = PNG_COLOR_TYPE_GRAY, .samples = bytes({0xa0})},
     premultiplied,
     {0xffffffff, 0xff000000, 0xffffffff},
     true},
    // Values 0 1 2 3.
    {"grey_2",
     {.width = 4, .depth = 2, .colour_type = PNG_COLOR_TYPE_GRAY, .samples = bytes({0x1b})},
     premultiplied,
     {0xff000000, 0xff555555, 0xffaaaaaa, 0xffffffff},
     true},
    {"grey_4",
     {.width = 3, .depth = 4, .colour_type = PNG_COLOR_TYPE_GRAY, .samples = bytes({0x1f, 0x80})},
     premultiplied,
     {0xff111111, 0xffffffff, 0xff888888},
     true},
    {"grey_8",
     {.width = 2, .colour_type = PNG_COLOR_TYPE_GRAY, .samples = bytes({0x12, 0xfe})},
     premultiplied,
     {0xff121212, 0xfffefefe},
     true},
    {"grey_16",
     {.depth = 16, .colour_type = PNG_COLOR_TYPE_GRAY, .samples = bytes({0x00, 0xff})},
     premultiplied,
     {0xff010101},
     true},
    {"grey_2_transparent_colour",
     {.width = 4,
      .depth = 2,
      .colour_type = PNG_COLOR_TYPE_GRAY,
      .samples = bytes({0x1b}),
      .transparent = {{.index = 0, .red = 0, .green = 0, .blue = 0, .gray = 2}}},
     premultiplied,
     {0xff000000, 0xff555555, 0x00000000, 0xffffffff},
     false},
    {"grey_2_transparent_colour_on_white",
     {.width = 4,
      .depth = 2,
      .colour_type = PNG_COLOR_TYPE_GRAY,
      .samples = bytes({0x1b}),
      .transparent = {{.index = 0, .red = 0, .green = 0, .blue = 0, .gray = 2}}},
     on_white,
     {0xff000000, 0xff555555, 0xffffffff, 0xffffffff},
     true},
    {"grey_alpha", grey_translucent, premultiplied, {0xffc8c8c8, 0x80646464, 0x00000000}, false},
    {"grey_alpha_straight",
     grey_translucent,
     straight,
     {0xffc8c8c8, 0x80c8c8c8, 0x00c8c8c8},
     false},
    {"grey_alpha_on_white", grey_translucent, on_white, {0xffc8c8c8, 0xffe3e3e3, 0xffffffff}, true},
    {"grey_alpha_16",
     {.depth = 16,
      .colour_type = PNG_COLOR_TYPE_GRAY_ALPHA,
      .samples = bytes({0xff, 0xff, 0x80, 0x80})},
     premultiplied,
     {0x80808080},
     false},
    {"grey_alpha_16_on_white",
     {.depth = 16, .colour_type = PNG_COLOR_TYPE_GRAY_ALPHA, .samples = bytes({0, 0, 0x80, 0x80})},
     on_white,
     {0xff7f7f7f},
     true},
    {"palette_1",
     {.width = 2,
      .depth = 1,
      .colour_type = PNG_COLOR_TYPE_PALETTE,
      .samples = bytes({0x40}),
      .palette = {{1, 2, 3}, {4, 5, 6}}},
     premultiplied,
     {0xff010203, 0xff040506},
     true},
    {"palette_2",
     {.width = 3,
      .depth = 2,
      .colour_type = PNG_COLOR_TYPE_PALETTE,
      .samples = bytes({0x18}),
      .palette = red_green_blue},
     premultiplied,
     {0xffff0000, 0xff00ff00, 0xff0000ff},
     true},
    // Entries without an alpha of their own are opaque. 255 * 128 / 255 = 128.
    {"palette_alpha",
     palette_translucent,
     premultiplied,
     {0x80800000, 0x00000000, 0xff0000ff},
     false},
    {"palette_alpha_straight",
     palette_translucent,
     straight,
     {0x80ff0000, 0x0000ff00, 0xff0000ff},
     false},
    {"palette_alpha_on_white",
     palette_translucent,
     on_white,
     {0xffff7f7f, 0xffffffff, 0xff0000ff},
     true},
    // Only used entries count.
    {"palette_alpha_unused",
     {.colour_type = PNG_COLOR_TYPE_PALETTE,
      .samples = bytes({2}),
      .palette = red_green_blue,
      .palette_alpha = {128, 0}},
     premultiplied,
     {0xff0000ff},
     true},
    {"rows",
     {.width = 2, .height = 2, .samples = bytes({1, 1, 1, 2, 2, 2, 3, 3, 3, 4, 4, 4})},
     premultiplied,
     {0xff010101, 0xff020202, 0xff030303, 0xff040404},
     true},
};

class PngConversion : public ::testing::TestWithParam<Conversion> {};

TEST_P(PngConversion, GivesPixels) {
  const Conversion &conversion = GetParam();
  const Decoded decoded = decode(encode_png(conversion.picture), conversion.alpha_mode);
  ASSERT_TRUE(decoded.is_decoded) << decoded.message;
  EXPECT_EQ(decoded.width, conversion.picture.width);
  EXPECT_EQ(decoded.height, conversion.picture.height);
  EXPECT_EQ(decoded.opaque, conversion.opaque);
  EXPECT_THAT(decoded.pixels, ElementsAreArray(conversion.pixels));
}

INSTANTIATE_TEST_SUITE_P(Table, PngConversion, ::testing::ValuesIn(conversions),
                         [](const ::testing::TestParamInfo<Conversion> &test) {
                           return test.param.name;
                         });

// Compares with the exact quotient, for every colour and alpha.
TEST(PngDecoding, PremultipliesToTheNearestValue) {
  PngPicture picture = {.width = 256, .height = 256, .colour_type = PNG_COLOR_TYPE_RGB_ALPHA};
  for (int alpha = 0; alpha < 256; alpha++) {
    for (int colour = 0; colour < 256; colour++) {
      picture.samples += bytes({colour, 255 - colour, 0, alpha});
    }
  }
  const Decoded decoded = decode(encode_png(picture));
  ASSERT_TRUE(decoded.is_decoded) << decoded.message;
  const auto expected = [](unsigned colour, unsigned alpha) {
    return (2 * colour * alpha + 255) / 510; // ties cannot occur: 255 is odd
  };
  for (unsigned i = 0; i < 65536; i++) {
    const unsigned colour = i % 256;
    const unsigned alpha = i / 256;
    ASSERT_EQ(decoded.pixels[i],
              alpha << 24 | expected(colour, alpha) << 16 | expected(255 - colour, alpha) << 8)
        << "colour " << colour << ", alpha " << alpha;
  }
}

// With a gAMA chunk the samples are converted to linear light and blended with white there. Opaque
// samples are unchanged.
TEST(PngDecoding, BlendsWithWhiteInLinearLightWhenTheFileHasAGamma) {
  const auto expected = [](double colour, double alpha, double gamma) {
    const double light = alpha / 255 * std::pow(colour / 255, 1 / gamma) + 1 - alpha / 255;
    return 255 * std::pow(light, gamma);
  };
  PngPicture picture = {.width = 256, .height = 6, .colour_type = PNG_COLOR_TYPE_RGB_ALPHA};
  const int alphas[] = {0, 1, 64, 128, 192, 255};
  for (const int alpha : alphas) {
    for (int colour = 0; colour < 256; colour++) {
      picture.samples += bytes({colour, colour, colour, alpha});
    }
  }
  for (const double gamma : {1 / 2.2, 1 / 1.8, 1.0}) {
    picture.gamma = gamma;
    const Decoded decoded = decode(encode_png(picture), on_white);
    ASSERT_TRUE(decoded.is_decoded) << decoded.message;
    EXPECT_TRUE(decoded.opaque);
    for (std::size_t i = 0; i < decoded.pixels.size(); i++) {
      const auto colour = static_cast<double>(i % 256);
      const int alpha = alphas[i / 256];
      const std::uint32_t grey = decoded.pixels[i] & 0xff;
      ASSERT_EQ(decoded.pixels[i], 0xff000000U | grey << 16 | grey << 8 | grey);
      // The library counts in tables of eight bits.
      ASSERT_NEAR(grey, expected(colour, alpha, gamma), alpha == 255 ? 0.01 : 1.6)
          << "colour " << colour << ", alpha " << alpha << ", gamma " << gamma;
    }
  }
}

TEST(PngDecoding, TheGammaOfAFileIsAppliedOnWhiteOnly) {
  PngPicture picture = translucent;
  for (const PngAlphaMode mode : {premultiplied, straight}) {
    picture.gamma = 0;
    const Decoded plain = decode(encode_png(picture), mode);
    picture.gamma = 1 / 2.2;
    const Decoded decoded = decode(encode_png(picture), mode);
    ASSERT_TRUE(decoded.is_decoded) << decoded.message;
    EXPECT_EQ(decoded.pixels, plain.pixels);
  }
}

TEST(PngDecoding, InterlacedPicturesEqualPlainOnes) {
  struct Kind {
    int depth;
    int colour_type;
    int bits_per_pixel;
  };
  const Kind kinds[] = {{8, PNG_COLOR_TYPE_RGB_ALPHA, 32},
                        {16, PNG_COLOR_TYPE_RGB, 48},
                        {1, PNG_COLOR_TYPE_GRAY, 1},
                        {8, PNG_COLOR_TYPE_GRAY_ALPHA, 16},
                        {2, PNG_COLOR_TYPE_PALETTE, 2}};
  for (const Kind &kind : kinds) {
    for (int width = 1; width <= 9; width++) {
      for (int height = 1; height <= 9; height++) {
        PngPicture picture = {
            .width = width, .height = height, .depth = kind.depth, .colour_type = kind.colour_type};
        picture.samples =
            noise(static_cast<std::size_t>((width * kind.bits_per_pixel + 7) / 8 * height));
        if (kind.colour_type == PNG_COLOR_TYPE_PALETTE) {
          picture.palette = {{1, 2, 3}, {4, 5, 6}, {7, 8, 9}, {10, 11, 12}};
          picture.palette_alpha = {100, 200};
        }
        for (const PngAlphaMode alpha_mode : {premultiplied, straight, on_white}) {
          picture.interlaced = false;
          const Decoded plain = decode(encode_png(picture), alpha_mode);
          picture.interlaced = true;
          const Decoded interlaced = decode(encode_png(picture), alpha_mode);
          ASSERT_TRUE(plain.is_decoded && interlaced.is_decoded);
          ASSERT_EQ(plain.pixels, interlaced.pixels)
              << "colour type " << kind.colour_type << ", " << width << " by " << height;
          ASSERT_EQ(plain.opaque, interlaced.opaque);
        }
      }
    }
  }
}

const PngPicture noisy = {.width = 16,
                          .height = 12,
                          .colour_type = PNG_COLOR_TYPE_RGB_ALPHA,
                          .samples = noise(16 * 12 * 4)};

PngPicture interlaced(PngPicture picture) {
  picture.interlaced = true;
  return picture;
}

// Expects one message, no output and no picture.
void expect_failure(const std::string &file, const char *message) {
  ::testing::internal::CaptureStderr();
  ::testing::internal::CaptureStdout();
  const Decoded decoded = decode(file);
  EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
  EXPECT_FALSE(decoded.is_decoded);
  EXPECT_EQ(decoded.message, message);
  EXPECT_EQ(decoded.width, -1);
  EXPECT_EQ(decoded.height, -1);
}

TEST(PngDecoding, FilesCutShortFail) {
  constexpr std::size_t signature_length = 8;
  constexpr std::size_t end_chunk_length = 12; // not read: the picture is complete before it
  for (const PngPicture &picture : {noisy, interlaced(noisy)}) {
    const std::string file = encode_png(picture);
    for (std::size_t length = 0; length < file.size() - end_chunk_length; length++) {
      SCOPED_TRACE(length);
      expect_failure(file.substr(0, length), length < signature_length
                                                 ? "The input data is not a PNG image."
                                                 : "Error reading PNG data.");
    }
    EXPECT_TRUE(decode(file.substr(0, file.size() - end_chunk_length)).is_decoded);
  }
}

// Decoding of any damaged file ends with a picture or with a message.
TEST(PngDecoding, DamagedFilesDoNoHarm) {
  for (const PngPicture &picture : {noisy, interlaced(noisy)}) {
    const std::string file = encode_png(picture);
    for (std::size_t position = 0; position < file.size(); position++) {
      for (const int flipped_bits : {0x01, 0x80, 0xff}) {
        std::string damaged = file;
        damaged[position] = static_cast<char>(damaged[position] ^ flipped_bits);
        const Decoded decoded = decode(damaged);
        ASSERT_TRUE(decoded.is_decoded || decoded.message == "The input data is not a PNG image." ||
                    decoded.message == "Error reading PNG data.")
            << "byte " << position << ": " << decoded.message;
      }
    }
  }
}

// The most memory that the process has had at once, in bytes.
long peak_memory() {
  rusage usage = {};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss * 1024;
}

TEST(PngDecoding, ChunksThatPromiseMuchTakeNoMemory) {
  const std::string file = encode_png({.width = 4, .height = 4, .samples = noise(48)});
  const std::size_t after_the_header = 8 + 25;
  for (const char *type :
       {"eXIf", "iTXt", "pCAL", "sCAL", "sPLT", "tEXt", "zTXt", "abCd", "iCCP", "PLTE", "hIST"}) {
    const long before = peak_memory();
    std::string broken = file;
    broken.insert(after_the_header, bytes({0x70, 0, 0, 0}) + type);
    EXPECT_FALSE(decode(broken).is_decoded) << type;
    EXPECT_LT(peak_memory() - before, 100'000'000) << type;
  }
}

TEST(PngDecoding, TextsBesideThePictureDoNotMatter) {
  std::string file = encode_png({.width = 1, .height = 1, .samples = "abc"});
  // "a", a zero byte and "b", with their checksum.
  const std::string text = bytes({0, 0, 0, 3}) + "tEXta" + bytes({0}) + "b";
  const auto *checked = reinterpret_cast<const Bytef *>(text.data()) + 4;
  const auto checksum = static_cast<unsigned>(crc32(0, checked, 7));
  file.insert(8 + 25, text + bytes({static_cast<int>(checksum >> 24 & 0xff),
                                    static_cast<int>(checksum >> 16 & 0xff),
                                    static_cast<int>(checksum >> 8 & 0xff),
                                    static_cast<int>(checksum & 0xff)}));
  const Decoded decoded = decode(file);
  EXPECT_TRUE(decoded.is_decoded) << decoded.message;
  EXPECT_THAT(decoded.pixels, ElementsAreArray({0xff616263U}));
}

TEST(PngDecoding, ChecksumsMustFit) {
  const std::string file = encode_png(noisy);
  const std::size_t end_chunk = file.size() - 12;
  for (const std::size_t position : {std::size_t{29}, end_chunk - 1}) { // IHDR's and IDAT's
    std::string damaged = file;
    damaged[position] = static_cast<char>(damaged[position] ^ 1);
    expect_failure(damaged, "Error reading PNG data.");
  }
}

TEST(PngDecoding, SizesThatNoPngHasFail) {
  const std::string file = encode_png(noisy);
  const std::pair<unsigned, unsigned> sizes[] = {{0, 12}, {16, 0}, {0, 0}, {0x80000000, 12}};
  for (const auto &[width, height] : sizes) {
    SCOPED_TRACE(width);
    expect_failure(with_png_size(file, width, height), "Error reading PNG data.");
  }
}

TEST(PngDecoding, SizesOutOfThePixelBuffersRangeFail) {
  const std::string file = encode_png(noisy);
  const std::pair<unsigned, unsigned> sizes[] = {
      {16777217, 12}, {16, 16777217}, {0x7fffffff, 0x7fffffff}};
  for (const auto &[width, height] : sizes) {
    SCOPED_TRACE(width);
    expect_failure(with_png_size(file, width, height), "Pixel buffer dimension out of range.");
  }
}

// More rows than there is data for, plain and interlaced.
TEST(PngDecoding, MissingRowsFail) {
  for (const PngPicture &picture : {noisy, interlaced(noisy)}) {
    expect_failure(with_png_size(encode_png(picture), 16, 13), "Error reading PNG data.");
  }
}

TEST(PngDecoding, OtherDataIsNotPng) {
  const std::string file = encode_png(noisy);
  expect_failure("", "The input data is not a PNG image.");
  expect_failure("GIF89a and then some more", "The input data is not a PNG image.");
  expect_failure(file.substr(1), "The input data is not a PNG image.");
  // As after a transfer in text mode, which drops the carriage return.
  std::string text_mode = file;
  text_mode.erase(4, 1);
  expect_failure(text_mode, "The input data is not a PNG image.");
}

TEST(PngDecoding, ReadsFiles) {
  const TemporaryFolder folder;
  const std::string file = encode_png(noisy);
  write_file(folder / "bild på väg.png", file);
  int width = 0;
  int height = 0;
  bool opaque = true;
  const OwnedPixels pixels = v_png_decompress_from_file_path((folder / "bild på väg.png").c_str(),
                                                             premultiplied, width, height, opaque);
  ASSERT_TRUE(pixels) << v_error_get();
  EXPECT_EQ(width, 16);
  EXPECT_EQ(height, 12);
  EXPECT_FALSE(opaque);
  EXPECT_EQ(Pixels(pixels.get(), pixels.get() + 16 * 12), decode(file).pixels);
}

// Beginnings that cannot be read are the stream's failures, not those of the data.
TEST(PngDecoding, UnreadableBeginningsKeepTheStreamsMessage) {
  const TemporaryFolder folder;
  int width = 0;
  int height = 0;
  bool opaque = true;
  EXPECT_FALSE(v_png_decompress_from_file_path((folder / "missing.png").c_str(), premultiplied,
                                               width, height, opaque));
  EXPECT_STREQ(v_error_get(), "Opening input file failed.");
  EXPECT_FALSE(
      v_png_decompress_from_file_path(folder.path(), premultiplied, width, height, opaque));
  EXPECT_STREQ(v_error_get(), "File read error.");
}

TEST(PngDecoding, ReadsArchiveEntries) {
  const std::string file = encode_png(interlaced(noisy));
  const Archive archive({{"a.png", file}});
  int width = 0;
  int height = 0;
  bool opaque = true;
  const OwnedPixels pixels = v_png_decompress_from_zip_file_path(
      archive.get(), "a.png", premultiplied, width, height, opaque);
  ASSERT_TRUE(pixels) << v_error_get();
  EXPECT_EQ(Pixels(pixels.get(), pixels.get() + width * height), decode(file).pixels);
  EXPECT_FALSE(v_png_decompress_from_zip_file_path(archive.get(), "b.png", premultiplied, width,
                                                   height, opaque));
  EXPECT_STREQ(v_error_get(), "Opening compressed input file failed.\n\n"
                              "Could not open compressed file.\n\nNo such file");
}

// An entry that can be opened but not read to its end.
TEST(PngDecoding, StreamsThatBreakOffFail) {
  PngPicture picture = noisy;
  picture.width = picture.height = 64;
  picture.samples = noise(64 * 64 * 4);
  std::string archive_bytes = Archive({{"a.png", encode_png(picture)}}).bytes();
  // The first half of the entry's data is unchanged, the second cannot be decompressed.
  for (std::size_t position = archive_bytes.size() / 2; position < archive_bytes.size() / 2 + 2000;
       position++) {
    archive_bytes[position] = '\xff';
  }
  const Archive archive(archive_bytes);
  int width = 0;
  int height = 0;
  bool opaque = true;
  EXPECT_FALSE(v_png_decompress_from_zip_file_path(archive.get(), "a.png", premultiplied, width,
                                                   height, opaque));
  EXPECT_STREQ(v_error_get(), "Error reading PNG data.");
}

} // namespace
