#include "support/files.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

[[noreturn]] void give_up(const std::string &what) {
  std::perror(what.c_str());
  std::abort();
}

} // namespace

TemporaryFolder::TemporaryFolder() {
  std::string name = (std::filesystem::temp_directory_path() / "vantorelle_test_XXXXXX").string();
  if (mkdtemp(name.data()) == nullptr) {
    give_up(name);
  }
  folder = name;
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  std::filesystem::permissions(folder, std::filesystem::perms::owner_all, ignored);
  for (auto entry = std::filesystem::recursive_directory_iterator(folder, ignored);
       entry != std::filesystem::recursive_directory_iterator(); entry.increment(ignored)) {
    if (entry->is_directory(ignored) && !entry->is_symlink(ignored)) {
      std::filesystem::permissions(entry->path(), std::filesystem::perms::owner_all, ignored);
    }
  }
  std::filesystem::remove_all(folder, ignored);
}

void write_file(const std::string &path, const std::string &bytes) {
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file << bytes;
  file.close();
  if (!file) {
    give_up(path);
  }
}

std::string read_file(const std::string &path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) {
    give_up(path);
  }
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

bool path_exists(const std::string &path) {
  struct stat status;
  return lstat(path.c_str(), &status) == 0;
}

void make_folder(const std::string &path) {
  if (mkdir(path.c_str(), 0700) != 0) {
    give_up(path);
  }
}

void set_permissions(const std::string &path, unsigned mode) {
  if (chmod(path.c_str(), mode) != 0) {
    give_up(path);
  }
}

void set_modification_time(const std::string &path, std::time_t seconds) {
  const timespec times[] = {{seconds, 0}, {seconds, 0}};
  if (utimensat(AT_FDCWD, path.c_str(), times, 0) != 0) {
    give_up(path);
  }
}

unsigned permissions_of(const std::string &path) {
  struct stat status;
  if (stat(path.c_str(), &status) != 0) {
    give_up(path);
  }
  return status.st_mode & 07777U;
}

std::vector<std::string> list_folder(const std::string &path) {
  std::vector<std::string> names;
  for (const auto &entry : std::filesystem::directory_iterator(path)) {
    names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

int count_open_descriptors() {
  const auto descriptors = std::filesystem::directory_iterator("/proc/self/fd");
  // The listing itself has one open.
  return static_cast<int>(std::distance(begin(descriptors), end(descriptors))) - 1;
}
