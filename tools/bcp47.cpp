#include "bcp47.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include <glib.h>

namespace {

// Language, script, region, variants, extensions and private use, as RFC 5646 defines "langtag", or
// private use alone. Grandfathered tags are left out.
constexpr const char *well_formed = "^(?:"
                                    "(?:[a-z]{2,3}(?:-[a-z]{3}){0,3}|[a-z]{4,8})"
                                    "(?:-[a-z]{4})?"
                                    "(?:-(?:[a-z]{2}|[0-9]{3}))?"
                                    "(?:-(?:[a-z0-9]{5,8}|[0-9][a-z0-9]{3}))*"
                                    "(?:-[a-wyz0-9](?:-[a-z0-9]{2,8})+)*"
                                    "(?:-x(?:-[a-z0-9]{1,8})+)?"
                                    "|x(?:-[a-z0-9]{1,8})+"
                                    ")\\z";

constexpr std::size_t longest_subtag = 8;

bool is_well_formed(const std::string &lower_case_tag) {
  return g_regex_match_simple(well_formed, lower_case_tag.c_str(), GRegexCompileFlags(0),
                              GRegexMatchFlags(0)) != FALSE;
}

std::string to_lower_case(const char *tag) {
  std::string lower_case_tag = tag;
  std::transform(lower_case_tag.begin(), lower_case_tag.end(), lower_case_tag.begin(),
                 g_ascii_tolower);
  return lower_case_tag;
}

// The letters and digits of the tag, in subtags that are short enough.
std::string to_private_use(const std::string &lower_case_tag) {
  std::string result = "x";
  std::size_t length = longest_subtag; // of the subtag that is being written
  for (const char byte : lower_case_tag) {
    if (g_ascii_isalnum(byte) == 0) {
      length = longest_subtag;
      continue;
    }
    if (length == longest_subtag) {
      result += '-';
      length = 0;
    }
    result += byte;
    length++;
  }
  return result == "x" ? "" : result;
}

// Regions are in upper case and scripts begin with a capital; neither is the first subtag or
// follows a singleton, which begins an extension or private use. The suite's "uk" is the United
// Kingdom, whose code in the standard is "GB".
std::string with_recommended_case(const std::string &lower_case_tag) {
  std::string result;
  std::size_t begin = 0;
  bool is_language_or_after_single = true;
  while (begin <= lower_case_tag.size()) {
    const std::size_t end = std::min(lower_case_tag.find('-', begin), lower_case_tag.size());
    std::string subtag = lower_case_tag.substr(begin, end - begin);
    if (!is_language_or_after_single && subtag.size() == 2) {
      std::transform(subtag.begin(), subtag.end(), subtag.begin(), g_ascii_toupper);
      subtag = subtag == "UK" ? "GB" : subtag;
    } else if (!is_language_or_after_single && subtag.size() == 4) {
      subtag[0] = g_ascii_toupper(subtag[0]);
    }
    result += (begin == 0 ? "" : "-") + subtag;
    is_language_or_after_single = subtag.size() == 1;
    begin = end + 1;
  }
  return result;
}

} // namespace

std::string v_bcp47_from_tag(const char *tag) {
  const std::string lower_case_tag = to_lower_case(tag);
  return is_well_formed(lower_case_tag) ? with_recommended_case(lower_case_tag)
                                        : to_private_use(lower_case_tag);
}
