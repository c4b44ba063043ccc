#include "base/fs_utils.h"

#include <algorithm>
#include <cerrno>
#include <clocale>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <langinfo.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/un.h>
#include <unistd.h>
#include <utime.h>

#include "base/error.h"
#include "support/child_process.h"
#include "support/files.h"

namespace {

// A file gets its permissions in two steps. This is the state between them, and the error with
// which the second one fails; 0: it succeeds.
mode_t permissions_before_change = 0;
int change_error = 0;

} // namespace

extern "C" {
int __real_fchmod(int descriptor, mode_t mode);
int __wrap_fchmod(int descriptor, mode_t mode);

int __wrap_fchmod(int descriptor, mode_t mode) {
  struct stat status = {};
  EXPECT_EQ(fstat(descriptor, &status), 0);
  permissions_before_change = status.st_mode & 0777;
  if (change_error == 0) {
    return __real_fchmod(descriptor, mode);
  }
  errno = change_error;
  return -1;
}
}

namespace {

std::string message_of(int number, const std::string &sentence) {
  return sentence + "\n\nError " + std::to_string(number) + ": " + g_strerror(number);
}

std::string outcome(bool succeeded) { return succeeded ? "done" : v_error_get(); }

VFileInfo info_of(const std::string &path) {
  VFileInfo info;
  EXPECT_TRUE(v_fs_utils_get_info(path.c_str(), info)) << v_error_get();
  return info;
}

void expect_all_zero(const VFileInfo &info) {
  EXPECT_EQ(info.exists, 0U);
  EXPECT_EQ(info.is_folder, 0U);
  EXPECT_EQ(info.is_file, 0U);
  EXPECT_EQ(info.modification_time, 0);
  EXPECT_EQ(info.size, 0);
}

std::string stripped(void (*strip_in_place)(char *), const char *path) {
  const OwnedText text = copy_text(path);
  strip_in_place(text.get());
  return text.get();
}

std::vector<std::string> entries_of(const std::string &path) {
  const OwnedFolder listing = v_fs_utils_open_folder(path.c_str());
  std::vector<std::string> names;
  OwnedText name;
  while (listing && v_fs_utils_next_folder_entry(listing.get(), name) && name) {
    names.emplace_back(name.get());
  }
  return names;
}

void make_socket(const std::string &path) {
  const int descriptor = socket(AF_UNIX, SOCK_STREAM, 0);
  sockaddr_un address = {};
  address.sun_family = AF_UNIX;
  ASSERT_LT(path.size(), sizeof address.sun_path);
  std::strcpy(address.sun_path, path.c_str());
  EXPECT_EQ(bind(descriptor, reinterpret_cast<sockaddr *>(&address), sizeof address), 0);
  close(descriptor);
}

} // namespace

// Paths

struct JoinCase {
  const char *folder;
  std::vector<const char *> parts;
  const char *path;
};

class JoiningPaths : public testing::TestWithParam<JoinCase> {};

TEST_P(JoiningPaths, GivesTheExpectedPath) {
  const JoinCase &row = GetParam();
  const std::string folder_before = row.folder;
  EXPECT_STREQ(v_fs_utils_create_path_in_folder_(row.folder, row.parts.data(),
                                                 static_cast<int>(row.parts.size()))
                   .get(),
               row.path);
  EXPECT_EQ(row.folder, folder_before);
}

INSTANTIATE_TEST_SUITE_P(FsUtils, JoiningPaths,
                         testing::Values(JoinCase{"/a/", {"b"}, "/a/b"},              //
                                         JoinCase{"/a", {"b"}, "/a/b"},               //
                                         JoinCase{"/a///", {"b"}, "/a/b"},            //
                                         JoinCase{"/a", {"", "b"}, "/a/b"},           //
                                         JoinCase{"/a", {"b", ""}, "/a/b"},           //
                                         JoinCase{"/a", {""}, "/a"},                  //
                                         JoinCase{"/a/", {}, "/a"},                   //
                                         JoinCase{"/", {"b"}, "b"},                   //
                                         JoinCase{"///", {"b"}, "b"},                 //
                                         JoinCase{"/", {}, ""},                       //
                                         JoinCase{"", {"b"}, "b"},                    //
                                         JoinCase{"", {"", "", "b", "c"}, "b/c"},     //
                                         JoinCase{"", {}, ""},                        //
                                         JoinCase{"", {"", ""}, ""},                  //
                                         JoinCase{"/a", {"b", "c", "d"}, "/a/b/c/d"}, //
                                         JoinCase{"/a", {"b/c", "d"}, "/a/b/c/d"},    //
                                         JoinCase{"/a", {"b/", "c"}, "/a/b//c"},      //
                                         JoinCase{"/a", {"/b"}, "/a//b"},             //
                                         JoinCase{"", {"/b"}, "/b"},                  //
                                         JoinCase{"/a", {"/"}, "/a//"},               //
                                         JoinCase{"a b", {"%s", "\u00e5<&"}, "a b/%s/\u00e5<&"}));

TEST(FsUtils, JoinsPartsGivenAsArguments) {
  EXPECT_STREQ(v_fs_utils_create_path_in_folder("/w", "codesets", "a.codeset").get(),
               "/w/codesets/a.codeset");
}

struct PathCase {
  const char *path;
  const char *result;
};

class EntryNames : public testing::TestWithParam<PathCase> {};

TEST_P(EntryNames, ArePointersIntoThePath) {
  const char *name = v_fs_utils_find_entry_name_in_path(GetParam().path);
  EXPECT_STREQ(name, GetParam().result);
  EXPECT_EQ(name, GetParam().path + std::strlen(GetParam().path) - std::strlen(name));
}

INSTANTIATE_TEST_SUITE_P(FsUtils, EntryNames,
                         testing::Values(PathCase{"/a/b", "b"}, PathCase{"b", "b"},
                                         PathCase{"/b", "b"}, PathCase{"/a/", ""},
                                         PathCase{"/a//b.c", "b.c"}, PathCase{"", ""},
                                         PathCase{"/", ""}, PathCase{"a/\u00e5", "\u00e5"}));

class StrippingEntryNames : public testing::TestWithParam<PathCase> {};

TEST_P(StrippingEntryNames, LeavesThePathOfTheFolder) {
  EXPECT_EQ(stripped(v_fs_utils_strip_entry_name_from_path, GetParam().path), GetParam().result);
}

INSTANTIATE_TEST_SUITE_P(FsUtils, StrippingEntryNames,
                         testing::Values(PathCase{"/a/b", "/a"}, PathCase{"/a//b", "/a"},
                                         PathCase{"/a///b", "/a"}, PathCase{"/b", ""},
                                         PathCase{"//b", ""}, PathCase{"b", ""}, PathCase{"", ""},
                                         PathCase{"/", ""}, PathCase{"///", ""},
                                         PathCase{"/a/b/", "/a/b"}, PathCase{"/a/b//", "/a/b"},
                                         PathCase{"a/b/c", "a/b"},
                                         PathCase{"//a//b//c", "//a//b"}));

class StrippingEndingDelimiters : public testing::TestWithParam<PathCase> {};

TEST_P(StrippingEndingDelimiters, LeavesThePathWithoutThem) {
  EXPECT_EQ(stripped(v_fs_utils_strip_ending_path_delimiters, GetParam().path), GetParam().result);
}

INSTANTIATE_TEST_SUITE_P(FsUtils, StrippingEndingDelimiters,
                         testing::Values(PathCase{"/a/", "/a"}, PathCase{"/a///", "/a"},
                                         PathCase{"/a", "/a"}, PathCase{"/", ""},
                                         PathCase{"////", ""}, PathCase{"", ""},
                                         PathCase{"//a//b//", "//a//b"}));

// Names and encodings

TEST(FsUtils, NamesAreUtf8OnThisSystem) {
  EXPECT_STREQ(v_fs_utils_convert_glibfsenc_to_utf8("gr\u00f6n %s").get(), "gr\u00f6n %s");
  EXPECT_STREQ(v_fs_utils_convert_osfsenc_to_utf8("gr\u00f6n").get(), "gr\u00f6n");
  EXPECT_STREQ(v_fs_utils_convert_utf8_to_glibfsenc("gr\u00f6n").get(), "gr\u00f6n");
  EXPECT_STREQ(v_fs_utils_convert_utf8_to_osfsenc("gr\u00f6n").get(), "gr\u00f6n");
}

TEST(FsUtils, NamesThatAreNotUtf8CannotBeConverted) {
  for (const auto convert :
       {v_fs_utils_convert_glibfsenc_to_utf8, v_fs_utils_convert_osfsenc_to_utf8}) {
    v_error_clear();
    EXPECT_EQ(convert("gr\xf6n"), nullptr);
    EXPECT_THAT(v_error_get(),
                testing::StartsWith("Could not convert filename to unicode.\n\nGError 1: "));
  }
  for (const auto convert :
       {v_fs_utils_convert_utf8_to_glibfsenc, v_fs_utils_convert_utf8_to_osfsenc}) {
    v_error_clear();
    EXPECT_EQ(convert("gr\xf6n"), nullptr);
    EXPECT_THAT(v_error_get(), testing::StartsWith("Could not use filename.\n\nGError 1: "));
  }
}

TEST(FsUtils, EveryOperationRefusesAPathThatCannotBeConverted) {
  const char *path = "/\xff";
  VFileInfo info;
  const std::vector<std::function<bool()>> operations = {
      [&] { return v_fs_utils_open_file(path, "rb") != nullptr; },
      [&] { return v_fs_utils_open_folder(path) != nullptr; },
      [&] { return v_fs_utils_create_folder(path); },
      [&] { return v_fs_utils_create_folder_recursively(path); },
      [&] { return v_fs_utils_delete_folder_if_exists(path); },
      [&] { return v_fs_utils_delete_file_if_exists(path); },
      [&] { return v_fs_utils_get_info(path, info); },
  };
  for (std::size_t i = 0; i < operations.size(); i++) {
    v_error_clear();
    EXPECT_FALSE(operations[i]()) << i;
    EXPECT_THAT(v_error_get(), testing::StartsWith("Could not use filename.\n\nGError ")) << i;
  }
  expect_all_zero(info);
}

TEST(FsUtils, PathsAreConvertedToTheEncodingOfTheFileSystem) {
  const TemporaryFolder folder;
  const std::string listed = in_child_process([&] {
    // GLib reads the variable again only after the character set of the locale has changed.
    const bool is_utf8 = std::strcmp(nl_langinfo(CODESET), "UTF-8") == 0;
    std::setlocale(LC_ALL, is_utf8 ? "C" : "C.UTF-8");
    setenv("G_FILENAME_ENCODING", "ISO-8859-1", 1);
    if (!v_fs_utils_create_folder((folder / "gr\u00f6n").c_str())) {
      return std::string(v_error_get());
    }
    const std::string refused =
        outcome(v_fs_utils_create_folder((folder / "\u20ac").c_str())).substr(0, 33);
    std::string names;
    for (const std::string &name : entries_of(folder.path())) {
      names += name[0] == '.' ? "" : name;
    }
    return names + "|" + refused;
  });
  EXPECT_EQ(listed, "gr\u00f6n|Could not use filename.\n\nGError 1");
  EXPECT_THAT(list_folder(folder.path()), testing::ElementsAre("gr\xf6n"));
}

// Files

TEST(FsUtils, OpensReadsAndCloses) {
  const TemporaryFolder folder;
  const std::string path = folder / "100% \u00e5";
  const int before = count_open_descriptors();
  OwnedFile file = v_fs_utils_open_file(path.c_str(), "wb");
  ASSERT_TRUE(file);
  std::fputs("text\r\n", file.get());
  EXPECT_TRUE(v_fs_utils_close_file(std::move(file)));
  EXPECT_EQ(read_file(path), "text\r\n");
  file = v_fs_utils_open_file(path.c_str(), "rb");
  ASSERT_TRUE(file);
  EXPECT_EQ(std::fgetc(file.get()), 't');
  EXPECT_TRUE(v_fs_utils_close_file(std::move(file)));
  EXPECT_EQ(count_open_descriptors(), before);
}

TEST(FsUtils, OpeningAFileSaysWhyItFails) {
  const TemporaryFolder folder;
  write_file(folder / "file", "");
  const struct {
    std::string path;
    const char *mode;
    int number;
  } rows[] = {
      {folder / "missing", "rb", ENOENT},     {"", "rb", ENOENT},
      {folder / "missing/new", "wb", ENOENT}, {folder / "file/below", "rb", ENOTDIR},
      {folder.path(), "wb", EISDIR},          {folder / "file", "nonsense", EINVAL},
  };
  for (const auto &row : rows) {
    EXPECT_FALSE(v_fs_utils_open_file(row.path.c_str(), row.mode)) << row.path;
    EXPECT_EQ(v_error_get(), message_of(row.number, "Cannot open file."));
    EXPECT_EQ(v_fs_utils_get_last_error_number(), row.number);
  }
}

TEST(FsUtils, OpeningAMissingFileReportsTheSystemsText) {
  EXPECT_FALSE(v_fs_utils_open_file("/nowhere/at/all", "rb"));
  EXPECT_STREQ(v_error_get(), "Cannot open file.\n\nError 2: No such file or directory");
}

TEST(FsUtils, OpeningAFileFailsWithoutPermission) {
  const TemporaryFolder folder;
  write_file(folder / "secret", "x");
  set_permissions(folder / "secret", 0);
  set_permissions(folder.path(), 0755);
  EXPECT_EQ(as_ordinary_user([&] {
              return outcome(v_fs_utils_open_file((folder / "secret").c_str(), "rb") != nullptr);
            }),
            message_of(EACCES, "Cannot open file."));
}

TEST(FsUtils, FilesThatWouldBlockOrNeverEndAreNotOpened) {
  const TemporaryFolder folder;
  const std::string pipe_path = folder / "pipe";
  ASSERT_EQ(mkfifo(pipe_path.c_str(), 0600), 0);
  ASSERT_EQ(symlink(pipe_path.c_str(), (folder / "link").c_str()), 0);
  ASSERT_EQ(symlink("/dev/zero", (folder / "endless").c_str()), 0);
  make_socket(folder / "socket");
  for (const char *name : {"pipe", "link", "endless", "socket"}) {
    v_error_clear();
    EXPECT_FALSE(v_fs_utils_open_file((folder / name).c_str(), "rb")) << name;
    EXPECT_EQ(v_error_get(), message_of(ENXIO, "Cannot open file.")) << name;
  }
  EXPECT_FALSE(v_fs_utils_open_file(pipe_path.c_str(), "wb"));
  EXPECT_TRUE(path_exists(pipe_path));
}

TEST(FsUtils, ClosingNothingSucceeds) {
  EXPECT_TRUE(v_fs_utils_close_file(nullptr));
  EXPECT_TRUE(v_fs_utils_close_folder(nullptr));
}

TEST(FsUtils, ClosingAFileReportsAFullDisk) {
  const int before = count_open_descriptors();
  OwnedFile file = v_fs_utils_open_file("/dev/full", "wb");
  ASSERT_TRUE(file);
  std::fputs("a few bytes that stay in the buffer", file.get());
  EXPECT_FALSE(v_fs_utils_close_file(std::move(file)));
  EXPECT_EQ(v_error_get(), message_of(ENOSPC, "Cannot close file."));
  EXPECT_EQ(v_fs_utils_get_last_error_number(), ENOSPC);
  EXPECT_EQ(count_open_descriptors(), before);
}

TEST(FsUtils, DeletesFiles) {
  const TemporaryFolder folder;
  write_file(folder / "file", "x");
  EXPECT_TRUE(v_fs_utils_delete_file_if_exists((folder / "file").c_str()));
  EXPECT_FALSE(path_exists(folder / "file"));
  EXPECT_TRUE(v_fs_utils_delete_file_if_exists((folder / "file").c_str()));
  EXPECT_TRUE(v_fs_utils_delete_file_if_exists((folder / "missing/file").c_str()));
  EXPECT_TRUE(v_fs_utils_delete_file_if_exists(""));
}

TEST(FsUtils, DeletesALinkAndKeepsItsTarget) {
  const TemporaryFolder folder;
  write_file(folder / "file", "x");
  ASSERT_EQ(symlink((folder / "file").c_str(), (folder / "link").c_str()), 0);
  EXPECT_TRUE(v_fs_utils_delete_file_if_exists((folder / "link").c_str()));
  EXPECT_THAT(list_folder(folder.path()), testing::ElementsAre("file"));
}

TEST(FsUtils, DeletingAFileSaysWhyItFails) {
  const TemporaryFolder folder;
  write_file(folder / "file", "x");
  EXPECT_FALSE(v_fs_utils_delete_file_if_exists((folder / "file/below").c_str()));
  EXPECT_EQ(v_error_get(), message_of(ENOTDIR, "Cannot unlink file."));
  EXPECT_EQ(v_fs_utils_get_last_error_number(), ENOTDIR);
  EXPECT_FALSE(v_fs_utils_delete_file_if_exists(folder.path()));
  EXPECT_THAT(v_error_get(), testing::StartsWith("Cannot unlink file.\n\nError "));
}

TEST(FsUtils, FileInAFolderWithoutWritePermissionCannotBeDeleted) {
  const TemporaryFolder folder;
  write_file(folder / "file", "x");
  set_permissions(folder / "file", 0666);
  set_permissions(folder.path(), 0555);
  EXPECT_EQ(as_ordinary_user([&] {
              return outcome(v_fs_utils_delete_file_if_exists((folder / "file").c_str()));
            }),
            message_of(EACCES, "Cannot unlink file."));
  EXPECT_EQ(read_file(folder / "file"), "x");
}

TEST(FsUtils, DiscardingAFileKeepsTheErrorMessage) {
  const TemporaryFolder folder;
  write_file(folder / "file", "x");
  v_error_set("the first reason");
  v_fs_utils_discard_file((folder / "file").c_str());
  EXPECT_FALSE(path_exists(folder / "file"));
  v_fs_utils_discard_file((folder / "file").c_str());
  v_fs_utils_discard_file(folder.path());
  v_fs_utils_discard_file("\xff");
  EXPECT_TRUE(path_exists(folder.path()));
  EXPECT_STREQ(v_error_get(), "the first reason");
}

TEST(FsUtils, DiscardingRemovesLinksAndKeepsPipes) {
  const TemporaryFolder folder;
  ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
  ASSERT_EQ(symlink("/dev/null", (folder / "link").c_str()), 0);
  v_fs_utils_discard_file((folder / "pipe").c_str());
  v_fs_utils_discard_file((folder / "link").c_str());
  EXPECT_EQ(list_folder(folder.path()), std::vector<std::string>{"pipe"});
}

TEST(FsUtils, AReplacedFileKeepsItsPermissions) {
  const TemporaryFolder folder;
  const std::string path = folder / "file";
  write_file(path, "old");
  for (const unsigned mode : {0600U, 0444U, 0640U, 0666U, 0777U}) {
    set_permissions(path, mode);
    const mode_t mask = umask(0);
    EXPECT_TRUE(v_fs_utils_replace_file(path.c_str(), "new")) << v_error_get();
    umask(mask);
    EXPECT_EQ(permissions_of(path), mode);
  }
}

TEST(FsUtils, AFileThatReplacesNoneHasTheUsualPermissions) {
  const TemporaryFolder folder;
  const mode_t mask = umask(0);
  EXPECT_TRUE(v_fs_utils_replace_file((folder / "file").c_str(), "new")) << v_error_get();
  umask(mask);
  EXPECT_EQ(permissions_of(folder / "file"), 0666U);
}

TEST(FsUtils, AFileWhoseNameIsNotUtf8IsNotReplaced) {
  v_error_clear();
  EXPECT_FALSE(v_fs_utils_replace_file("\xff", "new"));
  EXPECT_THAT(v_error_get(), testing::HasSubstr("Could not use filename."));
}

TEST(FsUtils, ACreatedFileHasItsPermissionsBeforeAnythingIsWritten) {
  const TemporaryFolder folder;
  write_file(folder / "old", "");
  for (const unsigned mode : {0600U, 0444U, 0640U, 0666U}) {
    set_permissions(folder / "old", mode);
    const VFilePermissions permissions = v_fs_utils_get_permissions((folder / "old").c_str());
    EXPECT_TRUE(permissions.are_known);
    const std::string path = folder / std::to_string(mode);
    const mode_t mask = umask(077);
    const OwnedFile file = v_fs_utils_create_file(path.c_str(), permissions);
    umask(mask);
    ASSERT_TRUE(file) << v_error_get();
    EXPECT_EQ(permissions_of(path), mode);
    EXPECT_EQ(std::fputs("text", file.get()), 1);
  }
  EXPECT_EQ(read_file(folder / std::to_string(0600U)), "text");
}

TEST(FsUtils, OnlyTheOwnerCanOpenACreatedFileBeforeItHasItsPermissions) {
  const TemporaryFolder folder;
  write_file(folder / "old", "");
  set_permissions(folder / "old", 0666);
  const VFilePermissions permissions = v_fs_utils_get_permissions((folder / "old").c_str());
  const mode_t mask = umask(0);
  permissions_before_change = 0;
  EXPECT_TRUE(v_fs_utils_create_file((folder / "new").c_str(), permissions));
  EXPECT_EQ(permissions_before_change, 0600U);
  EXPECT_EQ(permissions_of(folder / "new"), 0666U);

  // As on a file system without permissions.
  change_error = EPERM;
  EXPECT_TRUE(v_fs_utils_create_file((folder / "other").c_str(), permissions)) << v_error_get();
  change_error = 0;
  umask(mask);
  EXPECT_EQ(permissions_of(folder / "other"), 0600U);
  EXPECT_EQ(v_fs_utils_get_last_error_number(), EPERM);
}

TEST(FsUtils, CreatingAFileWithPermissionsKeepsTheNumberOfAnEarlierError) {
  const TemporaryFolder folder;
  write_file(folder / "old", "");
  EXPECT_FALSE(v_fs_utils_delete_file_if_exists((folder / "old/below").c_str()));
  const VFilePermissions permissions = v_fs_utils_get_permissions((folder / "old").c_str());
  errno = EBADF;
  EXPECT_TRUE(v_fs_utils_create_file((folder / "new").c_str(), permissions));
  EXPECT_EQ(v_fs_utils_get_last_error_number(), ENOTDIR);
}

TEST(FsUtils, OnlyRegularFilesHaveKnownPermissions) {
  const TemporaryFolder folder;
  ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
  for (const std::string &path :
       {std::string(folder.path()), folder / "pipe", folder / "none", folder / "\xff"}) {
    EXPECT_FALSE(v_fs_utils_get_permissions(path.c_str()).are_known) << path;
  }
}

TEST(FsUtils, AFileWithPermissionsIsCreatedOnlyWhereNoneExists) {
  const TemporaryFolder folder;
  write_file(folder / "file", "kept");
  const VFilePermissions permissions = v_fs_utils_get_permissions((folder / "file").c_str());
  const int before = count_open_descriptors();
  EXPECT_FALSE(v_fs_utils_create_file((folder / "file").c_str(), permissions));
  EXPECT_EQ(v_error_get(), message_of(EEXIST, "Cannot open file."));
  EXPECT_FALSE(v_fs_utils_create_file((folder / "none/file").c_str(), permissions));
  EXPECT_EQ(v_error_get(), message_of(ENOENT, "Cannot open file."));
  EXPECT_FALSE(v_fs_utils_create_file("\xff", permissions));
  EXPECT_THAT(v_error_get(), testing::StartsWith("Could not use filename."));
  EXPECT_EQ(count_open_descriptors(), before);
  EXPECT_EQ(read_file(folder / "file"), "kept");
}

// Folders

TEST(FsUtils, DiscardingAMissingFileIsNoFailure) {
  const TemporaryFolder folder;
  write_file(folder / "file", "");
  EXPECT_FALSE(v_fs_utils_delete_folder_if_exists((folder / "file").c_str()));
  v_fs_utils_discard_file((folder / "none").c_str());
  EXPECT_EQ(v_fs_utils_get_last_error_number(), ENOTDIR);
}

TEST(FsUtils, DiscardingAFileIsNoFailureWhateverFailedBefore) {
  const TemporaryFolder folder;
  write_file(folder / "file", "");
  EXPECT_FALSE(v_fs_utils_delete_folder_if_exists((folder / "file").c_str()));
  errno = EBADF;
  v_fs_utils_discard_file((folder / "file").c_str());
  EXPECT_EQ(v_fs_utils_get_last_error_number(), ENOTDIR);
}

TEST(FsUtils, ListsEveryEntry) {
  const TemporaryFolder folder;
  write_file(folder / "b", "");
  write_file(folder / ".hidden", "");
  make_folder(folder / "\u00e5 %s");
  EXPECT_THAT(entries_of(folder.path()),
              testing::UnorderedElementsAre(".", "..", ".hidden", "b", "\u00e5 %s"));
}

TEST(FsUtils, EmptyFolderHasTwoEntries) {
  const TemporaryFolder folder;
  const int before = count_open_descriptors();
  OwnedFolder listing = v_fs_utils_open_folder(folder.path());
  ASSERT_TRUE(listing);
  std::vector<std::string> names;
  for (int i = 0; i < 2; i++) {
    OwnedText name;
    ASSERT_TRUE(v_fs_utils_next_folder_entry(listing.get(), name));
    ASSERT_TRUE(name);
    names.emplace_back(name.get());
  }
  EXPECT_THAT(names, testing::UnorderedElementsAre(".", ".."));
  for (int i = 0; i < 2; i++) {
    OwnedText name = copy_text("left over");
    errno = EIO; // left by an earlier call
    EXPECT_TRUE(v_fs_utils_next_folder_entry(listing.get(), name));
    EXPECT_EQ(name, nullptr);
  }
  EXPECT_TRUE(v_fs_utils_close_folder(std::move(listing)));
  EXPECT_EQ(count_open_descriptors(), before);
}

TEST(FsUtils, ListingContinuesAfterANameThatIsNotUtf8) {
  const TemporaryFolder folder;
  write_file(folder / "a\xff", "");
  write_file(folder / "b", "");
  write_file(folder / "c\xe5", "");
  write_file(folder / "d", "");
  const OwnedFolder listing = v_fs_utils_open_folder(folder.path());
  ASSERT_TRUE(listing);
  std::vector<std::string> names;
  for (int i = 0; i < 6; i++) {
    v_error_clear();
    OwnedText name = copy_text("left over");
    if (v_fs_utils_next_folder_entry(listing.get(), name)) {
      ASSERT_TRUE(name) << i;
      names.emplace_back(name.get());
    } else {
      EXPECT_EQ(name, nullptr);
      EXPECT_THAT(v_error_get(),
                  testing::StartsWith("Could not convert filename to unicode.\n\nGError 1: "));
      names.emplace_back("failed");
    }
  }
  EXPECT_THAT(names, testing::UnorderedElementsAre(".", "..", "b", "d", "failed", "failed"));
  OwnedText name;
  EXPECT_TRUE(v_fs_utils_next_folder_entry(listing.get(), name));
  EXPECT_EQ(name, nullptr);
}

TEST(FsUtils, OpeningAFolderSaysWhyItFails) {
  const TemporaryFolder folder;
  write_file(folder / "file", "");
  ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
  const struct {
    std::string path;
    int number;
  } rows[] = {
      {folder / "missing", ENOENT},
      {"", ENOENT},
      {folder / "file", ENOTDIR},
      {folder / "pipe", ENOTDIR},
  };
  for (const auto &row : rows) {
    EXPECT_FALSE(v_fs_utils_open_folder(row.path.c_str())) << row.path;
    EXPECT_EQ(v_error_get(), message_of(row.number, "Cannot open folder."));
    EXPECT_EQ(v_fs_utils_get_last_error_number(), row.number);
  }
}

TEST(FsUtils, ReadingAndClosingAFolderSayWhyTheyFail) {
  const TemporaryFolder folder;
  OwnedFolder listing = v_fs_utils_open_folder(folder.path());
  ASSERT_TRUE(listing);
  ASSERT_EQ(close(dirfd(listing.get())), 0);
  OwnedText name;
  EXPECT_FALSE(v_fs_utils_next_folder_entry(listing.get(), name));
  EXPECT_EQ(v_error_get(), message_of(EBADF, "Cannot read folder contents."));
  EXPECT_EQ(v_fs_utils_get_last_error_number(), EBADF);
  v_error_clear();
  EXPECT_FALSE(v_fs_utils_close_folder(std::move(listing)));
  EXPECT_EQ(v_error_get(), message_of(EBADF, "Cannot close folder."));
}

TEST(FsUtils, CreatedFolderIsForItsOwnerOnly) {
  const TemporaryFolder folder;
  for (const mode_t mask : {0U, 022U, 077U}) {
    const std::string path = folder / std::to_string(mask);
    const mode_t before = umask(mask);
    EXPECT_TRUE(v_fs_utils_create_folder(path.c_str()));
    EXPECT_TRUE(v_fs_utils_create_folder_recursively((path + "/b/c").c_str()));
    umask(before);
    EXPECT_EQ(permissions_of(path), 0700U);
    EXPECT_EQ(permissions_of(path + "/b"), 0700U);
    EXPECT_EQ(permissions_of(path + "/b/c"), 0700U);
  }
}

TEST(FsUtils, CreatingAFolderSaysWhyItFails) {
  const TemporaryFolder folder;
  write_file(folder / "file", "");
  const struct {
    std::string path;
    int number;
  } rows[] = {
      {folder.path(), EEXIST},
      {folder / "file", EEXIST},
      {folder / "file/below", ENOTDIR},
      {folder / "missing/below", ENOENT},
      {"", ENOENT},
      {folder / std::string(300, 'x'), ENAMETOOLONG},
  };
  for (const auto &row : rows) {
    EXPECT_FALSE(v_fs_utils_create_folder(row.path.c_str())) << row.path;
    EXPECT_EQ(v_error_get(), message_of(row.number, "Cannot create folder."));
    EXPECT_EQ(v_fs_utils_get_last_error_number(), row.number);
  }
}

TEST(FsUtils, CreatesMissingParents) {
  const TemporaryFolder folder;
  EXPECT_TRUE(v_fs_utils_create_folder_recursively((folder / "a/b//c///d//").c_str()));
  EXPECT_TRUE(info_of(folder / "a/b/c/d").is_folder);
  EXPECT_TRUE(v_fs_utils_create_folder_recursively((folder / "a/e").c_str()));
  EXPECT_TRUE(info_of(folder / "a/e").is_folder);
  EXPECT_THAT(list_folder(folder / "a"), testing::ElementsAre("b", "e"));
}

TEST(FsUtils, CreatesRelativeFoldersWithTheirParents) {
  const TemporaryFolder folder;
  const std::string here = in_child_process([&] {
    if (chdir(folder.path()) != 0) {
      return std::string("chdir");
    }
    return outcome(v_fs_utils_create_folder_recursively("x/y")) + "," +
           outcome(v_fs_utils_create_folder_recursively("z"));
  });
  EXPECT_EQ(here, "done,done");
  EXPECT_TRUE(info_of(folder / "x/y").is_folder);
  EXPECT_TRUE(info_of(folder / "z").is_folder);

  EXPECT_FALSE(v_fs_utils_create_folder_recursively("/"));
  EXPECT_EQ(v_error_get(), message_of(EEXIST, "Cannot create folder."));
  EXPECT_FALSE(v_fs_utils_create_folder_recursively(""));
  EXPECT_EQ(v_error_get(), message_of(ENOENT, "Cannot create folder."));
}

TEST(FsUtils, TopLevelFolderWithoutPermissionFails) {
  EXPECT_EQ(as_ordinary_user([] {
              return outcome(
                  v_fs_utils_create_folder_recursively("/proc/vantorelle_test_missing/below"));
            }),
            message_of(ENOENT, "Cannot create folder."));
}

TEST(FsUtils, CreatingAFolderWithItsParentsSaysWhyItFails) {
  const TemporaryFolder folder;
  write_file(folder / "file", "x");
  EXPECT_FALSE(v_fs_utils_create_folder_recursively(folder.path()));
  EXPECT_EQ(v_error_get(), message_of(EEXIST, "Cannot create folder."));
  EXPECT_FALSE(v_fs_utils_create_folder_recursively((folder / "file/a/b/c").c_str()));
  EXPECT_EQ(v_error_get(), message_of(ENOTDIR, "Cannot create folder."));
  std::string deep = folder.path();
  for (int i = 0; i < 5000; i++) {
    deep += "/x";
  }
  EXPECT_FALSE(v_fs_utils_create_folder_recursively(deep.c_str()));
  EXPECT_EQ(v_error_get(), message_of(ENAMETOOLONG, "Cannot create folder."));
  EXPECT_THAT(list_folder(folder.path()), testing::ElementsAre("file"));
}

TEST(FsUtils, ParentThatCannotBeCreatedIsAFailure) {
  const TemporaryFolder folder;
  set_permissions(folder.path(), 0555);
  EXPECT_EQ(as_ordinary_user([&] {
              return outcome(v_fs_utils_create_folder_recursively((folder / "a/b").c_str()));
            }),
            message_of(EACCES, "Cannot create folder."));
}

TEST(FsUtils, DeletesEmptyFoldersOnly) {
  const TemporaryFolder folder;
  make_folder(folder / "empty");
  make_folder(folder / "full");
  write_file(folder / "full/file", "x");
  EXPECT_TRUE(v_fs_utils_delete_folder_if_exists((folder / "empty").c_str()));
  EXPECT_FALSE(path_exists(folder / "empty"));
  EXPECT_TRUE(v_fs_utils_delete_folder_if_exists((folder / "empty").c_str()));
  EXPECT_TRUE(v_fs_utils_delete_folder_if_exists(""));
  const struct {
    std::string path;
    int number;
  } rows[] = {{folder / "full", ENOTEMPTY}, {folder / "full/file", ENOTDIR}};
  for (const auto &row : rows) {
    EXPECT_FALSE(v_fs_utils_delete_folder_if_exists(row.path.c_str()));
    EXPECT_EQ(v_error_get(), message_of(row.number, "Cannot delete folder."));
    EXPECT_EQ(v_fs_utils_get_last_error_number(), row.number);
  }
  EXPECT_EQ(read_file(folder / "full/file"), "x");
}

// Status

TEST(FsUtils, InfoOfAFile) {
  const TemporaryFolder folder;
  write_file(folder / "file", "12345");
  const utimbuf times = {1, 1'234'567'890};
  ASSERT_EQ(utime((folder / "file").c_str(), &times), 0);
  const VFileInfo info = info_of(folder / "file");
  EXPECT_EQ(info.exists, 1U);
  EXPECT_EQ(info.is_folder, 0U);
  EXPECT_EQ(info.is_file, 1U);
  EXPECT_EQ(info.modification_time, 1'234'567'890);
  EXPECT_EQ(info.size, 5);
  EXPECT_TRUE(v_fs_utils_is_regular_file(info));
}

TEST(FsUtils, InfoHoldsLargeSizesAndTimesBeforeTheEpoch) {
  const TemporaryFolder folder;
  write_file(folder / "file", "");
  ASSERT_EQ(truncate((folder / "file").c_str(), 5'000'000'000), 0);
  const utimbuf times = {-10, -10};
  ASSERT_EQ(utime((folder / "file").c_str(), &times), 0);
  const VFileInfo info = info_of(folder / "file");
  EXPECT_EQ(info.size, 5'000'000'000);
  EXPECT_EQ(info.modification_time, -10);
}

TEST(FsUtils, InfoHoldsTheFolderAndFileBitsOfTheMode) {
  const TemporaryFolder folder;
  ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
  make_socket(folder / "socket");
  ASSERT_EQ(symlink(folder.path(), (folder / "link").c_str()), 0);
  const struct {
    std::string path;
    std::uint32_t is_folder;
    std::uint32_t is_file;
  } rows[] = {
      {folder.path(), 1, 0},     {folder / "link", 1, 0}, {folder / "pipe", 0, 0},
      {folder / "socket", 1, 1}, {"/dev/null", 0, 0},
  };
  for (const auto &row : rows) {
    const VFileInfo info = info_of(row.path);
    EXPECT_EQ(info.exists, 1U) << row.path;
    EXPECT_EQ(info.is_folder, row.is_folder) << row.path;
    EXPECT_EQ(info.is_file, row.is_file) << row.path;
    EXPECT_FALSE(v_fs_utils_is_regular_file(info)) << row.path;
  }
}

TEST(FsUtils, MissingPathHasInfoOfZeros) {
  const TemporaryFolder folder;
  ASSERT_EQ(symlink("nowhere", (folder / "dangling").c_str()), 0);
  for (const std::string &path :
       {folder / "missing", folder / "missing/below", folder / "dangling", std::string()}) {
    VFileInfo info = {1, 1, 1, 1, 1};
    EXPECT_TRUE(v_fs_utils_get_info(path.c_str(), info)) << path;
    expect_all_zero(info);
    EXPECT_FALSE(v_fs_utils_is_regular_file(info));
  }
}

TEST(FsUtils, PathUnderAFileHasNoInfo) {
  const TemporaryFolder folder;
  write_file(folder / "file", "");
  VFileInfo info = {1, 1, 1, 1, 1};
  EXPECT_FALSE(v_fs_utils_get_info((folder / "file/below").c_str(), info));
  EXPECT_EQ(v_error_get(), message_of(ENOTDIR, "Cannot get file status."));
  EXPECT_EQ(v_fs_utils_get_last_error_number(), ENOTDIR);
  expect_all_zero(info);
}

// If the status cannot be read, the path may be in use, so it does not count as missing.
TEST(FsUtils, OnlyAPathKnownToBeAbsentIsMissing) {
  const TemporaryFolder folder;
  write_file(folder / "file", "");
  EXPECT_TRUE(v_fs_utils_is_missing((folder / "none").c_str()));
  EXPECT_FALSE(v_fs_utils_is_missing((folder / "file").c_str()));
  EXPECT_FALSE(v_fs_utils_is_missing(folder.path()));
  EXPECT_FALSE(v_fs_utils_is_missing((folder / "file/under").c_str()));
  EXPECT_FALSE(v_fs_utils_is_missing("\xff"));
}

TEST(FsUtils, LinkToItselfHasNoInfo) {
  const TemporaryFolder folder;
  ASSERT_EQ(symlink("loop", (folder / "loop").c_str()), 0);
  VFileInfo info;
  EXPECT_FALSE(v_fs_utils_get_info((folder / "loop").c_str(), info));
  EXPECT_EQ(v_error_get(), message_of(ELOOP, "Cannot get file status."));
}

TEST(FsUtils, SuccessKeepsTheMessageAndTheLastErrorNumber) {
  const TemporaryFolder folder;
  VFileInfo info;
  EXPECT_FALSE(v_fs_utils_open_folder((folder / "missing").c_str()));
  v_error_set("before");
  EXPECT_TRUE(v_fs_utils_get_info((folder / "missing").c_str(), info));
  EXPECT_TRUE(v_fs_utils_create_folder((folder / "new").c_str()));
  EXPECT_TRUE(v_fs_utils_delete_folder_if_exists((folder / "new").c_str()));
  EXPECT_STREQ(v_error_get(), "before");
  EXPECT_EQ(v_fs_utils_get_last_error_number(), ENOENT);
}
