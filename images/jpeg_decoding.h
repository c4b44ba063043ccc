#pragma once
// Decodes JPEG data into pixels.

#include "base/streams.h"
#include "images/image.h"

// Decodes the stream's data into pixels 0x00RRGGBB: the top byte is 0, so the image must be used as
// opaque. Fills width and height (pixels). Null with "Failed decompressing JPEG image." before the
// message of the stream, of the library or of v_gfx_pixels_new, or before "Incompatible JPEG
// data."; width and height are then unchanged. Truncated data is an error. Fails before allocating,
// with "Pixel buffer dimension out of range.", when the header declares more pixels than the data
// can encode: each block of 8x8 samples takes at least two bits, or one bit in a progressive image
// and in an arithmetic-coded one of more than 262144 blocks.
OwnedPixels v_jpeg_decompress(VInputStream *stream, int &width, int &height);
