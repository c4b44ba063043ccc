#include <cstdio>

#include <gtest/gtest.h>
#include <gtk/gtk.h>

#ifdef __SANITIZE_ADDRESS__
#include <sanitizer/lsan_interface.h>

// GLib's first table of quarks, allocated when the library is loaded, is lost on purpose when 2048
// are not enough. No suppression can name it. Section because it has to come before the library.
__attribute__((section(".preinit_array"),
               used)) static void (*const before_libraries)() = __lsan_disable;
#endif

int main(int argc, char **argv) {
#ifdef __SANITIZE_ADDRESS__
  __lsan_enable();
#endif
  testing::InitGoogleTest(&argc, argv);
  if (!gtk_init_check(nullptr, nullptr)) {
    std::fputs("There is no display; run this through tests/support/headless.\n", stderr);
    return 1;
  }
  return RUN_ALL_TESTS();
}
