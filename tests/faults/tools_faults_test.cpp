#include <string>

#include <gtest/gtest.h>

#include "codeset/codeset_io.h"
#include "faults/promises.h"
#include "support/values/remarks.h"
#include "tools/codeset_files.h"

namespace {

constexpr const char *target = "out/a.codeset";
// The new file, and its folder.
constexpr const char *folder = "out/.vantorelle-codeset-??????";
constexpr const char *file = "out/.vantorelle-codeset-*/a.codeset";

const std::vector<Call> opening = {Call::fopen, Call::open};
const std::vector<Call> reading = {Call::fread, Call::read};
const std::vector<Call> writing = {Call::fwrite, Call::write, Call::fflush};
const std::vector<Call> closing = {Call::fclose, Call::close};

OwnedCodeset make_codeset() {
  OwnedCodeset codeset = v_codeset_new();
  codeset->name = langstr_of({{"sv", "Skador"}});
  for (int i = 0; i < 60; i++) {
    v_remark_list_add_remark_sorted(codeset->remarks.get(),
                                    remark_of(std::to_string(i), {{"sv", std::string(120, 'f')}}));
  }
  return codeset;
}

const std::string scratch = "out/.vantorelle-codeset-*";

// The outcome, but what the operation could not remove may be left.
Outcome but_for_scratch(const Outcome &outcome) {
  return [outcome](const Trial &trial) {
    Contents after = trial.after;
    std::erase_if(after, [](const auto &entry) {
      return g_pattern_match_simple(scratch.c_str(), entry.first.c_str()) != FALSE;
    });
    return outcome({trial.before, after, trial.undisturbed, trial.hit});
  };
}

using Write = std::function<bool(const char *path)>;

Operation make_operation(const char *name, const Contents &ground, const Write &write,
                         const std::vector<Promise> &more_promises = {}) {
  const auto run = [write]() -> std::optional<std::string> {
    return write(on_ground(target).c_str()) ? std::optional("written") : std::nullopt;
  };
  const std::string not_created = "Cannot create file.\n\n{error}";
  const std::string not_read = "Error loading codeset file.\n\n?*";
  const std::string not_written = "File I/O error when writing to file.*";
  std::vector<Promise> promises = {
      {{Call::stat}, target, 1, Result::fails, "Cannot get file status.\n\n{error}", untouched},
      // The others ask for permissions only.
      {{Call::stat}, "*", 0, Result::succeeds, "", done},
      {{Call::mkdir}, folder, 0, Result::fails, not_created, untouched},
      {opening, target, 0, Result::fails, not_created, untouched},
      {closing, target, 0, Result::succeeds, "", done},
      // To write it, to read it back, and to force it onto the disk.
      {opening, file, 1, Result::fails, "*Cannot open file.\n\n{error}", untouched},
      {opening, file, 0, Result::fails, "?*", untouched},
      {writing, file, 0, Result::fails, not_written, untouched},
      {reading, file, 0, Result::fails, not_read, untouched},
      {closing, file, 1, Result::fails, "Cannot close file.\n\n{error}", untouched},
      {closing, file, 0, Result::succeeds, "", done},
      {{Call::fsync}, file, 0, Result::fails, not_written, untouched},
      {{Call::rename}, target, 0, Result::fails, not_created, untouched},
      {{Call::unlink, Call::rmdir, Call::lstat},
       "*",
       0,
       Result::succeeds,
       "",
       but_for_scratch(done)},
      // The file is in its place.
      {{Call::open, Call::fsync, Call::close}, "out", 0, Result::succeeds, "", done},
  };
  promises.insert(promises.begin(), more_promises.begin(), more_promises.end());
  return {.name = name,
          .ground = ground,
          .run = run,
          .promises = promises,
          .message_without_memory = "Error * codeset file.\n\n?*",
          .scratch = scratch};
}

// The writer of codesets removes a file that is at its path; there is none.
const std::vector<Promise> when_removing = {
    {{Call::unlink},
     file,
     1,
     Result::fails,
     "Cannot access file.\n\nCannot unlink file.\n\n{error}",
     untouched}};

TEST(ToolsFaults, WriteANewCodeset) {
  const OwnedCodeset codeset = make_codeset();
  sweep(make_operation(
      "write a new codeset", {{"out/b", "another"}},
      [&](const char *path) {
        return v_tools_write_codeset(codeset.get(), path, Overwriting::refused);
      },
      when_removing));
}

TEST(ToolsFaults, ReplaceACodeset) {
  const OwnedCodeset codeset = make_codeset();
  sweep(make_operation(
      "replace a codeset", {{target, "old"}},
      [&](const char *path) {
        return v_tools_write_codeset(codeset.get(), path, Overwriting::allowed);
      },
      when_removing));
}

TEST(ToolsFaults, WriteANewText) {
  sweep(make_operation("write a new text", {{"out/b", "another"}}, [](const char *path) {
    return v_tools_write_text(path, std::string(10'000, 'x'), Overwriting::refused);
  }));
}

TEST(ToolsFaults, ReplaceAText) {
  sweep(make_operation("replace a text", {{target, "old"}}, [](const char *path) {
    return v_tools_write_text(path, std::string(10'000, 'x'), Overwriting::allowed);
  }));
}

} // namespace
