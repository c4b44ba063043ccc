#include "gui/editing/focus_order.h"

#include <vector>

#include <gtest/gtest.h>

namespace {

constexpr int leaves = -1;

struct Row {
  const char *name;
  VFocusPosition from;
  // The row whose text field has the focus then.
  int tab;
  int shift_tab;
  int up;
  int down;
  int left;
  int right;
};

int find_row(VFocusPosition from, FocusKey key, std::size_t row_count) {
  const std::optional<std::size_t> row = v_focus_order_find_row(from, key, row_count);
  return row ? static_cast<int>(*row) : leaves;
}

void expect_rows(const std::vector<Row> &rows, std::size_t row_count) {
  for (const Row &row : rows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(find_row(row.from, FocusKey::tab, row_count), row.tab);
    EXPECT_EQ(find_row(row.from, FocusKey::shift_tab, row_count), row.shift_tab);
    EXPECT_EQ(find_row(row.from, FocusKey::up, row_count), row.up);
    EXPECT_EQ(find_row(row.from, FocusKey::down, row_count), row.down);
    EXPECT_EQ(find_row(row.from, FocusKey::left, row_count), row.left);
    EXPECT_EQ(find_row(row.from, FocusKey::right, row_count), row.right);
  }
}

TEST(FocusOrder, MovesFromFieldToField) {
  //                     from                              tab shift up down left right
  expect_rows(
      {
          {"first field", {VFocusPlace::text_field, 0}, 1, leaves, leaves, 1, leaves, leaves},
          {"middle field", {VFocusPlace::text_field, 1}, 2, 0, 0, 2, leaves, leaves},
          {"last field", {VFocusPlace::text_field, 2}, leaves, 1, 1, leaves, leaves, leaves},
      },
      3);
}

TEST(FocusOrder, MovesFromAButtonToItsOwnFieldOrToTheNext) {
  expect_rows(
      {
          {"first row", {VFocusPlace::row_button, 0}, 1, 0, leaves, 1, 0, leaves},
          {"middle row", {VFocusPlace::row_button, 1}, 2, 1, 0, 2, 1, leaves},
          {"last row", {VFocusPlace::row_button, 2}, leaves, 2, 1, leaves, 2, leaves},
          {"plus button", {VFocusPlace::plus_button, 2}, leaves, 2, 1, leaves, 2, leaves},
      },
      3);
}

TEST(FocusOrder, EntersAtTheFirstFieldOrBackwardsAtTheLast) {
  expect_rows({{"outside", {}, 0, 2, 2, 0, 0, 0}}, 3);
}

TEST(FocusOrder, StaysInTheOnlyRow) {
  expect_rows(
      {
          {"field", {VFocusPlace::text_field, 0}, leaves, leaves, leaves, leaves, leaves, leaves},
          {"row button", {VFocusPlace::row_button, 0}, leaves, 0, leaves, leaves, 0, leaves},
          {"plus button", {VFocusPlace::plus_button, 0}, leaves, 0, leaves, leaves, 0, leaves},
          {"outside", {}, 0, 0, 0, 0, 0, 0},
      },
      1);
}

TEST(FocusOrder, FindsNoFieldWithoutRows) {
  expect_rows({{"outside", {}, leaves, leaves, leaves, leaves, leaves, leaves}}, 0);
}

} // namespace
