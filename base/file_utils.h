#pragma once
// Byte-exact comparison of files, MD5 digests and hexadecimal text.

#include <array>
#include <cstddef>
#include <cstdint>

#include "base/owned.h"

using VMd5Digest = std::array<std::uint8_t, 16>;

// True when both files could be read and are the same byte for byte; false leaves no meaningful
// message.
bool v_util_test_if_files_are_identical(const char *path_a, const char *path_b);

// Fills the digest. False with the message of opening, or "File read error."; the digest then
// stays.
bool v_util_get_file_md5sum(const char *path, VMd5Digest &digest);
// True when the text is the digest in lower-case hexadecimal. A character that is no lower-case
// hexadecimal digit, or a text that ends too soon, sets "Illegal base 16 character."; another
// digest, or a longer text, is false without a message.
bool v_util_verify_md5sum(const VMd5Digest &digest, const char *text);

// New ASCII text of 2n lower-case hexadecimal digits.
OwnedText v_util_encode_base16(const std::uint8_t *bytes, std::size_t n);
