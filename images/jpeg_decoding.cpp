#include "images/jpeg_decoding.h"

#include <algorithm>
#include <csetjmp>
#include <cstdint>
#include <cstdio>
#include <span>

#include <jpeglib.h>

#include <jerror.h>

#include "base/error.h"

namespace {

using OwnedRow = Owned<JSAMPLE, g_free>;

// State of the guarded steps. A library error leaves a step by longjmp, so a step must not have
// locals with destructors: this record, and the owners of what it borrows, are locals of its
// caller.
struct Decoding {
  jpeg_decompress_struct library = {};
  jpeg_error_mgr errors = {};
  jpeg_source_mgr source = {};
  std::jmp_buf unwinding;
  JSAMPLE *row = nullptr;
  std::uint32_t *pixels = nullptr;

  Decoding() = default;
  ~Decoding() { jpeg_destroy_decompress(&library); }
  Decoding(const Decoding &) = delete;
  Decoding &operator=(const Decoding &) = delete;
};

template <typename Library>
Decoding *decoding_of(Library *library) {
  return static_cast<Decoding *>(library->client_data);
}

[[noreturn]] void unwind_with_message(j_common_ptr library) {
  if (library->err->msg_code == JERR_OUT_OF_MEMORY) {
    v_error_set_out_of_memory();
  } else {
    char message[JMSG_LENGTH_MAX];
    library->err->format_message(library, message);
    v_error_set(message);
  }
  std::longjmp(decoding_of(library)->unwinding, 1);
}

void ignore_message(j_common_ptr) {}

// Library errors jump here, with the message set.
bool run_guarded(Decoding *decoding, void (*step)(Decoding *)) {
  if (setjmp(decoding->unwinding) != 0) {
    return false;
  }
  step(decoding);
  return true;
}

void begin_source(j_decompress_ptr) {}

void end_source(j_decompress_ptr) {}

// Called when the data is truncated: all of it is in memory from the start.
boolean fill_source(j_decompress_ptr library) {
  ERREXIT(library, JERR_INPUT_EOF);
  return FALSE;
}

void skip_source(j_decompress_ptr library, long count) {
  jpeg_source_mgr *source = library->src;
  if (count <= 0) {
    return;
  }
  const auto skipped = static_cast<std::size_t>(count);
  if (skipped > source->bytes_in_buffer) {
    ERREXIT(library, JERR_INPUT_EOF);
  }
  source->next_input_byte += skipped;
  source->bytes_in_buffer -= skipped;
}

void set_handlers(Decoding *decoding, const char *data, std::size_t length) {
  decoding->library.err = jpeg_std_error(&decoding->errors);
  decoding->errors.error_exit = unwind_with_message;
  decoding->errors.output_message = ignore_message;
  decoding->library.client_data = decoding;
  decoding->source.next_input_byte = reinterpret_cast<const JOCTET *>(data);
  decoding->source.bytes_in_buffer = length;
  decoding->source.init_source = begin_source;
  decoding->source.fill_input_buffer = fill_source;
  decoding->source.skip_input_data = skip_source;
  decoding->source.resync_to_restart = jpeg_resync_to_restart;
  decoding->source.term_source = end_source;
}

void read_header(Decoding *decoding) {
  j_decompress_ptr library = &decoding->library;
  jpeg_create_decompress(library);
  library->src = &decoding->source;
  jpeg_read_header(library, TRUE);
}

void start(Decoding *decoding) {
  decoding->library.out_color_space = JCS_RGB;
  jpeg_start_decompress(&decoding->library);
}

using Count = std::uint64_t;

Count divide_rounding_up(Count dividend, Count divisor) {
  return (dividend + divisor - 1) / divisor;
}

// The number of 8x8 blocks in all components of the image.
Count count_blocks(const jpeg_decompress_struct &library) {
  const std::span components(library.comp_info, static_cast<std::size_t>(library.num_components));
  int widest = 1;
  int highest = 1;
  for (const jpeg_component_info &component : components) {
    widest = std::max(widest, component.h_samp_factor);
    highest = std::max(highest, component.v_samp_factor);
  }
  const auto count_along = [](JDIMENSION pixels, int factor, int largest_factor) {
    return divide_rounding_up(Count{pixels} * static_cast<Count>(factor),
                              8 * static_cast<Count>(largest_factor));
  };
  Count count = 0;
  for (const jpeg_component_info &component : components) {
    count += count_along(library.image_width, component.h_samp_factor, widest) *
             count_along(library.image_height, component.v_samp_factor, highest);
  }
  return count;
}

void read_rows(Decoding *decoding) {
  j_decompress_ptr library = &decoding->library;
  std::uint32_t *pixel = decoding->pixels;
  while (library->output_scanline < library->output_height) {
    jpeg_read_scanlines(library, &decoding->row, 1);
    const JSAMPLE *samples = decoding->row;
    for (JDIMENSION x = 0; x < library->output_width; x++, samples += 3) {
      *pixel++ = std::uint32_t{samples[0]} << 16 | std::uint32_t{samples[1]} << 8 | samples[2];
    }
  }
}

// Upper bound for the number of blocks that the data can encode. A Huffman code has at least one
// bit. Each block has a code for its first coefficient and, except in a progressive image, one that
// ends the others. Arithmetic coding can encode thousands of equal blocks in one bit, so such
// images are always accepted up to a moderate size.
Count limit_blocks(const jpeg_decompress_struct &library, std::size_t length) {
  constexpr Count moderate_block_count = 1 << 18; // 16 million grey pixels
  const Count bits = Count{length} * 8;
  if (library.arith_code) {
    return std::max(bits, moderate_block_count);
  }
  return library.progressive_mode ? bits : bits / 2;
}

OwnedRow create_row(const Decoding &decoding) {
  OwnedRow row(static_cast<JSAMPLE *>(g_try_malloc_n(decoding.library.output_width, 3)));
  if (!row) {
    v_error_set_out_of_memory();
  }
  return row;
}

OwnedPixels decompress(Decoding &decoding, const char *data, std::size_t length) {
  set_handlers(&decoding, data, length);
  if (!run_guarded(&decoding, read_header)) {
    return nullptr;
  }
  // The library fills in missing parts of an image and allocates memory for them.
  if (count_blocks(decoding.library) > limit_blocks(decoding.library, length)) {
    v_error_set("Pixel buffer dimension out of range.");
    return nullptr;
  }
  if (!run_guarded(&decoding, start)) {
    return nullptr;
  }
  if (decoding.library.output_components != 3) {
    v_error_set("Incompatible JPEG data.");
    return nullptr;
  }
  OwnedPixels pixels =
      v_gfx_pixels_new(decoding.library.output_width, decoding.library.output_height);
  const OwnedRow row = pixels ? create_row(decoding) : nullptr;
  if (!row) {
    return nullptr;
  }
  decoding.pixels = pixels.get();
  decoding.row = row.get();
  return run_guarded(&decoding, read_rows) ? std::move(pixels) : nullptr;
}

} // namespace

OwnedPixels v_jpeg_decompress(VInputStream *stream, int &width, int &height) {
  std::size_t length = 0;
  const OwnedText data = v_stream_copy_to_memory(stream, length);
  Decoding decoding;
  OwnedPixels pixels = data ? decompress(decoding, data.get(), length) : nullptr;
  if (!pixels) {
    v_error_append("Failed decompressing JPEG image.");
    return nullptr;
  }
  width = static_cast<int>(decoding.library.output_width);
  height = static_cast<int>(decoding.library.output_height);
  return pixels;
}
