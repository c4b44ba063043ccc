// peak_memory parse|read FILE: reads the file with libxml2 alone or as a codeset, and prints the
// greatest memory that this process ever held, in KiB. The kernel's figure in /proc counts this
// program alone; the one reported to the parent includes the memory of the parent's image before
// exec.

#include <cstdio>
#include <cstring>

#include <libxml/parser.h>

#include "base/owned.h"
#include "codeset/codeset_io.h"

namespace {

bool read(const char *way, const char *path) {
  if (std::strcmp(way, "parse") == 0) {
    return OwnedXmlDoc(xmlReadFile(path, nullptr, 0)) != nullptr;
  }
  return v_codeset_io_read_from_file(path) != nullptr;
}

bool print_peak() {
  const OwnedFile status(std::fopen("/proc/self/status", "r"));
  char line[256];
  while (status && std::fgets(line, sizeof line, status.get()) != nullptr) {
    long kibibytes = 0;
    if (std::sscanf(line, "VmHWM: %ld", &kibibytes) == 1) {
      return std::printf("%ld\n", kibibytes) > 0;
    }
  }
  return false;
}

} // namespace

int main(int argc, char **argv) {
  return argc == 3 && read(argv[1], argv[2]) && print_peak() ? 0 : 1;
}
