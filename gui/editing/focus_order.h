#pragma once
// The order in which keys move the keyboard focus through an editor with one text field per row.
// Needs only the number of rows, and no toolkit.

#include <cstddef>
#include <optional>

// row_button: the language or the delete button of a row. plus_button: the button beside the last
// row.
enum class VFocusPlace { text_field, row_button, plus_button, outside };

struct VFocusPosition {
  VFocusPlace place = VFocusPlace::outside;
  std::size_t row = 0; // the last row for the plus button; unused outside
};

enum class FocusKey { tab, shift_tab, up, down, left, right };

// The row whose text field gets the focus; nullopt when the key moves it out of the editor.
std::optional<std::size_t> v_focus_order_find_row(VFocusPosition position, FocusKey key,
                                                  std::size_t row_count);
