#pragma once
// The memory of the test process.

#include <cstddef>

#include <malloc.h>

#ifdef __SANITIZE_ADDRESS__
// A function of the checker's allocator. The compiler has no header that declares it.
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();
#endif

// Bytes that the allocator has given out.
inline std::size_t memory_in_use() {
#ifdef __SANITIZE_ADDRESS__
  return __sanitizer_get_current_allocated_bytes();
#else
  const struct mallinfo2 info = mallinfo2();
  return info.uordblks + info.hblkhd;
#endif
}
