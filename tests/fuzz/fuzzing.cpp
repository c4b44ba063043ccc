#include "fuzz/fuzzing.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <sys/mman.h>
#include <unistd.h>

#include "base/error.h"
#include "base/whitespace.h"

namespace {

constexpr const char *old_message = "of an earlier failure";

[[noreturn]] void give_up(const char *what) {
  std::perror(what);
  std::abort();
}

} // namespace

void require(bool holds, const char *property) {
  if (!holds) {
    std::fprintf(stderr, "Broken: %s\n", property);
    std::abort();
  }
}

void set_old_message() { v_error_set(old_message); }

bool has_old_message() { return std::strcmp(v_error_get(), old_message) == 0; }

void require_message() {
  require(!has_old_message() && *v_error_get() != '\0', "a failure sets a message");
  require(g_utf8_validate(v_error_get(), -1, nullptr), "messages are UTF-8");
}

std::string text_of(const std::uint8_t *data, std::size_t size) {
  const auto *bytes = reinterpret_cast<const char *>(data);
  return {bytes, size == 0 ? 0 : strnlen(bytes, size)};
}

std::vector<std::string> split(const std::string &text, char separator, std::size_t maximum_count) {
  std::vector<std::string> parts;
  std::size_t start = 0;
  std::size_t end = 0;
  while (parts.size() + 1 < maximum_count &&
         (end = text.find(separator, start)) != std::string::npos) {
    parts.push_back(text.substr(start, end - start));
    start = end + 1;
  }
  parts.push_back(text.substr(start));
  return parts;
}

bool contains_any_of(const std::string &text, const char *characters) {
  return text.find_first_of(characters) != std::string::npos;
}

bool is_compact_latin1(const std::string &latin1_text) {
  char before = ' ';
  for (const char byte : latin1_text) {
    if (v_ascii_is_space(byte) && (byte != ' ' || before == ' ')) {
      return false;
    }
    before = byte;
  }
  return latin1_text.empty() || before != ' ';
}

MemoryFile::MemoryFile() : descriptor(memfd_create("input", MFD_CLOEXEC)) {
  if (descriptor < 0) {
    give_up("memfd_create");
  }
  file_path = "/proc/self/fd/" + std::to_string(descriptor);
}

MemoryFile::~MemoryFile() { close(descriptor); }

void MemoryFile::write(const std::uint8_t *data, std::size_t size) {
  if (ftruncate(descriptor, 0) != 0 ||
      pwrite(descriptor, data, size, 0) != static_cast<ssize_t>(size)) {
    give_up(path());
  }
}
