#include "window_stack_fixture.h"

#include <string>
#include <vector>

namespace {

TEST_F(WindowStack, ARunReturnsWhenTheWindowIsDestroyed) {
  TestWindow below;
  open(below);
  TestWindow window;
  const TwoFields fields(window);
  bool was_running = false;
  when_active(window.get(), [&] {
    was_running = true;
    EXPECT_EQ(top()->window, window.get());
    EXPECT_EQ(gtk_main_level(), 1u);
    EXPECT_TRUE(gtk_widget_get_visible(window.widget()));
    EXPECT_EQ(gtk_window_get_focus(window.get()), fields.second);
    EXPECT_FALSE(is_sensitive(below));
    gtk_window_close(window.get());
  });
  v_window_stack_run_window(stack.get(), window.get(), Maximize::no, fields.second);
  EXPECT_TRUE(was_running);
  EXPECT_TRUE(window.is_destroyed());
  EXPECT_EQ(top()->window, below.get());
  EXPECT_TRUE(is_sensitive(below));
  EXPECT_EQ(gtk_main_level(), 0u);
}

TEST_F(WindowStack, ARunWithoutAFocusWidgetFocusesNone) {
  TestWindow window;
  GtkWidget *entry = gtk_entry_new();
  gtk_container_add(GTK_CONTAINER(window.get()), entry);
  gtk_widget_show(entry);
  run(window, [&] {
    EXPECT_EQ(gtk_window_get_focus(window.get()), nullptr);
    EXPECT_FALSE(gtk_window_is_maximized(window.get()));
    window.destroy();
  });
}

TEST_F(WindowStack, OnlyTheWindowItselfIsShown) {
  TestWindow window;
  GtkWidget *hidden = gtk_label_new("hidden");
  gtk_container_add(GTK_CONTAINER(window.get()), hidden);
  run(window, [&] {
    EXPECT_FALSE(gtk_widget_get_visible(hidden));
    window.destroy();
  });
}

bool has_maximized_state(GtkWidget *window) {
  return (gdk_window_get_state(gtk_widget_get_window(window)) & GDK_WINDOW_STATE_MAXIMIZED) != 0;
}

TEST_F(WindowStack, AWindowIsMaximizedWhenItAppears) {
  TestWindow window;
  bool was_at_once = false;
  g_signal_connect_after(window.get(), "map", G_CALLBACK(+[](GtkWidget *widget, bool *result) {
                           *result = has_maximized_state(widget);
                         }),
                         &was_at_once);
  when(
      "a maximized window", [&] { return gtk_window_is_maximized(window.get()) != FALSE; },
      [&] { window.destroy(); });
  v_window_stack_run_window(stack.get(), window.get(), Maximize::yes);
  EXPECT_TRUE(was_at_once);
}

TEST_F(WindowStack, AWindowIsMaximizedAgainAfterItIsRealized) {
  TestWindow window;
  // The window loses the state that was requested before.
  bool was_lost = false;
  g_signal_connect(
      window.get(), "realize",
      G_CALLBACK(+[](GtkWidget *widget) { gtk_window_unmaximize(GTK_WINDOW(widget)); }), nullptr);
  g_signal_connect_after(window.get(), "map", G_CALLBACK(+[](GtkWidget *widget, bool *result) {
                           gtk_window_unmaximize(GTK_WINDOW(widget));
                           *result = true;
                         }),
                         &was_lost);
  when(
      "a maximized window",
      [&] { return was_lost && gtk_window_is_maximized(window.get()) != FALSE; },
      [&] { window.destroy(); });
  v_window_stack_run_window(stack.get(), window.get(), Maximize::yes);
  EXPECT_TRUE(was_lost);
}

TEST_F(WindowStack, AWindowDestroyedAsSoonAsItIsShownEndsItsRun) {
  for (const Maximize maximize : {Maximize::no, Maximize::yes}) {
    TestWindow window;
    g_signal_connect_after(window.get(), "map", G_CALLBACK(gtk_widget_destroy), nullptr);
    v_window_stack_run_window(stack.get(), window.get(), maximize);
    EXPECT_TRUE(window.is_destroyed());
    EXPECT_EQ(stack->bottom->next.get(), stack->top);
    settle();
  }
}

TEST_F(WindowStack, AWindowIsDestroyedWhenItsMainLoopIsQuit) {
  TestWindow window;
  run(window, gtk_main_quit);
  EXPECT_TRUE(window.is_destroyed());
  EXPECT_EQ(stack->bottom->next.get(), stack->top);
}

TEST_F(WindowStack, RunsNest) {
  TestWindow outer;
  TestWindow inner;
  std::vector<std::string> order;
  run(outer, [&] {
    run(inner, [&] {
      EXPECT_EQ(gtk_main_level(), 2u);
      EXPECT_EQ(gtk_window_get_transient_for(inner.get()), outer.get());
      inner.destroy();
    });
    order.push_back("inner");
    EXPECT_TRUE(is_sensitive(outer));
    outer.destroy();
  });
  order.push_back("outer");
  EXPECT_EQ(order, (std::vector<std::string>{"inner", "outer"}));
}

TEST_F(WindowStack, DestroyingTheOuterWindowEndsBothRuns) {
  TestWindow bottom;
  open(bottom);
  TestWindow outer;
  TestWindow inner;
  std::vector<std::string> order;
  run(outer, [&] {
    run(inner, [&] { outer.destroy(); });
    order.push_back("inner");
    EXPECT_TRUE(inner.is_destroyed());
  });
  order.push_back("outer");
  EXPECT_EQ(order, (std::vector<std::string>{"inner", "outer"}));
  EXPECT_EQ(top()->window, bottom.get());
  EXPECT_TRUE(is_sensitive(bottom));
}

TEST_F(WindowStack, AWindowDestroyedUnderABusyEntryLosesOnlyItsEntry) {
  TestWindow bottom;
  open(bottom);
  TestWindow window;
  run(window, [&] {
    v_window_stack_busy_begin(stack.get(), ShowBusyWindow::yes);
    window.destroy();
    EXPECT_NE(busy(), nullptr);
    EXPECT_EQ(busy()->window, nullptr);
    v_window_stack_set_busy_window_message(stack.get(), "Nobody sees this");
    v_window_stack_busy_end(stack.get());
  });
  EXPECT_EQ(top()->window, bottom.get());
  EXPECT_TRUE(is_sensitive(bottom));
}

TEST_F(WindowStack, AnEntryPoppedDuringItsRunDoesNotPopAnother) {
  TestWindow bottom;
  open(bottom);
  TestWindow window;
  run(window, [&] {
    v_window_stack_pop_window(stack.get());
    window.destroy();
  });
  EXPECT_EQ(top()->window, bottom.get());
}

TEST_F(WindowStack, TheStackMayBeDestroyedWhileAWindowRuns) {
  TestWindow window;
  run(window, [&] {
    stack.reset();
    window.destroy();
  });
  EXPECT_TRUE(window.is_destroyed());
}

} // namespace
