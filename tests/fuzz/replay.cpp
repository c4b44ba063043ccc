// Gives every file of a folder to a harness, as an ordinary test.
//
//     fuzz_<harness> FOLDER

#include <cstdio>

#include "fuzz/fuzzing.h"
#include "support/files.h"

int main(int argc, char **argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: %s FOLDER\n", argv[0]);
    return 2;
  }
  const std::string folder = argv[1];
  const std::vector<std::string> names = list_folder(folder);
  for (const std::string &name : names) {
    std::printf("%s\n", name.c_str());
    std::fflush(stdout);
    const std::string bytes = read_file(folder + "/" + name);
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t *>(bytes.data()), bytes.size());
  }
  std::printf("%zu inputs\n", names.size());
  return names.empty() ? 1 : 0;
}
