#include <clocale>
#include <cstdio>

#include <gtest/gtest.h>

// The program runs in its user's locale, and so do its tests: no text, number or order may move
// with it. Only the system's own sentences stay in one language, since messages are compared.
int main(int argc, char **argv) {
  testing::InitGoogleTest(&argc, argv);
  if (std::setlocale(LC_ALL, "") == nullptr) {
    std::fputs("The locale that was asked for is not there.\n", stderr);
    return 1;
  }
  std::setlocale(LC_MESSAGES, "C");
  return RUN_ALL_TESTS();
}
