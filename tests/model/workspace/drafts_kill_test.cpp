#include "drafts_fixture.h"

#include <csignal>
#include <cstdlib>
#include <random>

#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include "codeset/codeset_io.h"

using testing::SizeIs;

namespace {

long from_environment(const char *variable, long otherwise) {
  const char *value = std::getenv(variable);
  return value == nullptr ? otherwise : std::atol(value);
}

OwnedCodeset codeset_of_version(long version, int remark_count) {
  OwnedCodeset codeset = paper();
  codeset->version = copy_text(std::to_string(version).c_str());
  v_remark_list_destroy_remarks(codeset->remarks.get());
  for (int i = 0; i < remark_count; i++) {
    v_remark_list_add_remark_last(codeset->remarks.get(),
                                  remark_of(std::to_string(i), {{"sv", "Beskrivning"}}));
  }
  return codeset;
}

// The version of a complete codeset, otherwise -1.
long version_of(const VCodeset *codeset, int remark_count) {
  if (codeset == nullptr ||
      remarks_of(codeset->remarks).size() != static_cast<std::size_t>(remark_count)) {
    return -1;
  }
  return std::atol(codeset->version.get());
}

} // namespace

// A child edits and saves in a loop until it is killed. After each kill a draft must be complete,
// and it or the file must hold everything that a finished step has written. VANTORELLE_KILLS sets
// the number of kills, VANTORELLE_SEED repeats their moments.
TEST_F(Drafts, TheWorkIsSafeWheneverTheProgramIsKilled) {
  constexpr int remark_count = 2000;
  const long kills = from_environment("VANTORELLE_KILLS", 40);
  const long seed = from_environment("VANTORELLE_SEED", static_cast<long>(std::random_device()()));
  SCOPED_TRACE("VANTORELLE_SEED=" + std::to_string(seed));
  std::mt19937 random(static_cast<std::mt19937::result_type>(seed));
  std::uniform_int_distribution<int> microseconds(0, 60'000);
  // The newest version that is certainly on the disk. The child sets it.
  auto *finished = static_cast<volatile long *>(
      mmap(nullptr, sizeof(long), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
  ASSERT_NE(static_cast<volatile void *>(finished), MAP_FAILED);
  *finished = 1;
  const OwnedCodeset first = codeset_of_version(1, remark_count);
  ASSERT_TRUE(v_codeset_io_write_to_file(first.get(), path.c_str()));
  for (long kill_number = 0; kill_number < kills && !HasFailure(); kill_number++) {
    const pid_t child = fork();
    if (child == 0) {
      const OwnedDraft draft = v_draft_open(path.c_str());
      draft->left_behind.reset();
      for (long version = *finished + 1;; version++) {
        first->version = copy_text(std::to_string(version).c_str());
        // Some versions are saved without a draft.
        if (version % 3 != 0) {
          v_draft_write(draft.get(), first.get());
          *finished = version;
        }
        if (version % 3 != 1 && v_draft_save_codeset(draft.get(), first.get())) {
          *finished = version;
        }
      }
    }
    usleep(static_cast<useconds_t>(microseconds(random)));
    kill(child, SIGKILL);
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    OwnedDraft draft = open();
    const OwnedCodeset file = v_codeset_io_read_from_file(path.c_str());
    const long in_file = version_of(file.get(), remark_count);
    const long in_draft = version_of(draft->left_behind.get(), remark_count);
    EXPECT_GE(std::max(in_file, in_draft), *finished)
        << "kill " << kill_number << ": file " << in_file << ", draft " << in_draft;
    EXPECT_TRUE(!draft->left_behind || in_draft >= 0) << "The draft is incomplete.";
    EXPECT_THAT(names(), SizeIs(testing::Le(1U)));
    *finished = std::max(in_file, in_draft);
  }
  munmap(const_cast<long *>(finished), sizeof(long));
}
