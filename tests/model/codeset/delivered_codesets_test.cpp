#include <algorithm>
#include <filesystem>
#include <set>

#include <gtest/gtest.h>

#include "base/error.h"
#include "codeset/codeset_io.h"
#include "model/codeset/remarks.h"
#include "support/files.h"

namespace {

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

TEST(DeliveredCodesets, ThereAreSome) {
  const std::vector<std::string> names = delivered_names();
  for (const char *name :
       {"ceramics_and_glass.codeset", "easel_paintings.codeset", "works_on_paper.codeset"}) {
    EXPECT_NE(std::find(names.begin(), names.end(), name), names.end()) << name;
  }
}

TEST(DeliveredCodesets, EachIsWrittenBackAsItIs) {
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

} // namespace
