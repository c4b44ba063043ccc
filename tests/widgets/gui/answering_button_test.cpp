#include "gui/answering_button.h"

#include <gtest/gtest.h>

#include "gui/owned_objects.h"
#include "support/gui_driver.h"

namespace {

class Button : public testing::Test {
protected:
  Button() {
    gtk_container_add(GTK_CONTAINER(window), button);
    g_signal_connect_swapped(button, "clicked", G_CALLBACK(+[](int *count) { ++*count; }), &clicks);
    gtk_widget_show_all(window);
  }
  ~Button() override { gtk_widget_destroy(window); }

  AtkObject *accessible() { return gtk_widget_get_accessible(button); }
  bool act(int action = 0) { return atk_action_do_action(ATK_ACTION(accessible()), action) != 0; }

  int clicks = 0;
  GtkWidget *window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
  GtkWidget *button = v_answering_button_new("100 % <b>_&");
};

TEST_F(Button, IsOtherwiseAnOrdinaryButton) {
  EXPECT_TRUE(GTK_IS_BUTTON(button));
  EXPECT_STREQ(gtk_button_get_label(GTK_BUTTON(button)), "100 % <b>_&");
  EXPECT_STREQ(gtk_widget_class_get_css_name(GTK_WIDGET_GET_CLASS(button)), "button");
  EXPECT_EQ(atk_object_get_role(accessible()), ATK_ROLE_PUSH_BUTTON);
  EXPECT_STREQ(atk_object_get_name(accessible()), "100 % <b>_&");
  EXPECT_EQ(atk_action_get_n_actions(ATK_ACTION(accessible())), 1);
  EXPECT_STREQ(atk_action_get_name(ATK_ACTION(accessible()), 0), "click");
  gtk_button_clicked(GTK_BUTTON(button));
  EXPECT_EQ(clicks, 1);
  const OwnedObject<GtkWidget> unlabelled = sink(v_answering_button_new(nullptr));
  EXPECT_EQ(gtk_button_get_label(GTK_BUTTON(unlabelled.get())), nullptr);
}

TEST_F(Button, IsPressedAtOnceByActivation) {
  EXPECT_TRUE(gtk_widget_activate(button));
  EXPECT_EQ(clicks, 1);
  gtk_widget_set_can_default(button, TRUE);
  gtk_widget_grab_default(button);
  EXPECT_TRUE(gtk_window_activate_default(GTK_WINDOW(window)));
  EXPECT_EQ(clicks, 2);
  EXPECT_TRUE(gtk_widget_mnemonic_activate(button, FALSE));
  EXPECT_EQ(clicks, 3);
  // The toolkit's own button finishes its click later.
  EXPECT_FALSE(gtk_widget_has_grab(button));
  gtk_widget_hide(button);
  gtk_widget_activate(button);
  EXPECT_EQ(clicks, 3);
}

TEST_F(Button, AnActionReturnsBeforeTheClick) {
  EXPECT_TRUE(act());
  EXPECT_EQ(clicks, 0);
  EXPECT_TRUE(wait_until("a click", [this] { return clicks > 0; }));
  settle();
  EXPECT_EQ(clicks, 1);
}

TEST_F(Button, HasNoActionWhenItCannotBePressed) {
  EXPECT_FALSE(act(1));
  EXPECT_FALSE(act(-1));
  gtk_widget_set_sensitive(window, FALSE);
  EXPECT_FALSE(act());
  gtk_widget_set_sensitive(window, TRUE);
  gtk_widget_hide(button);
  EXPECT_FALSE(act());
  settle();
  EXPECT_EQ(clicks, 0);
}

// Two requests in a row; the first opens a window over this one.
TEST_F(Button, IgnoresAnActionWhenItBecomesInsensitiveBefore) {
  EXPECT_TRUE(act());
  gtk_widget_set_sensitive(window, FALSE);
  settle();
  EXPECT_EQ(clicks, 0);
}

TEST_F(Button, ADestroyedButtonIsNotPressed) {
  const OwnedObject<AtkObject> kept = share(accessible());
  EXPECT_TRUE(act());
  gtk_widget_destroy(button);
  EXPECT_FALSE(atk_action_do_action(ATK_ACTION(kept.get()), 0));
  settle();
  EXPECT_EQ(clicks, 0);
}

} // namespace
