#include "base/error.h"

#include <cerrno>
#include <cstring>

#include <zip.h>

#include "base/text_buffer.h"

const char *v_error_message_unknown = "An unknown program error has occured.";

namespace {

constexpr const char *out_of_memory_text = "The program has run out of memory.";
constexpr const char *informative_out_of_memory_text =
    "The program has run out of memory.\n"
    "\n"
    "Suggestion: Consider increasing memory by adding more RAM to the computer or by\n"
    "increasing the amount of virtual memory on your system.\n"
    "\n"
    "Alternatively, it could be that you have too many things open/running on your\n"
    "computer simultaneously.";

// Values of cairo_status_t; this folder does not include cairo's headers.
enum CairoStatus {
  cairo_no_memory = 1,
  cairo_read_error = 10,
  cairo_write_error = 11,
  cairo_file_not_found = 18,
  cairo_png_error = 39,
};

OwnedText error;
bool did_run_out_of_memory = false;

void discard() {
  error.reset();
  did_run_out_of_memory = false;
}

// The caller has already built the text, so it may be derived from the old message.
void store(OwnedText text, bool out_of_memory = false) {
  error = std::move(text);
  did_run_out_of_memory = out_of_memory;
}

void put_in_front(OwnedText text) {
  error = error ? OwnedText(g_strdup_printf("%s\n\n%s", text.get(), error.get())) : std::move(text);
}

} // namespace

void v_error_set(const char *text) { store(copy_text(text)); }

void v_error_set_utf8_printf(const char *format, ...) {
  discard();
  V_FORMAT_ARGUMENTS(text, format);
  store(std::move(text));
}

void v_error_append(const char *text) { put_in_front(copy_text(text)); }

void v_error_append_utf8_printf(const char *format, ...) {
  V_FORMAT_ARGUMENTS(text, format);
  put_in_front(std::move(text));
}

void v_error_append_utf8_vprintf(const char *format, va_list arguments) {
  put_in_front(OwnedText(g_strdup_vprintf(format, arguments)));
}

void v_error_clear() { discard(); }

const char *v_error_get() { return error ? error.get() : ""; }

VErrorCopy v_error_copy() { return {copy_text(error.get()), did_run_out_of_memory}; }

void v_error_restore(VErrorCopy copy) {
  store(std::move(copy.message), copy.did_run_out_of_memory);
}

void v_error_set_file_io_reading() { v_error_set("File I/O error when reading file."); }

void v_error_set_file_io_reading_broken_file() {
  v_error_set("File I/O error when reading file: The file is broken.");
}

void v_error_set_file_io_writing() { v_error_set("File I/O error when writing to file."); }

void v_error_set_not_enough_diskspace() {
  v_error_set("There is not enough disk space on this computer.");
}

void v_error_set_out_of_memory() { store(copy_text(out_of_memory_text), true); }

void v_error_set_informative_out_of_memory() {
  store(copy_text(informative_out_of_memory_text), true);
}

void v_error_set_unknown() { v_error_set(v_error_message_unknown); }

void v_error_set_from_errno() {
  const int number = errno;
  v_error_set_utf8_printf("Error %d: %s", number, g_strerror(number));
}

void v_error_set_from_gerror_and_free(GError *gerror) {
  const OwnedError owned(gerror);
  v_error_set_utf8_printf("GError %d: %s", owned->code, owned->message);
}

void v_error_set_from_zip_error(struct zip_error *zip_error) {
  v_error_set(zip_error_strerror(zip_error));
}

void v_error_set_from_zip_error_code(int code) {
  zip_error_t zip_error;
  zip_error_init(&zip_error);
  zip_error_init_with_code(&zip_error, code);
  v_error_set_from_zip_error(&zip_error);
  zip_error_fini(&zip_error);
}

void v_error_set_from_cairo_status(int status) {
  switch (status) {
  case cairo_no_memory:
    v_error_set_out_of_memory();
    break;
  case cairo_read_error:
    v_error_set("Error reading data.");
    break;
  case cairo_write_error:
    v_error_set("Error writing data.");
    break;
  case cairo_file_not_found:
    v_error_set("File not found error.");
    break;
  case cairo_png_error:
    v_error_set("PNG error.");
    break;
  default:
    v_error_set("An internal error in the graphics subsystem occurred.");
  }
}

bool v_error_did_run_out_of_memory() { return did_run_out_of_memory; }

bool v_error_make_more_informative_if_out_of_memory() {
  if (!did_run_out_of_memory) {
    return false;
  }
  v_error_set_informative_out_of_memory();
  return true;
}

void v_error_limit_line_count(int maximum_line_count) {
  if (!error || maximum_line_count < 0) {
    return;
  }
  const char *start = error.get();
  const char *cut = start;
  for (int line = 0; line < maximum_line_count; line++) {
    const char *newline = std::strchr(cut, '\n');
    if (newline == nullptr) {
      return;
    }
    cut = newline + 1;
  }
  while (cut > start && cut[-1] == '\n') {
    cut--;
  }
  const OwnedText kept(g_strndup(start, static_cast<gsize>(cut - start)));
  error.reset(g_strdup_printf("%s\n\n(Error message truncated.)", kept.get()));
}
