#include "support/gui/layout.h"

#include <map>
#include <string>

#include <gtest/gtest.h>

namespace {

constexpr int more_room = 100; // in both directions

using Rectangles = std::map<std::string, GdkRectangle>; // by the names of the rows

// Relative to the widget's own corner.
GdkRectangle content_of(GtkWidget *widget) {
  GdkRectangle content;
  gtk_widget_get_allocation(widget, &content);
  if (GTK_IS_LABEL(widget)) {
    int x = 0;
    int y = 0;
    gtk_label_get_layout_offsets(GTK_LABEL(widget), &x, &y);
    content.x = x - content.x;
    content.y = y - content.y;
    pango_layout_get_pixel_size(gtk_label_get_layout(GTK_LABEL(widget)), &content.width,
                                &content.height);
  } else {
    content.x = 0;
    content.y = 0;
  }
  return content;
}

GdkRectangle rectangle_in(GtkWidget *container, GtkWidget *widget) {
  GdkRectangle rectangle = content_of(widget);
  int x = 0;
  int y = 0;
  EXPECT_TRUE(gtk_widget_translate_coordinates(widget, container, 0, 0, &x, &y));
  rectangle.x += x;
  rectangle.y += y;
  return rectangle;
}

Rectangles lay_out(GtkWidget *container, const GdkRectangle &room,
                   const std::vector<LayoutRow> &rows) {
  GdkRectangle allocation = room;
  gtk_widget_size_allocate(container, &allocation);
  Rectangles rectangles;
  for (const LayoutRow &row : rows) {
    rectangles[row.name] = rectangle_in(container, row.widget);
  }
  return rectangles;
}

GdkRectangle natural_room(GtkWidget *container) {
  GdkRectangle room;
  gtk_widget_get_allocation(container, &room);
  gtk_widget_get_preferred_width(container, nullptr, &room.width);
  gtk_widget_get_preferred_height_for_width(container, room.width, nullptr, &room.height);
  return room;
}

void expect_place(const LayoutPlace &place, const GdkRectangle &rectangle, const Rectangles &others,
                  int whole_width) {
  const GdkRectangle other = place.name == nullptr ? GdkRectangle{} : others.at(place.name);
  switch (place.kind) {
  case LayoutPlace::Kind::anywhere:
    break;
  case LayoutPlace::Kind::corner:
    EXPECT_EQ(rectangle.x, place.x);
    EXPECT_EQ(rectangle.y, place.y);
    break;
  case LayoutPlace::Kind::below:
    EXPECT_EQ(rectangle.x, other.x) << "left edge, like that of " << place.name;
    EXPECT_EQ(rectangle.y - other.y - other.height, place.y) << "gap below " << place.name;
    break;
  case LayoutPlace::Kind::beside:
    EXPECT_EQ(rectangle.x - other.x - other.width, place.x) << "gap beside " << place.name;
    EXPECT_EQ(rectangle.y, other.y) << "top edge, like that of " << place.name;
    break;
  case LayoutPlace::Kind::end_of_row:
    EXPECT_EQ(rectangle.x + rectangle.width, whole_width) << "right edge";
    EXPECT_EQ(rectangle.y, other.y) << "top edge, like that of " << place.name;
    break;
  }
}

void expect_change(const LayoutRow &row, const GdkRectangle &before, const GdkRectangle &after) {
  EXPECT_EQ(after.x - before.x, row.across.move);
  EXPECT_EQ(after.width - before.width, row.across.growth);
  EXPECT_EQ(after.y - before.y, row.down.move);
  EXPECT_EQ(after.height - before.height, row.down.growth);
}

void expect_alignment(const LayoutRow &row) {
  if (row.alignment) {
    EXPECT_FLOAT_EQ(gtk_label_get_xalign(GTK_LABEL(row.widget)), row.alignment->first);
    EXPECT_FLOAT_EQ(gtk_label_get_yalign(GTK_LABEL(row.widget)), row.alignment->second);
  }
}

} // namespace

void expect_layout(GtkWidget *container, const std::vector<LayoutRow> &rows) {
  for (const LayoutRow &row : rows) {
    ASSERT_NE(row.widget, nullptr) << row.name;
  }
  GdkRectangle room = natural_room(container);
  const Rectangles before = lay_out(container, room, rows);
  const int natural_width = gtk_widget_get_allocated_width(container);
  room.width += more_room;
  room.height += more_room;
  const Rectangles after = lay_out(container, room, rows);
  for (const LayoutRow &row : rows) {
    SCOPED_TRACE(row.name);
    expect_place(row.place, before.at(row.name), before, natural_width);
    expect_change(row, before.at(row.name), after.at(row.name));
    expect_alignment(row);
  }
  gtk_widget_queue_resize(container);
}

void expect_window_layout(GtkWindow *window, WindowState state,
                          const std::vector<LayoutRow> &rows) {
  EXPECT_EQ(gtk_window_is_maximized(window) != FALSE, state == WindowState::maximized);
  EXPECT_EQ(gtk_container_get_border_width(GTK_CONTAINER(window)), 8U);
  expect_layout(gtk_bin_get_child(GTK_BIN(window)), rows);
}

void expect_buttons_at_both_ends(GtkButton *left, GtkButton *right) {
  GtkWidget *row = gtk_widget_get_parent(GTK_WIDGET(left));
  ASSERT_TRUE(gtk_widget_is_ancestor(GTK_WIDGET(right), row));
  expect_layout(row, {{"left", GTK_WIDGET(left), corner(), stays, grows},
                      {"right", GTK_WIDGET(right), beside("left", 8), moves, stays}});
}

void expect_scrolls_downwards(GtkScrolledWindow *scroller, int width, int height) {
  int asked_width = 0;
  int asked_height = 0;
  gtk_widget_get_size_request(GTK_WIDGET(scroller), &asked_width, &asked_height);
  EXPECT_EQ(asked_width, width);
  EXPECT_EQ(asked_height, height);
  GtkPolicyType horizontal = GTK_POLICY_ALWAYS;
  GtkPolicyType vertical = GTK_POLICY_ALWAYS;
  gtk_scrolled_window_get_policy(scroller, &horizontal, &vertical);
  EXPECT_EQ(horizontal, GTK_POLICY_NEVER);
  EXPECT_EQ(vertical, GTK_POLICY_AUTOMATIC);
  EXPECT_EQ(gtk_scrolled_window_get_shadow_type(scroller), GTK_SHADOW_IN);
  EXPECT_FALSE(gtk_scrolled_window_get_overlay_scrolling(scroller));
}
