#include <gtest/gtest.h>

#include "base/fs_utils.h"
#include "codeset/codeset_io.h"
#include "faults/promises.h"
#include "support/values/remarks.h"

namespace {

constexpr const char *file_name = "workspace/codesets/a.codeset";

const std::vector<Call> opening = {Call::fopen, Call::open};
const std::vector<Call> reading = {Call::fread, Call::read};
const std::vector<Call> writing = {Call::fwrite, Call::write, Call::fflush};
const std::vector<Call> closing = {Call::fclose, Call::close};

// Takes more than one buffer of the C library and of the parser.
OwnedCodeset make_codeset() {
  OwnedCodeset codeset = v_codeset_new();
  codeset->name =
      langstr_of({{"sv", "Ytskador p\xE5 m\xE5lningar"}, {"en-uk", "Surface & ground"}});
  codeset->author = langstr_of({{"", "Anna"}});
  codeset->version = copy_text("1.2");
  for (int i = 0; i < 60; i++) {
    v_remark_list_add_remark_sorted(
        codeset->remarks.get(),
        remark_of(std::to_string(i), {{"sv", std::string(120, 'f')}, {"en-uk", "<flaking>"}}));
  }
  return codeset;
}

std::string text_of(const Translations &translations) {
  std::string text;
  for (const auto &[tag, translation] : translations) {
    text += "[" + tag + "] " + translation + "\n";
  }
  return text;
}

std::string text_of(const VCodeset &codeset) {
  std::string text = text_of(translations_of(codeset.name)) +
                     text_of(translations_of(codeset.author)) + codeset.version.get();
  for (const auto &[code, description] : remarks_of(codeset.remarks)) {
    text += "\n" + code + "\n" + text_of(description);
  }
  return text;
}

// The contents of the file when the program writes it without a fault.
std::string file_text() {
  const TemporaryFolder folder;
  EXPECT_TRUE(v_codeset_io_write_to_file(make_codeset().get(), (folder / "file").c_str()));
  return read_file(folder / "file");
}

std::optional<std::string> read_codeset() {
  const OwnedCodeset codeset = v_codeset_io_read_from_file(on_ground(file_name).c_str());
  return codeset ? std::optional(text_of(*codeset)) : std::nullopt;
}

TEST(CodesetFaults, Read) {
  sweep({.name = "read a codeset",
         .ground = {{file_name, file_text()}, {"workspace/codesets/b.codeset", "another"}},
         .run = read_codeset,
         .promises =
             {
                 // This call only checks whether opening the file could block.
                 {{Call::stat}, file_name, 0, Result::succeeds, "", done},
                 {opening, file_name, 0, Result::fails,
                  "Error loading codeset file.\n\nCannot open file.\n\n{error}", untouched},
                 {reading, file_name, 0, Result::fails,
                  "Error loading codeset file.\n\nCould not parse XML data.\n\n?*", untouched},
                 {closing, file_name, 0, Result::succeeds, "", done},
             },
         .message_without_memory = "Error * codeset file.\n\n?*"});
}

class WritingCodesets : public testing::Test {
protected:
  const OwnedCodeset codeset = make_codeset();
  const std::function<std::optional<std::string>()> write = [this]() -> std::optional<std::string> {
    const bool is_written = v_codeset_io_write_to_file(codeset.get(), on_ground(file_name).c_str());
    // The codeset in memory is unchanged, so that the user can try again.
    return is_written ? std::optional(text_of(*codeset)) : std::nullopt;
  };
  const std::vector<Promise> promises = {
      {{Call::unlink},
       file_name,
       0,
       Result::fails,
       "Cannot access file.\n\nCannot unlink file.\n\n{error}",
       untouched},
      {{Call::stat}, file_name, 0, Result::succeeds, "", done},
      // The old file is already deleted: saving is not atomic, on purpose.
      {opening, file_name, 0, Result::fails, "Cannot create file.\n\nCannot open file.\n\n{error}",
       without(file_name)},
      {writing, file_name, 0, Result::fails, "File I/O error when writing to file.",
       without(file_name)},
      {closing, file_name, 0, Result::fails, "Cannot close file.\n\n{error}", without(file_name)},
  };
};

TEST_F(WritingCodesets, NewFile) {
  sweep({.name = "write a codeset to a new file",
         .ground = {{"workspace/codesets/b.codeset", "another"}},
         .run = write,
         .promises = promises});
}

TEST_F(WritingCodesets, OverTheOldFile) {
  sweep({.name = "write a codeset over its old file",
         .ground = {{file_name, "old"}, {"workspace/codesets/b.codeset", "another"}},
         .run = write,
         .promises = promises});
}

} // namespace
