// Reads codeset files and prints the result of each, while opens_nothing_test.py watches which
// files it opens.
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
