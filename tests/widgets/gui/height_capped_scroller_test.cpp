#include "gui/height_capped_scroller.h"

#include <gtest/gtest.h>

#include "gui/owned_objects.h"
#include "gui/text_fields.h"
#include "gui/widgets.h"
#include "support/gui_driver.h"

namespace {

int screen_height() {
  GdkRectangle area = {};
  gdk_monitor_get_workarea(gdk_display_get_monitor(gdk_display_get_default(), 0), &area);
  return area.height;
}

// A window of labels above a button.
struct Tower {
  OwnedObject<GtkWindow> window = share(v_gui_create_window("Tower"));
  GtkBox *rows = nullptr;
  GtkButton *button = nullptr;

  Tower() {
    GtkBox *box = v_gui_add_vbox(GTK_CONTAINER(window.get()), Spacing::standard);
    rows = v_gui_pack_scrolling_vbox(box, Expand::no, Spacing::standard);
    button = v_gui_pack_button(box, "OK", MakeDefault::no);
  }
  ~Tower() { gtk_widget_destroy(GTK_WIDGET(window.get())); }

  void add_rows(int count) {
    for (int i = 0; i < count; i++) {
      v_gui_pack_entry(rows, Expand::no, "Row", ActivatesDefault::no);
    }
  }
  GtkWidget *row(int number) {
    const Owned<GList, g_list_free> children(gtk_container_get_children(GTK_CONTAINER(rows)));
    return GTK_WIDGET(g_list_nth_data(children.get(), static_cast<guint>(number)));
  }
  GtkWidget *last_row() {
    const Owned<GList, g_list_free> children(gtk_container_get_children(GTK_CONTAINER(rows)));
    return GTK_WIDGET(g_list_last(children.get())->data);
  }
  VHeightCappedScroller *scroller() {
    return V_HEIGHT_CAPPED_SCROLLER(
        gtk_widget_get_ancestor(GTK_WIDGET(rows), V_TYPE_HEIGHT_CAPPED_SCROLLER));
  }
  GtkAdjustment *place() {
    return gtk_scrolled_window_get_vadjustment(GTK_SCROLLED_WINDOW(scroller()));
  }
  bool shows_whole(GtkWidget *widget) {
    int top = 0;
    gtk_widget_translate_coordinates(widget, GTK_WIDGET(rows), 0, 0, nullptr, &top);
    const double shown_top = gtk_adjustment_get_value(place());
    const double shown_bottom = shown_top + gtk_adjustment_get_page_size(place());
    return top >= shown_top && top + gtk_widget_get_allocated_height(widget) <= shown_bottom;
  }
  int height() {
    int width = 0;
    int height = 0;
    gtk_window_get_size(window.get(), &width, &height);
    return height;
  }
  // Bottom edge of the button in the window, without a title bar that the toolkit may draw.
  int button_bottom() {
    GtkAllocation allocation;
    GtkAllocation content;
    gtk_widget_get_allocation(GTK_WIDGET(button), &allocation);
    gtk_widget_get_allocation(gtk_bin_get_child(GTK_BIN(window.get())), &content);
    const int margin =
        static_cast<int>(gtk_container_get_border_width(GTK_CONTAINER(window.get())));
    return allocation.y + allocation.height - content.y + margin;
  }
};

TEST(HeightCappedScroller, GrowsWithItsContent) {
  Tower tower;
  tower.add_rows(2);
  gtk_widget_show(GTK_WIDGET(tower.window.get()));
  settle();
  const int before = tower.height();
  tower.add_rows(3);
  ASSERT_TRUE(wait_until("a higher window", [&] { return tower.height() > before; }));
  int content = 0;
  gtk_widget_get_preferred_height(GTK_WIDGET(tower.rows), &content, nullptr);
  EXPECT_GE(tower.height(), content);
  EXPECT_LE(tower.button_bottom(), tower.height());
}

TEST(HeightCappedScroller, ReservesNoRoomForAHiddenScrollBar) {
  for (const int rows : {2, 100}) {
    Tower tower;
    tower.add_rows(rows);
    gtk_widget_show(GTK_WIDGET(tower.window.get()));
    settle();
    GtkWidget *scroller =
        gtk_widget_get_ancestor(GTK_WIDGET(tower.rows), V_TYPE_HEIGHT_CAPPED_SCROLLER);
    int content = 0;
    int room = 0;
    gtk_widget_get_preferred_width(GTK_WIDGET(tower.rows), nullptr, &content);
    gtk_widget_get_preferred_width(scroller, nullptr, &room);
    if (rows == 2) {
      EXPECT_EQ(room, content);
    } else {
      EXPECT_GT(room, content);
    }
  }
}

TEST(HeightCappedScroller, TheScrollBarDoesNotTouchTheContent) {
  Tower tower;
  tower.add_rows(100);
  gtk_widget_show(GTK_WIDGET(tower.window.get()));
  settle();
  GtkWidget *scroll_bar = gtk_scrolled_window_get_vscrollbar(GTK_SCROLLED_WINDOW(tower.scroller()));
  int left = 0;
  gtk_widget_translate_coordinates(scroll_bar, tower.row(0), 0, 0, &left, nullptr);
  EXPECT_GE(left - gtk_widget_get_allocated_width(tower.row(0)), 8);
}

TEST(HeightCappedScroller, IsLowerThanTheScreen) {
  Tower tower;
  tower.add_rows(100);
  gtk_widget_show(GTK_WIDGET(tower.window.get()));
  settle();
  EXPECT_LT(tower.height(), screen_height());
  EXPECT_GT(tower.height(), screen_height() / 2);
  EXPECT_LE(tower.button_bottom(), tower.height());
}

TEST(HeightCappedScroller, ScrollsTheFocusedWidgetIntoView) {
  Tower tower;
  tower.add_rows(100);
  gtk_widget_show(GTK_WIDGET(tower.window.get()));
  settle();
  EXPECT_EQ(gtk_adjustment_get_value(tower.place()), 0);
  gtk_widget_grab_focus(tower.last_row());
  EXPECT_TRUE(wait_until("the last row in view",
                         [&] { return gtk_adjustment_get_value(tower.place()) > 1000; }));
}

TEST(HeightCappedScroller, ScrollsANewFocusedRowIntoView) {
  Tower tower;
  tower.add_rows(2);
  gtk_widget_show(GTK_WIDGET(tower.window.get()));
  settle();
  for (int row = 2; row < 60; row++) {
    tower.add_rows(1);
    gtk_widget_grab_focus(tower.last_row());
    ASSERT_TRUE(wait_until("row " + std::to_string(row) + " in view",
                           [&] { return tower.shows_whole(tower.last_row()); }));
  }
}

TEST(HeightCappedScroller, KeepsTheFocusedWidgetInViewWhenTheWindowShrinks) {
  Tower tower;
  tower.add_rows(100);
  gtk_window_maximize(tower.window.get());
  v_height_capped_scroller_set_minimum_height(tower.scroller(), 100);
  gtk_widget_show(GTK_WIDGET(tower.window.get()));
  settle();
  const int before = tower.height();
  GtkWidget *row = tower.row(12);
  gtk_widget_grab_focus(row);
  settle();
  gtk_window_unmaximize(tower.window.get());
  gtk_window_resize(tower.window.get(), 200, 200);
  ASSERT_TRUE(wait_until("a lower window", [&] { return tower.height() < before / 2; }));
  settle();
  EXPECT_TRUE(tower.shows_whole(row));
}

TEST(HeightCappedScroller, StaysWhereTheUserHasScrolledIt) {
  Tower tower;
  tower.add_rows(100);
  gtk_widget_show(GTK_WIDGET(tower.window.get()));
  settle();
  gtk_widget_grab_focus(tower.row(0));
  settle();
  gtk_adjustment_set_value(tower.place(), 1000);
  gtk_widget_queue_resize(tower.row(50));
  settle();
  EXPECT_EQ(gtk_adjustment_get_value(tower.place()), 1000);
}

TEST(HeightCappedScroller, RequestsItsLeastHeight) {
  Tower tower;
  tower.add_rows(100);
  v_height_capped_scroller_set_minimum_height(tower.scroller(), 120);
  gtk_widget_show(GTK_WIDGET(tower.window.get()));
  settle();
  int least = 0;
  int natural = 0;
  gtk_widget_get_preferred_height(GTK_WIDGET(tower.scroller()), &least, &natural);
  EXPECT_EQ(least, 120);
  EXPECT_GT(natural, screen_height() / 2);
}

TEST(HeightCappedScroller, IsNoHigherThanItsContentForAnyLeastHeight) {
  Tower tower;
  tower.add_rows(1);
  v_height_capped_scroller_set_minimum_height(tower.scroller(), 500);
  gtk_widget_show(GTK_WIDGET(tower.window.get()));
  settle();
  EXPECT_LT(tower.height(), 200);
}

} // namespace

// The toolkit's mistake in a web browser, made here with every Tab.
gboolean take_tab_for_ctrl_tab(GtkWidget *widget, GdkEventKey *event, void *) {
  if (event->keyval != GDK_KEY_Tab) {
    return GDK_EVENT_PROPAGATE;
  }
  g_signal_emit_by_name(gtk_widget_get_ancestor(widget, GTK_TYPE_SCROLLED_WINDOW), "move-focus-out",
                        GTK_DIR_TAB_FORWARD);
  return GDK_EVENT_STOP;
}

TEST(HeightCappedScroller, OnlyCtrlTabMovesTheFocusOut) {
  Tower tower;
  tower.add_rows(2);
  gtk_widget_show(GTK_WIDGET(tower.window.get()));
  settle();
  for (const int modifiers : {0, static_cast<int>(GDK_CONTROL_MASK)}) {
    GtkWidget *row = tower.row(0);
    const gulong handler =
        g_signal_connect(row, "key-press-event", G_CALLBACK(take_tab_for_ctrl_tab), nullptr);
    gtk_widget_grab_focus(row);
    press_key(GTK_WIDGET(tower.window.get()), GDK_KEY_Tab, modifiers);
    EXPECT_EQ(gtk_window_get_focus(tower.window.get()),
              modifiers == 0 ? tower.row(1) : GTK_WIDGET(tower.button));
    g_signal_handler_disconnect(row, handler);
  }
}
