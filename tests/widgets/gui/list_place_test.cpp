#include "gui/list_place.h"

#include <string>

#include <gtest/gtest.h>

#include "gui/lists.h"
#include "gui/owned_objects.h"
#include "gui/widgets.h"
#include "support/gui_driver.h"

namespace {

constexpr int row_count = 40;

class ListPlace : public testing::Test {
protected:
  ListPlace() {
    for (int row = 0; row < row_count; row++) {
      gtk_list_store_insert_with_values(store.get(), nullptr, -1, 0, "Row", -1);
    }
    GtkBox *box = v_gui_add_vbox(GTK_CONTAINER(window.widget()), Spacing::none);
    button = v_gui_pack_button(box, "Button", MakeDefault::no);
    GtkScrolledWindow *scroller = v_gui_pack_scrolled_window(box, 100, 100, GTK_POLICY_NEVER,
                                                             GTK_POLICY_AUTOMATIC, GTK_SHADOW_IN);
    view = v_gui_add_tree_view(GTK_CONTAINER(scroller), HeadersVisible::no, FixedHeight::no,
                               SelectionMode::single);
    gtk_tree_view_insert_column_with_attributes(view, -1, "Text", gtk_cell_renderer_text_new(),
                                                "text", 0, nullptr);
    gtk_tree_view_set_model(view, GTK_TREE_MODEL(store.get()));
    selection = gtk_tree_view_get_selection(view);
    g_signal_connect_swapped(
        selection, "changed", G_CALLBACK(+[](ListPlace *self) {
          self->changes += gtk_tree_selection_count_selected_rows(self->selection) == 0 ? "-" : "+";
        }),
        this);
    window.show_active();
    settle();
  }

  int selected_row() {
    GList *paths = gtk_tree_selection_get_selected_rows(selection, nullptr);
    const int row = paths == nullptr
                        ? -1
                        : gtk_tree_path_get_indices(static_cast<GtkTreePath *>(paths->data))[0];
    g_list_free_full(paths, reinterpret_cast<GDestroyNotify>(gtk_tree_path_free));
    return row;
  }

  void select(int row) {
    const Owned<GtkTreePath, gtk_tree_path_free> path(gtk_tree_path_new_from_indices(row, -1));
    gtk_tree_view_set_cursor(view, path.get(), nullptr, FALSE);
    changes.clear();
  }

  bool is_in_view(int row) {
    GtkTreePath *first = nullptr;
    GtkTreePath *last = nullptr;
    if (!gtk_tree_view_get_visible_range(view, &first, &last)) {
      return false;
    }
    const bool is_inside =
        gtk_tree_path_get_indices(first)[0] <= row && row <= gtk_tree_path_get_indices(last)[0];
    gtk_tree_path_free(first);
    gtk_tree_path_free(last);
    return is_inside;
  }

  void press(guint key) {
    press_key(window.widget(), key);
    settle();
  }

  TestWindow window;
  OwnedObject<GtkListStore> store = take(gtk_list_store_new(1, G_TYPE_STRING));
  GtkButton *button = nullptr;
  GtkTreeView *view = nullptr;
  GtkTreeSelection *selection = nullptr;
  std::string changes; // of the selection: "-" to none, "+" to a row
};

} // namespace

// Before the main loop runs: the toolkit's own scrolling stops when another window covers the list.
TEST_F(ListPlace, IsInViewAtOnce) {
  GtkAdjustment *place = gtk_scrollable_get_vadjustment(GTK_SCROLLABLE(view));
  v_list_place_set(view, row_count - 1);
  EXPECT_EQ(gtk_adjustment_get_value(place),
            gtk_adjustment_get_upper(place) - gtk_adjustment_get_page_size(place));
  v_list_place_set(view, 0);
  EXPECT_EQ(gtk_adjustment_get_value(place), 0);
}

TEST_F(ListPlace, PutsTheCursorOnTheRowAndShowsItUnselected) {
  gtk_widget_grab_focus(GTK_WIDGET(view));
  for (const int row : {0, 25, row_count - 1, 7}) {
    select(3);
    v_list_place_set(view, row);
    EXPECT_EQ(v_list_place_get(view), row);
    EXPECT_TRUE(v_list_place_is_placed(view));
    EXPECT_EQ(selected_row(), -1);
    EXPECT_EQ(changes, "-");
    EXPECT_TRUE(wait_until("row " + std::to_string(row) + " in view",
                           [this, row] { return is_in_view(row); }));
  }
  EXPECT_EQ(gtk_tree_selection_get_mode(selection), GTK_SELECTION_SINGLE);
}

TEST_F(ListPlace, ARowBeyondTheLastMeansTheLast) {
  v_list_place_set(view, row_count);
  EXPECT_EQ(v_list_place_get(view), row_count - 1);
  gtk_list_store_clear(store.get());
  v_list_place_set(view, 0);
  v_list_place_show(view, 0);
  EXPECT_EQ(v_list_place_get(view), -1);
  EXPECT_FALSE(v_list_place_is_placed(view));
}

TEST_F(ListPlace, MayBeTheOnlyRowAndIsNoneWithoutRows) {
  gtk_list_store_clear(store.get());
  v_list_place_set(view, 0);
  EXPECT_FALSE(v_list_place_is_placed(view));
  gtk_list_store_insert_with_values(store.get(), nullptr, -1, 0, "Row", -1);
  v_list_place_set(view, 0);
  EXPECT_TRUE(v_list_place_is_placed(view));
}

TEST_F(ListPlace, ArrowKeysContinueFromTheCursor) {
  const struct {
    guint key;
    int from;
    int to;
  } cases[] = {
      {GDK_KEY_Down, 7, 8},    {GDK_KEY_Up, 7, 6},    {GDK_KEY_Down, row_count - 1, row_count - 1},
      {GDK_KEY_Up, 0, 0},      {GDK_KEY_Home, 0, 0},  {GDK_KEY_End, row_count - 1, row_count - 1},
      {GDK_KEY_KP_Down, 7, 8}, {GDK_KEY_KP_Up, 7, 6},
  };
  gtk_widget_grab_focus(GTK_WIDGET(view));
  for (const auto &step : cases) {
    v_list_place_set(view, step.from);
    changes.clear();
    press(step.key);
    EXPECT_EQ(selected_row(), step.to) << step.from;
    EXPECT_EQ(v_list_place_get(view), step.to) << step.from;
    EXPECT_EQ(changes, "+") << step.from;
    EXPECT_FALSE(v_list_place_is_placed(view));
  }
}

TEST_F(ListPlace, OnlyAPlacedCursorIsSelected) {
  v_gui_grab_focus_without_selecting(GTK_WIDGET(view));
  v_list_place_select(view);
  EXPECT_EQ(selected_row(), -1);
  v_list_place_set(view, 7);
  v_list_place_select(view);
  EXPECT_EQ(selected_row(), 7);
  select(9);
  v_list_place_select(view);
  EXPECT_EQ(selected_row(), 9);
}

TEST_F(ListPlace, SelectsNothingWhileRowsChange) {
  select(5);
  {
    const VListWithoutSelection without_selection(view);
    EXPECT_EQ(selected_row(), -1);
    GtkTreeIter row;
    gtk_tree_model_iter_nth_child(GTK_TREE_MODEL(store.get()), &row, nullptr, 5);
    gtk_list_store_remove(store.get(), &row);
    gtk_widget_grab_focus(GTK_WIDGET(view));
  }
  settle();
  EXPECT_EQ(selected_row(), -1);
  EXPECT_EQ(changes, "-");
}

TEST_F(ListPlace, TheFocusSelectsNothing) {
  v_gui_grab_focus_without_selecting(GTK_WIDGET(button));
  v_gui_grab_focus_without_selecting(GTK_WIDGET(view));
  settle();
  EXPECT_TRUE(gtk_widget_has_focus(GTK_WIDGET(view)));
  EXPECT_EQ(selected_row(), -1);
  EXPECT_EQ(changes, "");
  select(5);
  v_gui_grab_focus_without_selecting(GTK_WIDGET(button));
  v_gui_grab_focus_without_selecting(GTK_WIDGET(view));
  EXPECT_EQ(selected_row(), 5);
  EXPECT_EQ(changes, "");
}

TEST_F(ListPlace, TakesTheFocusOnlyWhenNoWidgetHasIt) {
  v_gui_grab_focus_without_selecting(GTK_WIDGET(button));
  v_list_place_take_free_focus(view);
  EXPECT_TRUE(gtk_widget_has_focus(GTK_WIDGET(button)));
  gtk_widget_set_sensitive(GTK_WIDGET(button), FALSE);
  v_list_place_take_free_focus(view);
  EXPECT_TRUE(gtk_widget_has_focus(GTK_WIDGET(view)));
  EXPECT_EQ(selected_row(), -1);
  EXPECT_GE(v_list_place_get(view), 0);
}
