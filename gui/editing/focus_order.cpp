#include "gui/editing/focus_order.h"

namespace {

// The row to which a key moves the focus, relative to the focused row.
enum class Target { outside, first_row, last_row, same_row, next_row, previous_row };

struct Targets {
  Target tab;
  Target shift_tab;
  Target up;
  Target down;
  Target left;
  Target right;
};

constexpr Targets from_text_field = {
    .tab = Target::next_row,
    .shift_tab = Target::previous_row,
    .up = Target::previous_row,
    .down = Target::next_row,
    .left = Target::outside,
    .right = Target::outside,
};

constexpr Targets from_row_button = {
    .tab = Target::next_row,
    .shift_tab = Target::same_row,
    .up = Target::previous_row,
    .down = Target::next_row,
    .left = Target::same_row,
    .right = Target::outside,
};

constexpr Targets from_plus_button = {
    .tab = Target::outside,
    .shift_tab = Target::same_row,
    .up = Target::previous_row,
    .down = Target::outside,
    .left = Target::same_row,
    .right = Target::outside,
};

constexpr Targets from_outside = {
    .tab = Target::first_row,
    .shift_tab = Target::last_row,
    .up = Target::last_row,
    .down = Target::first_row,
    .left = Target::first_row,
    .right = Target::first_row,
};

const Targets &get_targets(VFocusPlace place) {
  switch (place) {
  case VFocusPlace::text_field:
    return from_text_field;
  case VFocusPlace::row_button:
    return from_row_button;
  case VFocusPlace::plus_button:
    return from_plus_button;
  case VFocusPlace::outside:
    break;
  }
  return from_outside;
}

Target get_target(const Targets &targets, FocusKey key) {
  switch (key) {
  case FocusKey::tab:
    return targets.tab;
  case FocusKey::shift_tab:
    return targets.shift_tab;
  case FocusKey::up:
    return targets.up;
  case FocusKey::down:
    return targets.down;
  case FocusKey::left:
    return targets.left;
  case FocusKey::right:
    break;
  }
  return targets.right;
}

} // namespace

std::optional<std::size_t> v_focus_order_find_row(VFocusPosition position, FocusKey key,
                                                  std::size_t row_count) {
  std::size_t row = row_count;
  switch (get_target(get_targets(position.place), key)) {
  case Target::outside:
    break;
  case Target::first_row:
    row = 0;
    break;
  case Target::last_row:
    row = row_count - 1;
    break;
  case Target::same_row:
    row = position.row;
    break;
  case Target::next_row:
    row = position.row + 1;
    break;
  case Target::previous_row:
    row = position.row - 1;
    break;
  }
  // Also rejects SIZE_MAX, to which the subtraction wraps in row 0.
  return row < row_count ? std::optional(row) : std::nullopt;
}
