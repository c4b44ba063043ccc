#include "base/streams.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

#include <zip.h>

#include "base/error.h"
#include "base/fs_utils.h"

void CloseUnlessBorrowed::operator()(std::FILE *file) const noexcept {
  if (!is_borrowed) {
    std::fclose(file);
  }
}

void CloseUnlessBorrowed::operator()(struct zip_file *entry) const noexcept {
  if (!is_borrowed) {
    zip_fclose(entry);
  }
}

namespace {

bool fail_with_message(const char *message) {
  v_error_set(message);
  return false;
}

bool read_file(VInputStream *stream, void *buffer, std::size_t n, std::size_t &count) {
  if (!stream->file) {
    return fail_with_message("Opening input file failed.");
  }
  count = std::fread(buffer, 1, n, stream->file.get());
  return !std::ferror(stream->file.get()) || fail_with_message("File read error.");
}

bool read_memory(VInputStream *stream, void *buffer, std::size_t n, std::size_t &count) {
  count = std::min(n, stream->length - stream->position);
  std::copy_n(stream->data + stream->position, count, static_cast<std::byte *>(buffer));
  stream->position += count;
  return true;
}

bool read_zip_entry(VInputStream *stream, void *buffer, std::size_t n, std::size_t &count) {
  if (!stream->zip_entry) {
    v_error_append("Opening compressed input file failed.");
    return false;
  }
  const zip_int64_t bytes_read = zip_fread(stream->zip_entry.get(), buffer, n);
  if (bytes_read < 0) {
    v_error_set_from_zip_error(zip_file_get_error(stream->zip_entry.get()));
    v_error_append("Compressed file read error.");
    return false;
  }
  count = static_cast<std::size_t>(bytes_read);
  return true;
}

bool skip_memory(VInputStream *stream, std::size_t n) {
  if (stream->length - stream->position < n) {
    return fail_with_message("Memory buffer end reached prematurely.");
  }
  stream->position += n;
  return true;
}

bool skip_file(VInputStream *stream, std::size_t n) {
  if (!stream->file) {
    return fail_with_message("Opening input file failed.");
  }
  const bool is_in_range = std::in_range<off_t>(n);
  if (!is_in_range) {
    errno = EOVERFLOW;
  }
  if (!is_in_range || fseeko(stream->file.get(), static_cast<off_t>(n), SEEK_CUR) != 0) {
    v_error_set_from_errno();
    return false;
  }
  return true;
}

bool skip_zip_entry(VInputStream *stream, std::size_t n) {
  std::byte passed[1024];
  while (n > 0) {
    std::size_t count = 0;
    if (!v_input_stream_read(stream, passed, std::min(n, sizeof passed), count)) {
      return false;
    }
    if (count == 0) {
      return fail_with_message("Premature end of data stream.");
    }
    n -= count;
  }
  return true;
}

bool write_memory(VOutputStream *stream, const void *data, std::size_t n) {
  if (!stream->memory) {
    stream->memory.reset(g_byte_array_new());
  }
  // Reserves one byte for the terminator.
  if (n >= G_MAXUINT - stream->memory->len) {
    v_error_set_out_of_memory();
    return false;
  }
  g_byte_array_append(stream->memory.get(), static_cast<const guint8 *>(data),
                      static_cast<guint>(n));
  return true;
}

// Sets no message: destroying a stream after a failure must keep the message of that failure.
void finish_file(VOutputStream *stream) {
  if (!stream->file) {
    return;
  }
  bool is_complete = std::fflush(stream->file.get()) == 0 && !std::ferror(stream->file.get());
  if (!stream->file.get_deleter().is_borrowed) {
    is_complete = std::fclose(stream->file.release()) == 0 && is_complete;
  }
  stream->is_incomplete = stream->is_incomplete || !is_complete;
}

bool copy(VInputStream *source, VOutputStream *destination) {
  for (bool is_begun = false;; is_begun = true) {
    const std::byte *data = nullptr;
    std::size_t length = 0;
    if (!v_input_stream_get_some(source, data, length)) {
      // A partial copy must not be mistaken for a complete one.
      destination->is_incomplete = is_begun;
      return false;
    }
    if (length == 0) {
      return v_output_stream_finish(destination);
    }
    if (!v_output_stream_write(destination, data, length)) {
      return false;
    }
  }
}

} // namespace

OwnedInputStream v_input_stream_new_for_file_path(const char *path) {
  OwnedInputStream stream(new VInputStream);
  stream->kind = VStreamKind::file;
  stream->file = v_fs_utils_open_file(path, "rb");
  return stream;
}

OwnedInputStream v_input_stream_new_for_memory(const void *data, std::size_t length) {
  OwnedInputStream stream(new VInputStream);
  stream->kind = VStreamKind::memory;
  stream->data = static_cast<const std::byte *>(data);
  stream->length = length;
  return stream;
}

OwnedInputStream v_input_stream_new_for_zip_file(struct zip_file *entry) {
  OwnedInputStream stream(new VInputStream);
  stream->kind = VStreamKind::zip_entry;
  stream->zip_entry = {entry, CloseUnlessBorrowed{.is_borrowed = true}};
  return stream;
}

OwnedInputStream v_input_stream_new_for_zip_file_path(struct zip *archive, const char *entry_name) {
  OwnedInputStream stream(new VInputStream);
  stream->kind = VStreamKind::zip_entry;
  stream->zip_entry.reset(zip_fopen(archive, entry_name, ZIP_FL_ENC_GUESS));
  if (!stream->zip_entry) {
    v_error_set_from_zip_error(zip_get_error(archive));
    v_error_append("Could not open compressed file.");
  }
  return stream;
}

bool v_input_stream_read(VInputStream *stream, void *buffer, std::size_t n, std::size_t &count) {
  count = 0;
  switch (stream->kind) {
  case VStreamKind::file:
    return read_file(stream, buffer, n, count);
  case VStreamKind::memory:
    return read_memory(stream, buffer, n, count);
  case VStreamKind::zip_entry:
    break;
  }
  return read_zip_entry(stream, buffer, n, count);
}

bool v_input_stream_get_some(VInputStream *stream, const std::byte *&data, std::size_t &length) {
  if (stream->kind != VStreamKind::memory) {
    data = stream->buffer;
    return v_input_stream_read(stream, stream->buffer, sizeof stream->buffer, length);
  }
  data = stream->data + stream->position;
  length = stream->length - stream->position;
  stream->position = stream->length;
  return true;
}

bool v_input_stream_skip(VInputStream *stream, std::size_t n) {
  switch (stream->kind) {
  case VStreamKind::file:
    return skip_file(stream, n);
  case VStreamKind::memory:
    return skip_memory(stream, n);
  case VStreamKind::zip_entry:
    break;
  }
  return skip_zip_entry(stream, n);
}

void v_input_stream_destroy(VInputStream *stream) { delete stream; }

OwnedOutputStream v_output_stream_new_for_file_path(const char *path) {
  OwnedOutputStream stream(new VOutputStream);
  stream->kind = VStreamKind::file;
  // A file that cannot be deleted is not truncated instead: it may be the source of the copy, and
  // the part that a failed write leaves could not be removed.
  if (v_fs_utils_delete_file_if_exists(path)) {
    stream->file.reset(v_fs_utils_open_file(path, "wb").release());
  }
  stream->path = stream->file ? copy_text(path) : nullptr;
  return stream;
}

OwnedOutputStream v_output_stream_new_for_file(std::FILE *file) {
  OwnedOutputStream stream(new VOutputStream);
  stream->kind = VStreamKind::file;
  stream->file = {file, CloseUnlessBorrowed{.is_borrowed = true}};
  return stream;
}

OwnedOutputStream v_output_stream_new_for_memory() { return OwnedOutputStream(new VOutputStream); }

bool v_output_stream_write(VOutputStream *stream, const void *data, std::size_t n) {
  if (n == 0) {
    return true;
  }
  if (stream->kind == VStreamKind::memory) {
    return write_memory(stream, data, n);
  }
  if (!stream->file) {
    return fail_with_message("Creating file failed.");
  }
  if (std::fwrite(data, 1, n, stream->file.get()) < n) {
    stream->is_incomplete = true;
    return fail_with_message("File write error.");
  }
  return true;
}

bool v_output_stream_finish(VOutputStream *stream) {
  if (stream->kind == VStreamKind::file && !stream->file && !stream->path) {
    return fail_with_message("Creating file failed.");
  }
  finish_file(stream);
  return !stream->is_incomplete || fail_with_message("File write error.");
}

OwnedText v_output_stream_get_memory_data(VOutputStream *stream, std::size_t &length) {
  length = 0;
  if (!stream->memory) {
    return copy_text("");
  }
  length = stream->memory->len;
  const guint8 terminator = 0;
  g_byte_array_append(stream->memory.get(), &terminator, 1);
  return OwnedText(reinterpret_cast<char *>(g_byte_array_free(stream->memory.release(), FALSE)));
}

void v_output_stream_destroy(VOutputStream *stream) {
  if (stream == nullptr) {
    return;
  }
  if (stream->path) {
    finish_file(stream);
    if (stream->is_incomplete) {
      v_fs_utils_discard_file(stream->path.get());
    }
  }
  delete stream;
}

OwnedText v_stream_copy_to_memory(VInputStream *stream, std::size_t &length) {
  const OwnedOutputStream memory = v_output_stream_new_for_memory();
  if (!copy(stream, memory.get())) {
    length = 0;
    return nullptr;
  }
  return v_output_stream_get_memory_data(memory.get(), length);
}

OwnedText v_stream_copy_from_zip_file_path_to_memory(struct zip *archive, const char *entry_name,
                                                     std::size_t &length) {
  return v_stream_copy_to_memory(v_input_stream_new_for_zip_file_path(archive, entry_name).get(),
                                 length);
}

bool v_stream_copy_from_file_path_to_file_path(const char *source, const char *destination) {
  if (std::strcmp(source, destination) == 0) {
    return true;
  }
  // Open the source first: if both paths name the same file, the destination's stream deletes it.
  const OwnedInputStream input = v_input_stream_new_for_file_path(source);
  const OwnedOutputStream output = v_output_stream_new_for_file_path(destination);
  return copy(input.get(), output.get());
}
