// Reads codeset files with the program's own reader and prints each of their texts as a line
// "<language>\t<text>" in UTF-8. Ends with status 1 when a file cannot be read, is not what the
// program would write, or misses a text in one of the languages that all delivered codesets have:
//
//   list_texts FOLDER

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "base/error.h"
#include "base/text_encoding.h"
#include "codeset/codeset_io.h"
#include "support/files.h"

namespace {

constexpr const char *languages[] = {"en-uk", "sv", "de", "fr", "es", "nl"};
constexpr std::size_t fewest_remarks = 25;
constexpr std::size_t most_remarks = 60;

// Prints what is wrong and returns false.
bool complain(const std::string &file, const std::string &what) {
  std::fprintf(stderr, "%s: %s\n", file.c_str(), what.c_str());
  return false;
}

bool list_texts(const std::string &file, const std::string &what, const VLangstr *langstr) {
  const VLangstr *translation = langstr;
  for (const char *language : languages) {
    if (translation == nullptr || std::strcmp(translation->lang.get(), language) != 0) {
      return complain(file, what + " has no text in " + language + " at its place");
    }
    const OwnedText utf8_text = v_convert_latin1_to_utf8(translation->text.get());
    std::printf("%s\t%s\n", language, utf8_text.get());
    translation = translation->next.get();
  }
  return translation == nullptr || complain(file, what + " has more languages than the others");
}

// Two codes with the same words would leave the reader of a report guessing.
bool check_descriptions_differ(const std::string &file, const VRemarkList *list) {
  for (const char *language : languages) {
    std::set<std::string> texts;
    for (const VRemark *remark = list->head.next; remark != &list->tail; remark = remark->next) {
      const char *text = v_langstr_get_string(remark->description.get(), language, false);
      if (!texts.insert(text).second) {
        return complain(file, std::string("two codes say in ") + language + ": " + text);
      }
    }
  }
  return true;
}

bool check_rewriting(const std::string &file, const VCodeset *codeset) {
  const TemporaryFolder folder;
  const std::string copy = folder / "copy.codeset";
  return (v_codeset_io_write_to_file(codeset, copy.c_str()) &&
          read_file(copy) == read_file(file)) ||
         complain(file, "is not as the program would write it");
}

bool check_file(const std::string &file) {
  const OwnedCodeset codeset = v_codeset_io_read_from_file(file.c_str());
  if (!codeset) {
    return complain(file, v_error_get());
  }
  bool is_good = list_texts(file, "the name", codeset->name.get()) &&
                 list_texts(file, "the author", codeset->author.get());
  std::size_t count = 0;
  const VRemarkList *list = codeset->remarks.get();
  for (const VRemark *remark = list->head.next; is_good && remark != &list->tail;
       remark = remark->next) {
    is_good =
        list_texts(file, std::string("code ") + remark->code.get(), remark->description.get());
    count++;
  }
  if (is_good && (count < fewest_remarks || count > most_remarks)) {
    is_good = complain(file, "has " + std::to_string(count) + " codes");
  }
  return is_good && check_descriptions_differ(file, list) && check_rewriting(file, codeset.get());
}

} // namespace

int main(int argc, char **argv) {
  if (argc != 2) {
    std::fputs("usage: list_texts FOLDER\n", stderr);
    return 1;
  }
  std::vector<std::string> files;
  for (const auto &entry : std::filesystem::directory_iterator(argv[1])) {
    if (entry.path().extension() == ".codeset") {
      files.push_back(entry.path().string());
    }
  }
  std::sort(files.begin(), files.end());
  const auto failed = std::count_if(files.begin(), files.end(),
                                    [](const std::string &file) { return !check_file(file); });
  return failed == 0 && !files.empty() ? 0 : 1;
}
