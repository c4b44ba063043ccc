#pragma once
// The undo history of a remark list. Each change exchanges a remark of the list, or none, for
// another, or none. Knows nothing of windows, but returns each exchange so that a window with one
// row per remark can apply it to its rows.

#include <optional>

#include "codeset/remark.h"

// An exchange that was carried out. To apply it to rows in list order, first remove the row at
// removed_index, then insert one for the inserted remark at inserted_index.
struct VRemarkExchange {
  // The remark that is no longer in the list; null when there is none. The history owns it, at
  // least until the next call of one of the functions below.
  const VRemark *removed = nullptr;
  int removed_index = -1; // its place in the list before the exchange, from 0; -1 for none
  // The remark that replaces it in the list; null when there is none. The list owns it.
  VRemark *inserted = nullptr;
  int inserted_index = -1; // its place in the list now, from 0; -1 for none

  bool operator==(const VRemarkExchange &) const = default;
};

// Owns the remarks of its steps while they are not in the list.
struct VRemarkHistory;
// Null is allowed.
void v_remark_history_destroy(VRemarkHistory *history);
using OwnedRemarkHistory = Owned<VRemarkHistory, v_remark_history_destroy>;

// A history without steps. The list is borrowed and in remark code order. From now on only the
// history may add remarks to it, remove them and change their codes; anything else invalidates the
// steps. List and history may be destroyed in either order.
OwnedRemarkHistory v_remark_history_new(VRemarkList *list);

// Each of these three functions changes the list and records a step, which drops all undone steps
// and frees their remarks. The number of steps is unlimited; each takes time linear in the length
// of the list. All remarks have codes.

// Adds the remark at its sorted place.
VRemarkExchange v_remark_history_add_remark(VRemarkHistory *history, OwnedRemark remark);
// Replaces a remark of the list by an edited copy, at the copy's sorted place. When code and
// description are identical, frees the copy, records no step and returns nullopt.
std::optional<VRemarkExchange> v_remark_history_replace_remark(VRemarkHistory *history,
                                                               VRemark *remark, OwnedRemark edited);
// Removes a remark of the list.
VRemarkExchange v_remark_history_remove_remark(VRemarkHistory *history, VRemark *remark);

// Undoes the last step that is not undone. Does nothing and returns nullopt when there is none.
std::optional<VRemarkExchange> v_remark_history_undo(VRemarkHistory *history);
// Redoes the step that was undone last. Does nothing and returns nullopt when there is none, or
// when a step has been recorded since.
std::optional<VRemarkExchange> v_remark_history_redo(VRemarkHistory *history);
// True when undo or redo would change the list.
bool v_remark_history_can_undo(const VRemarkHistory *history);
bool v_remark_history_can_redo(const VRemarkHistory *history);
