#include "codeset/remark_history.h"

#include <cstring>
#include <utility>
#include <vector>

namespace {

// Two remarks, either of which may be null. Both redo and undo exchange the two; after one, the
// step is ready for the other.
struct Step {
  VRemark *listed = nullptr;
  OwnedRemark unlisted;
};

VRemarkExchange exchange(VRemarkList *list, Step &step) {
  VRemarkExchange result;
  OwnedRemark removed;
  // The search begins at the old place: an edited remark usually keeps its code.
  VRemark *place = list->head.next;
  int index = 0;
  if (step.listed != nullptr) {
    result.removed = step.listed;
    result.removed_index = index = v_remark_get_index(step.listed);
    place = step.listed->next;
    removed = v_remark_take(step.listed);
  }
  step.listed = step.unlisted.get();
  if (step.listed != nullptr) {
    result.inserted = step.listed;
    result.inserted_index =
        v_remark_list_add_remark_sorted_near(place, index, std::move(step.unlisted));
  }
  step.unlisted = std::move(removed);
  return result;
}

bool is_identical(const VRemark *a, const VRemark *b) {
  return std::strcmp(a->code.get(), b->code.get()) == 0 &&
         v_langstr_is_identical(a->description.get(), b->description.get());
}

} // namespace

struct VRemarkHistory {
  VRemarkList *list = nullptr;
  std::vector<Step> steps;
  std::size_t done = 0; // the first steps, up to this number, are done; the others are undone
};

namespace {

VRemarkExchange do_next_step(VRemarkHistory *history) {
  return exchange(history->list, history->steps[history->done++]);
}

VRemarkExchange do_new_step(VRemarkHistory *history, VRemark *listed, OwnedRemark unlisted) {
  history->steps.resize(history->done);
  history->steps.push_back({listed, std::move(unlisted)});
  return do_next_step(history);
}

} // namespace

OwnedRemarkHistory v_remark_history_new(VRemarkList *list) {
  return OwnedRemarkHistory(new VRemarkHistory{list, {}, 0});
}

void v_remark_history_destroy(VRemarkHistory *history) { delete history; }

VRemarkExchange v_remark_history_add_remark(VRemarkHistory *history, OwnedRemark remark) {
  return do_new_step(history, nullptr, std::move(remark));
}

std::optional<VRemarkExchange>
v_remark_history_replace_remark(VRemarkHistory *history, VRemark *remark, OwnedRemark edited) {
  if (is_identical(remark, edited.get())) {
    return std::nullopt;
  }
  return do_new_step(history, remark, std::move(edited));
}

VRemarkExchange v_remark_history_remove_remark(VRemarkHistory *history, VRemark *remark) {
  return do_new_step(history, remark, nullptr);
}

std::optional<VRemarkExchange> v_remark_history_undo(VRemarkHistory *history) {
  if (!v_remark_history_can_undo(history)) {
    return std::nullopt;
  }
  return exchange(history->list, history->steps[--history->done]);
}

std::optional<VRemarkExchange> v_remark_history_redo(VRemarkHistory *history) {
  if (!v_remark_history_can_redo(history)) {
    return std::nullopt;
  }
  return do_next_step(history);
}

bool v_remark_history_can_undo(const VRemarkHistory *history) { return history->done > 0; }

bool v_remark_history_can_redo(const VRemarkHistory *history) {
  return history->done < history->steps.size();
}
