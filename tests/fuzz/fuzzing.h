#pragma once
// Shared by the harnesses. A harness is one source that defines LLVMFuzzerTestOneInput: for any
// bytes it must return soon and leave nothing behind, and the properties that it requires must
// hold. Linked with the fuzzing engine it searches for bytes that break it; linked with replay.cpp
// it is an ordinary test of its corpus.

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "base/owned.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

// Ends the program, and with it the search, when the property does not hold. `property` is a
// sentence that says what must hold.
void require(bool holds, const char *property);

// Puts a message into the error state that no operation sets itself.
void set_old_message();
bool has_old_message();
// After a failure: there is a new message, and it can be shown.
void require_message();

// The bytes before the first zero byte. Every such text is valid ISO-8859-1, few are valid UTF-8.
std::string text_of(const std::uint8_t *data, std::size_t size);
// The parts of the text between the separators, at most maximum_count; the last one has the whole
// rest.
std::vector<std::string> split(const std::string &text, char separator, std::size_t maximum_count);
bool contains_any_of(const std::string &text, const char *characters);
// Whether the text can be read back once it is normalised: ends are not white, and single spaces
// are the only white space inside.
bool is_compact_latin1(const std::string &latin1_text);

// A file in memory alone, readable at its path until the next is written.
class MemoryFile {
public:
  MemoryFile();
  ~MemoryFile();
  MemoryFile(const MemoryFile &) = delete;
  MemoryFile &operator=(const MemoryFile &) = delete;

  void write(const std::uint8_t *data, std::size_t size);
  const char *path() const { return file_path.c_str(); }

private:
  int descriptor;
  std::string file_path;
};
