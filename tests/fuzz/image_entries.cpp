#include "fuzz/image_entries.h"

#include <cstring>

#include <zip.h>

#include "fuzz/fuzzing.h"
#include "images/image_reading.h"

namespace {

using OwnedArchive = Owned<zip_t, zip_discard>;
using OwnedSource = Owned<zip_source_t, zip_source_free>;

constexpr const char *entry_name = "picture";

// Nothing is compressed: what is searched for are faults of the decoders.
void pack(zip_source_t *packed, const std::uint8_t *data, std::size_t size) {
  zip_source_keep(packed);
  zip_t *archive = zip_open_from_source(packed, ZIP_CREATE | ZIP_TRUNCATE, nullptr);
  require(archive != nullptr, "an archive can be made");
  const zip_int64_t index =
      zip_file_add(archive, entry_name, zip_source_buffer(archive, data, size, 0), 0);
  require(index == 0 && zip_set_file_compression(archive, 0, ZIP_CM_STORE, 0) == 0 &&
              zip_close(archive) == 0,
          "an archive can be packed");
}

void require_proper(const OwnedImage &image, VFileType file_type, bool keep_encoded_data,
                    std::size_t size) {
  if (file_type == VFileType::svg) {
    require(image->kind == VImageKind::svg && image->svg && !image->surface && !image->pattern,
            "a drawing is kept as a drawing");
    return;
  }
  cairo_surface_t *surface = image->surface.get();
  require(image->kind == VImageKind::pixels && !image->svg && image->pattern,
          "a picture is kept as pixels");
  require(cairo_surface_status(surface) == CAIRO_STATUS_SUCCESS, "the surface is sound");
  require(image->width == cairo_image_surface_get_width(surface) &&
              image->height == cairo_image_surface_get_height(surface),
          "the surface has the picture's size");
  const unsigned char *encoded = nullptr;
  unsigned long length = 0;
  cairo_surface_get_mime_data(surface, file_type == VFileType::png ? "image/png" : "image/jpeg",
                              &encoded, &length);
  require((encoded != nullptr) == keep_encoded_data && (encoded == nullptr || length == size),
          "the encoded data is kept when that is wanted");
}

} // namespace

OwnedImage read_entry(const std::uint8_t *data, std::size_t size, VFileType file_type,
                      bool keep_encoded_data) {
  const OwnedSource packed(zip_source_buffer_create(nullptr, 0, 0, nullptr));
  pack(packed.get(), data, size);
  zip_source_keep(packed.get());
  const OwnedArchive archive(zip_open_from_source(packed.get(), ZIP_RDONLY, nullptr));
  require(archive != nullptr, "an archive can be opened");
  set_old_message();
  OwnedImage image = v_gfx_image_io_read_from_zip_file_path(archive.get(), entry_name, file_type,
                                                            keep_encoded_data);
  if (image) {
    require_proper(image, file_type, keep_encoded_data, size);
  } else {
    require_message();
  }
  return image;
}

OwnedImage read_entry_both_ways(const std::uint8_t *data, std::size_t size, VFileType file_type) {
  OwnedImage image = read_entry(data, size, file_type, false);
  const OwnedImage with_data = read_entry(data, size, file_type, true);
  require((image == nullptr) == (with_data == nullptr), "both ways succeed or fail alike");
  require(!image || pixels_of(image) == pixels_of(with_data), "both ways give the same pixels");
  return image;
}

std::vector<std::uint32_t> pixels_of(const OwnedImage &image) {
  cairo_surface_t *surface = image->surface.get();
  const auto width = static_cast<std::size_t>(cairo_image_surface_get_width(surface));
  const auto height = static_cast<std::size_t>(cairo_image_surface_get_height(surface));
  std::vector<std::uint32_t> pixels(width * height);
  std::memcpy(pixels.data(), cairo_image_surface_get_data(surface),
              pixels.size() * sizeof(std::uint32_t));
  return pixels;
}
