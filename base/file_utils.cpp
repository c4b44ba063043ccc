#include "base/file_utils.h"

#include <cstring>

#include "base/error.h"
#include "base/fs_utils.h"

namespace {

constexpr char base16_digits[] = "0123456789abcdef";

// 0 to 15, or -1 with a message.
int base16_value(char digit) {
  const char *place = digit == '\0' ? nullptr : std::strchr(base16_digits, digit);
  if (place == nullptr) {
    v_error_set("Illegal base 16 character.");
    return -1;
  }
  return static_cast<int>(place - base16_digits);
}

} // namespace

bool v_util_test_if_files_are_identical(const char *path_a, const char *path_b) {
  const OwnedFile file_a = v_fs_utils_open_file(path_a, "rb");
  const OwnedFile file_b = v_fs_utils_open_file(path_b, "rb");
  if (!file_a || !file_b) {
    return false;
  }
  for (;;) {
    const int byte_a = getc_unlocked(file_a.get());
    const int byte_b = getc_unlocked(file_b.get());
    if (byte_a != byte_b) {
      return false;
    }
    if (byte_a == EOF) {
      return !std::ferror(file_a.get()) && !std::ferror(file_b.get());
    }
  }
}

bool v_util_get_file_md5sum(const char *path, VMd5Digest &digest) {
  const OwnedFile file = v_fs_utils_open_file(path, "rb");
  if (!file) {
    return false;
  }
  const Owned<GChecksum, g_checksum_free> checksum(g_checksum_new(G_CHECKSUM_MD5));
  guchar buffer[4096];
  while (const std::size_t count = std::fread(buffer, 1, sizeof buffer, file.get())) {
    g_checksum_update(checksum.get(), buffer, static_cast<gssize>(count));
  }
  if (std::ferror(file.get())) {
    v_error_set("File read error.");
    return false;
  }
  gsize digest_length = digest.size();
  g_checksum_get_digest(checksum.get(), digest.data(), &digest_length);
  return true;
}

bool v_util_verify_md5sum(const VMd5Digest &digest, const char *text) {
  for (const std::uint8_t byte : digest) {
    const int high = base16_value(text[0]);
    const int low = high < 0 ? -1 : base16_value(text[1]);
    if (low < 0 || high * 16 + low != byte) {
      return false;
    }
    text += 2;
  }
  return *text == '\0';
}

OwnedText v_util_encode_base16(const std::uint8_t *bytes, std::size_t n) {
  OwnedText text(g_new(char, 2 * n + 1));
  for (std::size_t i = 0; i < n; i++) {
    text.get()[2 * i] = base16_digits[bytes[i] >> 4];
    text.get()[2 * i + 1] = base16_digits[bytes[i] & 0xF];
  }
  text.get()[2 * n] = '\0';
  return text;
}
