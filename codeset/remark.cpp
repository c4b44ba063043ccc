#include "codeset/remark.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "base/natural_order.h"

namespace {

void link_before(VRemark *place, OwnedRemark owned) {
  VRemark *remark = owned.release();
  remark->prev = place->prev;
  remark->next = place;
  place->prev->next = remark;
  place->prev = remark;
}

void join(VRemark *first, VRemark *second) {
  first->next = second;
  second->prev = first;
}

bool has_code(const VRemark *remark, const char *code) {
  return std::strcmp(remark->code.get(), code) == 0;
}

VRemarkKey key_of(VRemark *remark) { return {strnatzerocasecmp_key(remark->code.get()), remark}; }

bool is_before(const VRemarkKey &a, const VRemarkKey &b) {
  return a.key != b.key ? a.key < b.key
                        : v_remark_compare_codes(a.remark->code.get(), b.remark->code.get()) < 0;
}

bool has_same_code(const VRemarkKey &a, const VRemarkKey &b) {
  return a.key == b.key && std::strcmp(a.remark->code.get(), b.remark->code.get()) == 0;
}

std::vector<VRemarkKey> keys_of(VRemarkList *list) {
  std::vector<VRemarkKey> keys;
  for (VRemark *remark = list->head.next; remark != &list->tail; remark = remark->next) {
    keys.push_back(key_of(remark));
  }
  return keys;
}

bool is_greater_than_last(const VRemarkList *list, const VRemark *remark) {
  return v_remark_list_is_empty(list) ||
         v_remark_compare_codes(list->tail.prev->code.get(), remark->code.get()) < 0;
}

// Links the remarks in the order of the keys. False when a code occurs twice.
bool link_in_order(VRemarkList *list, const std::vector<VRemarkKey> &keys) {
  VRemark *last = &list->head;
  for (const VRemarkKey &key : keys) {
    join(last, key.remark);
    last = key.remark;
  }
  join(last, &list->tail);
  return std::adjacent_find(keys.begin(), keys.end(), has_same_code) == keys.end();
}

// keys: those of all remarks of the list; sorted in place.
bool sort(VRemarkList *list, std::vector<VRemarkKey> &keys) {
  std::stable_sort(keys.begin(), keys.end(), is_before);
  return link_in_order(list, keys);
}

} // namespace

OwnedRemark v_remark_new() { return OwnedRemark(new VRemark); }

OwnedRemark v_remark_clone(const VRemark *remark) {
  OwnedRemark clone = v_remark_new();
  clone->code = copy_text(remark->code.get());
  clone->description = v_langstr_clone(remark->description.get());
  return clone;
}

void v_remark_destroy(VRemark *remark) {
  if (remark == nullptr) {
    return;
  }
  if (remark->prev != nullptr) {
    v_remark_remove(remark);
  }
  delete remark;
}

VRemark *v_remark_remove(VRemark *remark) {
  VRemark *predecessor = remark->prev;
  join(predecessor, remark->next);
  remark->prev = nullptr;
  remark->next = nullptr;
  return predecessor;
}

OwnedRemark v_remark_take(VRemark *remark) {
  v_remark_remove(remark);
  return OwnedRemark(remark);
}

int v_remark_get_index(const VRemark *remark) {
  int index = -1; // -1 for the head sentinel
  while ((remark = remark->prev) != nullptr) {
    index++;
  }
  return index;
}

int v_remark_compare_codes(const char *a, const char *b) {
  if (const int order = strnatzerocasecmp(a, b)) {
    return order;
  }
  if (const int order = strnatcasecmp(a, b)) {
    return order;
  }
  if (const int order = strnatzerocmp(a, b)) {
    return order;
  }
  if (const int order = strnatcmp(a, b)) {
    return order;
  }
  return std::strcmp(a, b);
}

OwnedRemarkList v_remark_list_new() {
  OwnedRemarkList list(new VRemarkList);
  join(&list->head, &list->tail);
  return list;
}

void v_remark_list_destroy(VRemarkList *list) {
  if (list == nullptr) {
    return;
  }
  v_remark_list_destroy_remarks(list);
  delete list;
}

void v_remark_list_destroy_remarks(VRemarkList *list) {
  for (VRemark *remark = list->head.next; remark != &list->tail;) {
    VRemark *following = remark->next;
    v_remark_destroy(remark);
    remark = following;
  }
}

bool v_remark_list_is_empty(const VRemarkList *list) { return list->head.next == &list->tail; }

void v_remark_list_add_remark_first(VRemarkList *list, OwnedRemark remark) {
  link_before(list->head.next, std::move(remark));
}

void v_remark_list_add_remark_last(VRemarkList *list, OwnedRemark remark) {
  link_before(&list->tail, std::move(remark));
}

void v_remark_list_add_remark_sorted(VRemarkList *list, OwnedRemark remark) {
  VRemark *place = remark->code ? list->head.next : &list->tail;
  while (place != &list->tail &&
         v_remark_compare_codes(place->code.get(), remark->code.get()) <= 0) {
    place = place->next;
  }
  link_before(place, std::move(remark));
}

int v_remark_list_add_remark_sorted_near(VRemark *place, int index, OwnedRemark remark) {
  const char *code = remark->code.get();
  const auto is_head = [](const VRemark *other) { return other->prev == nullptr; };
  const auto is_tail = [](const VRemark *other) { return other->next == nullptr; };
  while (!is_head(place->prev) && v_remark_compare_codes(place->prev->code.get(), code) > 0) {
    place = place->prev;
    index--;
  }
  while (!is_tail(place) && v_remark_compare_codes(place->code.get(), code) <= 0) {
    place = place->next;
    index++;
  }
  link_before(place, std::move(remark));
  return index;
}

bool v_remark_list_sort(VRemarkList *list) {
  std::vector<VRemarkKey> keys = keys_of(list);
  return sort(list, keys);
}

void v_remark_list_collect_remark(VRemarkCollection &collection, OwnedRemark remark) {
  VRemarkList *list = collection.list.get();
  if (collection.is_in_order && !is_greater_than_last(list, remark.get())) {
    collection.is_in_order = false;
    collection.keys = keys_of(list);
  }
  if (!collection.is_in_order) {
    collection.keys.push_back(key_of(remark.get()));
  }
  v_remark_list_add_remark_last(list, std::move(remark));
}

bool v_remark_list_sort_collection(VRemarkCollection &collection) {
  // Nearly every file is sorted already.
  return collection.is_in_order || sort(collection.list.get(), collection.keys);
}

VRemark *v_remark_list_get_remark_for_code(const VRemarkList *list, const char *code) {
  for (VRemark *remark = list->head.next; remark != &list->tail; remark = remark->next) {
    if (has_code(remark, code)) {
      return remark;
    }
  }
  return nullptr;
}

void v_remark_list_copy_remarks(VRemarkList *to, const VRemarkList *from) {
  // to and from may be the same list: the copies must not be copied again.
  const VRemark *last = from->tail.prev;
  for (const VRemark *remark = &from->head; remark != last;) {
    remark = remark->next;
    v_remark_list_add_remark_last(to, v_remark_clone(remark));
  }
}

bool v_remark_list_has_remark(const VRemarkList *list, const char *code,
                              const VLangstr *description) {
  const VRemark *remark = v_remark_list_get_remark_for_code(list, code);
  return remark != nullptr && v_langstr_is_identical(remark->description.get(), description);
}

bool v_remark_list_is_subset(const VRemarkList *a, const VRemarkList *b) {
  for (const VRemark *remark = a->head.next; remark != &a->tail; remark = remark->next) {
    const VRemark *other = v_remark_list_get_remark_for_code(b, remark->code.get());
    if (other == nullptr ||
        !v_langstr_is_subset(remark->description.get(), other->description.get())) {
      return false;
    }
  }
  return true;
}

bool v_remark_list_remark_is_mergeable(const VRemarkList *list, const VRemark *remark) {
  const VRemark *existing = v_remark_list_get_remark_for_code(list, remark->code.get());
  return existing == nullptr ||
         v_langstr_is_mergeable(existing->description.get(), remark->description.get());
}

bool v_remark_list_remarks_are_mergeable(const VRemarkList *a, const VRemarkList *b) {
  for (const VRemark *remark = b->head.next; remark != &b->tail; remark = remark->next) {
    if (!v_remark_list_remark_is_mergeable(a, remark)) {
      return false;
    }
  }
  return true;
}

void v_remark_list_merge_remark(VRemarkList *list, const VRemark *remark) {
  if (VRemark *existing = v_remark_list_get_remark_for_code(list, remark->code.get())) {
    v_langstr_merge(existing->description, remark->description.get());
  } else {
    v_remark_list_add_remark_sorted(list, v_remark_clone(remark));
  }
}
