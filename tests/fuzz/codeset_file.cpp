// Codeset files. Each file that the reader accepts gives a valid codeset, and reads back equal when
// it is written.

#include <algorithm>

#include "codeset/codeset_io.h"
#include "fuzz/fuzzing.h"
#include "fuzz/proper_codeset.h"
#include "support/files.h"
#include "support/values/remarks.h"

namespace {

// Codes are written unescaped, so one with XML markup does not read back.
bool is_markup(const OwnedCodeset &codeset) {
  const Remarks remarks = remarks_of(codeset->remarks);
  return std::any_of(remarks.begin(), remarks.end(), [](const auto &remark) {
    const std::string &code = remark.first;
    return contains_any_of(code, "<&") || code.find("]]>") != std::string::npos;
  });
}

// An untagged text and a tagged one are equal. The file can be read into such a string, because a
// second untagged text replaces the first one; but when it is written and read back, the two become
// one translation.
bool is_merged_when_read(const Translations &translations) {
  const auto text_of_tag = [&](const auto &tagged) {
    return std::any_of(translations.begin(), translations.end(), [&](const auto &untagged) {
      return untagged.first.empty() && !tagged.first.empty() && untagged.second == tagged.second;
    });
  };
  return std::any_of(translations.begin(), translations.end(), text_of_tag);
}

bool is_merged_when_read(const OwnedCodeset &codeset) {
  const Remarks remarks = remarks_of(codeset->remarks);
  return is_merged_when_read(translations_of(codeset->name)) ||
         is_merged_when_read(translations_of(codeset->author)) ||
         std::any_of(remarks.begin(), remarks.end(),
                     [](const auto &remark) { return is_merged_when_read(remark.second); });
}

void require_equal(const OwnedCodeset &a, const OwnedCodeset &b) {
  require(translations_of(a->name) == translations_of(b->name), "the name is read back");
  require(translations_of(a->author) == translations_of(b->author), "the author is read back");
  require(g_strcmp0(a->version.get(), b->version.get()) == 0, "the version is read back");
  require(remarks_of(a->remarks) == remarks_of(b->remarks), "the remarks are read back");
}

// The codeset as it reads back, null when it does not.
OwnedCodeset write_and_read(const OwnedCodeset &codeset, std::string &bytes) {
  static const TemporaryFolder folder;
  static const std::string path = folder / "written.codeset";
  require(v_codeset_io_write_to_file(codeset.get(), path.c_str()), "a codeset can be written");
  bytes = read_file(path);
  return v_codeset_io_read_from_file(path.c_str());
}

void require_written_reads_back(const OwnedCodeset &codeset) {
  std::string bytes;
  const OwnedCodeset reread = write_and_read(codeset, bytes);
  if (is_markup(codeset)) {
    return;
  }
  require(reread != nullptr, "what is written can be read");
  require_proper_codeset(reread.get());
  const bool is_exact = !is_merged_when_read(codeset);
  if (is_exact) {
    require_equal(codeset, reread);
  }
  std::string bytes_again;
  const OwnedCodeset reread_again = write_and_read(reread, bytes_again);
  require(reread_again != nullptr, "what was read back can be written and read again");
  require_equal(reread, reread_again);
  require(!is_exact || bytes == bytes_again, "the same codeset is written as the same bytes");
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  static MemoryFile file;
  file.write(data, size);
  set_old_message();
  const OwnedCodeset codeset = v_codeset_io_read_from_file(file.path());
  if (!codeset) {
    require_message();
    return 0;
  }
  require_proper_codeset(codeset.get());
  require_written_reads_back(codeset);
  return 0;
}
