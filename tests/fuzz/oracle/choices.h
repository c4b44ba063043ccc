#pragma once
// Decisions taken from a string of bytes, so that the same bytes always lead to the same document.
// When they are used up every further decision is 0, for which generators choose the plain way.

#include <cstddef>
#include <cstdint>
#include <string>

class Choices {
public:
  Choices(const std::uint8_t *bytes, std::size_t length) : next(bytes), end(bytes + length) {}

  // A number below the count, which is at most 65536.
  unsigned below(unsigned count) {
    unsigned number = byte();
    if (count > 256) {
      number = number << 8 | byte();
    }
    return number % count;
  }
  // False when the bytes are used up.
  bool one_in(unsigned count) { return below(count) == count - 1; }

  template <typename T, std::size_t count>
  const T &of(const T (&table)[count]) {
    return table[below(count)];
  }

  std::string rest() {
    std::string bytes(next, end);
    next = end;
    return bytes;
  }

private:
  unsigned byte() { return next == end ? 0 : *next++; }

  const std::uint8_t *next;
  const std::uint8_t *end;
};
