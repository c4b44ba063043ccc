// Packs files into a zip archive and writes it as a C++ source that defines what
// images/resources_archive.h declares:
//
//   pack_archive OUTPUT (ENTRY FILE)...
//
// The same files always give the same bytes: the entries are in the order of the arguments, are all
// deflated, and have no time.

#include <cstdio>
#include <cstdlib>

#include <zip.h>

#include "base/owned.h"

namespace {

constexpr zip_uint32_t compression_level = 9;
// 1 January 1980, 0:00, the earliest time that an archive can store.
constexpr zip_uint16_t entry_date = 1 << 5 | 1;

using OwnedSource = Owned<zip_source_t, zip_source_free>;

[[noreturn]] void give_up(const char *what, const char *why) {
  std::fprintf(stderr, "pack_archive: %s: %s\n", what, why);
  std::exit(EXIT_FAILURE);
}

void add_entry(zip_t *archive, const char *entry, const char *path) {
  zip_source_t *source = zip_source_file(archive, path, 0, -1);
  const zip_int64_t index =
      source != nullptr ? zip_file_add(archive, entry, source, ZIP_FL_ENC_UTF_8) : -1;
  if (index < 0) {
    give_up(path, zip_strerror(archive));
  }
  const auto position = static_cast<zip_uint64_t>(index);
  if (zip_set_file_compression(archive, position, ZIP_CM_DEFLATE, compression_level) != 0 ||
      zip_file_set_dostime(archive, position, 0, entry_date, 0) != 0) {
    give_up(entry, zip_strerror(archive));
  }
}

// Returns the source that holds the finished archive in memory.
OwnedSource pack(int count, char **entries_and_files) {
  zip_error_t error;
  zip_error_init(&error);
  OwnedSource packed(zip_source_buffer_create(nullptr, 0, 0, &error));
  zip_t *archive =
      packed ? zip_open_from_source(packed.get(), ZIP_CREATE | ZIP_TRUNCATE, &error) : nullptr;
  if (archive == nullptr) {
    give_up("archive", zip_error_strerror(&error));
  }
  // Closing the archive releases one reference.
  zip_source_keep(packed.get());
  for (int i = 0; i + 1 < count; i += 2) {
    add_entry(archive, entries_and_files[i], entries_and_files[i + 1]);
  }
  if (zip_close(archive) != 0) {
    give_up("archive", zip_strerror(archive));
  }
  return packed;
}

void write_bytes(std::FILE *output, zip_source_t *packed) {
  if (zip_source_open(packed) != 0) {
    give_up("archive", "cannot be read back");
  }
  unsigned char line[16];
  unsigned long long length = 0;
  zip_int64_t count = 0;
  std::fputs("#include \"images/resources_archive.h\"\n\n"
             "const unsigned char v_resources_archive_data[] = {\n",
             output);
  while ((count = zip_source_read(packed, line, sizeof line)) > 0) {
    for (zip_int64_t i = 0; i < count; i++) {
      std::fprintf(output, "%u,", static_cast<unsigned>(line[i]));
    }
    std::fputc('\n', output);
    length += static_cast<unsigned long long>(count);
  }
  std::fprintf(output, "};\nconst std::size_t v_resources_archive_length = %llu;\n", length);
  zip_source_close(packed);
  if (count < 0) {
    give_up("archive", "cannot be read back");
  }
}

} // namespace

int main(int argc, char **argv) {
  if (argc < 4 || argc % 2 != 0) {
    std::fputs("usage: pack_archive OUTPUT (ENTRY FILE)...\n", stderr);
    return EXIT_FAILURE;
  }
  const OwnedSource packed = pack(argc - 2, argv + 2);
  OwnedFile output(std::fopen(argv[1], "wb"));
  if (!output) {
    give_up(argv[1], "cannot be written");
  }
  write_bytes(output.get(), packed.get());
  const bool is_written = !std::ferror(output.get());
  if (std::fclose(output.release()) != 0 || !is_written) {
    std::remove(argv[1]);
    give_up(argv[1], "cannot be written");
  }
  return EXIT_SUCCESS;
}
