#include "tools/codeset_files.h"

#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/error.h"
#include "codeset/codeset_io.h"
#include "placed_file.h"
#include "support/child_process.h"
#include "support/files.h"
#include "support/values/remarks.h"

namespace {

// The signals that arrive just before a file is renamed, and just after a folder was created; 0 for
// none.
int signal_before_renaming = 0;
int signal_after_creating = 0;

} // namespace

// The linker option --wrap redirects the program's own calls to these functions.
extern "C" {

char *__real_g_mkdtemp(char *name);

char *__wrap_g_mkdtemp(char *name) {
  char *created = __real_g_mkdtemp(name);
  if (signal_after_creating != 0) {
    raise(signal_after_creating);
  }
  return created;
}

int __real_rename(const char *name, const char *new_name);

int __wrap_rename(const char *name, const char *new_name) {
  if (signal_before_renaming != 0) {
    raise(signal_before_renaming);
  }
  return __real_rename(name, new_name);
}
}

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

OwnedCodeset codeset_of(const Remarks &remarks) {
  OwnedCodeset codeset = v_codeset_new();
  codeset->name = langstr_of({{"sv", "Namn"}, {"", "Name"}});
  codeset->author = langstr_of({{"sv", "F\xf6rfattare"}});
  codeset->version = copy_text("1.0");
  codeset->remarks = list_of(remarks);
  return codeset;
}

class CodesetFiles : public testing::Test {
protected:
  CodesetFiles() { v_error_set("of an earlier failure"); }

  // "written", or the message on failure.
  static std::string result_of(bool is_written) { return is_written ? "written" : v_error_get(); }

  TemporaryFolder folder;
  std::string path = folder / "a.codeset";
};

TEST_F(CodesetFiles, AreReadAsTheWindowReadsThem) {
  const OwnedCodeset codeset = codeset_of({{"2", {{"sv", "b"}}}, {"1", {{"sv", "a"}}}});
  ASSERT_TRUE(v_codeset_io_write_to_file(codeset.get(), path.c_str()));
  const OwnedCodeset read = v_tools_read_codeset(path.c_str());
  ASSERT_TRUE(read) << v_error_get();
  EXPECT_EQ(remarks_of(read->remarks), (Remarks{{"1", {{"sv", "a"}}}, {"2", {{"sv", "b"}}}}));
  EXPECT_FALSE(v_tools_read_codeset((folder / "none").c_str()));
  EXPECT_STREQ(v_error_get(), "Error loading codeset file.\n\nCannot open file.\n\n"
                              "Error 2: No such file or directory");
}

TEST_F(CodesetFiles, AreReadFromANamedPipe) {
  const OwnedCodeset codeset = codeset_of({{"1", {{"sv", "a"}}}});
  ASSERT_TRUE(v_codeset_io_write_to_file(codeset.get(), path.c_str()));
  const std::string pipe = folder / "pipe";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  const pid_t writer = fork();
  if (writer == 0) {
    execl("/bin/cp", "cp", path.c_str(), pipe.c_str(), nullptr);
    _exit(1);
  }
  const OwnedCodeset read = v_tools_read_codeset(pipe.c_str());
  ASSERT_TRUE(read) << v_error_get();
  EXPECT_TRUE(v_tools_codesets_are_equal(read.get(), codeset.get()));
}

TEST_F(CodesetFiles, HaveABareNameWithoutFoldersAndExtension) {
  EXPECT_EQ(v_tools_get_bare_name("easel_paintings.codeset"), "easel_paintings");
  EXPECT_EQ(v_tools_get_bare_name("/a.b/Panel 2.1.codeset"), "Panel 2.1");
  EXPECT_EQ(v_tools_get_bare_name("a.b/none"), "none");
  EXPECT_EQ(v_tools_get_bare_name(".codeset"), "");
  EXPECT_EQ(v_tools_get_bare_name("-"), "");
  EXPECT_EQ(v_tools_get_bare_name(nullptr), "");
  EXPECT_STREQ(v_error_get(), "of an earlier failure");
}

TEST_F(CodesetFiles, ReturnAllBytesOfAText) {
  const std::string bytes("a\r\n\0b\xff", 6);
  write_file(path, bytes);
  std::string text = "what was there";
  ASSERT_TRUE(v_tools_read_text(path.c_str(), text)) << v_error_get();
  EXPECT_EQ(text, bytes);
}

TEST_F(CodesetFiles, SayWhyATextCannotBeRead) {
  std::string text;
  EXPECT_FALSE(v_tools_read_text((folder / "none").c_str(), text));
  EXPECT_STREQ(v_error_get(), "Cannot open file.\n\nError 2: No such file or directory");
  EXPECT_FALSE(v_tools_read_text(folder.path(), text));
  EXPECT_STREQ(v_error_get(), "File I/O error when reading file.");
}

TEST_F(CodesetFiles, WriteATextAsANewFileThatEverybodyMayRead) {
  const mode_t mask = umask(022);
  EXPECT_EQ(result_of(v_tools_write_text(path.c_str(), "text", Overwriting::refused)), "written");
  umask(mask);
  EXPECT_EQ(read_file(path), "text");
  EXPECT_EQ(permissions_of(path), 0644u);
  EXPECT_THAT(list_folder(folder.path()), ElementsAre("a.codeset"));
}

TEST_F(CodesetFiles, KeepAFileThatMayNotBeReplaced) {
  write_file(path, "old");
  EXPECT_EQ(result_of(v_tools_write_text(path.c_str(), "new", Overwriting::refused)),
            "The file exists already; --force replaces it.");
  EXPECT_EQ(read_file(path), "old");
  EXPECT_THAT(list_folder(folder.path()), ElementsAre("a.codeset"));
}

TEST_F(CodesetFiles, KeepThePermissionsOfAReplacedFile) {
  write_file(path, "old");
  set_permissions(path, 0640);
  EXPECT_EQ(result_of(v_tools_write_text(path.c_str(), "new", Overwriting::allowed)), "written");
  EXPECT_EQ(read_file(path), "new");
  EXPECT_EQ(permissions_of(path), 0640u);
  EXPECT_THAT(list_folder(folder.path()), ElementsAre("a.codeset"));
}

TEST_F(CodesetFiles, ReplaceTheTargetOfALinkAndNotTheLink) {
  make_folder(folder / "elsewhere");
  write_file(folder / "elsewhere/target", "old");
  ASSERT_EQ(symlink("elsewhere/target", path.c_str()), 0);
  EXPECT_EQ(result_of(v_tools_write_text(path.c_str(), "new", Overwriting::allowed)), "written");
  EXPECT_EQ(read_file(folder / "elsewhere/target"), "new");
  char target[20] = {};
  EXPECT_EQ(readlink(path.c_str(), target, sizeof target), 16);
}

TEST_F(CodesetFiles, DoNotFollowALinkToNothing) {
  ASSERT_EQ(symlink("nothing", path.c_str()), 0);
  EXPECT_EQ(result_of(v_tools_write_text(path.c_str(), "new", Overwriting::refused)),
            "The file exists already; --force replaces it.");
  EXPECT_THAT(list_folder(folder.path()), ElementsAre("a.codeset"));
}

TEST_F(CodesetFiles, ReplaceOnlyRegularFiles) {
  EXPECT_EQ(result_of(v_tools_write_text(folder.path(), "new", Overwriting::allowed)),
            "Not a regular file.");
  EXPECT_EQ(result_of(v_tools_write_text("/dev/null", "new", Overwriting::allowed)),
            "Not a regular file.");
}

TEST_F(CodesetFiles, SayWhyAFileCannotBeWritten) {
  EXPECT_EQ(result_of(v_tools_write_text((folder / "none/a").c_str(), "", Overwriting::refused)),
            "Cannot create file.\n\nError 2: No such file or directory");
  set_permissions(folder.path(), 0555);
  EXPECT_EQ(as_ordinary_user([&] {
              return result_of(v_tools_write_text(path.c_str(), "", Overwriting::refused));
            }),
            "Cannot create file.\n\nError 13: Permission denied");
  set_permissions(folder.path(), 0755);
}

TEST_F(CodesetFiles, LeaveTheOldFileWhenTheDiskIsFull) {
  write_file(path, "old");
  EXPECT_THAT(with_file_size_limit(10,
                                   [&] {
                                     return result_of(v_tools_write_text(
                                         path.c_str(), "much too long", Overwriting::allowed));
                                   }),
              StartsWith("File I/O error when writing to file."));
  EXPECT_EQ(read_file(path), "old");
  EXPECT_THAT(list_folder(folder.path()), ElementsAre("a.codeset"));
}

// Puts a file in its place in another process. Returns the signal that ended the process, or 0.
// write: called with the new file's path.
template <typename Write>
int signal_that_ends_writing(const std::string &path, const Write &write) {
  const pid_t writer = fork();
  if (writer == 0) {
    PlacedFile placed;
    if (placed.prepare(path.c_str(), Overwriting::refused)) {
      write(placed.path());
      placed.put();
    }
    _exit(1);
  }
  int status = 0;
  waitpid(writer, &status, 0);
  return WIFSIGNALED(status) ? WTERMSIG(status) : 0;
}

TEST_F(CodesetFiles, LeaveNothingWhenASignalEndsTheProgram) {
  for (const int signal_number : {SIGHUP, SIGINT, SIGTERM}) {
    EXPECT_EQ(signal_that_ends_writing(path,
                                       [&](const char *new_path) {
                                         write_file(new_path, "unfinished");
                                         raise(signal_number);
                                       }),
              signal_number);
    EXPECT_THAT(list_folder(folder.path()), IsEmpty());
  }
}

TEST_F(CodesetFiles, LeaveNothingWhenASignalArrivesWhileTheirFolderIsCreated) {
  for (const int signal_number : {SIGHUP, SIGINT, SIGTERM}) {
    signal_after_creating = signal_number;
    EXPECT_EQ(signal_that_ends_writing(path, [](const char *) {}), signal_number);
    EXPECT_THAT(list_folder(folder.path()), IsEmpty());
  }
  signal_after_creating = 0;
}

TEST_F(CodesetFiles, AreWholeWhenASignalArrivesWhileTheyAreRenamed) {
  for (const int signal_number : {SIGHUP, SIGINT, SIGTERM}) {
    EXPECT_EQ(signal_that_ends_writing(path,
                                       [&](const char *new_path) {
                                         write_file(new_path, "whole");
                                         signal_before_renaming = signal_number;
                                       }),
              signal_number);
    EXPECT_EQ(read_file(path), "whole");
    EXPECT_THAT(list_folder(folder.path()), ElementsAre("a.codeset"));
    std::remove(path.c_str());
  }
}

TEST_F(CodesetFiles, AreWrittenDespiteAnIgnoredSignal) {
  const auto old_handler = signal(SIGHUP, SIG_IGN);
  EXPECT_EQ(signal_that_ends_writing(path,
                                     [](const char *new_path) {
                                       write_file(new_path, "whole");
                                       raise(SIGHUP);
                                     }),
            0);
  EXPECT_EQ(read_file(path), "whole");
  signal(SIGHUP, old_handler);
}

TEST_F(CodesetFiles, WriteACodesetAsTheWindowDoes) {
  const OwnedCodeset codeset = codeset_of({{"1", {{"sv", "\xe5"}, {"", "b"}}}});
  EXPECT_EQ(result_of(v_tools_write_codeset(codeset.get(), path.c_str(), Overwriting::refused)),
            "written");
  const std::string expected = folder / "expected";
  ASSERT_TRUE(v_codeset_io_write_to_file(codeset.get(), expected.c_str()));
  EXPECT_EQ(read_file(path), read_file(expected));
}

TEST_F(CodesetFiles, AreNotReplacedByACodesetThatCannotBeReadBack) {
  const OwnedCodeset broken = codeset_of({{"a&b", {{"sv", "a"}}}});
  EXPECT_THAT(result_of(v_tools_write_codeset(broken.get(), path.c_str(), Overwriting::refused)),
              HasSubstr("Could not parse XML data."));
  const OwnedCodeset changed = codeset_of({{"a&amp;b", {{"sv", "a"}}}});
  EXPECT_EQ(result_of(v_tools_write_codeset(changed.get(), path.c_str(), Overwriting::refused)),
            "The written file does not read back as it should.");
  EXPECT_THAT(list_folder(folder.path()), IsEmpty());
}

TEST_F(CodesetFiles, KeepACodesetThatMayNotBeReplaced) {
  write_file(path, "old");
  const OwnedCodeset codeset = codeset_of({{"1", {{"sv", "a"}}}});
  EXPECT_EQ(result_of(v_tools_write_codeset(codeset.get(), path.c_str(), Overwriting::refused)),
            "The file exists already; --force replaces it.");
  EXPECT_EQ(read_file(path), "old");
}

TEST(Codesets, AreEqualWhenAllTextsAre) {
  const Remarks remarks = {{"1", {{"sv", "a"}, {"de", "b"}}}, {"2", {{"sv", "c"}}}};
  const OwnedCodeset codeset = codeset_of(remarks);
  EXPECT_TRUE(v_tools_codesets_are_equal(codeset.get(), codeset_of(remarks).get()));

  const Remarks others[] = {
      {{"1", {{"sv", "a"}, {"de", "b"}}}},
      {{"1", {{"sv", "a"}, {"de", "b"}}}, {"2", {{"sv", "c"}}}, {"3", {{"sv", "c"}}}},
      {{"1", {{"sv", "a"}, {"de", "b"}}}, {"3", {{"sv", "c"}}}},
      {{"1", {{"sv", "a"}, {"de", "b"}}}, {"2", {{"sv", "d"}}}},
      {{"1", {{"de", "b"}, {"sv", "a"}}}, {"2", {{"sv", "c"}}}}};
  for (const Remarks &other : others) {
    EXPECT_FALSE(v_tools_codesets_are_equal(codeset.get(), codeset_of(other).get()));
    EXPECT_FALSE(v_tools_codesets_are_equal(codeset_of(other).get(), codeset.get()));
  }

  const OwnedCodeset named = codeset_of(remarks);
  named->name = langstr_of({{"sv", "Namn"}});
  EXPECT_FALSE(v_tools_codesets_are_equal(codeset.get(), named.get()));
  const OwnedCodeset by_another = codeset_of(remarks);
  by_another->author = nullptr;
  EXPECT_FALSE(v_tools_codesets_are_equal(codeset.get(), by_another.get()));
  const OwnedCodeset without_version = codeset_of(remarks);
  without_version->version = nullptr;
  EXPECT_FALSE(v_tools_codesets_are_equal(codeset.get(), without_version.get()));
}

} // namespace
