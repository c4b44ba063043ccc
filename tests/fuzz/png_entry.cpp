// PNG pictures.

#include <algorithm>

#include "fuzz/fuzzing.h"
#include "fuzz/image_entries.h"
#include "images/png_decoding.h"

namespace {

// A few bytes can promise a picture that takes all memory and minutes; that is no fault.
constexpr std::uint64_t maximum_pixel_count = 1 << 18;

// The number of pixels that the header states, 0 for data without a header.
std::uint64_t promised_pixel_count(const std::uint8_t *data, std::size_t size) {
  const auto word = [data](std::size_t position) {
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < 4; i++) {
      value = value << 8 | data[position + i];
    }
    return value;
  };
  return size < 24 ? 0 : word(16) * word(20);
}

struct Picture {
  OwnedPixels pixels;
  int width = 0;
  int height = 0;
  bool opaque = false;
};

Picture decode(const std::uint8_t *data, std::size_t size, PngAlphaMode mode) {
  Picture picture;
  set_old_message();
  picture.pixels =
      v_png_decompress_from_memory(data, size, mode, picture.width, picture.height, picture.opaque);
  if (!picture.pixels) {
    require_message();
    require(picture.width == 0 && picture.height == 0, "a failure leaves the size alone");
  }
  return picture;
}

std::size_t count_of(const Picture &picture) {
  return static_cast<std::size_t>(picture.width) * static_cast<std::size_t>(picture.height);
}

bool is_opaque(std::uint32_t pixel) { return pixel >> 24 == 0xff; }

bool is_premultiplied(std::uint32_t pixel) {
  const std::uint32_t alpha = pixel >> 24;
  return (pixel >> 16 & 0xff) <= alpha && (pixel >> 8 & 0xff) <= alpha && (pixel & 0xff) <= alpha;
}

void check_alpha_modes(const std::uint8_t *data, std::size_t size, const OwnedImage &image) {
  const Picture premultiplied = decode(data, size, PngAlphaMode::premultiplied);
  const Picture straight = decode(data, size, PngAlphaMode::straight);
  const Picture on_white = decode(data, size, PngAlphaMode::on_white);
  for (const Picture *picture : {&premultiplied, &straight, &on_white}) {
    require((picture->pixels != nullptr) == (image != nullptr), "all modes succeed or fail alike");
  }
  if (!image) {
    return;
  }
  const std::size_t count = count_of(premultiplied);
  const std::uint32_t *pixels = premultiplied.pixels.get();
  require(std::equal(pixels, pixels + count, pixels_of(image).data()),
          "an image has premultiplied pixels");
  require(std::all_of(pixels, pixels + count, is_premultiplied), "no colour exceeds the alpha");
  require(std::all_of(pixels, pixels + count, is_opaque) == premultiplied.opaque,
          "opaque is what has no alpha below 255");
  require(straight.opaque == premultiplied.opaque, "both modes find the same alpha");
  require(std::equal(pixels, pixels + count, straight.pixels.get(),
                     [](std::uint32_t a, std::uint32_t b) { return a >> 24 == b >> 24; }),
          "pixel by pixel");
  require(on_white.opaque, "nothing shows through white");
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  if (promised_pixel_count(data, size) <= maximum_pixel_count) {
    check_alpha_modes(data, size, read_entry_both_ways(data, size, VFileType::png));
  }
  return 0;
}
