#pragma once
// The images and documents embedded in the program.

#include "base/file_types.h"
#include "base/owned.h"
#include "images/image.h"

// Opens the archive; must be called before anything is loaded. False with the message of libzip.
bool v_resources_open();
// Closes the archive; does nothing when none is open. Loaded objects stay valid.
void v_resources_clean_up();

// Null with "Could not load image resource." before the reason; keep_encoded_data as in
// v_gfx_image_io_read_from_zip_file_path.
OwnedImage v_resources_load_image(const char *entry_name, VFileType file_type,
                                  bool keep_encoded_data);
// Null with "Could not open XML resource." before the reason.
OwnedXmlDoc v_resources_load_xml_doc(const char *entry_name);
