#include "app/jpeg_decoding.h"

#include <csetjmp>
#include <cstdio>

#include <jpeglib.h>

#include <jerror.h>

#include "base/error.h"

namespace {

using OwnedRow = Owned<JSAMPLE, g_free>;

// What the guarded steps work on. They are left by a jump when the library finds an error, so
// nothing in them may need a destructor: this record and the owners of what it borrows stand in the
// function that runs the steps.
struct Decoding {
  jpeg_decompress_struct library = {};
  jpeg_error_mgr errors = {};
  jpeg_source_mgr source = {};
  std::jmp_buf unwinding;
  VInputStream *stream = nullptr;
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

// The one place to which every error of the library unwinds; its message is set by then.
bool run_guarded(Decoding *decoding, void (*step)(Decoding *)) {
  if (setjmp(decoding->unwinding) != 0) {
    return false;
  }
  step(decoding);
  return true;
}

void begin_source(j_decompress_ptr) {}

void end_source(j_decompress_ptr) {}

boolean fill_source(j_decompress_ptr library) {
  Decoding *decoding = decoding_of(library);
  const std::byte *data = nullptr;
  std::size_t length = 0;
  if (!v_input_stream_get_some(decoding->stream, data, length)) {
    std::longjmp(decoding->unwinding, 1);
  }
  if (length == 0) {
    ERREXIT(library, JERR_INPUT_EOF);
  }
  library->src->next_input_byte = reinterpret_cast<const JOCTET *>(data);
  library->src->bytes_in_buffer = length;
  return TRUE;
}

void skip_source(j_decompress_ptr library, long count) {
  if (count <= 0) {
    return;
  }
  jpeg_source_mgr *source = library->src;
  auto left = static_cast<std::size_t>(count);
  while (left > source->bytes_in_buffer) {
    left -= source->bytes_in_buffer;
    fill_source(library);
  }
  source->next_input_byte += left;
  source->bytes_in_buffer -= left;
}

void set_handlers(Decoding *decoding) {
  decoding->library.err = jpeg_std_error(&decoding->errors);
  decoding->errors.error_exit = unwind_with_message;
  decoding->errors.output_message = ignore_message;
  decoding->library.client_data = decoding;
  decoding->source.init_source = begin_source;
  decoding->source.fill_input_buffer = fill_source;
  decoding->source.skip_input_data = skip_source;
  decoding->source.resync_to_restart = jpeg_resync_to_restart;
  decoding->source.term_source = end_source;
}

void start(Decoding *decoding) {
  j_decompress_ptr library = &decoding->library;
  jpeg_create_decompress(library);
  library->src = &decoding->source;
  jpeg_read_header(library, TRUE);
  library->out_color_space = JCS_RGB;
  jpeg_start_decompress(library);
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

OwnedRow create_row(const Decoding &decoding) {
  OwnedRow row(static_cast<JSAMPLE *>(g_try_malloc_n(decoding.library.output_width, 3)));
  if (!row) {
    v_error_set_out_of_memory();
  }
  return row;
}

OwnedPixels decompress(Decoding &decoding) {
  set_handlers(&decoding);
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
  Decoding decoding;
  decoding.stream = stream;
  OwnedPixels pixels = decompress(decoding);
  if (!pixels) {
    v_error_append("Failed decompressing JPEG image.");
    return nullptr;
  }
  width = static_cast<int>(decoding.library.output_width);
  height = static_cast<int>(decoding.library.output_height);
  return pixels;
}
