#include "support/scratch_folder.h"

#include <filesystem>
#include <fstream>
#include <stdexcept>

#include <stdlib.h>

namespace fs = std::filesystem;

ScratchFolder::ScratchFolder() {
  std::string name = (fs::temp_directory_path() / "vantorelle-bench-XXXXXX").string();
  if (mkdtemp(name.data()) == nullptr) {
    throw std::runtime_error("No folder for the files of the benchmarks.");
  }
  folder = name;
}

ScratchFolder::~ScratchFolder() {
  std::error_code ignored;
  fs::remove_all(folder, ignored);
}

std::string ScratchFolder::put(const std::string &name, const std::string &content) const {
  const std::string path = path_of(name);
  std::ofstream file(path, std::ios::binary);
  file << content;
  file.close();
  if (!file) {
    throw std::runtime_error("Cannot write " + path);
  }
  return path;
}
