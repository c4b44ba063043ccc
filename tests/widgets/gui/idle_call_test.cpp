#include "gui/idle_call.h"

#include <gtest/gtest.h>

#include "gui/owned_objects.h"
#include "support/gui_driver.h"

namespace {

TEST(IdleCall, RunsOnceAndNotBeforeTheMainLoop) {
  TestWindow window;
  int calls = 0;
  v_idle_call_add(window.widget(), G_PRIORITY_DEFAULT, [&calls] { calls++; });
  EXPECT_EQ(calls, 0);
  settle();
  settle();
  EXPECT_EQ(calls, 1);
}

TEST(IdleCall, DoesNotRunForAWidgetThatIsDestroyedBefore) {
  TestWindow window;
  const OwnedObject<GtkWidget> held = share(window.widget());
  int calls = 0;
  v_idle_call_add(held.get(), G_PRIORITY_DEFAULT, [&calls] { calls++; });
  v_idle_call_add(held.get(), G_PRIORITY_DEFAULT_IDLE, [&calls] { calls++; });
  window.destroy();
  settle();
  EXPECT_EQ(calls, 0);
}

// For instance when it shows a dialog during which the user closes the window of the widget.
TEST(IdleCall, KeepsTheWidgetAliveWhenItDestroysIt) {
  TestWindow window;
  GtkWidget *widget = window.widget();
  bool is_widget = false;
  v_idle_call_add(widget, G_PRIORITY_DEFAULT, [&] {
    window.destroy();
    settle();
    is_widget = GTK_IS_WIDGET(widget);
  });
  settle();
  EXPECT_TRUE(is_widget);
  EXPECT_TRUE(window.is_destroyed());
}

TEST(IdleCall, LeavesNoReferenceBehind) {
  OwnedObject<GtkWidget> label = sink(gtk_label_new("label"));
  bool is_freed = false;
  g_object_set_data_full(G_OBJECT(label.get()), "freed with the label", &is_freed,
                         [](void *flag) { *static_cast<bool *>(flag) = true; });
  v_idle_call_add(label.get(), G_PRIORITY_DEFAULT, [] {});
  settle();
  v_idle_call_add(label.get(), G_PRIORITY_DEFAULT, [] {});
  gtk_widget_destroy(label.get());
  EXPECT_FALSE(is_freed);
  label.reset();
  EXPECT_TRUE(is_freed);
}

} // namespace
