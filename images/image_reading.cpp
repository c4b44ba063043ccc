#include "images/image_reading.h"

#include <utility>

#include "base/error.h"
#include "base/streams.h"
#include "images/jpeg_decoding.h"
#include "images/png_decoding.h"
#include "images/svg_library.h"

namespace {

OwnedImage decode_png(VInputStream *stream) {
  int width = 0;
  int height = 0;
  bool opaque = false;
  OwnedPixels pixels = v_png_decompress(stream, PngAlphaMode::premultiplied, width, height, opaque);
  return pixels ? v_gfx_image_new_for_pixels(std::move(pixels), width, height, opaque) : nullptr;
}

OwnedImage decode_jpeg(VInputStream *stream) {
  int width = 0;
  int height = 0;
  OwnedPixels pixels = v_jpeg_decompress(stream, width, height);
  return pixels ? v_gfx_image_new_for_pixels(std::move(pixels), width, height, true) : nullptr;
}

struct PixelFormat {
  OwnedImage (*decode)(VInputStream *stream);
  const char *media_type;
  const char *failure;
};

constexpr PixelFormat png = {decode_png, "image/png", "Could not load PNG."};
constexpr PixelFormat jpeg = {decode_jpeg, "image/jpeg", "Could not load JPEG."};

// Makes the surface the owner of the encoded bytes.
bool attach_encoded_data(cairo_surface_t *surface, const char *media_type, OwnedText data,
                         std::size_t length) {
  const cairo_status_t status = cairo_surface_set_mime_data(
      surface, media_type, reinterpret_cast<const unsigned char *>(data.get()), length, g_free,
      data.get());
  if (status != CAIRO_STATUS_SUCCESS) {
    v_error_set_from_cairo_status(status);
    return false;
  }
  static_cast<void>(data.release());
  return true;
}

OwnedImage decode_keeping_encoded_data(VInputStream *stream, const PixelFormat &format) {
  std::size_t length = 0;
  OwnedText data = v_stream_copy_to_memory(stream, length);
  if (!data) {
    return nullptr;
  }
  const OwnedInputStream memory = v_input_stream_new_for_memory(data.get(), length);
  OwnedImage image = format.decode(memory.get());
  if (!image ||
      !attach_encoded_data(image->surface.get(), format.media_type, std::move(data), length)) {
    return nullptr;
  }
  return image;
}

OwnedImage read_pixels(VInputStream *stream, const PixelFormat &format, bool keep_encoded_data) {
  OwnedImage image =
      keep_encoded_data ? decode_keeping_encoded_data(stream, format) : format.decode(stream);
  if (!image) {
    v_error_append(format.failure);
  }
  return image;
}

OwnedImage read_svg(VInputStream *stream) {
  if (stream->zip_entry == nullptr) {
    v_error_append("Could not open SVG.");
    return nullptr;
  }
  std::size_t length = 0;
  const OwnedText data = v_stream_copy_to_memory(stream, length);
  if (!data) {
    return nullptr;
  }
  const VSvgLibrary *library = v_svg_library_get();
  if (library == nullptr) {
    return nullptr;
  }
  OwnedError error;
  OwnedSvg svg(library->rsvg_handle_new_from_data(reinterpret_cast<const guint8 *>(data.get()),
                                                  length, receive(error)));
  if (!svg) {
    v_error_set_from_gerror_and_free(error.release());
    return nullptr;
  }
  return v_gfx_image_new_for_svg(std::move(svg));
}

} // namespace

OwnedImage v_gfx_image_io_read_from_zip_file_path(struct zip *archive, const char *entry_name,
                                                  VFileType file_type, bool keep_encoded_data) {
  const auto open = [&] { return v_input_stream_new_for_zip_file_path(archive, entry_name); };
  switch (file_type) {
  case VFileType::png:
    return read_pixels(open().get(), png, keep_encoded_data);
  case VFileType::jpeg:
    return read_pixels(open().get(), jpeg, keep_encoded_data);
  case VFileType::svg:
    return read_svg(open().get());
  default:
    v_error_set_utf8_printf("Unsupported image file type: %s", v_file_type_get_name(file_type));
    return nullptr;
  }
}
