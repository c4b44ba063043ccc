#include "encoded_images.h"

#include <cstdio>
#include <cstdlib>

#include <jpeglib.h>
#include <zlib.h>

namespace {

void append_bytes(png_structp png, png_bytep bytes, std::size_t n) {
  static_cast<std::string *>(png_get_io_ptr(png))->append(reinterpret_cast<char *>(bytes), n);
}

void flush_nothing(png_structp) {}

void put_word(std::string &file, std::size_t position, unsigned long word) {
  for (std::size_t i = 0; i < 4; i++) {
    file[position + i] = static_cast<char>(word >> (24 - 8 * i) & 0xff);
  }
}

struct JpegColours {
  J_COLOR_SPACE space;
  int component_count;
};

JpegColours colours_of(JpegKind kind) {
  switch (kind) {
  case JpegKind::rgb:
    return {JCS_RGB, 3};
  case JpegKind::grey:
    return {JCS_GRAYSCALE, 1};
  case JpegKind::cmyk:
    return {JCS_CMYK, 4};
  }
  std::abort();
}

// Only the scan of the means of all blocks.
jpeg_scan_info create_first_scan(int component_count) {
  jpeg_scan_info scan = {};
  scan.comps_in_scan = component_count;
  for (int i = 0; i < component_count; i++) {
    scan.component_index[i] = i;
  }
  return scan;
}

// The library reads the scan until the picture is finished.
void set_coding(j_compress_ptr library, JpegCoding coding, const jpeg_scan_info &first_scan) {
  switch (coding) {
  case JpegCoding::baseline:
    break;
  case JpegCoding::baseline_optimised:
    library->optimize_coding = TRUE;
    break;
  case JpegCoding::progressive:
    jpeg_simple_progression(library);
    break;
  case JpegCoding::progressive_first_scan:
    library->scan_info = &first_scan;
    library->num_scans = 1;
    break;
  case JpegCoding::arithmetic:
    library->arith_code = TRUE;
    break;
  }
}

void write_comments(j_compress_ptr library, int length) {
  constexpr int maximum_piece = 60000;
  const std::string piece(maximum_piece, 'c');
  for (; length > 0; length -= maximum_piece) {
    const int piece_length = length < maximum_piece ? length : maximum_piece;
    jpeg_write_marker(library, JPEG_COM, reinterpret_cast<const JOCTET *>(piece.data()),
                      static_cast<unsigned>(piece_length));
  }
}

void write_rows(j_compress_ptr library, const std::string &samples, int component_count) {
  const std::size_t row_size = library->image_width * static_cast<std::size_t>(component_count);
  while (library->next_scanline < library->image_height) {
    std::string row = samples.substr(library->next_scanline * row_size, row_size);
    auto *bytes = reinterpret_cast<JSAMPLE *>(row.data());
    jpeg_write_scanlines(library, &bytes, 1);
  }
}

void set_colours(png_structp png, png_infop info, const PngPicture &picture) {
  if (!picture.palette.empty()) {
    png_set_PLTE(png, info, picture.palette.data(), static_cast<int>(picture.palette.size()));
  }
  if (!picture.palette_alpha.empty()) {
    png_set_tRNS(png, info, picture.palette_alpha.data(),
                 static_cast<int>(picture.palette_alpha.size()), nullptr);
  }
  if (!picture.transparent.empty()) {
    png_set_tRNS(png, info, nullptr, 0, picture.transparent.data());
  }
}

} // namespace

std::string encode_png(const PngPicture &picture) {
  std::string file;
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  png_infop info = png_create_info_struct(png);
  png_set_write_fn(png, &file, append_bytes, flush_nothing);
  png_set_IHDR(png, info, static_cast<png_uint_32>(picture.width),
               static_cast<png_uint_32>(picture.height), picture.depth, picture.colour_type,
               picture.interlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE,
               PNG_COMPRESSION_TYPE_BASE, PNG_FILTER_TYPE_BASE);
  set_colours(png, info, picture);
  if (picture.gamma > 0) {
    png_set_gAMA(png, info, picture.gamma);
  }
  png_write_info(png, info);
  const std::size_t row_size = png_get_rowbytes(png, info);
  if (picture.samples.size() != row_size * static_cast<std::size_t>(picture.height)) {
    std::abort();
  }
  const int pass_count = png_set_interlace_handling(png);
  for (int pass = 0; pass < pass_count; pass++) {
    for (std::size_t y = 0; y < static_cast<std::size_t>(picture.height); y++) {
      png_write_row(png, reinterpret_cast<png_const_bytep>(picture.samples.data() + y * row_size));
    }
  }
  png_write_end(png, info);
  png_destroy_write_struct(&png, &info);
  return file;
}

std::string with_png_size(std::string file, unsigned width, unsigned height) {
  // Signature, then the header: length, "IHDR", 13 bytes of content, checksum.
  constexpr std::size_t type = 12;
  constexpr std::size_t content = 16;
  constexpr std::size_t checksum = 29;
  put_word(file, content, width);
  put_word(file, content + 4, height);
  put_word(file, checksum,
           crc32(0, reinterpret_cast<const Bytef *>(file.data() + type), checksum - type));
  return file;
}

std::string encode_jpeg(JpegKind kind, int width, int height, const std::string &samples,
                        JpegCoding coding, int comment_length) {
  const auto [space, component_count] = colours_of(kind);
  jpeg_compress_struct library;
  jpeg_error_mgr errors;
  library.err = jpeg_std_error(&errors);
  jpeg_create_compress(&library);
  unsigned char *bytes = nullptr;
  unsigned long length = 0;
  jpeg_mem_dest(&library, &bytes, &length);
  library.image_width = static_cast<JDIMENSION>(width);
  library.image_height = static_cast<JDIMENSION>(height);
  library.input_components = component_count;
  library.in_color_space = space;
  jpeg_set_defaults(&library);
  jpeg_set_quality(&library, 100, TRUE);
  for (int i = 0; i < library.num_components; i++) {
    library.comp_info[i].h_samp_factor = library.comp_info[i].v_samp_factor = 1;
  }
  const jpeg_scan_info first_scan = create_first_scan(library.num_components);
  set_coding(&library, coding, first_scan);
  jpeg_start_compress(&library, TRUE);
  write_comments(&library, comment_length);
  write_rows(&library, samples, component_count);
  jpeg_finish_compress(&library);
  jpeg_destroy_compress(&library);
  std::string file(reinterpret_cast<char *>(bytes), length);
  std::free(bytes);
  return file;
}

std::string with_jpeg_size(std::string file, int width, int height) {
  // Marker, length of two bytes, precision, then the size.
  const auto is_frame = [](unsigned char code) {
    return code >= 0xc0 && code <= 0xcf && code != 0xc4 && code != 0xc8 && code != 0xcc;
  };
  std::size_t at = 2;
  while (!is_frame(static_cast<unsigned char>(file[at + 1]))) {
    at += 2 + static_cast<unsigned char>(file[at + 2]) * 256U +
          static_cast<unsigned char>(file[at + 3]);
  }
  for (const int number : {height, width}) {
    file[at + 5] = static_cast<char>(number >> 8);
    file[at + 6] = static_cast<char>(number & 0xff);
    at += 2;
  }
  return file;
}

Archive::Archive(const std::vector<std::pair<std::string, std::string>> &entries) {
  zip_source_t *packed = zip_source_buffer_create(nullptr, 0, 0, nullptr);
  zip_t *writing = zip_open_from_source(packed, ZIP_CREATE | ZIP_TRUNCATE, nullptr);
  zip_source_keep(packed);
  for (const auto &[name, data] : entries) {
    const zip_int64_t index = zip_file_add(
        writing, name.c_str(), zip_source_buffer(writing, data.data(), data.size(), 0), 0);
    zip_set_file_compression(writing, static_cast<zip_uint64_t>(index), ZIP_CM_DEFLATE, 9);
  }
  zip_stat_t status;
  if (zip_close(writing) != 0 || zip_source_open(packed) != 0 ||
      zip_source_stat(packed, &status) != 0) {
    std::abort();
  }
  content.resize(status.size);
  zip_source_read(packed, content.data(), content.size());
  zip_source_close(packed);
  zip_source_free(packed);
  open();
}

Archive::Archive(std::string archive_bytes) : content(std::move(archive_bytes)) { open(); }

void Archive::open() {
  zip_source_t *source = zip_source_buffer_create(content.data(), content.size(), 0, nullptr);
  archive.reset(zip_open_from_source(source, ZIP_RDONLY, nullptr));
  if (!archive) {
    std::abort();
  }
}
