#include "gui/accessibility.h"

#include <vector>

#include <gtest/gtest.h>

#include "gui/owned_objects.h"
#include "gui/widgets.h"
#include "support/gui_driver.h"

namespace {

// Makes warnings of the toolkit fatal while it exists.
class FatalWarnings {
public:
  FatalWarnings()
      : before(g_log_set_always_fatal(static_cast<GLogLevelFlags>(
            G_LOG_FATAL_MASK | G_LOG_LEVEL_CRITICAL | G_LOG_LEVEL_WARNING))) {}
  ~FatalWarnings() { g_log_set_always_fatal(before); }
  FatalWarnings(const FatalWarnings &) = delete;
  FatalWarnings &operator=(const FatalWarnings &) = delete;

private:
  GLogLevelFlags before;
};

// Presses a key without running the main loop.
void deliver_key(GtkWidget *window, guint key) {
  gtk_widget_event(window, make_key_event(window, GDK_KEY_PRESS, key).get());
}

// A shown window that Escape closes.
OwnedObject<GtkWidget> create_window() {
  OwnedObject<GtkWidget> window = share(GTK_WIDGET(v_gui_create_window("Window")));
  v_gui_close_on_escape(GTK_WINDOW(window.get()));
  gtk_widget_show(window.get());
  settle();
  return window;
}

TEST(Accessibility, EscapeClosesTheWindow) {
  const OwnedObject<GtkWidget> window = create_window();
  deliver_key(window.get(), GDK_KEY_a);
  settle();
  EXPECT_FALSE(gtk_widget_in_destruction(window.get()));
  EXPECT_TRUE(gtk_widget_get_visible(window.get()));
  int destroyed = 0;
  g_signal_connect_swapped(window.get(), "destroy", G_CALLBACK(+[](int *count) { ++*count; }),
                           &destroyed);
  deliver_key(window.get(), GDK_KEY_Escape);
  settle();
  EXPECT_EQ(destroyed, 1);
}

// The key repeats while the program is busy: the second press must not close a destroyed window.
TEST(Accessibility, EscapePressedAgainBeforeTheWindowHasClosedDoesNoHarm) {
  const FatalWarnings fatal_warnings;
  OwnedObject<GtkWidget> window = create_window();
  GtkWidget *observed = window.get();
  g_object_add_weak_pointer(G_OBJECT(observed), reinterpret_cast<gpointer *>(&observed));
  deliver_key(window.get(), GDK_KEY_Escape);
  deliver_key(window.get(), GDK_KEY_Escape);
  window.reset();
  EXPECT_TRUE(wait_until("the end of the window", [&observed] { return observed == nullptr; }));
  EXPECT_TRUE(holds_for(50, "no window", [&observed] { return observed == nullptr; }));
}

TEST(Accessibility, EscapeCanBeRefusedByTheWindow) {
  const OwnedObject<GtkWidget> window = create_window();
  int asked = 0;
  g_signal_connect(window.get(), "delete-event",
                   G_CALLBACK(+[](GtkWidget *, GdkEvent *, int *count) -> gboolean {
                     ++*count;
                     return TRUE;
                   }),
                   &asked);
  deliver_key(window.get(), GDK_KEY_Escape);
  settle();
  deliver_key(window.get(), GDK_KEY_Escape);
  settle();
  EXPECT_EQ(asked, 2);
  // Another window covers it: no second request.
  gtk_widget_set_sensitive(window.get(), FALSE);
  deliver_key(window.get(), GDK_KEY_Escape);
  settle();
  EXPECT_EQ(asked, 2);
  EXPECT_TRUE(gtk_widget_get_visible(window.get()));
  gtk_widget_destroy(window.get());
}

TEST(Accessibility, EscapeAnswersADialogAtOnce) {
  const FatalWarnings fatal_warnings;
  GtkDialog *dialog = v_gui_create_dialog("Dialog", VButtonSet::close);
  std::vector<int> responses;
  g_signal_connect(dialog, "response",
                   G_CALLBACK(+[](GtkDialog *, int response, std::vector<int> *all) {
                     all->push_back(response);
                   }),
                   &responses);
  g_signal_emit_by_name(dialog, "close");
  g_signal_emit_by_name(dialog, "close");
  const std::vector<int> two_responses = {GTK_RESPONSE_DELETE_EVENT, GTK_RESPONSE_DELETE_EVENT};
  EXPECT_EQ(responses, two_responses);
  gtk_widget_destroy(GTK_WIDGET(dialog));
  EXPECT_TRUE(holds_for(50, "no third response", [&] { return responses == two_responses; }));
}

TEST(Accessibility, NamesAndDescriptionsAreSpoken) {
  const OwnedObject<GtkWidget> label = sink(gtk_label_new(nullptr));
  AtkObject *accessible = gtk_widget_get_accessible(label.get());
  v_gui_set_accessible_name(label.get(), "Ärende");
  EXPECT_STREQ(atk_object_get_name(accessible), "Ärende");
  v_gui_set_accessible_description(label.get(), "A & b");
  EXPECT_STREQ(atk_object_get_description(accessible), "A & b");
  v_gui_set_accessible_group_name(label.get(), "Group");
  EXPECT_EQ(atk_object_get_role(accessible), ATK_ROLE_PANEL);
  EXPECT_STREQ(atk_object_get_name(accessible), "Group");
  v_gui_set_accessible_message(label.get(), "Message");
  EXPECT_EQ(atk_object_get_role(accessible), ATK_ROLE_ALERT);
  EXPECT_STREQ(atk_object_get_description(accessible), "Message");
}

} // namespace
