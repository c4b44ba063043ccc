#include <clocale>

#include <gtest/gtest.h>

// The program runs in its user's locale, and so do its tests: no text, number or order may move
// with it. Only the system's own sentences stay in one language, since messages are compared.
int main(int argc, char **argv) {
  testing::InitGoogleTest(&argc, argv);
  std::setlocale(LC_ALL, "");
  std::setlocale(LC_MESSAGES, "C");
  return RUN_ALL_TESTS();
}
