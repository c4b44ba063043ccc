// JPEG pictures.

#include <algorithm>

#include "fuzz/fuzzing.h"
#include "fuzz/image_entries.h"

namespace {

// A few kilobytes can hold a picture that takes, scan after scan, hours; that is no fault.
constexpr std::uint64_t maximum_pixel_count = 1 << 14;

bool is_frame_marker(std::uint8_t byte) {
  return byte >= 0xC0 && byte <= 0xCF && byte != 0xC4 && byte != 0xC8 && byte != 0xCC;
}

// The greatest size in any bytes that look like the header of a frame.
std::uint64_t promised_pixel_count(const std::uint8_t *data, std::size_t size) {
  std::uint64_t count = 0;
  for (std::size_t i = 0; i + 9 <= size; i++) {
    if (data[i] == 0xFF && is_frame_marker(data[i + 1])) {
      const std::uint64_t height = data[i + 5] * 256U + data[i + 6];
      const std::uint64_t width = data[i + 7] * 256U + data[i + 8];
      count = std::max(count, width * height);
    }
  }
  return count;
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  if (promised_pixel_count(data, size) > maximum_pixel_count) {
    return 0;
  }
  if (const OwnedImage image = read_entry_both_ways(data, size, VFileType::jpeg)) {
    const std::vector<std::uint32_t> pixels = pixels_of(image);
    require(std::all_of(pixels.begin(), pixels.end(),
                        [](std::uint32_t pixel) { return pixel >> 24 == 0; }),
            "the top byte of each pixel is 0");
    require(cairo_image_surface_get_format(image->surface.get()) == CAIRO_FORMAT_RGB24,
            "the picture is an opaque one");
  }
  return 0;
}
