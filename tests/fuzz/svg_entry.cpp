// SVG drawings.

#include "fuzz/fuzzing.h"
#include "fuzz/image_entries.h"

// The drawing library leaks the entities that a drawing declares. Only a full unwinding of the
// stack shows its frames to the leak checker.
extern "C" const char *__asan_default_options() { return "fast_unwind_on_malloc=0"; }
extern "C" const char *__lsan_default_suppressions() { return "leak:librsvg-2.so"; }

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  read_entry(data, size, VFileType::svg, false);
  return 0;
}
