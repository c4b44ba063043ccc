#pragma once
// Remarks, and the list that holds a codeset's remarks in the natural order of their codes. Codes
// are ISO-8859-1 and are equal only byte for byte. Knows nothing of files and screens.

#include <cstdint>
#include <vector>

#include "langstr/langstr.h"

struct VRemark {
  OwnedText code; // null while the remark is being built, and only then
  OwnedLangstr description;
  // The neighbours in the list, including its sentinels; null when not in a list.
  VRemark *prev = nullptr;
  VRemark *next = nullptr;
};

// Unlinks the remark from its list, if it is in one, and frees it. Null is allowed.
void v_remark_destroy(VRemark *remark);
using OwnedRemark = Owned<VRemark, v_remark_destroy>;

// Owns its remarks. Iterate from head.next until &tail.
struct VRemarkList {
  VRemark head; // sentinels
  VRemark tail;
};

void v_remark_list_destroy(VRemarkList *list);
using OwnedRemarkList = Owned<VRemarkList, v_remark_list_destroy>;

// A remark without a code, with an empty description, not in a list.
OwnedRemark v_remark_new();
// A deep copy that is not in a list.
OwnedRemark v_remark_clone(const VRemark *remark);
// Unlinks the remark from the list that it must be in; ownership passes to the caller. Returns its
// former predecessor (borrowed, possibly the head sentinel).
VRemark *v_remark_remove(VRemark *remark);
// The same, but returns the remark itself, owned.
OwnedRemark v_remark_take(VRemark *remark);
// The remark's index in its list, from 0. Takes linear time.
int v_remark_get_index(const VRemark *remark);

// Remark code order: natural order ignoring case and zeros, then only case, then only zeros, then
// neither, then byte order. A strict total order: 0 only for identical codes.
int v_remark_compare_codes(const char *a, const char *b);

OwnedRemarkList v_remark_list_new();
// Destroys every remark; the list itself remains.
void v_remark_list_destroy_remarks(VRemarkList *list);
bool v_remark_list_is_empty(const VRemarkList *list);
void v_remark_list_add_remark_first(VRemarkList *list, OwnedRemark remark);
void v_remark_list_add_remark_last(VRemarkList *list, OwnedRemark remark);
// Inserts the remark before the first one whose code is greater; at the end when it has no code.
// Takes linear time: to add many remarks, add them last and sort once.
void v_remark_list_add_remark_sorted(VRemarkList *list, OwnedRemark remark);
// Inserts a remark that has a code into a sorted list, after those with the same code, and returns
// its index. The search begins at place, a remark of the list or its tail sentinel; index: that of
// place, from 0. Takes time linear in the distance between the two places.
int v_remark_list_add_remark_sorted_near(VRemark *place, int index, OwnedRemark remark);
// Sorts a list whose remarks all have codes into remark code order, in n log n time. Returns false
// when a code occurs twice.
bool v_remark_list_sort(VRemarkList *list);

// A remark (borrowed, with a code) and a sort key that decides most comparisons, so that the codes,
// which are scattered in memory, need not be read.
struct VRemarkKey {
  std::uint64_t key; // strnatzerocasecmp_key of the code
  VRemark *remark;
};

// A list that is being read from a file, one remark at a time. The sort keys are made while each
// remark is still in the processor's cache.
struct VRemarkCollection {
  OwnedRemarkList list = v_remark_list_new(); // changed only by these functions until it is moved
  bool is_in_order = true;                    // each code is greater than the one before
  std::vector<VRemarkKey> keys;               // of all remarks; empty while they are in order
};

// Adds a remark that has a code at the end.
void v_remark_list_collect_remark(VRemarkCollection &collection, OwnedRemark remark);
// Sorts the list; returns the same as v_remark_list_sort.
bool v_remark_list_sort_collection(VRemarkCollection &collection);

// The first remark with exactly this code (borrowed), or null.
VRemark *v_remark_list_get_remark_for_code(const VRemarkList *list, const char *code);

// Appends clones of all remarks of from, in its order.
void v_remark_list_copy_remarks(VRemarkList *to, const VRemarkList *from);
// True when there is a remark with this code and the identical description.
bool v_remark_list_has_remark(const VRemarkList *list, const char *code,
                              const VLangstr *description);
// True when, for every remark of a, b has one with the same code whose description contains that of
// the remark (v_langstr_is_subset).
bool v_remark_list_is_subset(const VRemarkList *a, const VRemarkList *b);
// True when the list has no remark with that code, or one with which the description can be merged.
bool v_remark_list_remark_is_mergeable(const VRemarkList *list, const VRemark *remark);
// True when v_remark_list_remark_is_mergeable holds in a for every remark of b.
bool v_remark_list_remarks_are_mergeable(const VRemarkList *a, const VRemarkList *b);
// Adds a clone of the remark at its sorted place, or merges its description into the list's remark
// with that code, if the two are mergeable.
void v_remark_list_merge_remark(VRemarkList *list, const VRemark *remark);
