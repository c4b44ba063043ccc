// For builds that look for leaks: what libraries allocate when they are loaded is not looked at.
// GLib's first table of quarks is lost on purpose when 2048 are not enough, and no suppression can
// name it, for the stack shows nothing but the allocation.

#include <sanitizer/lsan_interface.h>

namespace {

// The section because it has to come before the constructors of the libraries.
__attribute__((section(".preinit_array"), used)) void (*const before_libraries)() = __lsan_disable;

__attribute__((constructor)) void after_libraries() { __lsan_enable(); }

} // namespace
