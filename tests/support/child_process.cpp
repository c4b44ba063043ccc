#include "support/child_process.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>

#include <grp.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr uid_t nobody = 65534;

[[noreturn]] void give_up(const char *what) {
  std::perror(what);
  std::abort();
}

bool write_all(int descriptor, const std::string &text) {
  std::size_t written = 0;
  while (written < text.size()) {
    const ssize_t count = write(descriptor, text.data() + written, text.size() - written);
    if (count <= 0) {
      return false;
    }
    written += static_cast<std::size_t>(count);
  }
  return true;
}

std::string read_all(int descriptor) {
  std::string text;
  char buffer[4096];
  ssize_t count = 0;
  while ((count = read(descriptor, buffer, sizeof buffer)) > 0) {
    text.append(buffer, static_cast<std::size_t>(count));
  }
  return text;
}

void give_up_superuser() {
  if (geteuid() == 0 &&
      (setgroups(0, nullptr) != 0 || setgid(nobody) != 0 || setuid(nobody) != 0)) {
    give_up("setuid");
  }
}

void limit_file_size(unsigned long bytes) {
  const rlimit limit = {bytes, bytes};
  // With the signal ignored, a write fails with EFBIG instead of ending the process.
  if (std::signal(SIGXFSZ, SIG_IGN) == SIG_ERR || setrlimit(RLIMIT_FSIZE, &limit) != 0) {
    give_up("setrlimit");
  }
}

} // namespace

std::string in_child_process(const std::function<std::string()> &work) {
  int ends[2];
  std::fflush(nullptr);
  if (pipe(ends) != 0) {
    give_up("pipe");
  }
  const pid_t child = fork();
  if (child < 0) {
    give_up("fork");
  }
  if (child == 0) {
    close(ends[0]);
    // _exit does not run the exit handlers, which belong to the test program.
    _exit(write_all(ends[1], work()) ? EXIT_SUCCESS : EXIT_FAILURE);
  }
  close(ends[1]);
  std::string result = read_all(ends[0]);
  close(ends[0]);
  int status = 0;
  if (waitpid(child, &status, 0) != child || status != 0) {
    give_up("child process");
  }
  return result;
}

std::string as_ordinary_user(const std::function<std::string()> &work) {
  return in_child_process([&] {
    give_up_superuser();
    return work();
  });
}

std::string with_file_size_limit(unsigned long bytes, const std::function<std::string()> &work) {
  return in_child_process([&] {
    limit_file_size(bytes);
    return work();
  });
}
