// Tables saved as csv. Each document that the reader accepts gives a codeset that its own file and
// a table can hold.

#include <algorithm>

#include "base/text_encoding.h"
#include "codeset/codeset_io.h"
#include "fuzz/fuzzing.h"
#include "fuzz/proper_codeset.h"
#include "support/files.h"
#include "support/values/remarks.h"
#include "tools/codeset_files.h"
#include "tools/csv_reading.h"
#include "tools/csv_writing.h"

namespace {

// A table has the translations in the order of its columns.
Translations sorted(Translations translations) {
  std::sort(translations.begin(), translations.end());
  return translations;
}

Remarks sorted(Remarks remarks) {
  for (auto &[code, description] : remarks) {
    description = sorted(description);
  }
  return remarks;
}

void require_equal(const VCodeset *a, const VCodeset *b) {
  require(sorted(translations_of(a->name)) == sorted(translations_of(b->name)),
          "the name is read back");
  require(sorted(translations_of(a->author)) == sorted(translations_of(b->author)),
          "the author is read back");
  require(g_strcmp0(a->version.get(), b->version.get()) == 0, "the version is read back");
  require(sorted(remarks_of(a->remarks)) == sorted(remarks_of(b->remarks)),
          "the remarks are read back");
}

void require_table_reads_back(const VCodeset *codeset) {
  const OwnedUtf8String csv = v_csv_write_codeset(codeset, true);
  require(g_utf8_validate_len(csv->str, csv->len, nullptr), "a table is UTF-8");
  const OwnedCodeset reread = v_csv_read_codeset({csv->str, csv->len});
  require(reread != nullptr, "a table that is written can be read");
  require_equal(codeset, reread.get());
}

void require_file_reads_back(const VCodeset *codeset) {
  static const TemporaryFolder folder;
  static const std::string path = folder / "written.codeset";
  require(v_codeset_io_write_to_file(codeset, path.c_str()), "a codeset can be written");
  const OwnedCodeset reread = v_codeset_io_read_from_file(path.c_str());
  require(reread != nullptr, "its file can be read");
  require(v_tools_codesets_are_equal(codeset, reread.get()), "the file has the same codeset");
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  set_old_message();
  const OwnedCodeset codeset = v_csv_read_codeset({reinterpret_cast<const char *>(data), size});
  if (!codeset) {
    require_message();
    return 0;
  }
  require_proper_texts(codeset.get());
  require_table_reads_back(codeset.get());
  if (!codeset->name) {
    v_langstr_set_translation(codeset->name, "", "a name");
  }
  require_file_reads_back(codeset.get());
  return 0;
}
