// Replaces the MD5 digests in one test program: the digest of a file is its first 32 characters,
// read as hexadecimal.

#include <fstream>
#include <string>

#include "base/file_utils.h"

bool v_util_get_file_md5sum(const char *path, VMd5Digest &digest) {
  std::ifstream file(path);
  std::string text(2 * digest.size(), '\0');
  if (!file.read(text.data(), static_cast<std::streamsize>(text.size()))) {
    return false;
  }
  for (std::size_t i = 0; i < digest.size(); i++) {
    digest[i] = static_cast<std::uint8_t>(std::stoi(text.substr(2 * i, 2), nullptr, 16));
  }
  return true;
}

bool v_util_verify_md5sum(const VMd5Digest &digest, const char *text) {
  return text == std::string(v_util_encode_base16(digest.data(), digest.size()).get());
}

OwnedText v_util_encode_base16(const std::uint8_t *bytes, std::size_t n) {
  std::string text;
  for (std::size_t i = 0; i < n; i++) {
    for (const int half : {bytes[i] >> 4, bytes[i] & 0xF}) {
      text += "0123456789abcdef"[half];
    }
  }
  return copy_text(text.c_str());
}
