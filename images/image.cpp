#include "images/image.h"

#include <utility>

#include "base/error.h"
#include "images/svg_library.h"

namespace {

constexpr std::int64_t maximum_dimension = 0x1000000;

const cairo_user_data_key_t pixels_key = {};

bool is_dimension_in_range(std::int64_t dimension) {
  return dimension >= 0 && dimension <= maximum_dimension;
}

// Makes the surface the owner of its pixels.
bool attach_pixels(cairo_surface_t *surface, OwnedPixels &pixels) {
  if (cairo_surface_set_user_data(surface, &pixels_key, pixels.get(), g_free) !=
      CAIRO_STATUS_SUCCESS) {
    v_error_set("Error transferring pixel buffer ownership to image surface.");
    return false;
  }
  static_cast<void>(pixels.release());
  return true;
}

OwnedSurface create_surface(OwnedPixels pixels, int width, int height, bool opaque) {
  OwnedSurface surface(cairo_image_surface_create_for_data(
      reinterpret_cast<unsigned char *>(pixels.get()),
      opaque ? CAIRO_FORMAT_RGB24 : CAIRO_FORMAT_ARGB32, width, height, width * 4));
  const cairo_status_t status = cairo_surface_status(surface.get());
  if (status != CAIRO_STATUS_SUCCESS) {
    v_error_set_from_cairo_status(status);
    return nullptr;
  }
  return attach_pixels(surface.get(), pixels) ? std::move(surface) : nullptr;
}

} // namespace

void v_gfx_image_destroy(VImage *image) { delete image; }

OwnedPixels v_gfx_pixels_new(std::int64_t width, std::int64_t height) {
  if (!is_dimension_in_range(width) || !is_dimension_in_range(height)) {
    v_error_set("Pixel buffer dimension out of range.");
    return nullptr;
  }
  const auto pixel_count = static_cast<gsize>(width * height);
  if (pixel_count == 0) {
    return nullptr;
  }
  OwnedPixels pixels(
      static_cast<std::uint32_t *>(g_try_malloc_n(pixel_count, sizeof(std::uint32_t))));
  if (!pixels) {
    v_error_set_out_of_memory();
  }
  return pixels;
}

OwnedImage v_gfx_image_new_for_pixels(OwnedPixels pixels, int width, int height, bool opaque) {
  OwnedImage image(new VImage);
  image->kind = VImageKind::pixels;
  image->width = width;
  image->height = height;
  image->surface = create_surface(std::move(pixels), width, height, opaque);
  if (!image->surface) {
    return nullptr;
  }
  image->pattern.reset(cairo_pattern_create_for_surface(image->surface.get()));
  const cairo_status_t status = cairo_pattern_status(image->pattern.get());
  if (status != CAIRO_STATUS_SUCCESS) {
    v_error_set_from_cairo_status(status);
    return nullptr;
  }
  return image;
}

OwnedImage v_gfx_image_new_for_svg(OwnedSvg svg) {
  const VSvgLibrary *library = v_svg_library_get();
  if (library == nullptr) {
    return nullptr;
  }
  RsvgDimensionData size = {};
  library->rsvg_handle_get_dimensions(svg.get(), &size);
  OwnedImage image(new VImage);
  image->kind = VImageKind::svg;
  image->width = size.em;
  image->height = size.ex;
  image->svg = std::move(svg);
  return image;
}
