#include <clocale>
#include <cstdio>

#include <gtest/gtest.h>

// The tests run in the user's locale, as the program does: no text, number or order may depend on
// it. Only system messages stay in one language, because tests compare them.
int main(int argc, char **argv) {
  testing::InitGoogleTest(&argc, argv);
  if (std::setlocale(LC_ALL, "") == nullptr) {
    std::fputs("The locale of the environment is not available.\n", stderr);
    return 1;
  }
  std::setlocale(LC_MESSAGES, "C");
  return RUN_ALL_TESTS();
}
