#pragma once
// The error state: one process-wide message (UTF-8) and a flag that says whether the message
// reports exhausted memory. The function that detects the root cause of a failure sets the message,
// each caller that adds context puts a sentence in front, and the action that started the work
// shows the complete message. Success never clears it: read it only right after an operation has
// reported failure. GUI thread only.

#include <cstdarg>
#include <utility>

#include <glib.h>

#include "base/owned.h"

struct zip_error;

// Text for failures that should be impossible. Writable: a program may set its own text.
extern const char *v_error_message_unknown;

// Replaces the message by a copy of the text and resets the flag.
void v_error_set(const char *text);
// The old message is discarded before the arguments are read: they must not point into it.
void v_error_set_utf8_printf(const char *format, ...) G_GNUC_PRINTF(1, 2);

// Puts the text and a blank line in front of the message; if there is none, the text becomes the
// message. The flag is unchanged.
void v_error_append(const char *text);
void v_error_append_utf8_printf(const char *format, ...) G_GNUC_PRINTF(1, 2);
void v_error_append_utf8_vprintf(const char *format, va_list arguments) G_GNUC_PRINTF(1, 0);

void v_error_clear();
// The message (borrowed, valid until the next change), "" when there is none; never null.
const char *v_error_get();

// A copy of the error state: the message, null when there was none, and the flag.
struct VErrorCopy {
  OwnedText message;
  bool did_run_out_of_memory = false;
};
VErrorCopy v_error_copy();
// Replaces the error state by the copy.
void v_error_restore(VErrorCopy copy);

// Keeps the error state during a clean-up that may fail: the destructor restores the state that the
// constructor found.
class VErrorKeeper {
public:
  VErrorKeeper() : kept(v_error_copy()) {}
  ~VErrorKeeper() { v_error_restore(std::move(kept)); }
  VErrorKeeper(const VErrorKeeper &) = delete;
  VErrorKeeper &operator=(const VErrorKeeper &) = delete;

private:
  VErrorCopy kept;
};

void v_error_set_file_io_reading();
void v_error_set_file_io_reading_broken_file();
void v_error_set_file_io_writing();
void v_error_set_not_enough_diskspace();
void v_error_set_out_of_memory();
void v_error_set_informative_out_of_memory();
void v_error_set_unknown();

// "Error <number>: <the system's text>" for the current errno.
void v_error_set_from_errno();
// "GError <code>: <message>"; takes ownership of the error and frees it.
void v_error_set_from_gerror_and_free(GError *error);
void v_error_set_from_zip_error(struct zip_error *error);
void v_error_set_from_zip_error_code(int code);
// status is a cairo_status_t.
void v_error_set_from_cairo_status(int status);

// True when the message reports exhausted memory.
bool v_error_did_run_out_of_memory();
// Replaces an out-of-memory message by the longer one with advice and returns true; for any other
// message, changes nothing and returns false.
bool v_error_make_more_informative_if_out_of_memory();

// Truncates the message after maximum_line_count line feeds, drops blank lines before the cut and
// adds a paragraph that says so. Does nothing when the message has fewer line feeds or the count is
// negative.
void v_error_limit_line_count(int maximum_line_count);
