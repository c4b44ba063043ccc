#pragma once
// A folder for the files of a benchmark; it is removed with its contents.

#include <string>

class ScratchFolder {
public:
  ScratchFolder();
  ~ScratchFolder();
  ScratchFolder(const ScratchFolder &) = delete;
  ScratchFolder &operator=(const ScratchFolder &) = delete;

  std::string path_of(const std::string &name) const { return folder + "/" + name; }
  // Writes a file and returns its path.
  std::string put(const std::string &name, const std::string &content) const;

private:
  std::string folder;
};
