#include "images/jpeg_decoding.h"

#include <cstdio>
#include <string>
#include <vector>

#include <jpeglib.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <jerror.h>

#include "base/error.h"
#include "encoded_images.h"
#include "support/files.h"

namespace {

bool is_out_of_memory = false;

} // namespace

extern "C" {
boolean __real_jpeg_start_decompress(j_decompress_ptr library);
boolean __wrap_jpeg_start_decompress(j_decompress_ptr library);

// Reports a lack of memory as the library's own allocator does.
boolean __wrap_jpeg_start_decompress(j_decompress_ptr library) {
  if (is_out_of_memory) {
    ERREXIT1(library, JERR_OUT_OF_MEMORY, 0);
  }
  return __real_jpeg_start_decompress(library);
}
}

namespace {

using ::testing::ElementsAreArray;
using ::testing::HasSubstr;
using ::testing::Not;

using Pixels = std::vector<std::uint32_t>;

struct Decoded {
  bool is_decoded = false;
  int width = -1;
  int height = -1;
  Pixels pixels;
  std::string message;
};

Decoded decode_stream(VInputStream *stream) {
  v_error_set("An old message.");
  Decoded decoded;
  const OwnedPixels pixels = v_jpeg_decompress(stream, decoded.width, decoded.height);
  decoded.message = v_error_get();
  if (pixels) {
    decoded.is_decoded = true;
    decoded.pixels.assign(pixels.get(), pixels.get() + decoded.width * decoded.height);
  }
  return decoded;
}

Decoded decode(const std::string &file) {
  return decode_stream(v_input_stream_new_for_memory(file.data(), file.size()).get());
}

std::string repeat(const std::string &text, int count) {
  std::string repeated;
  for (int i = 0; i < count; i++) {
    repeated += text;
  }
  return repeated;
}

// Flat blocks of black, middle grey and white come through the transformation without loss.
std::string create_flat_rows(int component_count) {
  const auto block_row = [=](char value) {
    return std::string(static_cast<std::size_t>(8 * component_count), value);
  };
  return repeat(block_row('\0') + block_row('\x80') + block_row('\xff'), 8);
}

Pixels create_flat_pixels() {
  Pixels pixels;
  for (int y = 0; y < 8; y++) {
    pixels.insert(pixels.end(), 8, 0x00000000);
    pixels.insert(pixels.end(), 8, 0x00808080);
    pixels.insert(pixels.end(), 8, 0x00ffffff);
  }
  return pixels;
}

TEST(JpegDecoding, GivesPixelsWithAnEmptyTopByte) {
  for (const JpegCoding coding : {JpegCoding::baseline, JpegCoding::progressive}) {
    const Decoded decoded = decode(encode_jpeg(JpegKind::rgb, 24, 8, create_flat_rows(3), coding));
    ASSERT_TRUE(decoded.is_decoded) << decoded.message;
    EXPECT_EQ(decoded.width, 24);
    EXPECT_EQ(decoded.height, 8);
    EXPECT_THAT(decoded.pixels, ElementsAreArray(create_flat_pixels()));
  }
}

TEST(JpegDecoding, KeepsTheOrderOfColours) {
  const Decoded decoded =
      decode(encode_jpeg(JpegKind::rgb, 3, 1, std::string("\xc0\x60\x20\xc0\x60\x20\xc0\x60\x20")));
  ASSERT_TRUE(decoded.is_decoded) << decoded.message;
  for (const std::uint32_t pixel : decoded.pixels) {
    EXPECT_EQ(pixel >> 24, 0U);
    EXPECT_NEAR(static_cast<int>(pixel >> 16 & 0xff), 0xc0, 3);
    EXPECT_NEAR(static_cast<int>(pixel >> 8 & 0xff), 0x60, 3);
    EXPECT_NEAR(static_cast<int>(pixel & 0xff), 0x20, 3);
  }
}

TEST(JpegDecoding, GreyPicturesBecomeColours) {
  const Decoded decoded = decode(encode_jpeg(JpegKind::grey, 24, 8, create_flat_rows(1)));
  ASSERT_TRUE(decoded.is_decoded) << decoded.message;
  EXPECT_THAT(decoded.pixels, ElementsAreArray(create_flat_pixels()));
}

// Expects one message, no output and no picture. The process must survive.
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

TEST(JpegDecoding, PrintersColoursFail) {
  expect_failure(encode_jpeg(JpegKind::cmyk, 24, 8, create_flat_rows(4)),
                 "Failed decompressing JPEG image.\n\nUnsupported color conversion request");
}

TEST(JpegDecoding, OtherDataFails) {
  expect_failure("", "Failed decompressing JPEG image.\n\nPremature end of input file");
  expect_failure("\x89PNG\r\n\x1a\n",
                 "Failed decompressing JPEG image.\n\nNot a JPEG file: starts with 0x89 0x50");
}

TEST(JpegDecoding, ALackOfMemoryIsReportedAsOne) {
  is_out_of_memory = true;
  expect_failure(encode_jpeg(JpegKind::rgb, 24, 8, create_flat_rows(3)),
                 "Failed decompressing JPEG image.\n\nThe program has run out of memory.");
  is_out_of_memory = false;
  EXPECT_TRUE(v_error_did_run_out_of_memory());
}

TEST(JpegDecoding, StreamsThatCannotBeReadKeepTheirMessage) {
  const TemporaryFolder folder;
  const Decoded missing =
      decode_stream(v_input_stream_new_for_file_path((folder / "missing.jpg").c_str()).get());
  EXPECT_EQ(missing.message, "Failed decompressing JPEG image.\n\nOpening input file failed.");
  const Decoded not_a_file = decode_stream(v_input_stream_new_for_file_path(folder.path()).get());
  EXPECT_EQ(not_a_file.message, "Failed decompressing JPEG image.\n\nFile read error.");
}

// Skipped data may be longer than one read.
TEST(JpegDecoding, SkipsLongComments) {
  const TemporaryFolder folder;
  for (const int comment_length : {4000, 4096, 8192, 70000}) {
    write_file(folder / "a.jpg", encode_jpeg(JpegKind::rgb, 24, 8, create_flat_rows(3),
                                             JpegCoding::baseline, comment_length));
    const Decoded decoded =
        decode_stream(v_input_stream_new_for_file_path((folder / "a.jpg").c_str()).get());
    ASSERT_TRUE(decoded.is_decoded) << decoded.message;
    EXPECT_THAT(decoded.pixels, ElementsAreArray(create_flat_pixels()));
  }
}

// The result is the whole picture or none: missing data is never replaced.
TEST(JpegDecoding, FilesCutShortFail) {
  for (const JpegCoding coding : {JpegCoding::baseline, JpegCoding::progressive}) {
    const std::string file = encode_jpeg(JpegKind::rgb, 24, 8, create_flat_rows(3), coding, 100);
    const Pixels whole = decode(file).pixels;
    for (std::size_t length = 0; length < file.size(); length++) {
      ::testing::internal::CaptureStderr();
      const Decoded decoded = decode(file.substr(0, length));
      ASSERT_EQ(::testing::internal::GetCapturedStderr(), "");
      if (decoded.is_decoded) {
        ASSERT_EQ(decoded.pixels, whole) << length;
        ASSERT_GE(length, file.size() - 2) << "only the end marker may be missing";
      } else {
        ASSERT_EQ(decoded.message,
                  "Failed decompressing JPEG image.\n\nPremature end of input file")
            << length;
      }
    }
  }
}

constexpr JpegCoding all_codings[] = {JpegCoding::baseline, JpegCoding::baseline_optimised,
                                      JpegCoding::progressive, JpegCoding::progressive_first_scan,
                                      JpegCoding::arithmetic};

// The library would fill such pictures with grey: gigabytes from 600 bytes.
TEST(JpegDecoding, PicturesThatTheDataCannotHoldFail) {
  for (const JpegCoding coding : all_codings) {
    const std::string file = encode_jpeg(JpegKind::rgb, 24, 8, create_flat_rows(3), coding);
    for (const auto &[width, height] : {std::pair(6000, 5000), std::pair(5000, 6000),
                                        std::pair(65500, 512), std::pair(65500, 65500)}) {
      expect_failure(with_jpeg_size(file, width, height),
                     "Failed decompressing JPEG image.\n\nPixel buffer dimension out of range.");
    }
  }
}

// A baseline file needs at least two bits for each block.
TEST(JpegDecoding, TwoBitsForEachBlockAreNeeded) {
  const std::string file = encode_jpeg(JpegKind::grey, 8, 8, std::string(64, '\x80'));
  const int rows_of_blocks = static_cast<int>(file.size());
  const char *const refusal = "Pixel buffer dimension out of range.";
  EXPECT_THAT(decode(with_jpeg_size(file, 4 * 8, rows_of_blocks * 8)).message,
              Not(HasSubstr(refusal)));
  EXPECT_THAT(decode(with_jpeg_size(file, 4 * 8, rows_of_blocks * 8 + 1)).message,
              HasSubstr(refusal));
}

// A picture of one colour takes the least data.
TEST(JpegDecoding, LargePlainPicturesAreDecoded) {
  constexpr int side = 2048;
  for (const JpegKind kind : {JpegKind::grey, JpegKind::rgb}) {
    const std::size_t sample_count = side * side * (kind == JpegKind::grey ? 1 : 3);
    const std::string white(sample_count, '\xff');
    for (const JpegCoding coding : all_codings) {
      const Decoded decoded = decode(encode_jpeg(kind, side, side, white, coding));
      ASSERT_TRUE(decoded.is_decoded) << static_cast<int>(coding) << " " << decoded.message;
      EXPECT_EQ(decoded.width, side);
      EXPECT_EQ(decoded.height, side);
      EXPECT_EQ(decoded.pixels, Pixels(side * side, 0x00ffffff));
    }
  }
}

TEST(JpegDecoding, DamagedFilesDoNoHarm) {
  for (const JpegCoding coding : {JpegCoding::baseline, JpegCoding::progressive}) {
    const std::string file = encode_jpeg(JpegKind::rgb, 24, 8, create_flat_rows(3), coding);
    ::testing::internal::CaptureStderr();
    for (std::size_t position = 0; position < file.size(); position++) {
      for (const int flipped_bits : {0x01, 0x80, 0xff}) {
        std::string damaged = file;
        damaged[position] = static_cast<char>(damaged[position] ^ flipped_bits);
        const Decoded decoded = decode(damaged);
        EXPECT_TRUE(decoded.is_decoded ||
                    decoded.message.starts_with("Failed decompressing JPEG image.\n\n"))
            << decoded.message;
        EXPECT_EQ(decoded.message.find("An old message."),
                  decoded.is_decoded ? 0 : std::string::npos);
      }
    }
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
  }
}

} // namespace
