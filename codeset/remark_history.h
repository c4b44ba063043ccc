#pragma once
// A history of the changes of one remark list, which can be taken back one by one and done again.
// Each change exchanges a remark of the list, or none, for another, or none. Knows nothing of
// windows, but reports each exchange so that a window with one row per remark can follow it.

#include <optional>

#include "codeset/remark.h"

// An exchange that has been carried out. Rows in list order follow it when first the row at
// removed_index is removed and then one for the inserted remark is inserted at inserted_index.
struct VRemarkExchange {
  // The remark that is no longer in the list; null when there is none. The history owns it and
  // keeps it at least until the next call of one of the functions below.
  const VRemark *removed = nullptr;
  int removed_index = -1; // its place in the list before the exchange, from 0; -1 for none
  // The remark that is in the list instead; null when there is none. The list owns it.
  VRemark *inserted = nullptr;
  int inserted_index = -1; // its place in the list now, from 0; -1 for none

  bool operator==(const VRemarkExchange &) const = default;
};

// Owns each remark of its steps while that remark is not in the list.
struct VRemarkHistory;
void v_remark_history_destroy(VRemarkHistory *history);
using OwnedRemarkHistory = Owned<VRemarkHistory, v_remark_history_destroy>;

// A history without steps. The list is borrowed and in remark code order. From then on only the
// history may add remarks to it, remove them and change their codes; otherwise the steps are no
// longer valid. Either of the two may be destroyed first.
OwnedRemarkHistory v_remark_history_new(VRemarkList *list);

// Each of these three changes the list and records that as a step, which drops the steps that were
// taken back and frees their remarks. The number of steps has no limit, and each is linear in
// the length of the list. All remarks have codes.

// Adds the remark at its sorted place.
VRemarkExchange v_remark_history_add_remark(VRemarkHistory *history, OwnedRemark remark);
// Replaces a remark of the list by an edited copy of it, at the copy's sorted place. Returns
// nothing, frees the copy and records no step when code and description are identical.
std::optional<VRemarkExchange> v_remark_history_replace_remark(VRemarkHistory *history,
                                                               VRemark *remark, OwnedRemark edited);
// Removes a remark of the list.
VRemarkExchange v_remark_history_remove_remark(VRemarkHistory *history, VRemark *remark);

// Takes back the last step that has not been taken back. Returns nothing, and does nothing, when
// there is none.
std::optional<VRemarkExchange> v_remark_history_take_back(VRemarkHistory *history);
// Does the step again that was taken back last. Returns nothing, and does nothing, when there is
// none, or when a step has been recorded since.
std::optional<VRemarkExchange> v_remark_history_do_again(VRemarkHistory *history);
// True when those two would change the list.
bool v_remark_history_can_take_back(const VRemarkHistory *history);
bool v_remark_history_can_do_again(const VRemarkHistory *history);
