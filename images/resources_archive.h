#pragma once
// The zip archive of icons and style sheets that the build packs from data/icons.

#include <cstddef>

extern const unsigned char v_resources_archive_data[];
extern const std::size_t v_resources_archive_length; // bytes
