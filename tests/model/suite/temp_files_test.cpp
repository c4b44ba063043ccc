#include "suite/temp_files.h"

#include <csignal>
#include <cstdio>
#include <string>
#include <vector>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "base/error.h"
#include "base/owned.h"
#include "support/files.h"
#include "support/wait.h"

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

long get_size(const std::string &path) {
  struct stat status;
  return stat(path.c_str(), &status) == 0 ? static_cast<long>(status.st_size) : -1;
}

// A process that waits until the object is destroyed.
class Process {
public:
  explicit Process(const std::string &executable) : id(fork()) {
    if (id == 0) {
      execl(executable.c_str(), "sleep", "1000", nullptr);
      _exit(1);
    }
    // Until exec has run, the child still has the executable of this program.
    const OwnedText link(g_strdup_printf("/proc/%d/exe", id));
    EXPECT_TRUE(sleep_until("a process of " + executable, [&] {
      const OwnedText path(g_file_read_link(link.get(), nullptr));
      return path && executable == path.get();
    }));
  }
  ~Process() {
    kill(id, SIGKILL);
    waitpid(id, nullptr, 0);
  }
  Process(const Process &) = delete;
  Process &operator=(const Process &) = delete;

  const pid_t id;
};

std::string file_name(long process_id, long fingerprint, const char *ending = ".out") {
  return "vantorelle-" + std::to_string(process_id) + "." + std::to_string(fingerprint) + ending;
}

// An id beyond those that the system gives.
constexpr long absent_process_id = 99999999;

class TempFiles : public ::testing::Test {
protected:
  void add(const std::string &name) { write_file(folder / name, "printed"); }
  std::vector<std::string> clean_up() {
    EXPECT_TRUE(v_temp_files_clean_up_in_folder(folder.path())) << v_error_get();
    return list_folder(folder.path());
  }

  const TemporaryFolder folder;
  const std::string own_executable = OwnedText(g_file_read_link("/proc/self/exe", nullptr)).get();
};

TEST_F(TempFiles, FilesOfEndedProcessesAreDeleted) {
  add("vantorelle-99999999.123.out");
  add("vantorelle-99999999.0.odt");
  add("vantorelle-0099999999.123.out");
  add("vantorelle-0.123.out");
  // No process can have such an id.
  add("vantorelle-99999999999999999999999999.123.out");
  EXPECT_THAT(clean_up(), IsEmpty());
}

TEST_F(TempFiles, FilesOfRunningProcessesAreKept) {
  const std::string out = file_name(getpid(), get_size(own_executable));
  const std::string odt = file_name(getpid(), get_size(own_executable), ".odt");
  add(out);
  add(odt);
  EXPECT_THAT(clean_up(), ElementsAre(odt, out));
}

TEST_F(TempFiles, FilesOfAProcessIdThatAnotherProgramHasNowAreDeleted) {
  add(file_name(getpid(), get_size(own_executable) + 1));
  add(file_name(getpid(), get_size(own_executable) - 1, ".odt"));
  add(file_name(getpid(), 0));
  // Equal in the low 32 bits only.
  add(file_name(getpid(), get_size(own_executable) + (1L << 32)));
  EXPECT_THAT(clean_up(), IsEmpty());
}

TEST_F(TempFiles, OtherNamesAreNeverTouched) {
  const std::vector<std::string> names = {
      "Vantorelle-99999999.1.out",  "vantorelle-.1.out",
      "vantorelle--1.1.out",        "vantorelle-12.34.oxt",
      "vantorelle-12.34.out.bak",   "vantorelle-12.34.outx",
      "vantorelle-12.34.txt",       "vantorelle-12.34.56.out",
      "vantorelle-12..out",         "vantorelle-12.34out",
      "vantorelle-12.a.out",        "vantorelle-12.out",
      "vantorelle-99999999.1.OUT",  "vantorelle-a.1.out",
      "xvantorelle-99999999.1.out", "å",
  };
  for (const std::string &name : names) {
    add(name);
  }
  EXPECT_THAT(clean_up(), ::testing::UnorderedElementsAreArray(names));
}

// The executable of a running process may have been deleted or replaced.
TEST_F(TempFiles, FilesOfAProcessWithoutAnExecutableOnDiskAreKept) {
  const TemporaryFolder programs;
  write_file(programs / "sleep", read_file("/bin/sleep"));
  set_permissions(programs / "sleep", 0700);
  const Process process(programs / "sleep");
  std::remove((programs / "sleep").c_str());
  add(file_name(process.id, 1));
  EXPECT_THAT(clean_up(), ElementsAre(file_name(process.id, 1)));
}

// The process runs, and its program cannot be identified.
TEST_F(TempFiles, FilesOfAProcessWhoseExecutableNameIsNotUtf8AreKept) {
  const TemporaryFolder programs;
  const std::string program = programs / "sl\xE5";
  write_file(program, read_file("/bin/sleep"));
  set_permissions(program, 0700);
  const Process process(program);
  const std::string own = file_name(process.id, get_size(program));
  const std::string other = file_name(process.id, get_size(program) + 1);
  add(own);
  add(other);
  EXPECT_THAT(clean_up(), ::testing::UnorderedElementsAre(own, other));
}

// Names carry 31 bits of the size.
TEST_F(TempFiles, TheFingerprintOfALargeExecutableHasNoTopBit) {
  const TemporaryFolder programs;
  const std::string program = programs / "sleep";
  write_file(program, read_file("/bin/sleep"));
  set_permissions(program, 0700);
  const long small_size = get_size(program);
  const auto expect_kept = [this, &program](long size, long fingerprint, long other) {
    ASSERT_EQ(truncate(program.c_str(), size), 0); // takes no room
    const Process process(program);
    add(file_name(process.id, fingerprint));
    add(file_name(process.id, other));
    EXPECT_THAT(clean_up(), ElementsAre(file_name(process.id, fingerprint)));
    ASSERT_EQ(unlink((folder / file_name(process.id, fingerprint)).c_str()), 0);
  };
  constexpr long top_bit = 1L << 31;
  constexpr long next_bit = 1L << 30;
  expect_kept(small_size + top_bit, small_size, small_size + top_bit);
  expect_kept(small_size + next_bit, small_size + next_bit, small_size);
}

// A folder with the name of such a file cannot be deleted.
TEST_F(TempFiles, DeletesTheOtherFilesAfterAFailure) {
  make_folder(folder / file_name(absent_process_id, 1));
  make_folder(folder / file_name(absent_process_id, 1) + "/inside");
  add(file_name(absent_process_id, 0));
  add(file_name(absent_process_id, 2));
  EXPECT_THAT(clean_up(), ElementsAre(file_name(absent_process_id, 1)));
}

TEST_F(TempFiles, LinksAreDeletedThemselves) {
  const TemporaryFolder elsewhere;
  write_file(elsewhere / "kept", "kept");
  ASSERT_EQ(
      symlink((elsewhere / "kept").c_str(), (folder / file_name(absent_process_id, 1)).c_str()), 0);
  EXPECT_THAT(clean_up(), IsEmpty());
  EXPECT_EQ(read_file(elsewhere / "kept"), "kept");
}

// The system may list the names in any order.
TEST_F(TempFiles, NamesThatAreNotUtf8DoNotStopTheCleanUp) {
  for (int i = 0; i < 20; i++) {
    add(file_name(absent_process_id, i));
    if (i % 10 == 5) {
      add("\xff" + std::to_string(i));
    }
  }
  add("vantorelle-\xff.1.out");
  EXPECT_THAT(clean_up(), ElementsAre("vantorelle-\xff.1.out",
                                      "\xff"
                                      "15",
                                      "\xff"
                                      "5"));
}

TEST_F(TempFiles, AFolderThatCannotBeOpenedIsAFailure) {
  EXPECT_FALSE(v_temp_files_clean_up_in_folder((folder / "missing").c_str()));
  EXPECT_STREQ(v_error_get(),
               "Couldn't clean up temp files.\n\nCouldn't open temp files folder.\n\n"
               "Cannot open folder.\n\nError 2: No such file or directory");
  v_error_clear();
  EXPECT_FALSE(v_temp_files_clean_up_in_folder(nullptr));
  EXPECT_STREQ(v_error_get(), "Couldn't clean up temp files.");
}

// The suite's own folder.
TEST_F(TempFiles, LooksInTheTemporaryFolder) {
  const std::string stale = "/tmp/" + file_name(absent_process_id, getpid());
  const std::string kept = "/tmp/" + file_name(getpid(), get_size(own_executable));
  write_file(stale, "printed");
  write_file(kept, "printed");
  EXPECT_TRUE(v_temp_files_clean_up()) << v_error_get();
  EXPECT_FALSE(path_exists(stale));
  EXPECT_TRUE(path_exists(kept));
  std::remove(stale.c_str());
  std::remove(kept.c_str());
}

} // namespace
