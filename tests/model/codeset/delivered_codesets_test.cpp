#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <map>
#include <set>

#include <gtest/gtest.h>

#include "base/error.h"
#include "base/file_utils.h"
#include "codeset/codeset_io.h"
#include "support/files.h"
#include "support/values/remarks.h"

namespace {

struct Delivery {
  const char *file_name;
  const char *version;
  const char *md5; // 32 hexadecimal digits
};

// Every version that was ever delivered, oldest first. A user's workspace can hold any of them.
constexpr Delivery deliveries[] = {
    {"ceramics_and_glass.codeset", "1.0", "7fa112cbe427b5e0bd1f2f4063ddf2f8"},
    {"ceramics_and_glass.codeset", "1.1", "25342c1256baf2b28b35e3e9e56bf5a1"},
    {"easel_paintings.codeset", "1.0", "0dd762b983ce85ced86ec7246149a818"},
    {"easel_paintings.codeset", "1.1", "b26803e7004f05770aec70a69a12147e"},
    {"furniture_and_wood.codeset", "1.0", "a7452d335dabb5270e727421989f7d24"},
    {"furniture_and_wood.codeset", "1.1", "45025211be154d0b3e005acecc4a33d2"},
    {"metals.codeset", "1.0", "073b5a78a4361c53b3a64b1c4afea297"},
    {"metals.codeset", "1.1", "41cae2ecd12f07c85fa785c9b0b6b11a"},
    {"photographs.codeset", "1.0", "bb38b7648cd77f0a6dbcb0b5002c6050"},
    {"photographs.codeset", "1.1", "80705abfe731be61abf1702ea45bb5b2"},
    {"stone_and_sculpture.codeset", "1.0", "2c4f6b2727b4d231e608590c55c15c29"},
    {"stone_and_sculpture.codeset", "1.1", "a6bf89352423b4c5018906cd56170526"},
    {"textiles.codeset", "1.0", "c390d51c16d5a4829f2e2ccce8798065"},
    {"textiles.codeset", "1.1", "d56b0d3582e04b3f44b3863f43894629"},
    {"works_on_paper.codeset", "1.0", "f78ce954e11a2b8ccf44f0cfd83e642e"},
    {"works_on_paper.codeset", "1.1", "ad7e19e88c2ad48c7cc9d0247717ddcb"},
};

std::vector<std::string> delivered_names() {
  std::vector<std::string> names;
  for (const std::string &name : list_folder(VANTORELLE_DELIVERED_CODESETS_FOLDER)) {
    if (name.ends_with(".codeset")) {
      names.push_back(name);
    }
  }
  return names;
}

std::string path_of(const std::string &name) {
  return std::string(VANTORELLE_DELIVERED_CODESETS_FOLDER) + "/" + name;
}

OwnedCodeset read(const std::string &name) {
  OwnedCodeset codeset = v_codeset_io_read_from_file(path_of(name).c_str());
  EXPECT_NE(codeset, nullptr) << v_error_get();
  return codeset;
}

TEST(DeliveredCodesets, IncludeTheExpectedFiles) {
  const std::vector<std::string> names = delivered_names();
  for (const char *name :
       {"ceramics_and_glass.codeset", "easel_paintings.codeset", "works_on_paper.codeset"}) {
    EXPECT_NE(std::find(names.begin(), names.end(), name), names.end()) << name;
  }
}

TEST(DeliveredCodesets, EachIsWrittenBackUnchanged) {
  const TemporaryFolder folder;
  for (const std::string &name : delivered_names()) {
    SCOPED_TRACE(name);
    const OwnedCodeset codeset = read(name);
    ASSERT_NE(codeset, nullptr);
    const std::string copy = folder / name;
    ASSERT_TRUE(v_codeset_io_write_to_file(codeset.get(), copy.c_str())) << v_error_get();
    EXPECT_TRUE(read_file(copy) == read_file(path_of(name)));
  }
}

std::set<std::string> tags_of(const OwnedLangstr &langstr) {
  std::set<std::string> tags;
  for (const auto &[tag, text] : translations_of(langstr)) {
    tags.insert(tag);
  }
  return tags;
}

void expect_the_four_languages(const OwnedLangstr &langstr) {
  const std::set<std::string> tags = tags_of(langstr);
  for (const char *tag : {"en-uk", "sv", "de", "fr"}) {
    EXPECT_TRUE(tags.contains(tag)) << tag;
  }
}

TEST(DeliveredCodesets, EachHasItsTextsInFourLanguages) {
  for (const std::string &name : delivered_names()) {
    SCOPED_TRACE(name);
    const OwnedCodeset codeset = read(name);
    ASSERT_NE(codeset, nullptr);
    expect_the_four_languages(codeset->name);
    expect_the_four_languages(codeset->author);
    EXPECT_NE(codeset->version, nullptr);
    EXPECT_GE(codes_of(codeset->remarks).size(), 15U);
    for (const VRemark *r = codeset->remarks->head.next; r != &codeset->remarks->tail;
         r = r->next) {
      SCOPED_TRACE(r->code.get());
      expect_the_four_languages(r->description);
      EXPECT_EQ(std::string(r->code.get()).find_first_of("&<"), std::string::npos);
    }
  }
}

std::vector<Delivery> deliveries_of(const std::string &name) {
  std::vector<Delivery> found;
  std::copy_if(std::begin(deliveries), std::end(deliveries), std::back_inserter(found),
               [&name](const Delivery &delivery) { return delivery.file_name == name; });
  return found;
}

// Major and minor number of a version "1.2".
std::pair<int, int> numbers_of(const char *version) {
  std::pair<int, int> numbers;
  EXPECT_EQ(std::sscanf(version, "%d.%d", &numbers.first, &numbers.second), 2) << version;
  return numbers;
}

TEST(DeliveredCodesets, NoneChangesWithoutANewVersion) {
  for (const std::string &name : delivered_names()) {
    SCOPED_TRACE(name);
    const std::vector<Delivery> all = deliveries_of(name);
    const OwnedCodeset codeset = read(name);
    VMd5Digest digest;
    ASSERT_NE(codeset, nullptr);
    ASSERT_TRUE(v_util_get_file_md5sum(path_of(name).c_str(), digest));
    ASSERT_FALSE(all.empty());
    EXPECT_STREQ(codeset->version.get(), all.back().version);
    EXPECT_TRUE(v_util_verify_md5sum(digest, all.back().md5))
        << "changed since version " << all.back().version;
  }
}

TEST(DeliveredCodesets, EachVersionIsHigherThanTheOneBefore) {
  for (const std::string &name : delivered_names()) {
    SCOPED_TRACE(name);
    const std::vector<Delivery> all = deliveries_of(name);
    for (std::size_t i = 1; i < all.size(); i++) {
      EXPECT_LT(numbers_of(all[i - 1].version), numbers_of(all[i].version));
      EXPECT_STRNE(all[i - 1].md5, all[i].md5);
    }
  }
}

// Calls the function(code, tag, text) with every description of all codesets.
template <typename Function>
void for_each_description(const Function &function) {
  for (const std::string &name : delivered_names()) {
    SCOPED_TRACE(name);
    const OwnedCodeset codeset = read(name);
    ASSERT_NE(codeset, nullptr);
    for (const VRemark *r = codeset->remarks->head.next; r != &codeset->remarks->tail;
         r = r->next) {
      for (const auto &[tag, text] : translations_of(r->description)) {
        function(std::string(r->code.get()), tag, text);
      }
    }
  }
}

// Frass in textiles is not the bore dust that it is in wood. The code is the same in both, since
// reports that exist refer to it.
constexpr const char *code_worded_by_material = "Bi5";

TEST(DeliveredCodesets, ACodeSaysTheSameInEveryCodeset) {
  std::map<std::pair<std::string, std::string>, std::string> texts;
  for_each_description([&texts](const auto &code, const auto &tag, const auto &text) {
    if (code == code_worded_by_material) {
      return;
    }
    EXPECT_EQ(texts.try_emplace({code, tag}, text).first->second, text) << code << " in " << tag;
  });
}

TEST(DeliveredCodesets, NoTwoCodesSayTheSame) {
  std::map<std::pair<std::string, std::string>, std::string> codes;
  for_each_description([&codes](const auto &code, const auto &tag, const auto &text) {
    EXPECT_EQ(codes.try_emplace({tag, text}, code).first->second, code) << text << " in " << tag;
  });
}

} // namespace
