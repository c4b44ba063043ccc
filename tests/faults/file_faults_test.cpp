// Copying, as adding, cloning and saving a copy do; deleting; comparing.

#include <gtest/gtest.h>

#include "base/file_utils.h"
#include "base/fs_utils.h"
#include "base/streams.h"
#include "faults/promises.h"

namespace {

constexpr const char *source = "elsewhere/a.codeset";
constexpr const char *target = "workspace/codesets/a.codeset";

// Longer than the buffers of the C library and of the streams.
const std::string long_text = [] {
  std::string text;
  for (int i = 0; i < 3000; i++) {
    text += std::to_string(i) + "\n";
  }
  return text;
}();

const std::vector<Call> opening = {Call::fopen, Call::open};
const std::vector<Call> reading = {Call::fread, Call::read};
const std::vector<Call> writing = {Call::fwrite, Call::write, Call::fflush, Call::fclose,
                                   Call::close};
const std::vector<Call> closing = {Call::fclose, Call::close};

const std::vector<Promise> copy_promises = {
    // This call only checks whether opening the file could block.
    {{Call::stat}, "*", 0, Result::succeeds, "", done},
    {opening, source, 0, Result::fails, "Opening input file failed.", with_empty(target)},
    // Nothing has been read yet, so the failure is that of a file that cannot be opened.
    {reading, source, 1, Result::fails, "File read error.", with_empty(target)},
    {reading, source, 0, Result::fails, "File read error.", without(target)},
    {closing, source, 0, Result::succeeds, "", done},
    {{Call::unlink}, target, 0, Result::fails, "Creating file failed.", untouched},
    {opening, target, 0, Result::fails, "Creating file failed.", without(target)},
    {writing, target, 0, Result::fails, "File write error.", without(target)},
};

std::optional<std::string> as_result(bool is_done) {
  return is_done ? std::optional<std::string>("") : std::nullopt;
}

std::optional<std::string> copy() {
  return as_result(v_stream_copy_from_file_path_to_file_path(on_ground(source).c_str(),
                                                             on_ground(target).c_str()));
}

std::optional<std::string> remove_target() {
  return as_result(v_fs_utils_delete_file_if_exists(on_ground(target).c_str()));
}

std::optional<std::string> compare() {
  return as_result(
      v_util_test_if_files_are_identical(on_ground(source).c_str(), on_ground(target).c_str()));
}

const Contents neighbours = {{"workspace/codesets/b.codeset", "another"}};

Contents with_neighbours(Contents contents) {
  contents.insert(neighbours.begin(), neighbours.end());
  return contents;
}

TEST(FileFaults, CopyToANewFile) {
  sweep({.name = "copy to a new file",
         .ground = with_neighbours({{source, long_text}}),
         .run = copy,
         .promises = copy_promises});
}

TEST(FileFaults, CopyOverAFile) {
  sweep({.name = "copy over a file",
         .ground = with_neighbours({{source, long_text}, {target, "what was there"}}),
         .run = copy,
         .promises = copy_promises});
}

TEST(FileFaults, CopyOfAnEmptyFile) {
  sweep({.name = "copy of an empty file",
         .ground = with_neighbours({{source, ""}, {target, "what was there"}}),
         .run = copy,
         .promises = copy_promises});
}

TEST(FileFaults, Delete) {
  sweep({.name = "delete a file",
         .ground = with_neighbours({{target, "what was there"}}),
         .run = remove_target,
         .promises = {{{Call::unlink},
                       target,
                       0,
                       Result::fails,
                       "Cannot unlink file.\n\n{error}",
                       untouched}}});
}

TEST(FileFaults, Compare) {
  sweep({.name = "compare two files",
         .ground = {{source, long_text}, {target, long_text}},
         .run = compare,
         .promises = {{{Call::stat}, "*", 0, Result::succeeds, "", done},
                      {opening, "*", 0, Result::fails, "Cannot open file.\n\n{error}", untouched},
                      {reading, "*", 0, Result::fails, "*", untouched},
                      {closing, "*", 0, Result::succeeds, "", done}},
         .tells_causes = false});
}

} // namespace
