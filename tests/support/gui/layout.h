#pragma once
// Compares the layout of a window with a table that has a row for each widget: its place at the
// container's natural size, and how it moves and grows when the container gets more room. This
// covers expand and fill flags, spacings, alignments and the packing order. The place of a label is
// that of its text. Distances are pixels.

#include <optional>
#include <utility>
#include <vector>

#include <gtk/gtk.h>

// Place relative to the container or to the widget of the earlier row that has the name.
struct LayoutPlace {
  enum class Kind { anywhere, corner, below, beside, end_of_row };

  Kind kind = Kind::anywhere;
  const char *name = nullptr;
  int x = 0;
  int y = 0;
};

// From the container's top left corner, inside its border.
inline LayoutPlace corner(int x = 0, int y = 0) {
  return {LayoutPlace::Kind::corner, nullptr, x, y};
}
// With the same left edge.
inline LayoutPlace below(const char *name, int gap) {
  return {LayoutPlace::Kind::below, name, 0, gap};
}
// With the same top edge.
inline LayoutPlace beside(const char *name, int gap) {
  return {LayoutPlace::Kind::beside, name, gap, 0};
}
// With the same top edge, and with its right edge at that of the container.
inline LayoutPlace end_of_row(const char *name) {
  return {LayoutPlace::Kind::end_of_row, name, 0, 0};
}
inline LayoutPlace anywhere() { return {}; }

// Change in one direction when the container gets 100 pixels more.
struct LayoutChange {
  int move = 0;
  int growth = 0;
};
constexpr LayoutChange stays = {0, 0};
constexpr LayoutChange moves = {100, 0};
constexpr LayoutChange grows = {0, 100};
constexpr LayoutChange moves_by_half = {50, 0};
constexpr LayoutChange grows_by_half = {0, 50};
constexpr LayoutChange moves_and_grows_by_half = {50, 50};

struct LayoutRow {
  const char *name;
  GtkWidget *widget;
  LayoutPlace place;
  LayoutChange across;
  LayoutChange down;
  std::optional<std::pair<float, float>> alignment = {}; // of a label: across, down
};

// The container must be realized. A resize is queued for it at the end.
void expect_layout(GtkWidget *container, const std::vector<LayoutRow> &rows);

// The same for the content of a window, which has a border of eight pixels and has been active, so
// that it would be maximized by now if it asked for it.
enum class WindowState { not_maximized, maximized };
void expect_window_layout(GtkWindow *window, WindowState state, const std::vector<LayoutRow> &rows);

// The two buttons have a row of their own: one at each end, at least eight pixels apart.
void expect_buttons_at_both_ends(GtkButton *left, GtkButton *right);

// Expects a scrolled window that asks for this room (pixels), scrolls up and down alone, and has a
// sunken frame and a scroll bar that does not overlay the content.
void expect_scrolls_downwards(GtkScrolledWindow *scroller, int width, int height);
