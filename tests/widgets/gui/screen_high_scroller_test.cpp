#include "gui/screen_high_scroller.h"

#include <gtest/gtest.h>

#include "gui/owned_objects.h"
#include "gui/widgets.h"
#include "toolkit.h"

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
  int height() {
    int width = 0;
    int height = 0;
    gtk_window_get_size(window.get(), &width, &height);
    return height;
  }
  // Bottom edge of the button in the window, below what the toolkit may have drawn as a title bar.
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

TEST(ScreenHighScroller, GrowsWithItsContent) {
  Tower tower;
  tower.add_rows(2);
  gtk_widget_show(GTK_WIDGET(tower.window.get()));
  settle();
  const int before = tower.height();
  tower.add_rows(3);
  ASSERT_TRUE(wait_until([&] { return tower.height() > before; }));
  int content = 0;
  gtk_widget_get_preferred_height(GTK_WIDGET(tower.rows), &content, nullptr);
  EXPECT_GE(tower.height(), content);
  EXPECT_LE(tower.button_bottom(), tower.height());
}

TEST(ScreenHighScroller, KeepsNoRoomForAScrollBarThatIsNotThere) {
  for (const int rows : {2, 100}) {
    Tower tower;
    tower.add_rows(rows);
    gtk_widget_show(GTK_WIDGET(tower.window.get()));
    settle();
    GtkWidget *scroller =
        gtk_widget_get_ancestor(GTK_WIDGET(tower.rows), V_TYPE_SCREEN_HIGH_SCROLLER);
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

TEST(ScreenHighScroller, EndsWithTheScreen) {
  Tower tower;
  tower.add_rows(100);
  gtk_widget_show(GTK_WIDGET(tower.window.get()));
  settle();
  EXPECT_LT(tower.height(), screen_height());
  EXPECT_GT(tower.height(), screen_height() / 2);
  EXPECT_LE(tower.button_bottom(), tower.height());
}

TEST(ScreenHighScroller, WhatHasTheFocusScrollsIntoView) {
  Tower tower;
  tower.add_rows(100);
  gtk_widget_show(GTK_WIDGET(tower.window.get()));
  settle();
  auto *scroller = GTK_SCROLLED_WINDOW(
      gtk_widget_get_ancestor(GTK_WIDGET(tower.rows), V_TYPE_SCREEN_HIGH_SCROLLER));
  GtkAdjustment *place = gtk_scrolled_window_get_vadjustment(scroller);
  EXPECT_EQ(gtk_adjustment_get_value(place), 0);
  GList *children = gtk_container_get_children(GTK_CONTAINER(tower.rows));
  gtk_widget_grab_focus(GTK_WIDGET(g_list_last(children)->data));
  g_list_free(children);
  EXPECT_TRUE(wait_until([place] { return gtk_adjustment_get_value(place) > 1000; }));
}

} // namespace
