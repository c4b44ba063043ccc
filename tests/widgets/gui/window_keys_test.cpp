#include "gui/window_keys.h"

#include <utility>

#include <gtest/gtest.h>

#include "gui/list_place.h"
#include "gui/lists.h"
#include "gui/owned_objects.h"
#include "gui/text_fields.h"
#include "gui/widgets.h"
#include "support/gui_driver.h"

namespace {

class WindowKeys : public testing::Test {
protected:
  WindowKeys() {
    for (int row = 0; row < 5; row++) {
      gtk_list_store_insert_with_values(store.get(), nullptr, -1, 0, "text", -1);
    }
    GtkBox *box = v_gui_add_vbox(GTK_CONTAINER(window.widget()), Spacing::none);
    list = v_gui_add_tree_view(GTK_CONTAINER(box), HeadersVisible::no, FixedHeight::no,
                               SelectionMode::single);
    gtk_tree_view_insert_column_with_attributes(list, -1, "Text", gtk_cell_renderer_text_new(),
                                                "text", 0, nullptr);
    gtk_tree_view_set_model(list, GTK_TREE_MODEL(store.get()));
    gtk_tree_view_set_search_column(list, 0);
    entry = v_gui_pack_entry(box, Expand::no, "abc", ActivatesDefault::no);
    button = v_gui_pack_button(box, "Button", MakeDefault::no);
    g_signal_connect_swapped(button, "clicked", G_CALLBACK(+[](int *count) { ++*count; }), &clicks);
    window.show_active();
    v_gui_grab_focus_without_selecting(GTK_WIDGET(list));
    settle();
  }

  void send(GdkEventType type, guint key, int modifiers = 0) {
    gdk_event_put(make_key_event(window.widget(), type, key, modifiers).get());
    settle();
  }

  void press(guint key, int modifiers = 0) {
    send(GDK_KEY_PRESS, key, modifiers);
    send(GDK_KEY_RELEASE, key, modifiers);
  }

  // Number of presses of the button since the last call.
  int take_clicks() { return std::exchange(clicks, 0); }

  int count_selected() {
    return gtk_tree_selection_count_selected_rows(gtk_tree_view_get_selection(list));
  }

  TestWindow window;
  OwnedObject<GtkListStore> store = take(gtk_list_store_new(1, G_TYPE_STRING));
  GtkTreeView *list = nullptr;
  GtkEntry *entry = nullptr;
  GtkButton *button = nullptr;
  int clicks = 0;
};

} // namespace

TEST_F(WindowKeys, AKeyPressesItsButtonFromAnyFocus) {
  v_window_keys_add(window.get(), GDK_KEY_n, GDK_CONTROL_MASK, button);
  v_window_keys_add(window.get(), GDK_KEY_F5, GdkModifierType{}, button);
  for (GtkWidget *focus : {GTK_WIDGET(list), GTK_WIDGET(entry), GTK_WIDGET(button)}) {
    v_gui_grab_focus_without_selecting(focus);
    press(GDK_KEY_n, GDK_CONTROL_MASK);
    EXPECT_EQ(take_clicks(), 1);
    press(GDK_KEY_F5);
    EXPECT_EQ(take_clicks(), 1);
    press(GDK_KEY_F5, GDK_CONTROL_MASK);
    press(GDK_KEY_N, GDK_CONTROL_MASK | GDK_SHIFT_MASK);
    EXPECT_EQ(take_clicks(), 0);
  }
  v_gui_grab_focus_without_selecting(GTK_WIDGET(entry));
  gtk_editable_set_position(GTK_EDITABLE(entry), -1);
  press(GDK_KEY_n);
  EXPECT_STREQ(gtk_entry_get_text(entry), "abcn");
  EXPECT_EQ(take_clicks(), 0);
}

TEST_F(WindowKeys, AKeyOfAListWorksInTheListOnly) {
  v_window_keys_add_in_list(window.get(), list, GDK_KEY_Delete, button);
  press(GDK_KEY_Delete);
  press(GDK_KEY_KP_Delete);
  EXPECT_EQ(take_clicks(), 2);
  v_gui_grab_focus_without_selecting(GTK_WIDGET(entry));
  gtk_editable_set_position(GTK_EDITABLE(entry), 0);
  press(GDK_KEY_Delete);
  EXPECT_STREQ(gtk_entry_get_text(entry), "bc");
  EXPECT_EQ(take_clicks(), 0);
}

TEST_F(WindowKeys, ReturnActsOnTheRowWithThePlacedCursor) {
  v_window_keys_add_return_in_list(window.get(), list, button);
  gtk_widget_set_sensitive(GTK_WIDGET(button), FALSE);
  g_signal_connect_swapped(
      gtk_tree_view_get_selection(list), "changed",
      G_CALLBACK(+[](GtkWidget *pressed) { gtk_widget_set_sensitive(pressed, TRUE); }), button);
  v_list_place_set(list, 3);
  EXPECT_EQ(count_selected(), 0);
  for (const guint key : {GDK_KEY_Return, GDK_KEY_KP_Enter}) {
    press(key);
    EXPECT_EQ(take_clicks(), 1);
    EXPECT_EQ(v_list_place_get(list), 3);
    EXPECT_EQ(count_selected(), 1);
  }
}

TEST_F(WindowKeys, DoesNotPressAnInsensitiveButton) {
  v_window_keys_add(window.get(), GDK_KEY_F5, GdkModifierType{}, button);
  gtk_widget_set_sensitive(GTK_WIDGET(button), FALSE);
  press(GDK_KEY_F5);
  gtk_widget_set_sensitive(GTK_WIDGET(button), TRUE);
  gtk_widget_set_sensitive(window.widget(), FALSE);
  press(GDK_KEY_F5);
  gtk_widget_set_sensitive(window.widget(), TRUE);
  gtk_widget_hide(GTK_WIDGET(button));
  press(GDK_KEY_F5);
  EXPECT_EQ(take_clicks(), 0);
}

TEST_F(WindowKeys, AHeldKeyPressesOnce) {
  v_window_keys_add_in_list(window.get(), list, GDK_KEY_Delete, button);
  for (int repetition = 0; repetition < 5; repetition++) {
    send(GDK_KEY_PRESS, GDK_KEY_Delete);
  }
  send(GDK_KEY_RELEASE, GDK_KEY_Delete);
  EXPECT_EQ(take_clicks(), 1);
  press(GDK_KEY_Delete);
  press(GDK_KEY_Delete);
  EXPECT_EQ(take_clicks(), 2);
}

// Ctrl+N is also the toolkit's key for the next row of a list.
TEST_F(WindowKeys, AHeldKeyDoesNothingElseInTheList) {
  v_window_keys_add(window.get(), GDK_KEY_n, GDK_CONTROL_MASK, button);
  v_list_place_set(list, 1);
  for (int repetition = 0; repetition < 5; repetition++) {
    send(GDK_KEY_PRESS, GDK_KEY_n, GDK_CONTROL_MASK);
  }
  send(GDK_KEY_RELEASE, GDK_KEY_n, GDK_CONTROL_MASK);
  EXPECT_EQ(v_list_place_get(list), 1);
  EXPECT_EQ(count_selected(), 0);
  EXPECT_EQ(take_clicks(), 1);
}

TEST_F(WindowKeys, TheSearchFieldKeepsItsKeys) {
  v_window_keys_add_in_list(window.get(), list, GDK_KEY_Delete, button);
  v_window_keys_add_return_in_list(window.get(), list, button);
  v_window_keys_press_on_double_click(list, button);
  press(GDK_KEY_t);
  press(GDK_KEY_Delete);
  press(GDK_KEY_Return);
  EXPECT_EQ(count_selected(), 1);
  EXPECT_EQ(take_clicks(), 0);
  press(GDK_KEY_Return);
  EXPECT_EQ(take_clicks(), 1);
}

TEST_F(WindowKeys, ActivatingARowPressesTheButtonButSpaceOnlySelects) {
  v_window_keys_press_on_double_click(list, button);
  press(GDK_KEY_space);
  EXPECT_EQ(count_selected(), 1);
  EXPECT_EQ(take_clicks(), 0);
  const Owned<GtkTreePath, gtk_tree_path_free> path(gtk_tree_path_new_from_indices(1, -1));
  gtk_tree_view_row_activated(list, path.get(), gtk_tree_view_get_column(list, 0));
  EXPECT_EQ(clicks, 0);
  settle();
  EXPECT_EQ(take_clicks(), 1);
}

TEST_F(WindowKeys, TheButtonShowsItsKey) {
  AtkObject *accessible = gtk_widget_get_accessible(GTK_WIDGET(button));
  EXPECT_EQ(atk_action_get_keybinding(ATK_ACTION(accessible), 0), nullptr);
  v_window_keys_add(window.get(), GDK_KEY_n, GDK_CONTROL_MASK, button);
  EXPECT_STREQ(atk_action_get_keybinding(ATK_ACTION(accessible), 0), ";;Ctrl+N");
  EXPECT_EQ(atk_action_get_keybinding(ATK_ACTION(accessible), 1), nullptr);
  EXPECT_EQ(tooltip_of(GTK_WIDGET(button)), "Key: Ctrl+N");
  EXPECT_STREQ(atk_object_get_description(accessible), "Key: Ctrl+N");
  v_window_keys_add_in_list(window.get(), list, GDK_KEY_Delete, button);
  EXPECT_STREQ(atk_action_get_keybinding(ATK_ACTION(accessible), 0), ";;Delete");
  EXPECT_EQ(tooltip_of(GTK_WIDGET(button)), "Key: Delete (in the list)");
}
