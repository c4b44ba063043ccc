#include "window_stack_fixture.h"

#include "gui/owned_objects.h"

namespace {

TEST_F(WindowStack, IsEmptyAtFirst) {
  EXPECT_EQ(stack->bottom->next.get(), stack->top);
  EXPECT_EQ(stack->top->previous, stack->bottom.get());
  EXPECT_EQ(stack->bottom->previous, nullptr);
  EXPECT_EQ(stack->top->next, nullptr);
  EXPECT_EQ(stack->focus_lost, 0);
  EXPECT_EQ(stack->focus_lost_time.seconds, 0);
  EXPECT_EQ(stack->focus_lost_time.microseconds, 0);
  EXPECT_EQ(stack->focus_callback, nullptr);
  EXPECT_EQ(stack->focus_callback_data, nullptr);
}

TEST_F(WindowStack, OperationsOnAnEmptyStackDoNothing) {
  v_window_stack_pop_window(stack.get());
  v_window_stack_busy_end(stack.get());
  v_window_stack_present(stack.get());
  EXPECT_EQ(stack->bottom->next.get(), stack->top);
  v_window_stack_destroy(nullptr);
}

// ---- Pushing and popping ------------------------------------------------------------------------

TEST_F(WindowStack, TheFirstWindowIsAPlainOne) {
  TestWindow other;
  TestWindow first;
  gtk_window_set_transient_for(first.get(), other.get());
  gtk_window_set_destroy_with_parent(first.get(), TRUE);
  gtk_window_set_modal(first.get(), TRUE);
  gtk_window_set_skip_taskbar_hint(first.get(), TRUE);
  v_window_stack_push_window(stack.get(), first.get());
  EXPECT_EQ(gtk_window_get_transient_for(first.get()), nullptr);
  EXPECT_FALSE(gtk_window_get_destroy_with_parent(first.get()));
  EXPECT_FALSE(gtk_window_get_modal(first.get()));
  EXPECT_FALSE(gtk_window_get_skip_taskbar_hint(first.get()));
  EXPECT_TRUE(is_sensitive(first));
  EXPECT_EQ(top()->window, first.get());
}

TEST_F(WindowStack, EveryOtherWindowCoversTheOneBelow) {
  TestWindow windows[3];
  for (TestWindow &window : windows) {
    open(window);
  }
  for (int i = 1; i < 3; ++i) {
    GtkWindow *window = windows[i].get();
    EXPECT_EQ(gtk_window_get_transient_for(window), windows[i - 1].get());
    EXPECT_TRUE(gtk_window_get_destroy_with_parent(window));
    EXPECT_TRUE(gtk_window_get_modal(window));
    EXPECT_TRUE(gtk_window_get_skip_taskbar_hint(window));
    EXPECT_FALSE(is_sensitive(windows[i - 1]));
  }
  EXPECT_TRUE(is_sensitive(windows[2]));
  EXPECT_EQ(stack->bottom->next->window, windows[0].get());
  EXPECT_EQ(stack->bottom->next->next->window, windows[1].get());
  EXPECT_EQ(top()->window, windows[2].get());

  v_window_stack_pop_window(stack.get());
  EXPECT_FALSE(is_sensitive(windows[0]));
  EXPECT_TRUE(is_sensitive(windows[1]));
  EXPECT_EQ(top()->window, windows[1].get());
  EXPECT_FALSE(windows[2].is_destroyed());
  v_window_stack_pop_window(stack.get());
  EXPECT_TRUE(is_sensitive(windows[0]));
}

TEST_F(WindowStack, PoppingTheLastEntryLeavesItsWindowAlone) {
  TestWindow window;
  open(window);
  gtk_widget_set_sensitive(window.widget(), FALSE);
  const OwnedObject<GdkCursor> cursor =
      take(gdk_cursor_new_for_display(gtk_widget_get_display(window.widget()), GDK_CROSSHAIR));
  gdk_window_set_cursor(gtk_widget_get_window(window.widget()), cursor.get());
  v_window_stack_pop_window(stack.get());
  EXPECT_FALSE(is_sensitive(window));
  EXPECT_EQ(gdk_window_get_cursor(gtk_widget_get_window(window.widget())), cursor.get());
  EXPECT_EQ(stack->bottom->next.get(), stack->top);
}

TEST_F(WindowStack, ANativeDialogHasAnEntryWithoutAWindow) {
  EXPECT_EQ(v_window_stack_push_native_window(stack.get()), nullptr);
  v_window_stack_pop_window(stack.get());
  EXPECT_EQ(stack->bottom->next.get(), stack->top);

  TestWindow window;
  open(window);
  EXPECT_EQ(v_window_stack_push_native_window(stack.get()), window.get());
  EXPECT_EQ(top()->window, nullptr);
  EXPECT_FALSE(is_sensitive(window));
  v_window_stack_pop_window(stack.get());
  EXPECT_TRUE(is_sensitive(window));
}

TEST_F(WindowStack, RestoresTheFocus) {
  TestWindow window;
  const TwoFields fields(window);
  open(window);
  v_window_stack_push_native_window(stack.get());
  EXPECT_EQ(gtk_window_get_focus(window.get()), nullptr);
  v_window_stack_pop_window(stack.get());
  EXPECT_EQ(gtk_window_get_focus(window.get()), fields.first);
  EXPECT_EQ(gtk_editable_get_position(GTK_EDITABLE(fields.first)), 2);
  EXPECT_FALSE(gtk_editable_get_selection_bounds(GTK_EDITABLE(fields.first), nullptr, nullptr));
}

TEST_F(WindowStack, DoesNotRestoreTheFocusToAWidgetThatCannotHaveIt) {
  TestWindow window;
  const TwoFields fields(window);
  open(window);
  v_window_stack_push_native_window(stack.get());
  gtk_widget_set_sensitive(fields.first, FALSE);
  v_window_stack_pop_window(stack.get());
  EXPECT_EQ(gtk_window_get_focus(window.get()), nullptr);

  gtk_widget_grab_focus(fields.second);
  v_window_stack_push_native_window(stack.get());
  gtk_container_remove(GTK_CONTAINER(fields.box), fields.second);
  v_window_stack_pop_window(stack.get());
  EXPECT_EQ(gtk_window_get_focus(window.get()), nullptr);
}

TEST_F(WindowStack, AWindowOverANativeDialogCoversTheNearestRealWindow) {
  TestWindow below;
  TestWindow above;
  open(below);
  v_window_stack_push_native_window(stack.get());
  open(above);
  EXPECT_EQ(gtk_window_get_transient_for(above.get()), below.get());
  v_window_stack_pop_window(stack.get());
  EXPECT_FALSE(is_sensitive(below));
  v_window_stack_pop_window(stack.get());
  EXPECT_TRUE(is_sensitive(below));
}

TEST_F(WindowStack, PresentsTheTopmostRealWindow) {
  TestWindow first;
  TestWindow second;
  open(first);
  v_window_stack_push_window(stack.get(), second.get());
  v_window_stack_push_native_window(stack.get());
  EXPECT_FALSE(gtk_widget_get_visible(second.widget()));
  v_window_stack_present(stack.get());
  EXPECT_TRUE(wait_until("the keyboard in the second window",
                         [&] { return gtk_window_is_active(second.get()) != FALSE; }));
}

// ---- Destruction in any order -------------------------------------------------------------------

TEST_F(WindowStack, DestroyingAWindowDestroysThoseAboveIt) {
  TestWindow windows[3];
  for (TestWindow &window : windows) {
    open(window);
  }
  windows[1].destroy();
  EXPECT_TRUE(windows[2].is_destroyed());
  EXPECT_EQ(top()->window, nullptr);
  v_window_stack_pop_window(stack.get());
  EXPECT_FALSE(is_sensitive(windows[0]));
  v_window_stack_pop_window(stack.get());
  EXPECT_TRUE(is_sensitive(windows[0]));
  EXPECT_EQ(top()->window, windows[0].get());
}

TEST_F(WindowStack, AllWindowsMayBeDestroyedBeforeTheyArePopped) {
  {
    TestWindow windows[3];
    for (TestWindow &window : windows) {
      open(window);
    }
    windows[0].destroy();
  }
  TestWindow another;
  open(another);
  EXPECT_FALSE(gtk_window_get_modal(another.get()));
  v_window_stack_present(stack.get());
  for (int i = 0; i < 4; ++i) {
    v_window_stack_pop_window(stack.get());
  }
  EXPECT_EQ(stack->bottom->next.get(), stack->top);
}

TEST_F(WindowStack, NothingStaysConnectedToAWindowThatOutlivesItsEntry) {
  TestWindow popped;
  TestWindow left;
  const auto is_connected = [](const TestWindow &window, void *data) {
    return g_signal_handler_find(window.get(), G_SIGNAL_MATCH_DATA, 0, 0, nullptr, nullptr, data) !=
           0;
  };
  open(popped);
  void *popped_entry = top();
  EXPECT_TRUE(is_connected(popped, popped_entry));
  v_window_stack_pop_window(stack.get());
  EXPECT_FALSE(is_connected(popped, popped_entry));
  open(left);
  void *left_entry = top();
  EXPECT_TRUE(is_connected(left, left_entry));
  stack.reset();
  EXPECT_FALSE(is_connected(left, left_entry));
  EXPECT_FALSE(left.is_destroyed());
}

// ---- Cursors ------------------------------------------------------------------------------------

void note(bool cursor_is_set, void *notes) {
  static_cast<std::string *>(notes)->append(cursor_is_set ? "set " : "cleared ");
}

TEST_F(WindowStack, PushingSetsTheCursorOfAllButTheTop) {
  TestWindow windows[3];
  std::string notes[3];
  for (int i = 0; i < 3; ++i) {
    gtk_widget_realize(windows[i].widget());
    v_window_stack_push_window(stack.get(), windows[i].get());
    v_window_stack_set_mouse_cursor_callback(stack.get(), note, &notes[i]);
  }
  EXPECT_EQ(name_cursor(windows[0]), "default");
  EXPECT_EQ(name_cursor(windows[1]), "default");
  EXPECT_EQ(name_cursor(windows[2]), "none");
  EXPECT_EQ(notes[0], "set set ");
  EXPECT_EQ(notes[1], "set ");
  EXPECT_EQ(notes[2], "");

  v_window_stack_push_native_window(stack.get());
  EXPECT_EQ(name_cursor(windows[2]), "default");
  EXPECT_EQ(notes[2], "set ");
}

TEST_F(WindowStack, APushedWindowKeepsItsOwnCursor) {
  TestWindow window;
  TestWindow above;
  for (const TestWindow *pushed : {&window, &above}) {
    gtk_widget_realize(pushed->widget());
    const OwnedObject<GdkCursor> own =
        take(gdk_cursor_new_from_name(gtk_widget_get_display(pushed->widget()), "wait"));
    gdk_window_set_cursor(gtk_widget_get_window(pushed->widget()), own.get());
    v_window_stack_push_window(stack.get(), pushed->get());
  }
  EXPECT_EQ(name_cursor(window), "default");
  EXPECT_EQ(name_cursor(above), "wait");
}

TEST_F(WindowStack, PoppingClearsTheCursorOfTheTop) {
  TestWindow windows[3];
  std::string notes[3];
  for (int i = 0; i < 3; ++i) {
    gtk_widget_realize(windows[i].widget());
    v_window_stack_push_window(stack.get(), windows[i].get());
  }
  int i = 0;
  for (WindowStackNode *node = stack->bottom->next.get(); node != stack->top;
       node = node->next.get()) {
    node->cursor_callback = note;
    node->cursor_callback_data = &notes[i++];
  }
  v_window_stack_pop_window(stack.get());
  EXPECT_EQ(name_cursor(windows[0]), "default");
  EXPECT_EQ(name_cursor(windows[1]), "none");
  EXPECT_EQ(notes[0], "set ");
  EXPECT_EQ(notes[1], "cleared ");
  EXPECT_EQ(notes[2], "");
}

TEST_F(WindowStack, AWindowThatIsNotRealizedHasNoCursor) {
  TestWindow bottom;
  TestWindow unrealized;
  std::string notes;
  v_window_stack_push_window(stack.get(), unrealized.get());
  v_window_stack_set_mouse_cursor_callback(stack.get(), note, &notes);
  v_window_stack_push_window(stack.get(), bottom.get());
  v_window_stack_pop_window(stack.get());
  EXPECT_EQ(notes, "");
}

TEST_F(WindowStack, ABusyEntrySetsTheWaitCursorEverywhere) {
  TestWindow first;
  TestWindow second;
  std::string notes;
  open(first);
  open(second);
  v_window_stack_set_mouse_cursor_callback(stack.get(), note, &notes);
  v_window_stack_busy_begin(stack.get(), ShowBusyWindow::no);
  EXPECT_EQ(name_cursor(first), "wait");
  EXPECT_EQ(name_cursor(second), "wait");
  EXPECT_EQ(notes, "set ");
  EXPECT_EQ(busy()->window, nullptr);
  EXPECT_TRUE(is_sensitive(second));
  v_window_stack_busy_end(stack.get());
  EXPECT_EQ(name_cursor(first), "default");
  EXPECT_EQ(name_cursor(second), "none");
  EXPECT_EQ(notes, "set cleared ");
}

TEST_F(WindowStack, ARunStoresTheCursorCallback) {
  TestWindow window;
  std::string notes;
  when_active(window.get(), [&] {
    v_window_stack_push_native_window(stack.get());
    v_window_stack_pop_window(stack.get());
    window.destroy();
  });
  v_window_stack_run_window(stack.get(), window.get(), Maximize::no, nullptr, note, &notes);
  EXPECT_EQ(notes, "set cleared ");
}

} // namespace
