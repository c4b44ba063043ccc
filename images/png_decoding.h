#pragma once
// Decodes PNG data into pixels: all colour types and depths become red, green, blue and alpha with
// 8 bits each.

#include <cstddef>

#include "base/streams.h"
#include "images/image.h"

enum class PngAlphaMode {
  on_white = 0, // composited on white; no alpha remains
  straight = 1,
  premultiplied = 2,
};

// Decodes the stream's data. Fills width, height (pixels) and opaque: true exactly when no pixel
// has an alpha below 255. On failure they are unchanged and the result is null, with "The input
// data is not a PNG image.", "Error reading PNG data." (damaged or truncated), "Pixel buffer
// dimension out of range.", "Unexpected PNG row size: ..." or the out-of-memory message, or with
// the stream's message when the signature cannot be read.
OwnedPixels v_png_decompress(VInputStream *stream, PngAlphaMode alpha_mode, int &width, int &height,
                             bool &opaque);
OwnedPixels v_png_decompress_from_file_path(const char *path, PngAlphaMode alpha_mode, int &width,
                                            int &height, bool &opaque);
OwnedPixels v_png_decompress_from_memory(const void *data, std::size_t length,
                                         PngAlphaMode alpha_mode, int &width, int &height,
                                         bool &opaque);
OwnedPixels v_png_decompress_from_zip_file_path(struct zip *archive, const char *entry_name,
                                                PngAlphaMode alpha_mode, int &width, int &height,
                                                bool &opaque);
