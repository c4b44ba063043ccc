// For builds with the leak checker: ignores allocations that libraries make while they are loaded.
// GLib drops its first table of quarks on purpose when it needs more than 2048, and no suppression
// can match that table, because its stack shows only the allocation.

#include <sanitizer/lsan_interface.h>

namespace {

// In this section, so that it runs before the constructors of the libraries.
__attribute__((section(".preinit_array"), used)) void (*const before_libraries)() = __lsan_disable;

__attribute__((constructor)) void after_libraries() { __lsan_enable(); }

} // namespace
