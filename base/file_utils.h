#pragma once
// Byte-exact comparison of files, MD5 digests and hexadecimal text.

#include <array>
#include <cstddef>
#include <cstdint>

#include "base/owned.h"

using VMd5Digest = std::array<std::uint8_t, 16>;

// True when both files can be read and are identical byte for byte. After false the message is
// meaningless.
bool v_util_test_if_files_are_identical(const char *path_a, const char *path_b);

// Fills the digest. False with the message of v_fs_utils_open_file, or "File read error."; the
// digest is then unchanged.
bool v_util_get_file_md5sum(const char *path, VMd5Digest &digest);
// True when the text is the digest in lower-case hexadecimal. Stops at the first difference: a
// character that is not a lower-case hexadecimal digit, or the end of a text that is too short,
// sets "Illegal base 16 character."; another byte, or a longer text, is false without a message.
bool v_util_verify_md5sum(const VMd5Digest &digest, const char *text);

// New ASCII text of 2n lower-case hexadecimal digits.
OwnedText v_util_encode_base16(const std::uint8_t *bytes, std::size_t n);
