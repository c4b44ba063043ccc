// Codeset documents, generated from the bytes: the program's reader and writer and the second ones
// agree.
#include "fuzz/fuzzing.h"
#include "fuzz/oracle/comparison.h"

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  constexpr DocumentKind kind = DocumentKind::codeset;
  compare_readers(kind, generate_document(kind, LongTexts::kilobytes, data, size));
  return 0;
}
