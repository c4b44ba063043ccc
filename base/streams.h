#pragma once
// Byte streams with one interface over files, memory blocks and entries of a zip archive, and the
// copies built on them. Failing operations return false and leave a message.

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
  // The source; null for a file or an entry that could not be opened: the first read then fails.
  OwnedFile file;
  std::unique_ptr<struct zip_file, CloseUnlessBorrowed> zip_entry;
  const std::byte *data = nullptr;
  // Memory: bytes in the caller's block, and how many of them are read.
  std::size_t length = 0;
  std::size_t position = 0;
  // File and zip entry: v_input_stream_get_some returns a pointer into it.
  std::byte buffer[4096];
};

struct VOutputStream {
  VStreamKind kind = VStreamKind::memory;
  // Null when the file could not be created, and once the stream has closed it.
  std::unique_ptr<std::FILE, CloseUnlessBorrowed> file;
  OwnedText path; // UTF-8; set when the stream created the file itself
  // File: true after a failed write, or a failed read of the source that is copied. The file is
  // then not complete.
  bool is_incomplete = false;
  Owned<GByteArray, g_byte_array_unref> memory; // made at the first write
};

void v_input_stream_destroy(VInputStream *stream);
// Closes a file that the stream created, and deletes it if it is incomplete.
void v_output_stream_destroy(VOutputStream *stream);
using OwnedInputStream = Owned<VInputStream, v_input_stream_destroy>;
using OwnedOutputStream = Owned<VOutputStream, v_output_stream_destroy>;

// Always a stream; when the file cannot be opened its first read fails.
OwnedInputStream v_input_stream_new_for_file_path(const char *path);
// Reads the caller's block, which must outlive the stream.
OwnedInputStream v_input_stream_new_for_memory(const void *data, std::size_t length);
// Reads an entry that the caller has opened and closes.
OwnedInputStream v_input_stream_new_for_zip_file(struct zip_file *entry);
// Always a stream; an entry that cannot be opened leaves the archive's message with "Could not open
// compressed file." in front, and the first read fails.
OwnedInputStream v_input_stream_new_for_zip_file_path(struct zip *archive, const char *entry_name);

// Reads up to n bytes; count is below n only at the end of the data, 0 at the end. "Opening input
// file failed.", "File read error.", "Opening compressed input file failed.", "Compressed file read
// error.".
bool v_input_stream_read(VInputStream *stream, void *buffer, std::size_t n, std::size_t &count);
// The next piece, valid until the next call; length 0 is the end. A memory stream gives all that is
// left at once.
bool v_input_stream_get_some(VInputStream *stream, const std::byte *&data, std::size_t &length);
// Skips n bytes. A file can be skipped beyond its end; one in which the position cannot be set
// fails with the system's message. Memory ("Memory buffer end reached prematurely.", the position
// stays) and zip entries ("Premature end of data stream.") cannot be skipped beyond their end.
bool v_input_stream_skip(VInputStream *stream, std::size_t n);

// Deletes the file at the path and creates a new one. Always a stream; when the file cannot be
// deleted it is left alone, and then, as when it cannot be created, the first write of at least one
// byte fails.
OwnedOutputStream v_output_stream_new_for_file_path(const char *path);
// Writes to the caller's file, which stays open when the stream is destroyed.
OwnedOutputStream v_output_stream_new_for_file(std::FILE *file);
OwnedOutputStream v_output_stream_new_for_memory();
// "Creating file failed.", "File write error."; memory holds less than 4 GiB ("The program has run
// out of memory."). Nothing is written for n = 0, which never fails.
bool v_output_stream_write(VOutputStream *stream, const void *data, std::size_t n);
// Ends the writing: hands everything to the system and closes a file that the stream created, so
// that a full disk is noticed while it can still be reported. "File write error.", or "Creating
// file failed." when no file was created. Does nothing for a memory stream and for a file that is
// already finished.
bool v_output_stream_finish(VOutputStream *stream);
// The bytes written to a memory stream, followed by a zero byte that length does not count; the
// stream is empty afterwards. Any other stream gives "" and length 0.
OwnedText v_output_stream_get_memory_data(VOutputStream *stream, std::size_t &length);

// The rest of the stream, followed by a zero byte that length does not count. Null on failure.
OwnedText v_stream_copy_to_memory(VInputStream *stream, std::size_t &length);
OwnedText v_stream_copy_from_zip_file_path_to_memory(struct zip *archive, const char *entry_name,
                                                     std::size_t &length);
// Copies byte for byte and replaces the destination. Two equal path texts succeed without
// touching anything. A source that cannot be opened, or of which nothing can be read, leaves an
// empty destination; one that cannot be read to its end, and a failed write, leave none.
bool v_stream_copy_from_file_path_to_file_path(const char *source, const char *destination);
