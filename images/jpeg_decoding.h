#pragma once
// JPEG data to pixels.

#include "base/streams.h"
#include "images/image.h"

// Decodes the stream's data into pixels 0x00RRGGBB: the top byte is 0, so the picture must be used
// as opaque. Fills width and height (pixels). Null with "Failed decompressing JPEG image." before
// the stream's or the library's message, "Incompatible JPEG data." or the pixel buffer's; width and
// height are unchanged then. Fails when the data ends too soon. Fails before it allocates, with
// "Pixel buffer dimension out of range.", when the header promises more pixels than the data can
// hold: each block of 8x8 samples takes at least two bits, or one bit in a progressive picture and
// in an arithmetic-coded one of more than 262144 blocks.
OwnedPixels v_jpeg_decompress(VInputStream *stream, int &width, int &height);
