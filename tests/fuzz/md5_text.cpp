// The check of a digest (the first 16 bytes) against a text (the rest).

#include <algorithm>

#include "base/file_utils.h"
#include "fuzz/fuzzing.h"

namespace {

// The number of pairs of digits at the beginning in which the text equals the hexadecimal digest.
// Counted in pairs because the program compares whole bytes.
std::size_t equal_pairs(const std::string &text, const std::string &digits) {
  std::size_t pair = 0;
  while (pair * 2 < digits.size() && text.substr(pair * 2, 2) == digits.substr(pair * 2, 2)) {
    pair++;
  }
  return pair;
}

bool has_pair_of_digits(const std::string &text, std::size_t position) {
  const std::string pair = position < text.size() ? text.substr(position, 2) : "";
  return pair.size() == 2 && pair.find_first_not_of("0123456789abcdef") == std::string::npos;
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  VMd5Digest digest = {};
  const std::size_t digest_size = std::min(size, digest.size());
  std::copy_n(data, digest_size, digest.begin());
  const std::string text = text_of(data + digest_size, size - digest_size);

  const std::string digits = v_util_encode_base16(digest.data(), digest.size()).get();
  require(digits.size() == 32 && digits.find_first_not_of("0123456789abcdef") == std::string::npos,
          "a digest is 32 lower-case digits");
  require(v_util_verify_md5sum(digest, digits.c_str()), "a digest's own text is right");

  const std::size_t pairs = equal_pairs(text, digits);
  set_old_message();
  require(v_util_verify_md5sum(digest, text.c_str()) == (text == digits),
          "no other text than the digest's own is right");
  const bool is_illegal = pairs < digest.size() && !has_pair_of_digits(text, pairs * 2);
  require(has_old_message() == !is_illegal, "only characters that are no digits are reported");
  if (is_illegal) {
    require_message();
  }
  return 0;
}
