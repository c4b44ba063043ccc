#include "base/file_utils.h"

#include <algorithm>
#include <cctype>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "base/error.h"
#include "support/files.h"

namespace {

std::string base16(const VMd5Digest &digest) {
  return v_util_encode_base16(digest.data(), digest.size()).get();
}

const VMd5Digest digest_of_nothing = {0xd4, 0x1d, 0x8c, 0xd9, 0x8f, 0x00, 0xb2, 0x04,
                                      0xe9, 0x80, 0x09, 0x98, 0xec, 0xf8, 0x42, 0x7e};
const std::string text_of_nothing = "d41d8cd98f00b204e9800998ecf8427e";

} // namespace

// Comparison

struct ComparisonCase {
  std::string a;
  std::string b;
  bool are_identical;
};

class Comparing : public testing::TestWithParam<ComparisonCase> {};

TEST_P(Comparing, FindsWhetherTheBytesAreTheSame) {
  const TemporaryFolder folder;
  const std::string a = folder / "a";
  const std::string b = folder / "b";
  write_file(a, GetParam().a);
  write_file(b, GetParam().b);
  EXPECT_EQ(v_util_test_if_files_are_identical(a.c_str(), b.c_str()), GetParam().are_identical);
  EXPECT_EQ(v_util_test_if_files_are_identical(b.c_str(), a.c_str()), GetParam().are_identical);
  EXPECT_TRUE(v_util_test_if_files_are_identical(a.c_str(), a.c_str()));
}

const std::string long_text(100'000, 'x');
const std::string zeros(3, '\0');

INSTANTIATE_TEST_SUITE_P(FileUtils, Comparing,
                         testing::Values(ComparisonCase{"", "", true},                      //
                                         ComparisonCase{"", "x", false},                    //
                                         ComparisonCase{"abc", "abc", true},                //
                                         ComparisonCase{"abc", "abd", false},               //
                                         ComparisonCase{"abc", "Abc", false},               //
                                         ComparisonCase{"abc", "abcd", false},              //
                                         ComparisonCase{"abc", "abc\n", false},             //
                                         ComparisonCase{"a\n", "a\r\n", false},             //
                                         ComparisonCase{zeros, zeros, true},                //
                                         ComparisonCase{zeros, zeros + '\0', false},        //
                                         ComparisonCase{zeros, "", false},                  //
                                         ComparisonCase{"\xff\xff", "\xff\xff", true},      //
                                         ComparisonCase{"\xff", "", false},                 //
                                         ComparisonCase{"a\xff", "a", false},               //
                                         ComparisonCase{long_text, long_text, true},        //
                                         ComparisonCase{long_text, long_text + "x", false}, //
                                         ComparisonCase{long_text + "x", long_text + "y", false}));

TEST(FileUtils, MissingFilesFoldersAndPipesAreNeverIdentical) {
  const TemporaryFolder folder;
  write_file(folder / "file", "");
  make_folder(folder / "folder");
  ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
  const int before = count_open_descriptors();
  for (const char *odd : {"missing", "folder", "pipe", "file/below", "\xff"}) {
    for (const char *other : {"file", "folder", "missing", odd}) {
      EXPECT_FALSE(
          v_util_test_if_files_are_identical((folder / odd).c_str(), (folder / other).c_str()))
          << odd << " " << other;
      EXPECT_FALSE(
          v_util_test_if_files_are_identical((folder / other).c_str(), (folder / odd).c_str()))
          << other << " " << odd;
    }
  }
  EXPECT_EQ(count_open_descriptors(), before);
}

// MD5: the test suite of RFC 1321, A.5

struct Md5Case {
  std::string text;
  const char *digest;
};

class Md5 : public testing::TestWithParam<Md5Case> {};

TEST_P(Md5, IsComputedFromTheFile) {
  const TemporaryFolder folder;
  write_file(folder / "file", GetParam().text);
  VMd5Digest digest = {};
  ASSERT_TRUE(v_util_get_file_md5sum((folder / "file").c_str(), digest));
  EXPECT_EQ(base16(digest), GetParam().digest);
  EXPECT_TRUE(v_util_verify_md5sum(digest, GetParam().digest));
}

INSTANTIATE_TEST_SUITE_P(
    FileUtils, Md5,
    testing::Values(
        Md5Case{"", "d41d8cd98f00b204e9800998ecf8427e"},
        Md5Case{"a", "0cc175b9c0f1b6a831c399e269772661"},
        Md5Case{"abc", "900150983cd24fb0d6963f7d28e17f72"},
        Md5Case{"message digest", "f96b697d7cb7938d525a2f31aaf161d0"},
        Md5Case{"abcdefghijklmnopqrstuvwxyz", "c3fcd3d76192e4007dfb496cca67e13b"},
        Md5Case{"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789",
                "d174ab98d277d9f5a5611c2c9f419d9f"},
        Md5Case{"12345678901234567890123456789012345678901234567890123456789012345678901234567890",
                "57edf4a22be3c955ac49da2e2107b67a"},
        // Around the size of the read buffer, and many buffers (from md5sum of coreutils).
        Md5Case{std::string(4095, 'a'), "559110baa849c7608ee70abe1d76273e"},
        Md5Case{std::string(4096, 'a'), "21a199c53f422a380e20b162fb6ebe9c"},
        Md5Case{std::string(4097, 'a'), "8cfc1a0bd8cd76599e76e5e721c6e62e"},
        Md5Case{std::string(1'000'000, 'a'), "7707d6ae4e027c70eea2a935c2296f21"}));

TEST(FileUtils, FileThatCannotBeOpenedOrReadLeavesTheDigestUnchanged) {
  const TemporaryFolder folder;
  const int before = count_open_descriptors();
  VMd5Digest digest = {};
  digest.fill(7);
  const VMd5Digest untouched = digest;
  EXPECT_FALSE(v_util_get_file_md5sum((folder / "missing").c_str(), digest));
  EXPECT_THAT(v_error_get(), testing::StartsWith("Cannot open file.\n\nError 2: "));
  EXPECT_EQ(digest, untouched);
  EXPECT_FALSE(v_util_get_file_md5sum(folder.path(), digest));
  EXPECT_STREQ(v_error_get(), "File read error.");
  EXPECT_EQ(digest, untouched);
  EXPECT_EQ(count_open_descriptors(), before);
}

// Verifying

TEST(FileUtils, DigestIsVerifiedAgainstItsText) {
  EXPECT_TRUE(v_util_verify_md5sum(digest_of_nothing, text_of_nothing.c_str()));
}

TEST(FileUtils, UpperCaseDigestIsNotBase16) {
  std::string text = text_of_nothing;
  std::transform(text.begin(), text.end(), text.begin(), [](char letter) {
    return static_cast<char>(std::toupper(static_cast<unsigned char>(letter)));
  });
  EXPECT_FALSE(v_util_verify_md5sum(digest_of_nothing, text.c_str()));
  EXPECT_STREQ(v_error_get(), "Illegal base 16 character.");
}

struct VerifyCase {
  std::string text;
  const char *message; // "before" if verifying sets no message
};

class VerifyingFails : public testing::TestWithParam<VerifyCase> {};

TEST_P(VerifyingFails, WithOrWithoutAMessage) {
  v_error_set("before");
  // A heap copy of the exact size, so that a sanitizer detects a read past its end.
  const OwnedText text = copy_text(GetParam().text.c_str());
  EXPECT_FALSE(v_util_verify_md5sum(digest_of_nothing, text.get()));
  EXPECT_STREQ(v_error_get(), GetParam().message);
}

INSTANTIATE_TEST_SUITE_P(
    FileUtils, VerifyingFails,
    testing::Values(
        // Valid digits, but a longer text or another value.
        VerifyCase{text_of_nothing + "0", "before"}, VerifyCase{text_of_nothing + "G", "before"},
        VerifyCase{text_of_nothing + " ", "before"},
        VerifyCase{"e" + text_of_nothing.substr(1), "before"},
        VerifyCase{text_of_nothing.substr(0, 31) + "f", "before"},
        // Comparison stops at the first different byte; the rest is not checked.
        VerifyCase{"00", "before"}, VerifyCase{"00zz", "before"},
        // Both digits of a byte are checked before its value.
        VerifyCase{"0", "Illegal base 16 character."},
        VerifyCase{"0g", "Illegal base 16 character."},
        VerifyCase{"", "Illegal base 16 character."},
        VerifyCase{text_of_nothing.substr(0, 31), "Illegal base 16 character."},
        VerifyCase{text_of_nothing.substr(0, 30), "Illegal base 16 character."},
        VerifyCase{"g" + text_of_nothing.substr(1), "Illegal base 16 character."},
        VerifyCase{" " + text_of_nothing, "Illegal base 16 character."},
        VerifyCase{"`" + text_of_nothing, "Illegal base 16 character."},
        VerifyCase{":" + text_of_nothing, "Illegal base 16 character."},
        VerifyCase{"/" + text_of_nothing, "Illegal base 16 character."},
        VerifyCase{"\xe4" + text_of_nothing, "Illegal base 16 character."}));

// Base 16

TEST(FileUtils, EncodesEveryByte) {
  std::uint8_t bytes[256];
  std::string expected;
  for (int i = 0; i < 256; i++) {
    bytes[i] = static_cast<std::uint8_t>(i);
    char digits[3];
    std::snprintf(digits, sizeof digits, "%02x", static_cast<unsigned>(i));
    expected += digits;
  }
  EXPECT_EQ(v_util_encode_base16(bytes, 256).get(), expected);
  EXPECT_STREQ(v_util_encode_base16(bytes + 0xab, 1).get(), "ab");
}

TEST(FileUtils, NoBytesGiveAnEmptyText) {
  EXPECT_STREQ(v_util_encode_base16(nullptr, 0).get(), "");
}
