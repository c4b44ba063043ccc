#pragma once
// JPEG data to pixels.

#include "base/streams.h"
#include "images/image.h"

// Decodes the stream's data into pixels 0x00RRGGBB: the top byte is 0, the picture is to be used as
// an opaque one. Fills width and height (pixels). Null with "Failed decompressing JPEG image."
// before the stream's or the library's message, "Incompatible JPEG data." or the pixel buffer's;
// width and height stay then. A picture whose data ends too soon is a failure, and so is, before
// memory is taken for it, one that promises more pixels than the data can hold: "Pixel buffer
// dimension out of range.". Each block of 8x8 samples takes two bits at least, one in a progressive
// picture; in an arithmetic coded one with more than 262144 blocks, one.
OwnedPixels v_jpeg_decompress(VInputStream *stream, int &width, int &height);
