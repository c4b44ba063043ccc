// Reads codeset files and tells of each what came of it, for whoever watches from outside what is
// opened meanwhile.
//
//     hostile_reader FILE...

#include <cstdio>

#include "base/error.h"
#include "codeset/codeset_io.h"

int main(int argc, char **argv) {
  for (int i = 1; i < argc; i++) {
    const OwnedCodeset codeset = v_codeset_io_read_from_file(argv[i]);
    std::printf("%s: %s\n", argv[i], codeset ? codeset->name->text.get() : v_error_get());
  }
}
