#pragma once
// Pictures as they reach the decoders: entries of an archive.

#include <cstddef>
#include <cstdint>
#include <vector>

#include "base/file_types.h"
#include "images/image.h"

// Reads the bytes as an entry of that type, and requires a proper image, or a message. Null when
// they are no picture.
OwnedImage read_entry(const std::uint8_t *data, std::size_t size, VFileType file_type,
                      bool keep_encoded_data);
// The same for pictures of pixels: whether the encoded data is kept makes no difference.
OwnedImage read_entry_both_ways(const std::uint8_t *data, std::size_t size, VFileType file_type);

// All pixels, row after row.
std::vector<std::uint32_t> pixels_of(const OwnedImage &image);
