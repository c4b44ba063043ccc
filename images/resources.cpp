#include "images/resources.h"

#include <zip.h>

#include "base/error.h"
#include "base/streams.h"
#include "base/xml_reading.h"
#include "images/image_reading.h"
#include "images/resources_archive.h"

namespace {

// Closes without writing: the archive is in read-only memory.
using OwnedArchive = Owned<zip_t, zip_discard>;

OwnedArchive archive;

bool fail_with_zip_error(zip_error_t *error) {
  v_error_set_from_zip_error(error);
  zip_error_fini(error);
  return false;
}

} // namespace

bool v_resources_open() {
  zip_error_t error;
  zip_error_init(&error);
  zip_source_t *source =
      zip_source_buffer_create(v_resources_archive_data, v_resources_archive_length, 0, &error);
  if (source == nullptr) {
    return fail_with_zip_error(&error);
  }
  archive.reset(zip_open_from_source(source, ZIP_RDONLY, &error));
  if (!archive) {
    // zip_open_from_source takes ownership of the source only when it succeeds.
    zip_source_free(source);
    return fail_with_zip_error(&error);
  }
  zip_error_fini(&error);
  return true;
}

void v_resources_clean_up() { archive.reset(); }

OwnedImage v_resources_load_image(const char *entry_name, VFileType file_type,
                                  bool keep_encoded_data) {
  OwnedImage image = v_gfx_image_io_read_from_zip_file_path(archive.get(), entry_name, file_type,
                                                            keep_encoded_data);
  if (!image) {
    v_error_append("Could not load image resource.");
  }
  return image;
}

OwnedXmlDoc v_resources_load_xml_doc(const char *entry_name) {
  std::size_t length = 0;
  const OwnedText data =
      v_stream_copy_from_zip_file_path_to_memory(archive.get(), entry_name, length);
  OwnedXmlDoc document = data ? v_xml_parse_memory(data.get(), length) : nullptr;
  if (!document) {
    v_error_append("Could not open XML resource.");
  }
  return document;
}
