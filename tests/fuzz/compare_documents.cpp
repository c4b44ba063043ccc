// Compares the program's readers and the second ones on many random documents:
//
//     compare_documents COUNT [SEED [JOBS]]
//
// The same seed gives the same documents. Of ten documents eight are codesets, one is a settings
// file and one a pointer file. A document on which the two differ, or which ends the process, is
// reported and left in the current folder, and the status is 1. The search ends after twenty such
// documents.

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <vector>

#include <glib.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include "fuzz/oracle/comparison.h"
#include "support/files.h"

namespace {

// The well-known mixing function for 64 bits, as a generator of random numbers.
std::uint64_t next_random(std::uint64_t &state) {
  state += 0x9E3779B97F4A7C15;
  std::uint64_t mixed = state;
  mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9;
  mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EB;
  return mixed ^ (mixed >> 31);
}

DocumentKind kind_of(std::uint64_t number) {
  switch (number % 10) {
  case 8:
    return DocumentKind::settings;
  case 9:
    return DocumentKind::pointer;
  default:
    return DocumentKind::codeset;
  }
}

std::string document_of(std::uint64_t seed, std::uint64_t number) {
  std::uint64_t state = seed;
  state = next_random(state) ^ number;
  const std::size_t length = std::size_t{32} << (next_random(state) % 6);
  std::vector<std::uint8_t> bytes(length);
  for (std::size_t i = 0; i < length; ++i) {
    bytes[i] = static_cast<std::uint8_t>(next_random(state) >> 24);
  }
  return generate_document(kind_of(number), LongTexts::megabytes, bytes.data(), length);
}

struct Run {
  std::uint64_t count;
  std::uint64_t seed;
  unsigned jobs;
};

// Is in memory that the job shares with its parent.
struct Job {
  std::atomic<std::uint64_t> number; // of the document that it compares
  pid_t process;
};

void compare_from(const Run &run, Job &job) {
  for (std::uint64_t number = job.number; number < run.count; number += run.jobs) {
    job.number = number;
    compare_readers(kind_of(number), document_of(run.seed, number));
  }
}

void start(const Run &run, Job &job) {
  const pid_t process = fork();
  if (process < 0) {
    std::perror("fork");
    std::exit(2);
  }
  if (process == 0) {
    compare_from(run, job);
    // Folders are removed, and leaks are looked for, at the end.
    std::exit(0);
  }
  job.process = process;
}

// Leaves the document in a file, in the form that the harnesses take.
void report(const Run &run, std::uint64_t number) {
  const std::string path = "document-" + std::to_string(run.seed) + "-" + std::to_string(number);
  write_file(path, '\0' + document_of(run.seed, number));
  std::fprintf(stderr, "The report above is of the document in %s.\n\n", path.c_str());
}

// Returns the number of documents that were reported.
unsigned compare_all(const Run &run, Job *jobs) {
  constexpr unsigned maximum_findings = 3000;
  for (unsigned i = 0; i < run.jobs; ++i) {
    jobs[i].number = i;
    start(run, jobs[i]);
  }
  unsigned findings = 0;
  int status = 0;
  for (pid_t ended = wait(&status); ended > 0; ended = wait(&status)) {
    if (WIFEXITED(status) && WEXITSTATUS(status) == 0) {
      continue;
    }
    Job *job = std::find_if(jobs, jobs + run.jobs,
                            [&](const Job &candidate) { return candidate.process == ended; });
    report(run, job->number);
    if (++findings < maximum_findings) {
      job->number += run.jobs;
      start(run, *job);
    }
  }
  return findings;
}

} // namespace

int main(int argc, char **argv) {
  if (argc < 2 || argc > 4) {
    std::fprintf(stderr, "usage: %s COUNT [SEED [JOBS]]\n", argv[0]);
    return 2;
  }
  Run run = {g_ascii_strtoull(argv[1], nullptr, 10), 1, 1};
  if (argc > 2) {
    run.seed = g_ascii_strtoull(argv[2], nullptr, 10);
  }
  if (argc > 3) {
    run.jobs = std::max(1U, static_cast<unsigned>(g_ascii_strtoull(argv[3], nullptr, 10)));
  }
  void *memory = mmap(nullptr, run.jobs * sizeof(Job), PROT_READ | PROT_WRITE,
                      MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED) {
    std::perror("mmap");
    return 2;
  }
  // Millions of files are written.
  if (access("/dev/shm", W_OK) == 0) {
    g_setenv("TMPDIR", "/dev/shm", TRUE);
  }
  const gint64 start_time = g_get_monotonic_time();
  const unsigned findings = compare_all(run, new (memory) Job[run.jobs]);
  const double seconds = static_cast<double>(g_get_monotonic_time() - start_time) / 1e6;
  std::printf("%llu documents of seed %llu, %.0f each second, %u findings\n",
              static_cast<unsigned long long>(run.count), static_cast<unsigned long long>(run.seed),
              static_cast<double>(run.count) / seconds, findings);
  return findings == 0 ? 0 : 1;
}
