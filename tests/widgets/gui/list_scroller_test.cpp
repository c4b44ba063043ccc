#include "gui/list_scroller.h"

#include <gtest/gtest.h>

#include "gui/lists.h"
#include "gui/owned_objects.h"
#include "gui/screen_area.h"
#include "gui/widgets.h"
#include "support/gui_driver.h"

namespace {

struct Heights {
  int least = 0;
  int natural = 0;
};

Heights measure(GtkScrolledWindow *scroller) {
  Heights heights;
  gtk_widget_get_preferred_height(GTK_WIDGET(scroller), &heights.least, &heights.natural);
  int for_width = 0;
  gtk_widget_get_preferred_height_for_width(GTK_WIDGET(scroller), 300, nullptr, &for_width);
  EXPECT_EQ(for_width, heights.natural);
  return heights;
}

// A window that opens as high as it wants to be.
class ListScroller : public testing::Test {
protected:
  ~ListScroller() override {
    gtk_widget_destroy(GTK_WIDGET(window.get()));
    settle();
  }

  GtkTreeView *add_list() {
    return v_gui_add_tree_view(GTK_CONTAINER(scroller), HeadersVisible::no, FixedHeight::no,
                               SelectionMode::single);
  }

  void add_rows(int count) {
    for (int row = 0; row < count; row++) {
      gtk_list_store_insert_with_values(store.get(), nullptr, -1, 0, "Text", -1);
    }
  }

  GtkTreeView *add_list_with_rows(int count) {
    GtkTreeView *list = add_list();
    gtk_tree_view_insert_column_with_attributes(list, -1, "Heading", gtk_cell_renderer_text_new(),
                                                "text", 0, nullptr);
    gtk_tree_view_set_model(list, GTK_TREE_MODEL(store.get()));
    add_rows(count);
    return list;
  }

  void show() {
    gtk_window_present(window.get());
    EXPECT_TRUE(wait_until("the window", [this] { return gtk_window_is_active(window.get()); }));
  }

  // The height of the part of the list's rows that is seen.
  int visible_height() {
    return static_cast<int>(
        gtk_adjustment_get_page_size(gtk_scrolled_window_get_vadjustment(scroller)));
  }

  // From the top of one row to that of the next.
  static int row_height(GtkTreeView *list) {
    const Owned<GtkTreePath, gtk_tree_path_free> path(gtk_tree_path_new_first());
    GdkRectangle area = {};
    gtk_tree_view_get_background_area(list, path.get(), nullptr, &area);
    return area.height;
  }

  OwnedObject<GtkWindow> window = share(v_gui_create_window("List"));
  GtkBox *box = v_gui_add_vbox(GTK_CONTAINER(window.get()), Spacing::none);
  GtkScrolledWindow *scroller = v_gui_pack_list_scrolled_window(box, -1, -1);
  OwnedObject<GtkListStore> store = take(gtk_list_store_new(1, G_TYPE_STRING));
};

TEST_F(ListScroller, OpensWithAsManyWholeRowsAsTheScreenAllows) {
  const int rows = v_screen_area_count_list_rows(GTK_WIDGET(box));
  GtkTreeView *list = add_list_with_rows(10 * rows);
  show();
  EXPECT_GE(rows, 5);
  EXPECT_GT(row_height(list), 10);
  EXPECT_EQ(visible_height(), rows * row_height(list));
}

TEST_F(ListScroller, HasTheSameHeightForOneRowAsForMany) {
  add_list_with_rows(1);
  show();
  const int height = visible_height();
  add_rows(200);
  settle();
  EXPECT_EQ(visible_height(), height);
}

TEST_F(ListScroller, CanBeMadeLowerThanFiveRows) {
  GtkTreeView *list = add_list_with_rows(200);
  show();
  const Heights heights = measure(scroller);
  EXPECT_LT(heights.least, 5 * row_height(list));
  EXPECT_GT(heights.natural, heights.least);
}

TEST_F(ListScroller, WantsNoMoreThanItNeedsBeforeItHasAListWithColumns) {
  const Heights without_list = measure(scroller);
  EXPECT_EQ(without_list.natural, without_list.least);
  add_list();
  const Heights without_columns = measure(scroller);
  EXPECT_EQ(without_columns.natural, without_columns.least);
}

} // namespace
