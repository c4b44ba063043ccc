#pragma once
// Byte streams with one interface for files, memory blocks and entries of a zip archive, and
// copying between them. Functions that fail return false and set a message.

#include <cstddef>

#include "base/owned.h"

struct zip;
struct zip_file;

struct CloseUnlessBorrowed {
  bool is_borrowed = false;
  void operator()(std::FILE *file) const noexcept;
  void operator()(struct zip_file *entry) const noexcept;
};

enum class VStreamKind { file, memory, zip_entry };

struct VInputStream {
  VStreamKind kind = VStreamKind::memory;
  // The source; null for a file or an entry that could not be opened, so that the first read fails.
  OwnedFile file;
  std::unique_ptr<struct zip_file, CloseUnlessBorrowed> zip_entry;
  const std::byte *data = nullptr;
  // Memory: the bytes in the caller's block, and the number of those already read.
  std::size_t length = 0;
  std::size_t position = 0;
  // File and zip entry: v_input_stream_get_some returns a pointer to it.
  std::byte buffer[4096];
};

struct VOutputStream {
  VStreamKind kind = VStreamKind::memory;
  // Null when the file could not be created, and once the stream has closed it.
  std::unique_ptr<std::FILE, CloseUnlessBorrowed> file;
  OwnedText path; // UTF-8; set when the stream created the file itself
  // File: true after a failed write, or after a failed read of the source of a copy.
  bool is_incomplete = false;
  Owned<GByteArray, g_byte_array_unref> memory; // created by the first write
};

void v_input_stream_destroy(VInputStream *stream);
// Closes a file that the stream created, and deletes it if it is incomplete.
void v_output_stream_destroy(VOutputStream *stream);
using OwnedInputStream = Owned<VInputStream, v_input_stream_destroy>;
using OwnedOutputStream = Owned<VOutputStream, v_output_stream_destroy>;

// Never null; when the file cannot be opened, the first read fails.
OwnedInputStream v_input_stream_new_for_file_path(const char *path);
// Reads the caller's block, which must outlive the stream.
OwnedInputStream v_input_stream_new_for_memory(const void *data, std::size_t length);
// Reads an entry that the caller has opened, and closes later.
OwnedInputStream v_input_stream_new_for_zip_file(struct zip_file *entry);
// Never null; when the entry cannot be opened, the message is "Could not open compressed file."
// before the archive's, and the first read fails.
OwnedInputStream v_input_stream_new_for_zip_file_path(struct zip *archive, const char *entry_name);

// Reads up to n bytes; count is less than n only near the end of the data, and 0 at the end. False
// with "Opening input file failed.", "File read error.", "Opening compressed input file failed." or
// "Compressed file read error.".
bool v_input_stream_read(VInputStream *stream, void *buffer, std::size_t n, std::size_t &count);
// The next block of data, valid until the next call; length 0 is the end. A memory stream returns
// all that is left at once.
bool v_input_stream_get_some(VInputStream *stream, const std::byte *&data, std::size_t &length);
// Skips n bytes. A file can be skipped beyond its end; one that is not seekable fails with the
// system's message. Skipping beyond the end fails in memory ("Memory buffer end reached
// prematurely.", without moving) and in zip entries ("Premature end of data stream.").
bool v_input_stream_skip(VInputStream *stream, std::size_t n);

// Deletes the file at the path and creates a new one. Never null; a file that cannot be deleted is
// left unchanged. In that case, and when no file can be created, the first write of at least one
// byte fails.
OwnedOutputStream v_output_stream_new_for_file_path(const char *path);
// Writes to the caller's file, which destroying the stream does not close.
OwnedOutputStream v_output_stream_new_for_file(std::FILE *file);
OwnedOutputStream v_output_stream_new_for_memory();
// False with "Creating file failed.", "File write error." or, for 4 GiB or more in memory, "The
// program has run out of memory.". Writing 0 bytes never fails.
bool v_output_stream_write(VOutputStream *stream, const void *data, std::size_t n);
// Flushes the file, and closes it if the stream created it, so that a full disk is detected while
// it can still be reported. False with "File write error.", or "Creating file failed." when no file
// was created. Does nothing for a memory stream and for a file that is already finished.
bool v_output_stream_finish(VOutputStream *stream);
// The bytes written to a memory stream, followed by a zero byte that length does not count; the
// stream is empty afterwards. "" and length 0 for any other stream.
OwnedText v_output_stream_get_memory_data(VOutputStream *stream, std::size_t &length);

// The rest of the stream, followed by a zero byte that length does not count. Null on failure.
OwnedText v_stream_copy_to_memory(VInputStream *stream, std::size_t &length);
OwnedText v_stream_copy_from_zip_file_path_to_memory(struct zip *archive, const char *entry_name,
                                                     std::size_t &length);
// Copies byte for byte and replaces the destination. Does nothing when the two paths are the same
// text. When the source cannot be opened, or the first read fails, the destination is left empty;
// when a later read or a write fails, it is deleted.
bool v_stream_copy_from_file_path_to_file_path(const char *source, const char *destination);
