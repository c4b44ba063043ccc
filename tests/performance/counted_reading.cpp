// counted_reading generate|parse|read FILE: makes a codeset file of 10,000 remarks, has the parser
// library alone read it, or reads it as a codeset. The two readings are functions whose names can
// be given to a profiler.

#include <cstring>
#include <fstream>

#include <libxml/parser.h>

#include "base/owned.h"
#include "codeset/codeset_io.h"
#include "support/codeset_generator.h"

extern "C" {

[[gnu::noinline]] bool parse_alone(const char *path) {
  return OwnedXmlDoc(xmlReadFile(path, nullptr, 0)) != nullptr;
}

// The codeset is not freed before the process ends: freeing is not part of reading.
[[gnu::noinline]] bool read_as_codeset(const char *path) {
  return v_codeset_io_read_from_file(path).release() != nullptr;
}
}

namespace {

bool generate(const char *path) {
  std::ofstream file(path, std::ios::binary);
  file << v_bench_generate_codeset(10'000, CodeOrder::shuffled) << std::flush;
  return file.good();
}

bool run(const char *what, const char *path) {
  if (std::strcmp(what, "generate") == 0) {
    return generate(path);
  }
  xmlInitParser();
  return std::strcmp(what, "parse") == 0 ? parse_alone(path) : read_as_codeset(path);
}

} // namespace

int main(int argc, char **argv) { return argc == 3 && run(argv[1], argv[2]) ? 0 : 1; }
