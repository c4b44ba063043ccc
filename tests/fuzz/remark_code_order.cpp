// The order of remark codes, and the list that is kept in it. One code per line.

#include <algorithm>
#include <cstring>

#include "base/natural_order.h"
#include "codeset/remark.h"
#include "fuzz/fuzzing.h"
#include "support/values/remarks.h"

namespace {

// Triples are tried, so the work grows with the third power.
constexpr std::size_t maximum_code_count = 16;

int sign_of(int order) { return (order > 0) - (order < 0); }

// Returns the order of the two.
int check_pair(const char *a, const char *b) {
  const int order = sign_of(v_remark_compare_codes(a, b));
  require(order == -sign_of(v_remark_compare_codes(b, a)), "the order is antisymmetric");
  require((order == 0) == (std::strcmp(a, b) == 0), "only identical codes are equal");
  for (const auto compare : {strnatcmp, strnatcasecmp, strnatzerocmp, strnatzerocasecmp}) {
    const int natural_order = compare(a, b);
    require(natural_order == -compare(b, a), "each natural order is antisymmetric");
    require(natural_order == sign_of(natural_order), "natural orders are -1, 0 or 1");
  }
  const std::uint64_t key_a = strnatzerocasecmp_key(a);
  const std::uint64_t key_b = strnatzerocasecmp_key(b);
  require(key_a == key_b || (key_a < key_b) == (strnatzerocasecmp(a, b) < 0),
          "different keys tell the order");
  return order;
}

void check_order(const Codes &codes) {
  const std::size_t count = codes.size();
  std::vector<std::vector<int>> order(count, std::vector<int>(count));
  for (std::size_t a = 0; a < count; a++) {
    for (std::size_t b = 0; b < count; b++) {
      order[a][b] = check_pair(codes[a].c_str(), codes[b].c_str());
    }
  }
  for (std::size_t a = 0; a < count; a++) {
    for (std::size_t b = 0; b < count; b++) {
      for (std::size_t c = 0; c < count; c++) {
        require(order[a][b] >= 0 || order[b][c] >= 0 || order[a][c] < 0, "the order is transitive");
      }
    }
  }
}

// Each remark's description is its place in the input, to distinguish equal codes.
Remarks remarks_in_input_order(const Codes &codes) {
  Remarks remarks;
  for (std::size_t i = 0; i < codes.size(); i++) {
    remarks.push_back({codes[i], {{"", std::to_string(i)}}});
  }
  return remarks;
}

void check_lists(const Codes &codes) {
  Remarks expected = remarks_in_input_order(codes);
  const OwnedRemarkList sorted_once = list_of(expected);
  const bool are_unique = v_remark_list_sort(sorted_once.get());
  const OwnedRemarkList inserted = v_remark_list_new();
  for (const auto &[code, description] : expected) {
    v_remark_list_add_remark_sorted(inserted.get(), remark_of(code, description));
  }
  std::stable_sort(expected.begin(), expected.end(), [](const auto &a, const auto &b) {
    return v_remark_compare_codes(a.first.c_str(), b.first.c_str()) < 0;
  });
  require(remarks_of(inserted) == expected, "sorted insertion is a stable sort");
  require(remarks_of(sorted_once) == expected, "sorting the list is a stable sort");
  const auto same_code = [](const auto &a, const auto &b) { return a.first == b.first; };
  require(are_unique ==
              (std::adjacent_find(expected.begin(), expected.end(), same_code) == expected.end()),
          "sorting finds a code that is there twice");
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  const Codes codes = split(text_of(data, size), '\n', maximum_code_count);
  check_order(codes);
  check_lists(codes);
  return 0;
}
