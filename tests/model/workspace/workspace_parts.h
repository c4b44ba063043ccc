#pragma once
// A pretended installation with delivered components, and the contents of folders as plain values.

#include <filesystem>
#include <map>
#include <string>

#include "model/workspace/user_folders.h"
#include "support/fake_platform.h"
#include "support/files.h"

// Relative path and content of each file. Paths of sub-folders end in "/"; their content is empty.
using Contents = std::map<std::string, std::string>;

inline Contents contents_of(const std::string &folder) {
  Contents contents;
  for (const auto &entry : std::filesystem::recursive_directory_iterator(folder)) {
    const std::string name = entry.path().lexically_relative(folder).string();
    if (entry.is_directory()) {
      contents[name + "/"];
    } else {
      contents[name] = read_file(entry.path());
    }
  }
  return contents;
}

inline void put(const std::string &folder, const Contents &contents) {
  for (const auto &[name, content] : contents) {
    const std::filesystem::path path = folder + "/" + name;
    if (name.ends_with("/")) {
      std::filesystem::create_directories(path);
    } else {
      std::filesystem::create_directories(path.parent_path());
      write_file(path, content);
    }
  }
}

// An empty installation, home and configuration folder, and one more folder for the test.
class PretendedMachine {
public:
  PretendedMachine() { fake_platform.install_folder = install.path(); }

  void deliver(const Contents &contents) const { put(install.path(), contents); }
  // Delivers a regular file that opens but cannot be read, not even by the superuser.
  void deliver_unreadable(const std::string &name) const {
    std::filesystem::create_symlink("/proc/self/mem", install / name);
  }

  FakePlatformReset reset;
  FreshUserFolders fresh;
  TemporaryFolder install;
  TemporaryFolder folder;
};
