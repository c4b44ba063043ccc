#pragma once
// Reads encoded images from a zip archive into image objects.

#include "base/file_types.h"
#include "images/image.h"

struct zip;

// Reads a PNG, JPEG or SVG entry of an open archive (entry name in UTF-8). With keep_encoded_data,
// the surface of a PNG or JPEG also holds the entry's bytes, as MIME data of its type, for surfaces
// that can embed them unchanged. A JPEG is always opaque.
//
// Null with "Could not load PNG." or "Could not load JPEG." before the reason, "Could not open
// SVG." before the archive's message, the parser's message, or "Unsupported image file type:
// <name>".
OwnedImage v_gfx_image_io_read_from_zip_file_path(struct zip *archive, const char *entry_name,
                                                  VFileType file_type, bool keep_encoded_data);
