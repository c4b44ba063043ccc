#include <cstdio>

#include <gtest/gtest.h>
#include <gtk/gtk.h>

int main(int argc, char **argv) {
  testing::InitGoogleTest(&argc, argv);
  if (!gtk_init_check(nullptr, nullptr)) {
    std::fputs("There is no display; run this through tests/support/headless.\n", stderr);
    return 1;
  }
  return RUN_ALL_TESTS();
}
