#pragma once
// The image object: a raster image or a parsed SVG, with its size. Knows nothing of where the image
// comes from.

#include <cstdint>

#include <cairo.h>
#include <librsvg/rsvg.h>

#include "base/owned.h"

using OwnedSurface = Owned<cairo_surface_t, cairo_surface_destroy>;
using OwnedPattern = Owned<cairo_pattern_t, cairo_pattern_destroy>;
using OwnedSvg = Owned<RsvgHandle, g_object_unref>;
// One native-order word 0xAARRGGBB per pixel, row after row without gaps.
using OwnedPixels = Owned<std::uint32_t, g_free>;

enum class VImageKind { pixels, svg };

struct VImage {
  VImageKind kind = VImageKind::pixels;
  double width = 0;     // pixels
  double height = 0;    // pixels
  OwnedSurface surface; // kind pixels: owns the pixel buffer
  OwnedSvg svg;         // kind svg
  OwnedPattern pattern; // kind pixels: made for the surface
};

// Null is allowed.
void v_gfx_image_destroy(VImage *image);
using OwnedImage = Owned<VImage, v_gfx_image_destroy>;

// An uninitialised pixel buffer. Null with "Pixel buffer dimension out of range." when width or
// height is outside 0 to 16777216, with the out-of-memory message, or without a message when the
// buffer would have no pixel.
OwnedPixels v_gfx_pixels_new(std::int64_t width, std::int64_t height);

// Takes ownership of the pixels, also on failure. Their top byte is ignored when the image is
// opaque; otherwise they are premultiplied. Null with the graphics library's message, or with
// "Error transferring pixel buffer ownership to image surface.".
OwnedImage v_gfx_image_new_for_pixels(OwnedPixels pixels, int width, int height, bool opaque);
// The size is that declared by the SVG, not rounded. Null with the system's reason when the library
// that made the handle cannot be loaded.
OwnedImage v_gfx_image_new_for_svg(OwnedSvg svg);
