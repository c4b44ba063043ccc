#include "codeset/remark.h"

#include <algorithm>
#include <iterator>

#include <gtest/gtest.h>

#include "support/values/remarks.h"

namespace {

// The backward links match the forward links, and both ends are the sentinels.
void expect_sound(const OwnedRemarkList &list) {
  const VRemark *previous = &list->head;
  EXPECT_EQ(previous->prev, nullptr);
  for (const VRemark *r = list->head.next; r != &list->tail; r = r->next) {
    ASSERT_NE(r, nullptr);
    ASSERT_EQ(r->prev, previous);
    previous = r;
  }
  EXPECT_EQ(list->tail.prev, previous);
  EXPECT_EQ(list->tail.next, nullptr);
}

Codes inserted(const Codes &codes) {
  const OwnedRemarkList list = v_remark_list_new();
  for (const std::string &code : codes) {
    v_remark_list_add_remark_sorted(list.get(), remark_of(code));
  }
  expect_sound(list);
  return codes_of(list);
}

Codes sorted(const Codes &codes) {
  const OwnedRemarkList list = list_of_codes(codes);
  v_remark_list_sort(list.get());
  expect_sound(list);
  return codes_of(list);
}

TEST(Remark, ANewRemarkIsEmptyAndInNoList) {
  const OwnedRemark remark = v_remark_new();
  EXPECT_EQ(remark->code, nullptr);
  EXPECT_EQ(remark->description, nullptr);
  EXPECT_EQ(remark->prev, nullptr);
  EXPECT_EQ(remark->next, nullptr);
}

TEST(Remark, ACloneIsDeepAndInNoList) {
  const OwnedRemarkList list = list_of({{"a", {}}, {"b", {{"sv", "x"}, {"", "y"}}}});
  VRemark *original = list->tail.prev;
  const OwnedRemark clone = v_remark_clone(original);
  original->code = copy_text("changed");
  original->description.reset();
  EXPECT_STREQ(clone->code.get(), "b");
  EXPECT_EQ(translations_of(clone->description), (Translations{{"sv", "x"}, {"", "y"}}));
  EXPECT_EQ(clone->prev, nullptr);
  EXPECT_EQ(clone->next, nullptr);
}

TEST(Remark, ClonesAnUnfinishedRemark) {
  const OwnedRemark remark = v_remark_new();
  const OwnedRemark clone = v_remark_clone(remark.get());
  EXPECT_EQ(clone->code, nullptr);
  EXPECT_EQ(clone->description, nullptr);
}

TEST(Remark, RemovingReturnsTheFormerPredecessor) {
  const OwnedRemarkList list = list_of_codes({"a", "b", "c"});
  VRemark *first = list->head.next;
  const OwnedRemark second(first->next);
  EXPECT_EQ(v_remark_remove(second.get()), first);
  EXPECT_EQ(second->prev, nullptr);
  EXPECT_EQ(second->next, nullptr);
  EXPECT_EQ(codes_of(list), (Codes{"a", "c"}));
  const OwnedRemark removed_first(first);
  EXPECT_EQ(v_remark_remove(first), &list->head);
  EXPECT_EQ(codes_of(list), (Codes{"c"}));
  expect_sound(list);
}

TEST(Remark, TakingARemarkTransfersItsOwnership) {
  const OwnedRemarkList list = list_of_codes({"a", "b", "c"});
  VRemark *second = list->head.next->next;
  const OwnedRemark taken = v_remark_take(second);
  EXPECT_EQ(taken.get(), second);
  EXPECT_EQ(taken->prev, nullptr);
  EXPECT_EQ(taken->next, nullptr);
  EXPECT_STREQ(taken->code.get(), "b");
  EXPECT_EQ(codes_of(list), (Codes{"a", "c"}));
  expect_sound(list);
}

TEST(Remark, ATakenRemarkOutlivesItsList) {
  OwnedRemarkList list = list_of({{"a", {{"sv", "x"}}}});
  const OwnedRemark taken = v_remark_take(list->head.next);
  list.reset();
  EXPECT_STREQ(taken->code.get(), "a");
  EXPECT_EQ(translations_of(taken->description), (Translations{{"sv", "x"}}));
}

TEST(Remark, DestroyingUnlinksTheRemark) {
  v_remark_destroy(nullptr);
  v_remark_destroy(v_remark_new().release());
  const OwnedRemarkList list = list_of_codes({"a", "b", "c"});
  v_remark_destroy(list->head.next->next);
  EXPECT_EQ(codes_of(list), (Codes{"a", "c"}));
  v_remark_destroy(list->head.next);
  v_remark_destroy(list->head.next);
  EXPECT_TRUE(v_remark_list_is_empty(list.get()));
  expect_sound(list);
}

TEST(Remark, HasAnIndexInItsList) {
  const OwnedRemarkList list = list_of_codes({"a", "b", "c"});
  EXPECT_EQ(v_remark_get_index(list->head.next), 0);
  EXPECT_EQ(v_remark_get_index(list->head.next->next), 1);
  EXPECT_EQ(v_remark_get_index(list->tail.prev), 2);
}

TEST(RemarkList, ANewListIsEmpty) {
  const OwnedRemarkList list = v_remark_list_new();
  EXPECT_EQ(list->head.next, &list->tail);
  EXPECT_TRUE(v_remark_list_is_empty(list.get()));
  expect_sound(list);
}

TEST(RemarkList, AddsAtBothEnds) {
  const OwnedRemarkList list = v_remark_list_new();
  v_remark_list_add_remark_last(list.get(), remark_of("b"));
  v_remark_list_add_remark_first(list.get(), remark_of("c"));
  v_remark_list_add_remark_last(list.get(), remark_of("a"));
  EXPECT_EQ(codes_of(list), (Codes{"c", "b", "a"}));
  EXPECT_FALSE(v_remark_list_is_empty(list.get()));
  expect_sound(list);
}

TEST(RemarkList, DestroyingItsRemarksLeavesAnEmptyList) {
  v_remark_list_destroy(nullptr);
  const OwnedRemarkList list = list_of_codes({"a", "b"});
  v_remark_list_destroy_remarks(list.get());
  EXPECT_TRUE(v_remark_list_is_empty(list.get()));
  v_remark_list_destroy_remarks(list.get());
  v_remark_list_add_remark_last(list.get(), remark_of("c"));
  EXPECT_EQ(codes_of(list), (Codes{"c"}));
  expect_sound(list);
}

TEST(RemarkList, FindsTheSortedPlaceFromAnyStart) {
  for (const Codes &codes : {Codes{}, Codes{"a"}, Codes{"c"}, Codes{"b7"}, Codes{"a", "c"},
                             Codes{"a", "b1", "b7", "b10", "c"}}) {
    Codes expected = codes;
    const auto place = std::upper_bound(expected.begin(), expected.end(), std::string("b7"),
                                        [](const auto &a, const auto &b) {
                                          return v_remark_compare_codes(a.c_str(), b.c_str()) < 0;
                                        });
    const auto expected_index = std::distance(expected.begin(), place);
    expected.insert(place, "b7");
    for (std::size_t start = 0; start <= codes.size(); start++) {
      const OwnedRemarkList list = list_of_codes(codes);
      VRemark *near = list->head.next;
      for (std::size_t i = 0; i < start; i++) {
        near = near->next;
      }
      const int index =
          v_remark_list_add_remark_sorted_near(near, static_cast<int>(start), remark_of("b7"));
      EXPECT_EQ(index, expected_index) << "from " << start;
      EXPECT_EQ(codes_of(list), expected) << "from " << start;
      expect_sound(list);
    }
  }
}

// Each row is in remark code order.
const Codes orders[] = {
    {"1", "1a", "9", "10"},
    {"A1", "a1"},
    {"07", "7"},
    {"a07", "A7"},     // zeros count before case
    {"1.05", "1.049"}, // 5 and 49 without their zeros
    {"2", "10"},
    {"a7", "A8"},
    {"A8", "a8", "a9"},
    {"007", "07", "7", "8"},
    {"a", "B", "c"},
    {"x2", "X3", "x10"},
    {"1 a", "1a", "1b"},
    {"\xC5", "\xE5", "1", "A", "a"},
    {"a\xE5", "a", "a1", "aa"}, // the end of a code sorts after bytes above 127
    {"0", "00"},
    {"a0b", "ab", "ac"},
    {"A10", "a10", "a11", "A100"},
    {"99999999999999999999", "100000000000000000000"},
};

TEST(RemarkCodeOrder, DoesNotDependOnTheOrderOfInsertion) {
  for (const Codes &order : orders) {
    Codes codes = order;
    std::sort(codes.begin(), codes.end());
    do {
      EXPECT_EQ(inserted(codes), order) << testing::PrintToString(codes);
      EXPECT_EQ(sorted(codes), order) << testing::PrintToString(codes);
    } while (std::next_permutation(codes.begin(), codes.end()));
  }
}

TEST(RemarkCodeOrder, SortingEqualsRepeatedInsertion) {
  Codes codes = {"A8", "a7", "2", "10", "07", "7", "b\xE5"};
  std::sort(codes.begin(), codes.end());
  const Codes expected = inserted(codes);
  do {
    ASSERT_EQ(inserted(codes), expected);
    ASSERT_EQ(sorted(codes), expected);
  } while (std::next_permutation(codes.begin(), codes.end()));
}

// All strings of at most four of these characters, including the empty one.
Codes short_strings() {
  constexpr char alphabet[] = {'0', '1', '7', ' ', 'a', 'A', '\xE5'};
  Codes strings = {""};
  std::size_t begin = 0;
  for (int length = 1; length <= 4; length++) {
    const std::size_t end = strings.size();
    for (; begin < end; begin++) {
      for (const char character : alphabet) {
        strings.push_back(strings[begin] + character);
      }
    }
  }
  return strings;
}

TEST(RemarkCodeOrder, IsAStrictTotalOrder) {
  Codes strings = short_strings();
  ASSERT_EQ(strings.size(), 1U + 7 + 49 + 343 + 2401);
  std::stable_sort(strings.begin(), strings.end(), [](const std::string &a, const std::string &b) {
    return v_remark_compare_codes(a.c_str(), b.c_str()) < 0;
  });
  // If every pair is in order in both directions, the order is total and transitive.
  for (std::size_t i = 0; i < strings.size(); i++) {
    ASSERT_EQ(v_remark_compare_codes(strings[i].c_str(), strings[i].c_str()), 0);
    for (std::size_t j = i + 1; j < strings.size(); j++) {
      const char *a = strings[i].c_str();
      const char *b = strings[j].c_str();
      ASSERT_LT(v_remark_compare_codes(a, b), 0) << '"' << a << "\" \"" << b << '"';
      ASSERT_GT(v_remark_compare_codes(b, a), 0) << '"' << a << "\" \"" << b << '"';
    }
  }
}

TEST(RemarkCodeOrder, SortingManyEqualsInsertingThem) {
  Codes strings = short_strings();
  // Neighbours are moved far apart.
  Codes scattered;
  for (std::size_t i = 0; i < strings.size(); i++) {
    scattered.push_back(strings[i * 1009 % strings.size()]);
  }
  EXPECT_EQ(sorted(scattered), inserted(scattered));
}

TEST(RemarkCodeOrder, SortingLongCodesEqualsComparingThem) {
  constexpr char alphabet[] = {'0', '0', '1', '7', '9', ' ', '\t',   'a',    'A',   'z',
                               '_', '.', '-', '[', '^', '@', '\x80', '\xE5', '\xFF'};
  unsigned state = 1;
  const auto below = [&](unsigned limit) {
    state = state * 1'103'515'245U + 12'345U;
    return (state >> 16) % limit;
  };
  Codes codes;
  for (int i = 0; i < 20'000; i++) {
    std::string code;
    for (unsigned length = below(24); length > 0; length--) {
      code += alphabet[below(std::size(alphabet))];
    }
    codes.push_back(code);
  }
  Codes expected = codes;
  std::stable_sort(expected.begin(), expected.end(),
                   [](const std::string &a, const std::string &b) {
                     return v_remark_compare_codes(a.c_str(), b.c_str()) < 0;
                   });
  EXPECT_TRUE(sorted(codes) == expected);
}

TEST(RemarkCodeOrder, SortsNumbersOfHundredsOfDigits) {
  Codes expected;
  for (const char *start : {"", "a"}) {
    for (const std::size_t length : {1, 2, 254, 255, 256, 257, 600}) {
      for (const char digit : {'1', '9'}) {
        for (const char *end : {"", "-", "b"}) {
          expected.push_back(start + std::string(length, digit) + end);
        }
      }
    }
  }
  const Codes backwards(expected.rbegin(), expected.rend());
  EXPECT_TRUE(sorted(backwards) == expected);
  EXPECT_TRUE(inserted(backwards) == expected);
}

TEST(RemarkCodeOrder, SortingFindsDuplicateCodes) {
  const auto are_unique = [](const Codes &codes) {
    return v_remark_list_sort(list_of_codes(codes).get());
  };
  for (const Codes &codes : std::vector<Codes>{
           {}, {"7"}, {"07", "7"}, {"7", "07"}, {"A", "a"}, {"a", "A"}, {"07", "7", "A", "a"}}) {
    EXPECT_TRUE(are_unique(codes)) << testing::PrintToString(codes);
  }
  for (const Codes &codes : std::vector<Codes>{{"7", "7"},
                                               {"1", "2", "3", "3"},
                                               {"1", "1", "2", "3"},
                                               {"2", "1", "2"},
                                               {"3", "2", "1", "3"},
                                               {"07", "7", "07"}}) {
    EXPECT_FALSE(are_unique(codes)) << testing::PrintToString(codes);
  }
}

TEST(RemarkCollection, RemarksAreSortedAndACodeThatIsThereTwiceIsFound) {
  const struct {
    Codes collected;
    bool is_in_order;
    Codes sorted;
    bool are_unique;
  } rows[] = {
      {{}, true, {}, true},
      {{"1"}, true, {"1"}, true},
      {{"1", "2", "10", "a"}, true, {"1", "2", "10", "a"}, true},
      {{"2", "1", "10", "a"}, false, {"1", "2", "10", "a"}, true},
      {{"1", "10", "2", "a"}, false, {"1", "2", "10", "a"}, true},
      {{"2", "10", "a", "1"}, false, {"1", "2", "10", "a"}, true},
      {{"a", "10", "2", "1"}, false, {"1", "2", "10", "a"}, true},
      {{"1", "1", "2"}, false, {"1", "1", "2"}, false},
      {{"1", "2", "2"}, false, {"1", "2", "2"}, false},
      {{"1", "2", "1"}, false, {"1", "1", "2"}, false},
      {{"2", "1", "2", "1"}, false, {"1", "1", "2", "2"}, false},
      // Equal but for case or zeros.
      {{"A", "a", "07", "7"}, false, sorted({"A", "a", "07", "7"}), true},
  };
  for (const auto &row : rows) {
    SCOPED_TRACE(testing::PrintToString(row.collected));
    VRemarkCollection collection;
    for (const std::string &code : row.collected) {
      v_remark_list_collect_remark(collection, remark_of(code));
    }
    EXPECT_EQ(codes_of(collection.list), row.collected);
    EXPECT_EQ(collection.is_in_order, row.is_in_order);
    EXPECT_EQ(v_remark_list_sort_collection(collection), row.are_unique);
    EXPECT_EQ(codes_of(collection.list), row.sorted);
    expect_sound(collection.list);
  }
}

// So many that a sort which is not stable exchanges some.
TEST(RemarkCollection, RemarksWithTheSameCodeKeepTheirOrder) {
  VRemarkCollection collection;
  Remarks ones;
  Remarks twos;
  for (int i = 0; i < 50; i++) {
    const Translations description = {{"sv", std::to_string(i)}};
    v_remark_list_collect_remark(collection, remark_of("2", description));
    v_remark_list_collect_remark(collection, remark_of("1", description));
    ones.push_back({"1", description});
    twos.push_back({"2", description});
  }
  EXPECT_FALSE(v_remark_list_sort_collection(collection));
  Remarks expected = ones;
  expected.insert(expected.end(), twos.begin(), twos.end());
  EXPECT_EQ(remarks_of(collection.list), expected);
}

TEST(RemarkCodeOrder, AnEqualCodeIsInsertedAfterTheExistingOne) {
  const OwnedRemarkList list = v_remark_list_new();
  for (const char *text : {"first", "second", "third"}) {
    v_remark_list_add_remark_sorted(list.get(), remark_of("7", {{"sv", text}}));
  }
  const Remarks expected = {
      {"7", {{"sv", "first"}}}, {"7", {{"sv", "second"}}}, {"7", {{"sv", "third"}}}};
  EXPECT_EQ(remarks_of(list), expected);
  v_remark_list_add_remark_last(list.get(), remark_of("1"));
  v_remark_list_sort(list.get());
  EXPECT_EQ(codes_of(list), (Codes{"1", "7", "7", "7"}));
  v_remark_destroy(list->head.next);
  EXPECT_EQ(remarks_of(list), expected);
}

TEST(RemarkCodeOrder, ARemarkWithoutCodeIsInsertedLast) {
  const OwnedRemarkList list = list_of_codes({"a", "z"});
  v_remark_list_add_remark_sorted(list.get(), v_remark_new());
  EXPECT_EQ(codes_of(list), (Codes{"a", "z", "(none)"}));
}

TEST(RemarkCodeOrder, SortsNoneAndOne) {
  EXPECT_EQ(sorted({}), Codes());
  EXPECT_EQ(sorted({"a"}), Codes{"a"});
}

TEST(RemarkList, FindsARemarkByItsCode) {
  const OwnedRemarkList list = list_of({{"a", {{"sv", "1"}}}, {"a", {{"sv", "2"}}}, {"7", {}}});
  EXPECT_EQ(v_remark_list_get_remark_for_code(list.get(), "a"), list->head.next);
  EXPECT_EQ(v_remark_list_get_remark_for_code(list.get(), "7"), list->tail.prev);
  for (const char *code : {"A", "07", "", "a ", "b"}) {
    EXPECT_EQ(v_remark_list_get_remark_for_code(list.get(), code), nullptr) << code;
  }
  EXPECT_EQ(v_remark_list_get_remark_for_code(v_remark_list_new().get(), "a"), nullptr);
}

TEST(RemarkList, CopyingAppendsClonesInOrder) {
  const Remarks source = {{"b", {{"sv", "1"}}}, {"a", {{"sv", "2"}}}};
  const OwnedRemarkList from = list_of(source);
  const OwnedRemarkList to = list_of({{"z", {}}});
  v_remark_list_copy_remarks(to.get(), from.get());
  EXPECT_EQ(remarks_of(to), (Remarks{{"z", {}}, source[0], source[1]}));
  EXPECT_EQ(remarks_of(from), source);
  v_remark_list_copy_remarks(from.get(), from.get());
  EXPECT_EQ(remarks_of(from), (Remarks{source[0], source[1], source[0], source[1]}));
  v_remark_list_copy_remarks(to.get(), v_remark_list_new().get());
  EXPECT_EQ(codes_of(to), (Codes{"z", "b", "a"}));
  expect_sound(from);
  expect_sound(to);
}

TEST(RemarkList, FindsARemarkByCodeAndDescription) {
  const OwnedRemarkList list = list_of({{"a", {{"sv", "1"}, {"de", "2"}}}});
  const auto has = [&](const char *code, const Translations &description) {
    return v_remark_list_has_remark(list.get(), code, langstr_of(description).get());
  };
  EXPECT_TRUE(has("a", {{"sv", "1"}, {"de", "2"}}));
  EXPECT_FALSE(has("a", {{"de", "2"}, {"sv", "1"}}));
  EXPECT_FALSE(has("a", {{"sv", "1"}}));
  EXPECT_FALSE(has("a", {}));
  EXPECT_FALSE(has("A", {{"sv", "1"}, {"de", "2"}}));
}

TEST(RemarkList, DetectsASubset) {
  const Remarks full = {{"a", {{"sv", "1"}, {"de", "2"}}}, {"b", {{"sv", "3"}}}};
  const auto is_subset = [](const Remarks &a, const Remarks &b) {
    return v_remark_list_is_subset(list_of(a).get(), list_of(b).get());
  };
  EXPECT_TRUE(is_subset({}, {}));
  EXPECT_TRUE(is_subset({}, full));
  EXPECT_TRUE(is_subset(full, full));
  EXPECT_TRUE(is_subset({{"b", {{"sv", "3"}}}, {"a", {{"de", "2"}}}}, full));
  EXPECT_TRUE(is_subset({{"a", {{"", "2"}}}}, full));
  EXPECT_FALSE(is_subset(full, {full[0]}));
  EXPECT_FALSE(is_subset({{"a", {{"de", "3"}}}}, full));
  EXPECT_FALSE(is_subset({{"c", {{"sv", "3"}}}}, full));
  EXPECT_FALSE(is_subset(full, {}));
}

TEST(RemarkList, DetectsMergeableRemarks) {
  const Remarks a = {{"a", {{"sv", "1"}}}, {"b", {{"sv", "2"}}}};
  const auto are_mergeable = [&](const Remarks &b) {
    return v_remark_list_remarks_are_mergeable(list_of(a).get(), list_of(b).get());
  };
  const auto is_mergeable = [&](const OwnedRemark &remark) {
    return v_remark_list_remark_is_mergeable(list_of(a).get(), remark.get());
  };
  EXPECT_TRUE(is_mergeable(remark_of("c", {{"sv", "3"}})));
  EXPECT_TRUE(is_mergeable(remark_of("a", {{"sv", "1"}, {"de", "x"}})));
  EXPECT_FALSE(is_mergeable(remark_of("a", {{"sv", "other"}})));
  EXPECT_FALSE(is_mergeable(remark_of("a", {{"de", "x"}})));
  EXPECT_TRUE(are_mergeable({}));
  EXPECT_TRUE(are_mergeable({{"c", {{"sv", "3"}}}, {"a", {{"", "1"}}}}));
  EXPECT_FALSE(are_mergeable({{"c", {{"sv", "3"}}}, {"b", {{"sv", "other"}}}}));
}

TEST(RemarkList, MergesARemark) {
  const OwnedRemarkList list = list_of({{"2", {{"sv", "two"}}}, {"10", {{"sv", "ten"}}}});
  const auto merge = [&](const OwnedRemark &remark) {
    v_remark_list_merge_remark(list.get(), remark.get());
    EXPECT_EQ(remark->prev, nullptr);
  };
  merge(remark_of("9", {{"sv", "nine"}}));
  merge(remark_of("10", {{"sv", "ten"}, {"de", "zehn"}}));
  merge(remark_of("2", {{"sv", "other"}, {"de", "zwei"}}));
  EXPECT_EQ(remarks_of(list), (Remarks{{"2", {{"sv", "two"}}},
                                       {"9", {{"sv", "nine"}}},
                                       {"10", {{"sv", "ten"}, {"de", "zehn"}}}}));
  expect_sound(list);
}

} // namespace
