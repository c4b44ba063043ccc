// Settings documents, generated from the bytes: the program's reader and the second one agree.
#include "fuzz/fuzzing.h"
#include "fuzz/oracle/comparison.h"

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  compare_readers(DocumentKind::settings, generate_document(DocumentKind::settings, data, size));
  return 0;
}
