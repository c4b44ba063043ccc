#include "gui/window_commands.h"

#include <gtest/gtest.h>

#include "gui/answering_button.h"
#include "gui/text_fields.h"
#include "gui/widgets.h"
#include "support/gui_driver.h"

namespace {

void count(void *calls) { ++*static_cast<int *>(calls); }

} // namespace

TEST(WindowCommands, AKeyCallsItsCommandFromAnyFocus) {
  TestWindow window;
  int calls = 0;
  GtkBox *box = v_gui_add_vbox(GTK_CONTAINER(window.widget()), Spacing::none);
  GtkEntry *entry = v_gui_pack_entry(box, Expand::no, "abc", ActivatesDefault::no);
  GtkButton *button = v_gui_pack_button(box, "Button", MakeDefault::no);
  v_window_commands_add(window.get(), GDK_KEY_z, GDK_CONTROL_MASK, count, &calls);
  window.show_active();
  for (GtkWidget *focus : {GTK_WIDGET(entry), GTK_WIDGET(button)}) {
    calls = 0;
    v_gui_grab_focus_without_selecting(focus);
    for (const GdkEventType type : {GDK_KEY_PRESS, GDK_KEY_RELEASE}) {
      gdk_event_put(make_key_event(window.widget(), type, GDK_KEY_z, GDK_CONTROL_MASK).get());
      settle();
    }
    EXPECT_EQ(calls, 1);
  }
}

TEST(WindowCommands, AKeyDoesNothingInACoveredWindow) {
  TestWindow window;
  int calls = 0;
  v_window_commands_add(window.get(), GDK_KEY_z, GDK_CONTROL_MASK, count, &calls);
  window.show_active();
  gtk_widget_set_sensitive(window.widget(), FALSE);
  gtk_accel_groups_activate(G_OBJECT(window.widget()), GDK_KEY_z, GDK_CONTROL_MASK);
  EXPECT_EQ(calls, 0);
  gtk_widget_set_sensitive(window.widget(), TRUE);
  gtk_accel_groups_activate(G_OBJECT(window.widget()), GDK_KEY_z, GDK_CONTROL_MASK);
  EXPECT_EQ(calls, 1);
}

TEST(WindowCommands, AButtonShowsTheKeyOfItsCommand) {
  TestWindow window;
  GtkWidget *button = v_answering_button_new("Button");
  gtk_container_add(GTK_CONTAINER(window.widget()), button);
  v_window_commands_announce(GTK_BUTTON(button), "Ctrl+Return");
  AtkObject *accessible = gtk_widget_get_accessible(button);
  EXPECT_EQ(tooltip_of(button), "Key: Ctrl+Return");
  EXPECT_STREQ(atk_action_get_keybinding(ATK_ACTION(accessible), 0), ";;Ctrl+Return");
  EXPECT_EQ(atk_action_get_keybinding(ATK_ACTION(accessible), 1), nullptr);
}
