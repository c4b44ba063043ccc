#include <algorithm>
#include <random>
#include <string>
#include <tuple>

#include <gtest/gtest.h>

#include "base/error.h"
#include "codeset/codeset_io.h"
#include "support/files.h"
#include "support/values/remarks.h"
#include "tools/csv_reading.h"
#include "tools/csv_writing.h"

namespace {

// Name, author, version and remarks. The translations are sorted, because a table returns them in
// the order of its columns.
using Contents = std::tuple<Translations, Translations, std::string, Remarks>;

Translations sorted(Translations translations) {
  std::sort(translations.begin(), translations.end());
  return translations;
}

Remarks remarks_in(const VCodeset *codeset) {
  Remarks remarks = remarks_of(codeset->remarks);
  for (auto &[code, description] : remarks) {
    description = sorted(description);
  }
  return remarks;
}

Contents contents_of(const VCodeset *codeset) {
  return {sorted(translations_of(codeset->name)), sorted(translations_of(codeset->author)),
          codeset->version ? codeset->version.get() : "(none)", remarks_in(codeset)};
}

std::string csv_of(const VCodeset *codeset, bool with_header) {
  const OwnedUtf8String csv = v_csv_write_codeset(codeset, with_header);
  return {csv->str, csv->len};
}

// Writes the codeset as csv with its name, author and version, and reads it back.
OwnedCodeset pass_through_csv(const VCodeset *codeset) {
  const std::string csv = csv_of(codeset, true);
  OwnedCodeset read = v_csv_read_codeset(csv);
  EXPECT_NE(read, nullptr) << v_error_get() << "\n" << csv;
  return read ? std::move(read) : v_codeset_new();
}

TEST(CsvRoundTrip, KeepsAllOfEveryDeliveredCodeset) {
  int count = 0;
  const TemporaryFolder folder;
  for (const std::string &name : list_folder(VANTORELLE_DELIVERED_CODESETS_FOLDER)) {
    if (!name.ends_with(".codeset")) {
      continue;
    }
    const std::string path = std::string(VANTORELLE_DELIVERED_CODESETS_FOLDER) + "/" + name;
    const OwnedCodeset codeset = v_codeset_io_read_from_file(path.c_str());
    ASSERT_NE(codeset, nullptr) << v_error_get();
    const OwnedCodeset read = pass_through_csv(codeset.get());
    EXPECT_EQ(contents_of(read.get()), contents_of(codeset.get())) << name;
    // Their translations have the same order everywhere, so even the file is the same.
    const std::string copy = folder / name;
    ASSERT_TRUE(v_codeset_io_write_to_file(read.get(), copy.c_str())) << v_error_get();
    EXPECT_EQ(read_file(copy), read_file(path)) << name;
    count++;
  }
  EXPECT_EQ(count, 8);
}

class Generator {
public:
  explicit Generator(unsigned seed) : random(seed) {}

  OwnedCodeset codeset() {
    OwnedCodeset codeset = v_codeset_new();
    codeset->name = langstr(1);
    codeset->author = langstr(0);
    codeset->version = below(3) == 0 ? nullptr : copy_text(text(text_characters).c_str());
    const int count = 1 + below(12);
    for (int i = 0; i < count; i++) {
      OwnedRemark remark = v_remark_new();
      // The number makes it unique.
      remark->code = copy_text((text(code_characters) + std::to_string(i)).c_str());
      remark->description = langstr(1);
      v_remark_list_add_remark_last(codeset->remarks.get(), std::move(remark));
    }
    v_remark_list_sort(codeset->remarks.get());
    return codeset;
  }

private:
  int below(int limit) { return std::uniform_int_distribution(0, limit - 1)(random); }

  static constexpr std::string_view code_characters = "ab7,;\"'=>-|\xE5\xF6\xA0\xFF\x7F\x85";
  static constexpr std::string_view text_characters = "ab7,;\"'=&<>]-\xE5\xF6\xA0\xFF\x7F\x85";

  // Words with one space between them.
  std::string text(std::string_view characters) {
    std::string text;
    const int words = 1 + below(3);
    for (int i = 0; i < words; i++) {
      text += i == 0 ? "" : " ";
      const int length = 1 + below(6);
      for (int j = 0; j < length; j++) {
        text += characters[static_cast<std::size_t>(below(static_cast<int>(characters.size())))];
      }
    }
    return text;
  }

  // The text has its number, because the texts of one string must differ from the untagged one.
  OwnedLangstr langstr(int least) {
    static const char *const tags[] = {"sv", "en-uk", "", "de", "a,b", "\"", "name", "sep=;"};
    Translations translations;
    const int count = least + below(4);
    for (int i = 0; i < count; i++) {
      translations.emplace_back(tags[below(std::size(tags))],
                                text(text_characters) + std::to_string(i));
    }
    return langstr_of(translations);
  }

  std::mt19937 random;
};

TEST(CsvRoundTrip, KeepsAllOfGeneratedCodesets) {
  for (unsigned seed = 0; seed < 5'000; seed++) {
    const OwnedCodeset codeset = Generator(seed).codeset();
    const OwnedCodeset read = pass_through_csv(codeset.get());
    ASSERT_EQ(contents_of(read.get()), contents_of(codeset.get())) << "seed " << seed << "\n"
                                                                   << csv_of(codeset.get(), true);
  }
}

TEST(CsvRoundTrip, KeepsTheRemarksWithoutNameAuthorAndVersion) {
  for (unsigned seed = 0; seed < 100; seed++) {
    const OwnedCodeset codeset = Generator(seed).codeset();
    const std::string csv = csv_of(codeset.get(), false);
    const OwnedCodeset read = v_csv_read_codeset(csv);
    ASSERT_NE(read, nullptr) << v_error_get() << "\n" << csv;
    EXPECT_EQ(remarks_in(read.get()), remarks_in(codeset.get())) << csv;
    EXPECT_EQ(read->name, nullptr);
  }
}

} // namespace
