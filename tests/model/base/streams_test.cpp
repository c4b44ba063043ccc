#include "base/streams.h"

#include <cerrno>
#include <cstdint>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zip.h>

#include "base/error.h"
#include "base/fs_utils.h"
#include "support/child_process.h"
#include "support/files.h"

namespace {

using OwnedArchive = Owned<zip_t, zip_discard>;
using OwnedEntry = std::unique_ptr<zip_file_t, CloseUnlessBorrowed>;

struct Entry {
  std::string name;
  std::string content;
  int compression = ZIP_CM_DEFLATE;
};

// The bytes of an archive with these entries.
std::string pack(const std::vector<Entry> &entries) {
  zip_source_t *packed = zip_source_buffer_create(nullptr, 0, 0, nullptr);
  zip_source_keep(packed);
  zip_t *archive = zip_open_from_source(packed, ZIP_TRUNCATE, nullptr);
  for (const Entry &entry : entries) {
    const zip_int64_t index =
        zip_file_add(archive, entry.name.c_str(),
                     zip_source_buffer(archive, entry.content.data(), entry.content.size(), 0),
                     ZIP_FL_ENC_UTF_8);
    zip_set_file_compression(archive, static_cast<zip_uint64_t>(index), entry.compression, 9);
  }
  EXPECT_EQ(zip_close(archive), 0);
  zip_stat_t status;
  EXPECT_EQ(zip_source_stat(packed, &status), 0);
  std::string bytes(status.size, '\0');
  EXPECT_EQ(zip_source_open(packed), 0);
  EXPECT_EQ(zip_source_read(packed, bytes.data(), bytes.size()),
            static_cast<zip_int64_t>(bytes.size()));
  zip_source_close(packed);
  zip_source_free(packed);
  return bytes;
}

// `bytes` is borrowed and must outlive the archive.
OwnedArchive open_archive(const std::string &bytes) {
  zip_source_t *source = zip_source_buffer_create(bytes.data(), bytes.size(), 0, nullptr);
  return OwnedArchive(zip_open_from_source(source, ZIP_RDONLY, nullptr));
}

// Bytes of every value. The pattern does not repeat at the size of a read buffer.
std::string varied_bytes(std::size_t length) {
  std::string bytes;
  for (std::size_t i = 0; i < length; i++) {
    bytes += static_cast<char>((i * 7 + i / 256) % 256);
  }
  return bytes;
}

// Reads at most n bytes. Returns them, or the message on failure.
std::string read_some(VInputStream *stream, std::size_t n) {
  std::string buffer(n, '?');
  std::size_t count = 4711;
  if (!v_input_stream_read(stream, buffer.data(), n, count)) {
    return v_error_get();
  }
  EXPECT_LE(count, n);
  return buffer.substr(0, count);
}

std::string next_piece(VInputStream *stream) {
  const std::byte *data = nullptr;
  std::size_t length = 4711;
  if (!v_input_stream_get_some(stream, data, length)) {
    return v_error_get();
  }
  return {reinterpret_cast<const char *>(data), length};
}

std::string skip(VInputStream *stream, std::size_t n) {
  return v_input_stream_skip(stream, n) ? "done" : v_error_get();
}

std::string write(VOutputStream *stream, const std::string &bytes) {
  return v_output_stream_write(stream, bytes.data(), bytes.size()) ? "done" : v_error_get();
}

std::string copy(const std::string &source, const std::string &destination) {
  return v_stream_copy_from_file_path_to_file_path(source.c_str(), destination.c_str())
             ? "done"
             : v_error_get();
}

std::string memory_data(VOutputStream *stream) {
  std::size_t length = 4711;
  const OwnedText data = v_output_stream_get_memory_data(stream, length);
  EXPECT_EQ(data.get()[length], '\0');
  return {data.get(), length};
}

std::string entry_to_memory(zip_t *archive, const char *name) {
  std::size_t length = 4711;
  const OwnedText data = v_stream_copy_from_zip_file_path_to_memory(archive, name, length);
  if (!data) {
    EXPECT_EQ(length, 0U);
    return v_error_get();
  }
  EXPECT_EQ(data.get()[length], '\0');
  return {data.get(), length};
}

constexpr const char *missing_entry_message =
    "Opening compressed input file failed.\n\nCould not open compressed file.\n\nNo such file";

} // namespace

// Memory

TEST(MemoryInput, IsReadFromStartToEnd) {
  const std::string data = "abc\0defgh\xff";
  const OwnedInputStream stream = v_input_stream_new_for_memory(data.data(), data.size());
  EXPECT_EQ(read_some(stream.get(), 2), "ab");
  EXPECT_EQ(read_some(stream.get(), 0), "");
  EXPECT_EQ(read_some(stream.get(), data.size()), data.substr(2));
  EXPECT_EQ(read_some(stream.get(), 10), "");
}

TEST(MemoryInput, MayBeEmpty) {
  const OwnedInputStream stream = v_input_stream_new_for_memory(nullptr, 0);
  EXPECT_EQ(read_some(stream.get(), 10), "");
  EXPECT_EQ(next_piece(stream.get()), "");
  EXPECT_EQ(skip(stream.get(), 0), "done");
  EXPECT_EQ(skip(stream.get(), 1), "Memory buffer end reached prematurely.");
}

TEST(MemoryInput, GivesTheRestAtOnceWithoutACopy) {
  const std::string data = varied_bytes(10'000);
  const OwnedInputStream stream = v_input_stream_new_for_memory(data.data(), data.size());
  EXPECT_EQ(read_some(stream.get(), 3), data.substr(0, 3));
  const std::byte *piece = nullptr;
  std::size_t length = 0;
  ASSERT_TRUE(v_input_stream_get_some(stream.get(), piece, length));
  EXPECT_EQ(static_cast<const void *>(piece), data.data() + 3);
  EXPECT_EQ(length, data.size() - 3);
  EXPECT_EQ(next_piece(stream.get()), "");
  EXPECT_EQ(read_some(stream.get(), 1), "");
}

TEST(MemoryInput, CannotSkipPastItsEnd) {
  const std::string data = "x012345678";
  const OwnedInputStream stream = v_input_stream_new_for_memory(data.data(), data.size());
  EXPECT_EQ(skip(stream.get(), 1), "done");
  EXPECT_EQ(skip(stream.get(), 10), "Memory buffer end reached prematurely.");
  EXPECT_EQ(skip(stream.get(), std::numeric_limits<std::size_t>::max()),
            "Memory buffer end reached prematurely.");
  EXPECT_EQ(read_some(stream.get(), 9), "012345678");
}

TEST(MemoryInput, CanSkipToItsEnd) {
  const OwnedInputStream stream = v_input_stream_new_for_memory("abc", 3);
  EXPECT_EQ(skip(stream.get(), 3), "done");
  EXPECT_EQ(skip(stream.get(), 0), "done");
  EXPECT_EQ(read_some(stream.get(), 1), "");
}

// Files

TEST(FileInput, IsReadInPieces) {
  const TemporaryFolder folder;
  const std::string data = varied_bytes(10'000);
  write_file(folder / "file", data);
  const int before = count_open_descriptors();
  {
    const OwnedInputStream stream = v_input_stream_new_for_file_path((folder / "file").c_str());
    EXPECT_EQ(read_some(stream.get(), 10), data.substr(0, 10));
    EXPECT_EQ(next_piece(stream.get()), data.substr(10, 4096));
    EXPECT_EQ(next_piece(stream.get()), data.substr(4106, 4096));
    EXPECT_EQ(next_piece(stream.get()), data.substr(8202));
    EXPECT_EQ(next_piece(stream.get()), "");
    EXPECT_EQ(next_piece(stream.get()), "");
    EXPECT_EQ(count_open_descriptors(), before + 1);
  }
  EXPECT_EQ(count_open_descriptors(), before);
}

TEST(FileInput, MissingFileFailsAtTheFirstUse) {
  const TemporaryFolder folder;
  const OwnedInputStream stream = v_input_stream_new_for_file_path((folder / "missing").c_str());
  ASSERT_TRUE(stream);
  EXPECT_EQ(read_some(stream.get(), 1), "Opening input file failed.");
  EXPECT_EQ(read_some(stream.get(), 0), "Opening input file failed.");
  EXPECT_EQ(next_piece(stream.get()), "Opening input file failed.");
  EXPECT_EQ(skip(stream.get(), 1), "Opening input file failed.");
  EXPECT_EQ(skip(stream.get(), 0), "Opening input file failed.");
}

TEST(FileInput, FolderCanBeOpenedButNotRead) {
  const TemporaryFolder folder;
  const OwnedInputStream stream = v_input_stream_new_for_file_path(folder.path());
  EXPECT_EQ(read_some(stream.get(), 1), "File read error.");
  EXPECT_EQ(next_piece(stream.get()), "File read error.");
}

TEST(FileInput, CanSkipPastItsEnd) {
  const TemporaryFolder folder;
  write_file(folder / "file", varied_bytes(5000) + "tail");
  const OwnedInputStream stream = v_input_stream_new_for_file_path((folder / "file").c_str());
  EXPECT_EQ(read_some(stream.get(), 1), varied_bytes(1));
  EXPECT_EQ(skip(stream.get(), 4999), "done");
  EXPECT_EQ(skip(stream.get(), 0), "done");
  EXPECT_EQ(read_some(stream.get(), 2), "ta");
  EXPECT_EQ(skip(stream.get(), 100'000), "done");
  EXPECT_EQ(read_some(stream.get(), 2), "");
}

TEST(FileInput, NeverSkipsBackward) {
  const TemporaryFolder folder;
  write_file(folder / "file", "abcdef");
  const OwnedInputStream stream = v_input_stream_new_for_file_path((folder / "file").c_str());
  EXPECT_EQ(read_some(stream.get(), 3), "abc");
  EXPECT_THAT(skip(stream.get(), std::numeric_limits<std::size_t>::max()),
              testing::MatchesRegex("Error [0-9]+: [^\n]+"));
  EXPECT_THAT(skip(stream.get(), static_cast<std::size_t>(std::numeric_limits<off_t>::max())),
              testing::MatchesRegex("Error [0-9]+: [^\n]+"));
  EXPECT_EQ(read_some(stream.get(), 3), "def");
}

TEST(FileInput, FailedSkipReportsOnlyTheSystemsText) {
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  const OwnedInputStream stream = v_input_stream_new_for_file_path("/dev/missing");
  stream->file.reset(fdopen(ends[0], "rb"));
  EXPECT_EQ(skip(stream.get(), 1), "Error " + std::to_string(ESPIPE) + ": " + g_strerror(ESPIPE));
  close(ends[1]);
}

TEST(FileInput, DestroyingNullIsAllowed) {
  v_input_stream_destroy(nullptr);
  v_output_stream_destroy(nullptr);
}

// Zip entries

TEST(ZipInput, IsReadInPiecesOfFullLength) {
  const std::string data = varied_bytes(10'000);
  const std::string packed = pack({{"icons/a b.png", data}, {"stored", data, ZIP_CM_STORE}});
  const OwnedArchive archive = open_archive(packed);
  ASSERT_TRUE(archive);
  for (const char *name : {"icons/a b.png", "stored"}) {
    const OwnedInputStream stream = v_input_stream_new_for_zip_file_path(archive.get(), name);
    EXPECT_EQ(read_some(stream.get(), 0), "");
    EXPECT_EQ(read_some(stream.get(), 5), data.substr(0, 5));
    EXPECT_EQ(next_piece(stream.get()), data.substr(5, 4096));
    EXPECT_EQ(read_some(stream.get(), 20'000), data.substr(4101));
    EXPECT_EQ(read_some(stream.get(), 1), "");
    EXPECT_EQ(next_piece(stream.get()), "");
  }
}

TEST(ZipInput, MissingEntryReportsTheReasonAtEachUse) {
  const std::string packed = pack({{"present", "x"}});
  const OwnedArchive archive = open_archive(packed);
  ASSERT_TRUE(archive);
  OwnedInputStream stream = v_input_stream_new_for_zip_file_path(archive.get(), "missing");
  ASSERT_TRUE(stream);
  EXPECT_STREQ(v_error_get(), "Could not open compressed file.\n\nNo such file");
  EXPECT_EQ(read_some(stream.get(), 1), missing_entry_message);
  stream = v_input_stream_new_for_zip_file_path(archive.get(), "missing");
  EXPECT_EQ(next_piece(stream.get()), missing_entry_message);
  stream = v_input_stream_new_for_zip_file_path(archive.get(), "missing");
  EXPECT_EQ(skip(stream.get(), 0), "done");
  EXPECT_EQ(skip(stream.get(), 1), missing_entry_message);
}

TEST(ZipInput, NamesMatchExactly) {
  const std::string packed = pack({{"%s<&>\u00e5", "x"}, {"A", "y"}});
  const OwnedArchive archive = open_archive(packed);
  ASSERT_TRUE(archive);
  EXPECT_EQ(entry_to_memory(archive.get(), "%s<&>\u00e5"), "x");
  EXPECT_EQ(entry_to_memory(archive.get(), "a"), missing_entry_message);
}

class SkippingInZip : public testing::TestWithParam<std::size_t> {};

TEST_P(SkippingInZip, SkipsExactlyTheGivenNumberOfBytes) {
  const std::string data = varied_bytes(5000);
  const std::string packed = pack({{"entry", data}});
  const OwnedArchive archive = open_archive(packed);
  ASSERT_TRUE(archive);
  const OwnedInputStream stream = v_input_stream_new_for_zip_file_path(archive.get(), "entry");
  EXPECT_EQ(skip(stream.get(), GetParam()), "done");
  EXPECT_EQ(read_some(stream.get(), 10'000), data.substr(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(Streams, SkippingInZip,
                         testing::Values(0, 1, 1023, 1024, 1025, 2047, 2048, 2049, 4096, 4999,
                                         5000));

TEST(ZipInput, CannotSkipPastItsEnd) {
  const std::string packed = pack({{"entry", varied_bytes(2048)}});
  const OwnedArchive archive = open_archive(packed);
  ASSERT_TRUE(archive);
  for (const std::size_t n : {std::size_t{2049}, std::numeric_limits<std::size_t>::max()}) {
    const OwnedInputStream stream = v_input_stream_new_for_zip_file_path(archive.get(), "entry");
    EXPECT_EQ(skip(stream.get(), n), "Premature end of data stream.");
    EXPECT_EQ(read_some(stream.get(), 1), "");
    EXPECT_EQ(skip(stream.get(), 1), "Premature end of data stream.");
    EXPECT_EQ(skip(stream.get(), 0), "done");
  }
}

TEST(ZipInput, BrokenEntryCannotBeRead) {
  std::string packed = pack({{"entry", "the right bytes", ZIP_CM_STORE}});
  packed[packed.find("right")] = 'n';
  const OwnedArchive archive = open_archive(packed);
  ASSERT_TRUE(archive);
  EXPECT_EQ(entry_to_memory(archive.get(), "entry"), "Compressed file read error.\n\nCRC error");
  const OwnedInputStream stream = v_input_stream_new_for_zip_file_path(archive.get(), "entry");
  EXPECT_EQ(skip(stream.get(), 100), "Compressed file read error.\n\nCRC error");
}

TEST(ZipInput, CallersEntryStaysOpen) {
  const std::string packed = pack({{"entry", "abcdef"}});
  const OwnedArchive archive = open_archive(packed);
  ASSERT_TRUE(archive);
  const OwnedEntry entry(zip_fopen(archive.get(), "entry", 0));
  {
    const OwnedInputStream stream = v_input_stream_new_for_zip_file(entry.get());
    EXPECT_EQ(read_some(stream.get(), 3), "abc");
  }
  char rest[4] = {};
  EXPECT_EQ(zip_fread(entry.get(), rest, 3), 3);
  EXPECT_STREQ(rest, "def");
}

TEST(ZipInput, NullEntryAppendsToTheCurrentMessage) {
  const OwnedInputStream stream = v_input_stream_new_for_zip_file(nullptr);
  v_error_set("The reason.");
  EXPECT_EQ(read_some(stream.get(), 1), "Opening compressed input file failed.\n\nThe reason.");
}

// Memory output

TEST(MemoryOutput, HandsOverTheWrittenBytes) {
  const OwnedOutputStream stream = v_output_stream_new_for_memory();
  const std::string data = varied_bytes(10'000);
  EXPECT_EQ(write(stream.get(), "first"), "done");
  EXPECT_EQ(write(stream.get(), ""), "done");
  EXPECT_EQ(write(stream.get(), data), "done");
  EXPECT_TRUE(v_output_stream_finish(stream.get()));
  EXPECT_EQ(memory_data(stream.get()), "first" + data);
  EXPECT_EQ(memory_data(stream.get()), "");
  EXPECT_EQ(write(stream.get(), "second"), "done");
  EXPECT_EQ(memory_data(stream.get()), "second");
}

TEST(MemoryOutput, GivesAnEmptyTextWithoutData) {
  const OwnedOutputStream stream = v_output_stream_new_for_memory();
  EXPECT_EQ(memory_data(stream.get()), "");
  EXPECT_TRUE(v_output_stream_write(stream.get(), nullptr, 0));
  EXPECT_EQ(memory_data(stream.get()), "");
}

TEST(MemoryOutput, FreesDataThatIsNotHandedOver) {
  const OwnedOutputStream stream = v_output_stream_new_for_memory();
  EXPECT_EQ(write(stream.get(), "abc"), "done");
}

TEST(MemoryOutput, RefusesMoreThanItCanHold) {
  const OwnedOutputStream stream = v_output_stream_new_for_memory();
  EXPECT_EQ(write(stream.get(), "abc"), "done");
  // The text is shorter than the length, so it must be refused before it is read.
  EXPECT_FALSE(v_output_stream_write(stream.get(), "", std::size_t{1} << 32));
  EXPECT_TRUE(v_error_did_run_out_of_memory());
  EXPECT_FALSE(v_output_stream_write(stream.get(), "", G_MAXUINT - 3));
  EXPECT_EQ(memory_data(stream.get()), "abc");
}

// File output

TEST(FileOutput, WritesANewFileInPlaceOfTheOldOne) {
  const TemporaryFolder folder;
  const std::string path = folder / "file";
  write_file(path, "what was there before and is longer");
  ASSERT_EQ(link(path.c_str(), (folder / "other name").c_str()), 0);
  const int before = count_open_descriptors();
  {
    const OwnedOutputStream stream = v_output_stream_new_for_file_path(path.c_str());
    EXPECT_EQ(write(stream.get(), std::string("a\n\0b", 4)), "done");
    EXPECT_EQ(write(stream.get(), "\r\n"), "done");
    EXPECT_EQ(memory_data(stream.get()), "");
  }
  EXPECT_EQ(read_file(path), std::string("a\n\0b\r\n", 6));
  EXPECT_EQ(read_file(folder / "other name"), "what was there before and is longer");
  EXPECT_EQ(count_open_descriptors(), before);
}

TEST(FileOutput, CreatesAnEmptyFileIfNothingIsWritten) {
  const TemporaryFolder folder;
  write_file(folder / "file", "old");
  v_output_stream_new_for_file_path((folder / "file").c_str());
  EXPECT_EQ(read_file(folder / "file"), "");
}

TEST(FileOutput, ReplacesALinkAndKeepsItsTarget) {
  const TemporaryFolder folder;
  write_file(folder / "file", "old");
  ASSERT_EQ(symlink("file", (folder / "link").c_str()), 0);
  write(v_output_stream_new_for_file_path((folder / "link").c_str()).get(), "new");
  EXPECT_EQ(read_file(folder / "file"), "old");
  EXPECT_EQ(read_file(folder / "link"), "new");
}

TEST(FileOutput, FileThatCannotBeCreatedFailsAtTheFirstWrittenByte) {
  const TemporaryFolder folder;
  write_file(folder / "file", "kept");
  make_folder(folder / "folder");
  const std::string paths[] = {folder / "missing/file", folder / "file/below", folder / "folder",
                               "", "\xff"};
  for (const std::string &path : paths) {
    const OwnedOutputStream stream = v_output_stream_new_for_file_path(path.c_str());
    ASSERT_TRUE(stream);
    EXPECT_EQ(write(stream.get(), ""), "done") << path;
    EXPECT_EQ(write(stream.get(), "x"), "Creating file failed.") << path;
    EXPECT_EQ(write(stream.get(), ""), "done") << path;
  }
  EXPECT_THAT(list_folder(folder.path()), testing::ElementsAre("file", "folder"));
  EXPECT_EQ(read_file(folder / "file"), "kept");
}

TEST(FileOutput, FileThatCannotBeDeletedIsKept) {
  const TemporaryFolder folder;
  write_file(folder / "file", "kept");
  set_permissions(folder / "file", 0666);
  set_permissions(folder.path(), 0555);
  EXPECT_EQ(as_ordinary_user([&] {
              return write(v_output_stream_new_for_file_path((folder / "file").c_str()).get(), "x");
            }),
            "Creating file failed.");
  EXPECT_EQ(read_file(folder / "file"), "kept");
}

TEST(FileOutput, RemovesThePartialFileIfTheDiskIsFullWhileWriting) {
  const TemporaryFolder folder;
  const std::string message = with_file_size_limit(1000, [&] {
    const OwnedOutputStream stream = v_output_stream_new_for_file_path((folder / "file").c_str());
    return write(stream.get(), varied_bytes(100'000));
  });
  EXPECT_EQ(message, "File write error.");
  EXPECT_FALSE(path_exists(folder / "file"));
}

TEST(FileOutput, RemovesThePartialFileIfTheDiskIsFullWhenFinishing) {
  const TemporaryFolder folder;
  const std::string message = with_file_size_limit(10, [&] {
    const OwnedOutputStream stream = v_output_stream_new_for_file_path((folder / "file").c_str());
    const std::string written = write(stream.get(), "more than ten bytes");
    const bool is_finished = v_output_stream_finish(stream.get());
    return written + "," + (is_finished ? "finished" : v_error_get());
  });
  EXPECT_EQ(message, "done,File write error.");
  EXPECT_FALSE(path_exists(folder / "file"));
}

TEST(FileOutput, RemovesThePartialFileIfTheDiskIsFullWhenDestroyed) {
  const TemporaryFolder folder;
  const std::string message = with_file_size_limit(10, [&] {
    OwnedOutputStream stream = v_output_stream_new_for_file_path((folder / "file").c_str());
    v_error_set("what went wrong before");
    write(stream.get(), "more than ten bytes");
    stream.reset();
    return std::string(v_error_get());
  });
  EXPECT_EQ(message, "what went wrong before");
  EXPECT_FALSE(path_exists(folder / "file"));
}

TEST(FileOutput, FailureToCloseIsAFailedWrite) {
  const TemporaryFolder folder;
  OwnedOutputStream stream = v_output_stream_new_for_file_path((folder / "file").c_str());
  ASSERT_TRUE(stream->file);
  EXPECT_EQ(write(stream.get(), "abc"), "done");
  ASSERT_EQ(std::fflush(stream->file.get()), 0);
  ASSERT_EQ(close(fileno(stream->file.get())), 0);
  EXPECT_FALSE(v_output_stream_finish(stream.get()));
  EXPECT_STREQ(v_error_get(), "File write error.");
  stream.reset();
  EXPECT_FALSE(path_exists(folder / "file"));
}

TEST(FileOutput, FinishedFileIsCompleteAndStays) {
  const TemporaryFolder folder;
  OwnedOutputStream stream = v_output_stream_new_for_file_path((folder / "file").c_str());
  EXPECT_EQ(write(stream.get(), "abc"), "done");
  EXPECT_TRUE(v_output_stream_finish(stream.get()));
  EXPECT_EQ(read_file(folder / "file"), "abc");
  EXPECT_TRUE(v_output_stream_finish(stream.get()));
  stream.reset();
  EXPECT_EQ(read_file(folder / "file"), "abc");
}

TEST(FileOutput, CallersFileStaysOpenAndInPlace) {
  const TemporaryFolder folder;
  OwnedFile file = v_fs_utils_open_file((folder / "file").c_str(), "wb");
  ASSERT_TRUE(file);
  {
    const OwnedOutputStream stream = v_output_stream_new_for_file(file.get());
    EXPECT_EQ(write(stream.get(), "abc"), "done");
    EXPECT_TRUE(v_output_stream_finish(stream.get()));
    EXPECT_EQ(read_file(folder / "file"), "abc");
  }
  std::fputs("def", file.get());
  EXPECT_TRUE(v_fs_utils_close_file(std::move(file)));
  EXPECT_EQ(read_file(folder / "file"), "abcdef");
}

TEST(FileOutput, ReportsAnEarlierFailureOfTheCaller) {
  const TemporaryFolder folder;
  write_file(folder / "file", "old");
  const OwnedFile file(std::fopen((folder / "file").c_str(), "rb"));
  ASSERT_TRUE(file);
  EXPECT_EQ(std::fputc('x', file.get()), EOF);
  ASSERT_EQ(std::fflush(file.get()), 0);
  const OwnedOutputStream stream = v_output_stream_new_for_file(file.get());
  EXPECT_FALSE(v_output_stream_finish(stream.get()));
  EXPECT_STREQ(v_error_get(), "File write error.");
}

TEST(FileOutput, ReportsAFullDeviceOfTheCaller) {
  const OwnedFile file(std::fopen("/dev/full", "wb"));
  ASSERT_TRUE(file);
  OwnedOutputStream stream = v_output_stream_new_for_file(file.get());
  EXPECT_EQ(write(stream.get(), varied_bytes(100'000)), "File write error.");
  stream = v_output_stream_new_for_file(file.get());
  EXPECT_EQ(write(stream.get(), "x"), "done");
  EXPECT_FALSE(v_output_stream_finish(stream.get()));
  EXPECT_STREQ(v_error_get(), "File write error.");
  stream.reset();
  EXPECT_TRUE(path_exists("/dev/full"));
}

// Copies to memory

TEST(CopyToMemory, CopiesTheRestOfEveryKindOfStream) {
  const TemporaryFolder folder;
  for (const std::size_t length : {1U, 2U, 4095U, 4096U, 4097U, 8192U, 100'000U}) {
    const std::string data = varied_bytes(length);
    write_file(folder / "file", data);
    const std::string packed = pack({{"entry", data}});
    const OwnedArchive archive = open_archive(packed);
    ASSERT_TRUE(archive);
    const OwnedInputStream streams[] = {
        v_input_stream_new_for_memory(data.data(), data.size()),
        v_input_stream_new_for_file_path((folder / "file").c_str()),
        v_input_stream_new_for_zip_file_path(archive.get(), "entry"),
    };
    for (const OwnedInputStream &stream : streams) {
      read_some(stream.get(), 1);
      std::size_t copied_length = 0;
      const OwnedText copied = v_stream_copy_to_memory(stream.get(), copied_length);
      ASSERT_TRUE(copied);
      EXPECT_EQ(std::string(copied.get(), copied_length), data.substr(1));
      EXPECT_EQ(copied.get()[copied_length], '\0');
    }
  }
}

TEST(CopyToMemory, OfAnEmptySourceIsAnEmptyText) {
  const TemporaryFolder folder;
  write_file(folder / "file", "");
  const std::string packed = pack({{"entry", ""}});
  const OwnedArchive archive = open_archive(packed);
  ASSERT_TRUE(archive);
  EXPECT_EQ(entry_to_memory(archive.get(), "entry"), "");
  std::size_t length = 4711;
  const OwnedText copied = v_stream_copy_to_memory(
      v_input_stream_new_for_file_path((folder / "file").c_str()).get(), length);
  EXPECT_STREQ(copied.get(), "");
  EXPECT_EQ(length, 0U);
}

TEST(CopyToMemory, FailsWithoutData) {
  const TemporaryFolder folder;
  std::size_t length = 4711;
  EXPECT_FALSE(v_stream_copy_to_memory(
      v_input_stream_new_for_file_path((folder / "missing").c_str()).get(), length));
  EXPECT_STREQ(v_error_get(), "Opening input file failed.");
  EXPECT_EQ(length, 0U);
  const std::string packed = pack({{"entry", "x"}});
  const OwnedArchive archive = open_archive(packed);
  ASSERT_TRUE(archive);
  EXPECT_EQ(entry_to_memory(archive.get(), "missing"), missing_entry_message);
}

// Copies of files

TEST(FileCopy, HasTheSameBytes) {
  const TemporaryFolder folder;
  const int before = count_open_descriptors();
  for (const std::size_t length : {0U, 1U, 4095U, 4096U, 4097U, 8192U, 100'000U}) {
    const std::string data = varied_bytes(length);
    write_file(folder / "source", data);
    EXPECT_EQ(copy(folder / "source", folder / "100% \u00e5"), "done");
    EXPECT_EQ(read_file(folder / "100% \u00e5"), data);
    EXPECT_EQ(read_file(folder / "source"), data);
  }
  EXPECT_EQ(count_open_descriptors(), before);
}

TEST(FileCopy, OntoTheSamePathChangesNothing) {
  const TemporaryFolder folder;
  write_file(folder / "file", "abc");
  struct stat status_before;
  struct stat status_after;
  ASSERT_EQ(stat((folder / "file").c_str(), &status_before), 0);
  EXPECT_EQ(copy(folder / "file", folder / "file"), "done");
  ASSERT_EQ(stat((folder / "file").c_str(), &status_after), 0);
  EXPECT_EQ(status_before.st_ino, status_after.st_ino);
  EXPECT_EQ(read_file(folder / "file"), "abc");
  EXPECT_EQ(copy(folder / "missing", folder / "missing"), "done");
  EXPECT_FALSE(path_exists(folder / "missing"));
}

// The parameter is another path of inner/file.
class CopyOntoItself : public testing::TestWithParam<const char *> {
protected:
  void write_file_and_links(const std::string &content) const {
    make_folder(folder / "inner");
    write_file(folder / "inner/file", content);
    ASSERT_EQ(symlink("inner", (folder / "link").c_str()), 0);
    ASSERT_EQ(symlink("file", (folder / "inner/link").c_str()), 0);
    ASSERT_EQ(link((folder / "inner/file").c_str(), (folder / "inner/hard").c_str()), 0);
  }

  TemporaryFolder folder;
};

TEST_P(CopyOntoItself, UnderAnotherSpellingKeepsTheFile) {
  const std::string data = varied_bytes(100'000);
  ASSERT_NO_FATAL_FAILURE(write_file_and_links(data));
  EXPECT_EQ(copy(folder / "inner/file", folder / GetParam()), "done");
  EXPECT_EQ(read_file(folder / "inner/file"), data);
  EXPECT_EQ(read_file(folder / GetParam()), data);
}

TEST_P(CopyOntoItself, InAFolderWithoutWritePermissionKeepsTheFile) {
  ASSERT_NO_FATAL_FAILURE(write_file_and_links("abc"));
  set_permissions(folder / "inner/file", 0666);
  set_permissions(folder / "inner", 0555);
  set_permissions(folder.path(), 0755);
  EXPECT_EQ(as_ordinary_user([&] { return copy(folder / "inner/file", folder / GetParam()); }),
            "Creating file failed.");
  EXPECT_EQ(read_file(folder / "inner/file"), "abc");
}

INSTANTIATE_TEST_SUITE_P(Streams, CopyOntoItself,
                         testing::Values("./inner/file", "inner/./file", "inner//file",
                                         "inner/../inner/file", "link/file", "inner/link",
                                         "inner/hard"));

TEST(FileCopy, OfAMissingFileLeavesAnEmptyDestination) {
  const TemporaryFolder folder;
  write_file(folder / "old", "what was there");
  for (const char *destination : {"old", "new"}) {
    v_error_clear();
    EXPECT_EQ(copy(folder / "missing", folder / destination), "Opening input file failed.");
    EXPECT_EQ(read_file(folder / destination), "");
  }
}

TEST(FileCopy, OfAFolderFails) {
  const TemporaryFolder folder;
  make_folder(folder / "folder");
  EXPECT_EQ(copy(folder / "folder", folder / "file"), "File read error.");
  EXPECT_EQ(read_file(folder / "file"), "");
}

TEST(FileCopy, OfAPipeFailsAtOnce) {
  const TemporaryFolder folder;
  ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
  EXPECT_EQ(copy(folder / "pipe", folder / "file"), "Opening input file failed.");
}

TEST(FileCopy, ToAPipeReplacesIt) {
  const TemporaryFolder folder;
  ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
  write_file(folder / "file", "abc");
  EXPECT_EQ(copy(folder / "file", folder / "pipe"), "done");
  EXPECT_EQ(read_file(folder / "pipe"), "abc");
}

TEST(FileCopy, FailsIfTheDestinationCannotBeCreated) {
  const TemporaryFolder folder;
  write_file(folder / "file", "abc");
  make_folder(folder / "folder");
  for (const char *destination : {"folder", "missing/file", "file/below"}) {
    EXPECT_EQ(copy(folder / "file", folder / destination), "Creating file failed.");
  }
  EXPECT_THAT(list_folder(folder.path()), testing::ElementsAre("file", "folder"));
  EXPECT_EQ(read_file(folder / "file"), "abc");
}

TEST(FileCopy, ToAFullDiskFailsAndLeavesNoDestination) {
  const TemporaryFolder folder;
  for (const std::size_t length : {20U, 100'000U}) {
    write_file(folder / "source", varied_bytes(length));
    write_file(folder / "destination", "");
    EXPECT_EQ(
        with_file_size_limit(10, [&] { return copy(folder / "source", folder / "destination"); }),
        "File write error.")
        << length;
    EXPECT_THAT(list_folder(folder.path()), testing::ElementsAre("source"));
    EXPECT_EQ(read_file(folder / "source"), varied_bytes(length));
  }
}

TEST(FileCopy, LeavesNoDescriptorOpenWhenItFails) {
  const TemporaryFolder folder;
  write_file(folder / "file", "abc");
  const int before = count_open_descriptors();
  copy(folder / "missing", folder / "new");
  copy(folder / "file", folder / "missing/file");
  copy(folder.path(), folder / "new");
  EXPECT_EQ(count_open_descriptors(), before);
}
