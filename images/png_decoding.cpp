#include "images/png_decoding.h"

#include <csetjmp>

#include <png.h>

#include "base/error.h"

namespace {

constexpr std::size_t signature_length = 8;

using OwnedRows = Owned<png_byte, g_free>;

struct Reader {
  png_structp png = nullptr;
  png_infop info = nullptr;

  Reader() = default;
  ~Reader() { png_destroy_read_struct(&png, &info, nullptr); }
  Reader(const Reader &) = delete;
  Reader &operator=(const Reader &) = delete;
};

// State of the guarded steps. A library error leaves a step by longjmp, so a step must not have
// locals with destructors: the owners of what this record borrows are locals of its caller.
struct Decoding {
  png_structp png = nullptr;
  png_infop info = nullptr;
  PngAlphaMode alpha_mode = PngAlphaMode::premultiplied;
  png_uint_32 width = 0;
  png_uint_32 height = 0;
  bool has_alpha = false;
  int pass_count = 1; // above 1: interlaced
  std::size_t row_size = 0;
  png_bytep rows = nullptr; // the whole image when it is interlaced, else one row
  std::uint32_t *pixels = nullptr;
  bool opaque = true;
};

[[noreturn]] void unwind(png_structp png, png_const_charp) { png_longjmp(png, 1); }

void ignore_warning(png_structp, png_const_charp) {}

void read_bytes(png_structp png, png_bytep bytes, std::size_t n) {
  std::size_t count = 0;
  if (!v_input_stream_read(static_cast<VInputStream *>(png_get_io_ptr(png)), bytes, n, count)) {
    png_error(png, v_error_get());
  }
  if (count < n) {
    png_error(png, "EOF too soon.");
  }
}

// Library errors jump here.
bool run_guarded(Decoding *decoding, void (*step)(Decoding *)) {
  if (setjmp(png_jmpbuf(decoding->png)) != 0) {
    v_error_set("Error reading PNG data.");
    return false;
  }
  step(decoding);
  return true;
}

void lay_on_white(png_structp png) {
  png_color_16 white = {};
  white.red = white.green = white.blue = white.gray = 255;
  png_set_background(png, &white, PNG_BACKGROUND_GAMMA_SCREEN, 0, 1.0);
}

void request_eight_bit_colours(Decoding *decoding) {
  png_structp png = decoding->png;
  const int depth = png_get_bit_depth(png, decoding->info);
  const int colour_type = png_get_color_type(png, decoding->info);
  if (depth == 16) {
    png_set_scale_16(png);
  }
  if (colour_type == PNG_COLOR_TYPE_PALETTE) {
    png_set_palette_to_rgb(png);
  }
  if (colour_type == PNG_COLOR_TYPE_GRAY && depth < 8) {
    png_set_expand_gray_1_2_4_to_8(png);
  }
  if (png_get_valid(png, decoding->info, PNG_INFO_tRNS) != 0) {
    png_set_tRNS_to_alpha(png);
  }
  if ((colour_type & PNG_COLOR_MASK_COLOR) == 0) {
    png_set_gray_to_rgb(png);
  }
  decoding->pass_count = png_set_interlace_handling(png);
  if (decoding->alpha_mode == PngAlphaMode::on_white) {
    lay_on_white(png);
  }
}

// Chunks that do not affect pixels. The library would allocate the length declared in the chunk's
// header, up to 2 GiB for a file of 70 bytes.
constexpr png_byte passed_over_chunks[] = "eXIf\0iTXt\0pCAL\0sCAL\0sPLT\0tEXt\0zTXt";
constexpr int passed_over_chunk_count = sizeof passed_over_chunks / 5;

// Reads only the size, which is checked before the library allocates a row.
void read_size(Decoding *decoding) {
  png_structp png = decoding->png;
  png_set_user_limits(png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
  png_set_keep_unknown_chunks(png, PNG_HANDLE_CHUNK_NEVER, passed_over_chunks,
                              passed_over_chunk_count);
  png_set_sig_bytes(png, static_cast<int>(signature_length));
  png_read_info(png, decoding->info);
  decoding->width = png_get_image_width(png, decoding->info);
  decoding->height = png_get_image_height(png, decoding->info);
}

void begin_rows(Decoding *decoding) {
  png_structp png = decoding->png;
  png_infop info = decoding->info;
  request_eight_bit_colours(decoding);
  png_read_update_info(png, info);
  decoding->has_alpha = (png_get_color_type(png, info) & PNG_COLOR_MASK_ALPHA) != 0;
  decoding->row_size = png_get_rowbytes(png, info);
}

std::uint32_t pack(std::uint32_t alpha, std::uint32_t red, std::uint32_t green,
                   std::uint32_t blue) {
  return alpha << 24 | red << 16 | green << 8 | blue;
}

// colour * alpha / 255, rounded to the nearest, without a division.
std::uint32_t multiply(std::uint32_t colour, std::uint32_t alpha) {
  const std::uint32_t product = colour * alpha + 128;
  return (product + (product >> 8)) >> 8;
}

std::uint32_t convert_pixel(const Decoding *decoding, const png_byte *samples) {
  if (!decoding->has_alpha) {
    return pack(0xff, samples[0], samples[1], samples[2]);
  }
  const std::uint32_t alpha = samples[3];
  if (decoding->alpha_mode != PngAlphaMode::premultiplied) {
    return pack(alpha, samples[0], samples[1], samples[2]);
  }
  return pack(alpha, multiply(samples[0], alpha), multiply(samples[1], alpha),
              multiply(samples[2], alpha));
}

void convert_row(Decoding *decoding, const png_byte *row, png_uint_32 y) {
  const std::size_t sample_count = decoding->has_alpha ? 4 : 3;
  std::uint32_t *pixels = decoding->pixels + static_cast<std::size_t>(y) * decoding->width;
  for (std::size_t x = 0; x < decoding->width; x++) {
    pixels[x] = convert_pixel(decoding, row + x * sample_count);
    decoding->opaque = decoding->opaque && pixels[x] >> 24 == 0xff;
  }
}

void read_plain_rows(Decoding *decoding) {
  for (png_uint_32 y = 0; y < decoding->height; y++) {
    png_read_row(decoding->png, decoding->rows, nullptr);
    convert_row(decoding, decoding->rows, y);
  }
}

void read_interlaced_rows(Decoding *decoding) {
  for (int pass = 0; pass < decoding->pass_count; pass++) {
    for (png_uint_32 y = 0; y < decoding->height; y++) {
      png_read_row(decoding->png, decoding->rows + y * decoding->row_size, nullptr);
    }
  }
  for (png_uint_32 y = 0; y < decoding->height; y++) {
    convert_row(decoding, decoding->rows + y * decoding->row_size, y);
  }
}

bool check_row_size(const Decoding &decoding) {
  const std::size_t needed = std::size_t{decoding.width} * (decoding.has_alpha ? 4 : 3);
  if (decoding.row_size >= needed) {
    return true;
  }
  v_error_set_utf8_printf("Unexpected PNG row size: %u for width %u.",
                          static_cast<unsigned>(decoding.row_size), decoding.width);
  return false;
}

OwnedRows create_rows(const Decoding &decoding) {
  const std::size_t count = decoding.pass_count > 1 ? decoding.height : 1;
  OwnedRows rows(static_cast<png_bytep>(g_try_malloc_n(count, decoding.row_size)));
  if (!rows) {
    v_error_set_out_of_memory();
  }
  return rows;
}

bool read_signature(VInputStream *stream) {
  png_byte signature[signature_length];
  std::size_t count = 0;
  if (!v_input_stream_read(stream, signature, signature_length, count)) {
    return false;
  }
  if (count < signature_length || png_sig_cmp(signature, 0, signature_length) != 0) {
    v_error_set("The input data is not a PNG image.");
    return false;
  }
  return true;
}

bool create_reader(Reader &reader, VInputStream *stream) {
  reader.png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, unwind, ignore_warning);
  reader.info = reader.png != nullptr ? png_create_info_struct(reader.png) : nullptr;
  if (reader.info == nullptr) {
    v_error_set_out_of_memory();
    return false;
  }
  png_set_read_fn(reader.png, stream, read_bytes);
  return true;
}

} // namespace

OwnedPixels v_png_decompress(VInputStream *stream, PngAlphaMode alpha_mode, int &width, int &height,
                             bool &opaque) {
  Reader reader;
  if (!read_signature(stream) || !create_reader(reader, stream)) {
    return nullptr;
  }
  Decoding decoding = {.png = reader.png, .info = reader.info, .alpha_mode = alpha_mode};
  if (!run_guarded(&decoding, read_size)) {
    return nullptr;
  }
  OwnedPixels pixels = v_gfx_pixels_new(decoding.width, decoding.height);
  if (!pixels || !run_guarded(&decoding, begin_rows) || !check_row_size(decoding)) {
    return nullptr;
  }
  const OwnedRows rows = create_rows(decoding);
  if (!rows) {
    return nullptr;
  }
  decoding.pixels = pixels.get();
  decoding.rows = rows.get();
  if (!run_guarded(&decoding, decoding.pass_count > 1 ? read_interlaced_rows : read_plain_rows)) {
    return nullptr;
  }
  width = static_cast<int>(decoding.width);
  height = static_cast<int>(decoding.height);
  opaque = decoding.opaque;
  return pixels;
}

OwnedPixels v_png_decompress_from_file_path(const char *path, PngAlphaMode alpha_mode, int &width,
                                            int &height, bool &opaque) {
  return v_png_decompress(v_input_stream_new_for_file_path(path).get(), alpha_mode, width, height,
                          opaque);
}

OwnedPixels v_png_decompress_from_memory(const void *data, std::size_t length,
                                         PngAlphaMode alpha_mode, int &width, int &height,
                                         bool &opaque) {
  return v_png_decompress(v_input_stream_new_for_memory(data, length).get(), alpha_mode, width,
                          height, opaque);
}

OwnedPixels v_png_decompress_from_zip_file_path(struct zip *archive, const char *entry_name,
                                                PngAlphaMode alpha_mode, int &width, int &height,
                                                bool &opaque) {
  return v_png_decompress(v_input_stream_new_for_zip_file_path(archive, entry_name).get(),
                          alpha_mode, width, height, opaque);
}
