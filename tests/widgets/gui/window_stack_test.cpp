#include "gui/window_stack.h"

#include <algorithm>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "gui/accessibility.h"
#include "gui/message_dialogs.h"
#include "gui/owned_objects.h"
#include "support/gui/layout.h"
#include "support/gui_driver.h"

namespace {

// The time of day (microseconds) of a stopped clock; the real clock runs while it is not set.
std::optional<gint64> time_of_day;

} // namespace

// The linker redirects the program's calls to the wrapped function.
gint64 real_get_real_time() __asm__("__real_g_get_real_time");
gint64 wrapped_get_real_time() __asm__("__wrap_g_get_real_time");

gint64 wrapped_get_real_time() { return time_of_day ? *time_of_day : real_get_real_time(); }

namespace {

class WindowStack : public testing::Test {
protected:
  WindowStackNode *top() const { return stack->top->previous; }
  VBusyRecord *busy() const { return top()->busy.get(); }

  // Pushes and shows, as a GUI function does.
  void open(TestWindow &window) {
    v_window_stack_push_window(stack.get(), window.get());
    window.show_active();
  }

  OwnedWindowStack stack = v_window_stack_new();
};

bool is_sensitive(const TestWindow &window) {
  return gtk_widget_get_sensitive(window.widget()) != FALSE;
}

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

// Two fields in a window; the first has the focus.
struct TwoFields {
  explicit TwoFields(const TestWindow &window)
      : box(GTK_BOX(gtk_box_new(GTK_ORIENTATION_VERTICAL, 0))), first(gtk_entry_new()),
        second(gtk_entry_new()) {
    gtk_container_add(GTK_CONTAINER(window.get()), GTK_WIDGET(box));
    gtk_box_pack_start(box, first, TRUE, TRUE, 0);
    gtk_box_pack_start(box, second, TRUE, TRUE, 0);
    gtk_widget_show_all(GTK_WIDGET(box));
    gtk_entry_set_text(GTK_ENTRY(first), "text");
    gtk_widget_grab_focus(first);
    gtk_editable_set_position(GTK_EDITABLE(first), 2);
  }

  GtkBox *box;
  GtkWidget *first;
  GtkWidget *second;
};

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
  EXPECT_TRUE(wait_until([&] { return gtk_window_is_active(second.get()) != FALSE; }));
}

// ---- Close requests -----------------------------------------------------------------------------

// Counts the close requests that reach its handler, and refuses them.
class AskedWindow : public TestWindow {
public:
  AskedWindow() {
    g_signal_connect(get(), "delete-event", G_CALLBACK(+[](GtkWidget *, GdkEvent *, int *count) {
                       ++*count;
                       return gboolean{TRUE};
                     }),
                     &requests);
  }
  int requests = 0;
};

// Asks as a window manager does. The toolkit drops the request when another window has the grab.
void ask_to_close(GtkWindow *window) {
  gtk_window_close(window);
  settle();
}

// Bypasses the toolkit: only the window and its handlers can refuse.
void ask_directly_to_close(GtkWindow *window) {
  const Owned<GdkEvent, gdk_event_free> event(gdk_event_new(GDK_DELETE));
  event->any.window = share(gtk_widget_get_window(GTK_WIDGET(window))).release();
  event->any.send_event = TRUE;
  if (!gtk_widget_event(GTK_WIDGET(window), event.get())) {
    gtk_widget_destroy(GTK_WIDGET(window));
  }
  settle();
}

constexpr void (*ways_to_ask[])(GtkWindow *) = {ask_to_close, ask_directly_to_close};

// A way to cover a window; `meanwhile` is called while it is covered, perhaps several times.
struct Cover {
  const char *name;
  std::function<void(VWindowStack *stack, const std::function<void()> &meanwhile)> show;
};

void show_window(VWindowStack *stack, const std::function<void()> &meanwhile) {
  TestWindow window;
  v_window_stack_push_window(stack, window.get());
  window.show_active();
  meanwhile();
  window.destroy();
  v_window_stack_pop_window(stack);
}

void show_native_dialog(VWindowStack *stack, const std::function<void()> &meanwhile) {
  v_window_stack_push_native_window(stack);
  meanwhile();
  v_window_stack_pop_window(stack);
}

template <ShowBusyWindow show>
void be_busy(VWindowStack *stack, const std::function<void()> &meanwhile) {
  v_window_stack_busy_begin(stack, show);
  meanwhile();
  v_window_stack_busy_end(stack);
}

void show_message(VWindowStack *stack, const std::function<void()> &meanwhile) {
  GtkDialog *dialog = v_message_create_question_dialog(nullptr, "message");
  when_active(GTK_WINDOW(dialog), [&] {
    meanwhile();
    gtk_dialog_response(dialog, GTK_RESPONSE_CLOSE);
  });
  v_message_run_and_destroy_dialog(stack, dialog);
}

void run_window(VWindowStack *stack, const std::function<void()> &meanwhile) {
  TestWindow window;
  when_active(window.get(), [&] {
    meanwhile();
    window.destroy();
  });
  v_window_stack_run_window(stack, window.get(), Maximize::no);
}

const Cover covers[] = {
    {"a window", show_window},
    {"a window that runs", run_window},
    {"a message", show_message},
    {"a native dialog", show_native_dialog},
    {"a busy window", be_busy<ShowBusyWindow::yes>},
    {"a task without a window", be_busy<ShowBusyWindow::no>},
    {"a window over a window",
     [](VWindowStack *stack, const auto &meanwhile) {
       show_window(stack, [&] {
         show_window(stack, meanwhile);
         meanwhile();
       });
     }},
    {"a message over a native dialog",
     [](VWindowStack *stack, const auto &meanwhile) {
       show_native_dialog(stack, [&] {
         show_message(stack, meanwhile);
         meanwhile();
       });
     }},
    {"a message over a busy window",
     [](VWindowStack *stack, const auto &meanwhile) {
       be_busy<ShowBusyWindow::yes>(stack, [&] {
         show_message(stack, meanwhile);
         meanwhile();
       });
     }},
    {"a message over a task without a window",
     [](VWindowStack *stack, const auto &meanwhile) {
       be_busy<ShowBusyWindow::no>(stack, [&] {
         show_message(stack, meanwhile);
         meanwhile();
       });
     }},
    {"a busy window over a busy window",
     [](VWindowStack *stack, const auto &meanwhile) {
       be_busy<ShowBusyWindow::yes>(stack, [&] {
         be_busy<ShowBusyWindow::yes>(stack, meanwhile);
         meanwhile();
       });
     }},
    {"a window that is destroyed before it is popped",
     [](VWindowStack *stack, const auto &meanwhile) {
       TestWindow window;
       v_window_stack_push_window(stack, window.get());
       window.show_active();
       window.destroy();
       meanwhile();
       v_window_stack_pop_window(stack);
     }},
};

TEST_F(WindowStack, ACoveredWindowCannotBeClosedUnderAnyKindOfWindow) {
  AskedWindow windows[3];
  for (AskedWindow &window : windows) {
    open(window);
  }
  AskedWindow &top_window = windows[2];
  const auto ask_all = [&] {
    for (const auto &ask : ways_to_ask) {
      for (AskedWindow &window : windows) {
        ask(window.get());
      }
    }
    EXPECT_EQ(windows[0].requests, 0);
    EXPECT_EQ(windows[1].requests, 0);
  };
  ask_all();
  EXPECT_EQ(top_window.requests, 2);
  for (const Cover &cover : covers) {
    SCOPED_TRACE(cover.name);
    top_window.requests = 0;
    cover.show(stack.get(), [&] {
      ask_all();
      EXPECT_EQ(top_window.requests, 0);
    });
    ask_all();
    EXPECT_EQ(top_window.requests, 2);
    EXPECT_EQ(top()->window, top_window.get());
  }
}

TEST_F(WindowStack, AWindowGetsTheInputBackFromAnyKindOfWindow) {
  TestWindow bottom;
  open(bottom);
  EXPECT_EQ(gtk_grab_get_current(), nullptr);
  {
    TestWindow window;
    open(window);
    EXPECT_EQ(gtk_grab_get_current(), window.widget());
    for (const Cover &cover : covers) {
      SCOPED_TRACE(cover.name);
      cover.show(stack.get(), [&] {});
      EXPECT_EQ(gtk_grab_get_current(), window.widget());
    }
    window.destroy();
    v_window_stack_pop_window(stack.get());
    EXPECT_EQ(gtk_grab_get_current(), nullptr);
  }
  for (const Cover &cover : covers) {
    SCOPED_TRACE(cover.name);
    cover.show(stack.get(), [&] {});
    EXPECT_EQ(gtk_grab_get_current(), nullptr);
  }
}

TEST_F(WindowStack, AWindowShownWhileItIsCoveredGetsTheInputLater) {
  TestWindow bottom;
  TestWindow late;
  open(bottom);
  v_window_stack_push_window(stack.get(), late.get());
  v_window_stack_push_native_window(stack.get());
  gtk_widget_show(late.widget());
  v_window_stack_pop_window(stack.get());
  EXPECT_EQ(gtk_grab_get_current(), late.widget());
}

TEST_F(WindowStack, AHiddenWindowDoesNotKeepTheInputFromOthers) {
  TestWindow bottom;
  TestWindow hidden;
  open(bottom);
  v_window_stack_push_window(stack.get(), hidden.get());
  v_window_stack_push_native_window(stack.get());
  v_window_stack_pop_window(stack.get());
  EXPECT_EQ(gtk_grab_get_current(), nullptr);
}

TEST_F(WindowStack, TheFirstWindowNeverGrabsTheInput) {
  TestWindow first;
  open(first);
  v_window_stack_push_native_window(stack.get());
  v_window_stack_pop_window(stack.get());
  TestWindow outside;
  outside.show_active();
  EXPECT_EQ(gtk_grab_get_current(), nullptr);
}

// A dialog makes itself modal while it waits for its answer.
TEST_F(WindowStack, AQuestionStaysInFrontOfTheWindowsBelowAfterAMessageOverIt) {
  for (const auto &ask : ways_to_ask) {
    AskedWindow below;
    open(below);
    when_dialog_shows([&](GtkDialog *question) {
      show_message(stack.get(), [&] {
        ask(GTK_WINDOW(question));
        ask(below.get());
      });
      EXPECT_EQ(gtk_grab_get_current(), GTK_WIDGET(question));
      ask(below.get());
      EXPECT_TRUE(gtk_widget_get_visible(GTK_WIDGET(question)));
      ask(GTK_WINDOW(question));
    });
    EXPECT_EQ(v_message_ask_yes_no_question(stack.get(), 1, WarningIcon::no, "text"), 1);
    EXPECT_EQ(below.requests, 0);
    EXPECT_FALSE(below.is_destroyed());
    v_window_stack_pop_window(stack.get());
  }
}

TEST_F(WindowStack, EscapeDoesNotCloseAWindowWhileATaskIsUnderWay) {
  TestWindow window;
  v_gui_close_on_escape(window.get());
  open(window);
  v_window_stack_busy_begin(stack.get(), ShowBusyWindow::no);
  press_key(window.widget(), GDK_KEY_Escape);
  settle();
  ASSERT_FALSE(window.is_destroyed());
  v_window_stack_busy_end(stack.get());
  press_key(window.widget(), GDK_KEY_Escape);
  settle();
  EXPECT_TRUE(window.is_destroyed());
}

// The request is already queued when the window is covered.
TEST_F(WindowStack, ARequestThatArrivesAfterTheCoverIsRefused) {
  AskedWindow bottom;
  AskedWindow window;
  open(bottom);
  open(window);
  gtk_window_close(window.get());
  v_window_stack_push_native_window(stack.get());
  settle();
  EXPECT_EQ(window.requests, 0);
  v_window_stack_pop_window(stack.get());
  settle();
  EXPECT_EQ(window.requests, 0);
}

TEST_F(WindowStack, AWindowThatHasLeftTheStackCanBeClosed) {
  for (const auto &ask : ways_to_ask) {
    TestWindow left;
    TestWindow above;
    open(left);
    v_window_stack_pop_window(stack.get());
    open(above);
    gtk_window_set_modal(above.get(), FALSE);
    ask(left.get());
    EXPECT_TRUE(left.is_destroyed());
    v_window_stack_pop_window(stack.get());
  }
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

// ---- Running ------------------------------------------------------------------------------------

TEST_F(WindowStack, ARunReturnsWhenTheWindowIsDestroyed) {
  TestWindow below;
  open(below);
  TestWindow window;
  GtkWidget *box = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
  GtkWidget *first = gtk_entry_new();
  GtkWidget *second = gtk_entry_new();
  gtk_container_add(GTK_CONTAINER(window.get()), box);
  gtk_container_add(GTK_CONTAINER(box), first);
  gtk_container_add(GTK_CONTAINER(box), second);
  gtk_widget_show_all(box);
  bool was_running = false;
  when_active(window.get(), [&] {
    was_running = true;
    EXPECT_EQ(top()->window, window.get());
    EXPECT_EQ(gtk_main_level(), 1u);
    EXPECT_TRUE(gtk_widget_get_visible(window.widget()));
    EXPECT_EQ(gtk_window_get_focus(window.get()), second);
    EXPECT_FALSE(is_sensitive(below));
    gtk_window_close(window.get());
  });
  v_window_stack_run_window(stack.get(), window.get(), Maximize::no, second);
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
  when_active(window.get(), [&] {
    EXPECT_EQ(gtk_window_get_focus(window.get()), nullptr);
    EXPECT_FALSE(gtk_window_is_maximized(window.get()));
    window.destroy();
  });
  v_window_stack_run_window(stack.get(), window.get(), Maximize::no);
}

TEST_F(WindowStack, OnlyTheWindowItselfIsShown) {
  TestWindow window;
  GtkWidget *hidden = gtk_label_new("hidden");
  gtk_container_add(GTK_CONTAINER(window.get()), hidden);
  when_active(window.get(), [&] {
    EXPECT_FALSE(gtk_widget_get_visible(hidden));
    window.destroy();
  });
  v_window_stack_run_window(stack.get(), window.get(), Maximize::no);
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
  when_active(window.get(), gtk_main_quit);
  v_window_stack_run_window(stack.get(), window.get(), Maximize::no);
  EXPECT_TRUE(window.is_destroyed());
  EXPECT_EQ(stack->bottom->next.get(), stack->top);
}

TEST_F(WindowStack, RunsNest) {
  TestWindow outer;
  TestWindow inner;
  std::vector<std::string> order;
  when_active(outer.get(), [&] {
    when_active(inner.get(), [&] {
      EXPECT_EQ(gtk_main_level(), 2u);
      EXPECT_EQ(gtk_window_get_transient_for(inner.get()), outer.get());
      inner.destroy();
    });
    v_window_stack_run_window(stack.get(), inner.get(), Maximize::no);
    order.push_back("inner");
    EXPECT_TRUE(is_sensitive(outer));
    outer.destroy();
  });
  v_window_stack_run_window(stack.get(), outer.get(), Maximize::no);
  order.push_back("outer");
  EXPECT_EQ(order, (std::vector<std::string>{"inner", "outer"}));
}

TEST_F(WindowStack, DestroyingTheOuterWindowEndsBothRuns) {
  TestWindow bottom;
  open(bottom);
  TestWindow outer;
  TestWindow inner;
  std::vector<std::string> order;
  when_active(outer.get(), [&] {
    when_active(inner.get(), [&] { outer.destroy(); });
    v_window_stack_run_window(stack.get(), inner.get(), Maximize::no);
    order.push_back("inner");
    EXPECT_TRUE(inner.is_destroyed());
  });
  v_window_stack_run_window(stack.get(), outer.get(), Maximize::no);
  order.push_back("outer");
  EXPECT_EQ(order, (std::vector<std::string>{"inner", "outer"}));
  EXPECT_EQ(top()->window, bottom.get());
  EXPECT_TRUE(is_sensitive(bottom));
}

TEST_F(WindowStack, AWindowDestroyedUnderABusyEntryLosesOnlyItsEntry) {
  TestWindow bottom;
  open(bottom);
  TestWindow window;
  when_active(window.get(), [&] {
    v_window_stack_busy_begin(stack.get(), ShowBusyWindow::yes);
    window.destroy();
    EXPECT_NE(busy(), nullptr);
    EXPECT_EQ(busy()->window, nullptr);
    v_window_stack_set_busy_window_message(stack.get(), "Nobody sees this");
    v_window_stack_busy_end(stack.get());
  });
  v_window_stack_run_window(stack.get(), window.get(), Maximize::no);
  EXPECT_EQ(top()->window, bottom.get());
  EXPECT_TRUE(is_sensitive(bottom));
}

TEST_F(WindowStack, AnEntryPoppedDuringItsRunDoesNotPopAnother) {
  TestWindow bottom;
  open(bottom);
  TestWindow window;
  when_active(window.get(), [&] {
    v_window_stack_pop_window(stack.get());
    window.destroy();
  });
  v_window_stack_run_window(stack.get(), window.get(), Maximize::no);
  EXPECT_EQ(top()->window, bottom.get());
}

TEST_F(WindowStack, TheStackMayBeDestroyedWhileAWindowRuns) {
  TestWindow window;
  when_active(window.get(), [&] {
    stack.reset();
    window.destroy();
  });
  v_window_stack_run_window(stack.get(), window.get(), Maximize::no);
  EXPECT_TRUE(window.is_destroyed());
}

// ---- Cursors ------------------------------------------------------------------------------------

GdkCursor *get_cursor(const TestWindow &window) {
  return gdk_window_get_cursor(gtk_widget_get_window(window.widget()));
}

// The name of the window's cursor: the display has one cursor object per name.
std::string name_cursor(const TestWindow &window) {
  for (const char *name : {"default", "wait"}) {
    const OwnedObject<GdkCursor> cursor =
        take(gdk_cursor_new_from_name(gtk_widget_get_display(window.widget()), name));
    if (cursor && cursor.get() == get_cursor(window)) {
      return name;
    }
  }
  return get_cursor(window) == nullptr ? "none" : "other";
}

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

// ---- Focus --------------------------------------------------------------------------------------

// Some day at noon, in microseconds.
constexpr std::int64_t noon = 1'700'049'600'000'000;

class StoppedClock {
public:
  explicit StoppedClock(std::int64_t time) { time_of_day = time; }
  ~StoppedClock() { time_of_day.reset(); }
  StoppedClock(const StoppedClock &) = delete;
  StoppedClock &operator=(const StoppedClock &) = delete;
};

struct FocusReports {
  std::vector<long> seconds;
};

void report(long elapsed_seconds, void *data) {
  static_cast<FocusReports *>(data)->seconds.push_back(elapsed_seconds);
}

// Longer than the stack waits before it considers the focus lost.
constexpr unsigned past_focus_loss = 700; // milliseconds

void send_focus_event(const TestWindow &window, bool focus_in) {
  GdkEvent *event = gdk_event_new(GDK_FOCUS_CHANGE);
  event->focus_change.window = GDK_WINDOW(g_object_ref(gtk_widget_get_window(window.widget())));
  event->focus_change.in = focus_in;
  gboolean is_handled = FALSE;
  g_signal_emit_by_name(window.get(), focus_in ? "focus-in-event" : "focus-out-event", event,
                        &is_handled);
  gdk_event_free(event);
}

TEST_F(WindowStack, TheFocusIsNotLostWhenItMovesBetweenItsWindows) {
  FocusReports reports;
  v_window_stack_set_focus_callback(stack.get(), report, &reports);
  TestWindow main_window;
  open(main_window);
  {
    TestWindow dialog;
    open(dialog);
    EXPECT_TRUE(holds_for(past_focus_loss, [&] { return stack->focus_lost == 0; }));
    v_window_stack_pop_window(stack.get());
  }
  ASSERT_TRUE(
      wait_until([&] { return gtk_window_has_toplevel_focus(main_window.get()) != FALSE; }));
  EXPECT_TRUE(holds_for(past_focus_loss, [&] { return stack->focus_lost == 0; }));
  EXPECT_TRUE(stack->sources.empty());
  EXPECT_TRUE(reports.seconds.empty());
}

TEST_F(WindowStack, ReportsOnceWhenTheFocusReturnsFromAnotherProgram) {
  FocusReports reports;
  v_window_stack_set_focus_callback(stack.get(), report, &reports);
  TestWindow main_window;
  open(main_window);
  ASSERT_TRUE(wait_until([&] { return stack->sources.empty(); }));
  const StoppedClock clock(noon);
  {
    TestWindow other_program;
    const gint64 begin = g_get_monotonic_time();
    other_program.show_active();
    ASSERT_TRUE(wait_until([&] { return stack->focus_lost == 1; }));
    EXPECT_GE(g_get_monotonic_time() - begin, 500'000);
    settle();
    EXPECT_EQ(stack->focus_lost, 1);
    EXPECT_TRUE(reports.seconds.empty());
    time_of_day = noon + 2'200'000;
  }
  ASSERT_TRUE(wait_until([&] { return !reports.seconds.empty(); }));
  EXPECT_EQ(stack->focus_lost, 0);
  send_focus_event(main_window, true);
  EXPECT_EQ(reports.seconds, std::vector{2L});
}

TEST_F(WindowStack, WholeSecondsWithoutFocusAreReported) {
  struct Row {
    std::int64_t microseconds;
    long seconds;
  };
  constexpr Row rows[] = {{0, 0},           {300'000, 0},    {999'999, 0},   {1'000'000, 1},
                          {1'000'001, 1},   {1'999'999, 1},  {4'900'000, 4}, {5'000'000, 5},
                          {59'999'999, 59}, {61'500'000, 61}};
  FocusReports reports;
  v_window_stack_set_focus_callback(stack.get(), report, &reports);
  TestWindow window;
  open(window);
  for (const Row &row : rows) {
    // Different fractions of a second at the start, so that the subtraction has to borrow.
    for (const std::int64_t fraction : {0, 1, 330'000, 999'999}) {
      const StoppedClock clock(noon + fraction);
      send_focus_event(window, false);
      stack->focus_lost = 1;
      reports.seconds.clear();
      time_of_day = noon + fraction + row.microseconds;
      send_focus_event(window, true);
      EXPECT_EQ(reports.seconds, std::vector{row.seconds})
          << row.microseconds << " from " << fraction;
      EXPECT_EQ(stack->focus_lost, 0);
    }
  }
}

TEST_F(WindowStack, LosingTheFocusStoresTheTime) {
  TestWindow window;
  open(window);
  const StoppedClock clock(noon + 123'456);
  send_focus_event(window, false);
  EXPECT_EQ(stack->focus_lost_time.seconds, noon / 1'000'000);
  EXPECT_EQ(stack->focus_lost_time.microseconds, 123'456);
}

TEST_F(WindowStack, LosesTheFocusWhenItHasNoEntries) {
  TestWindow window;
  open(window);
  send_focus_event(window, false);
  v_window_stack_pop_window(stack.get());
  EXPECT_TRUE(wait_until([&] { return stack->focus_lost == 1; }));
}

TEST_F(WindowStack, TheReturnOfTheFocusNeedsNoCallback) {
  TestWindow window;
  open(window);
  stack->focus_lost = 1;
  send_focus_event(window, true);
  EXPECT_EQ(stack->focus_lost, 0);
}

TEST_F(WindowStack, NothingFiresOnADestroyedStack) {
  std::vector<guint> sources;
  const auto all_are_gone = [&] {
    return std::all_of(sources.begin(), sources.end(), [](guint source) {
      return g_main_context_find_source_by_id(nullptr, source) == nullptr;
    });
  };
  // Right after the focus leaves, and while the stack waits before it considers it lost.
  for (const bool is_waiting : {false, true}) {
    OwnedWindowStack another = v_window_stack_new();
    TestWindow window;
    v_window_stack_push_window(another.get(), window.get());
    window.show_active();
    ASSERT_TRUE(wait_until([&] { return another->sources.empty(); }));
    send_focus_event(window, false);
    ASSERT_EQ(another->sources.size(), 1u);
    const guint first = another->sources[0];
    ASSERT_TRUE(wait_until([&] { return !is_waiting || another->sources != std::vector{first}; }));
    ASSERT_FALSE(another->sources.empty());
    sources.insert(sources.end(), another->sources.begin(), another->sources.end());
    another.reset();
    EXPECT_TRUE(all_are_gone());
  }
  EXPECT_TRUE(holds_for(past_focus_loss, all_are_gone));
}

// ---- Busy ---------------------------------------------------------------------------------------

class BusyWindow : public WindowStack {
protected:
  BusyWindow() {
    open(window);
    v_window_stack_busy_begin(stack.get(), ShowBusyWindow::yes);
  }

  GtkWidget *busy_widget() const { return GTK_WIDGET(busy()->window); }

  TestWindow window;
};

TEST_F(BusyWindow, IsUndecoratedAndCoversTheWindowBelow) {
  GtkWindow *busy_window = busy()->window;
  ASSERT_NE(busy_window, nullptr);
  EXPECT_TRUE(gtk_widget_get_visible(busy_widget()));
  EXPECT_FALSE(gtk_window_get_decorated(busy_window));
  GtkWindowPosition position = GTK_WIN_POS_NONE;
  g_object_get(busy_window, "window-position", &position, nullptr);
  EXPECT_EQ(position, GTK_WIN_POS_CENTER_ALWAYS);
  EXPECT_EQ(gtk_window_get_transient_for(busy_window), window.get());
  EXPECT_TRUE(gtk_window_get_modal(busy_window));
  EXPECT_TRUE(gtk_window_get_destroy_with_parent(busy_window));
  EXPECT_TRUE(gtk_window_get_skip_taskbar_hint(busy_window));
  EXPECT_FALSE(is_sensitive(window));
  EXPECT_EQ(name_cursor(window), "wait");
  EXPECT_EQ(top()->window, nullptr);
  EXPECT_EQ(gtk_box_get_spacing(busy()->content_box), 15);
}

// The colours (0xrrggbb) of a window on the screen.
class Picture {
public:
  explicit Picture(GtkWindow *window) {
    gtk_window_get_size(window, &width, &height);
    pixbuf = take(
        gdk_pixbuf_get_from_window(gtk_widget_get_window(GTK_WIDGET(window)), 0, 0, width, height));
  }

  int get_pixel(int x, int y) const {
    const guint8 *pixel = gdk_pixbuf_read_pixels(pixbuf.get()) +
                          y * gdk_pixbuf_get_rowstride(pixbuf.get()) +
                          x * gdk_pixbuf_get_n_channels(pixbuf.get());
    return pixel[0] << 16 | pixel[1] << 8 | pixel[2];
  }

  int width = 0;
  int height = 0;

private:
  OwnedObject<GdkPixbuf> pixbuf;
};

TEST_F(BusyWindow, IsWhiteInABlackFrameOfOnePixel) {
  ASSERT_TRUE(wait_until([this] { return Picture(busy()->window).get_pixel(2, 2) == 0xffffff; }));
  const Picture picture(busy()->window);
  // The content, 20 pixels on each side, and the frame.
  EXPECT_EQ(picture.width, 280 + 2 * 20 + 2);
  EXPECT_EQ(picture.height,
            gtk_widget_get_allocated_height(GTK_WIDGET(busy()->message_label)) + 2 * 20 + 2);
  for (const int x : {0, picture.width / 2, picture.width - 1}) {
    EXPECT_EQ(picture.get_pixel(x, 0), 0x000000);
    EXPECT_EQ(picture.get_pixel(x, picture.height - 1), 0x000000);
  }
  for (const int x : {1, picture.width / 2, picture.width - 2}) {
    EXPECT_EQ(picture.get_pixel(x, 1), 0xffffff);
    EXPECT_EQ(picture.get_pixel(x, picture.height - 2), 0xffffff);
  }
}

TEST_F(BusyWindow, CentresItsContentInsideItsMargins) {
  v_window_stack_show_abort_button(stack.get());
  GtkWidget *message = GTK_WIDGET(busy()->message_label);
  GtkWidget *abort_place = GTK_WIDGET(busy()->abort_button_alignment);
  expect_layout(gtk_bin_get_child(GTK_BIN(busy_widget())),
                {{"content", GTK_WIDGET(busy()->content_box), corner(20, 20), grows, grows},
                 {"message", message, anywhere(), moves_by_half, stays, {{0.5f, 0.5f}}},
                 {"place of Abort", abort_place, anywhere(), grows, stays},
                 {"Abort", GTK_WIDGET(busy()->abort_button), anywhere(), moves_by_half, stays}});
  EXPECT_EQ(gtk_container_get_border_width(GTK_CONTAINER(busy_widget())), 1U);
}

TEST_F(BusyWindow, SaysPleaseWaitInBoldUntilTheMessageIsSet) {
  struct Row {
    const char *message;
    const char *text;
    const char *markup;
  };
  constexpr Row rows[] = {
      {nullptr, "Please wait", "<b>Please wait</b>"},
      {"Reading <a> & 100 % é", "Reading <a> & 100 % é", "<b>Reading &lt;a&gt; &amp; 100 % é</b>"},
      {"", "", "<b></b>"},
      {nullptr, "Please wait", "<b>Please wait</b>"},
  };
  EXPECT_STREQ(gtk_label_get_label(busy()->message_label), "<b>Please wait</b>");
  EXPECT_STREQ(gtk_window_get_title(busy()->window), "Please wait");
  for (const Row &row : rows) {
    v_window_stack_set_busy_window_message(stack.get(), row.message);
    EXPECT_STREQ(gtk_label_get_label(busy()->message_label), row.markup);
    EXPECT_STREQ(gtk_label_get_text(busy()->message_label), row.text);
    EXPECT_TRUE(gtk_label_get_use_markup(busy()->message_label));
    EXPECT_STREQ(gtk_window_get_title(busy()->window), row.text);
  }
  v_window_stack_set_busy_window_message_utf8_printf(stack.get(), "%d & \"%s\"", 3, "<%d>");
  EXPECT_STREQ(gtk_label_get_text(busy()->message_label), "3 & \"<%d>\"");
}

TEST_F(BusyWindow, ShrinksToItsMessage) {
  const auto get_width = [&] {
    int width = 0;
    gtk_window_get_size(busy()->window, &width, nullptr);
    return width;
  };
  v_window_stack_set_busy_window_message(stack.get(), std::string(90, 'm').c_str());
  ASSERT_TRUE(wait_until([&] { return get_width() > 600; }));
  v_window_stack_set_busy_window_message(stack.get(), "m");
  EXPECT_TRUE(wait_until([&] { return get_width() == 322; }));
}

TEST_F(BusyWindow, AbortIsARequest) {
  EXPECT_FALSE(v_window_stack_is_abort_requested(stack.get()));
  v_window_stack_hide_abort_button(stack.get());
  EXPECT_EQ(busy()->abort_button, nullptr);

  v_window_stack_show_abort_button(stack.get());
  GtkWidget *button = GTK_WIDGET(busy()->abort_button);
  GtkWidget *alignment = GTK_WIDGET(busy()->abort_button_alignment);
  EXPECT_STREQ(gtk_button_get_label(GTK_BUTTON(button)), "Abort");
  EXPECT_TRUE(gtk_widget_get_mapped(button));
  EXPECT_EQ(gtk_widget_get_parent(alignment), GTK_WIDGET(busy()->content_box));
  float x_align = -1;
  float y_align = -1;
  float x_scale = -1;
  float y_scale = -1;
  g_object_get(alignment, "xalign", &x_align, "yalign", &y_align, "xscale", &x_scale, "yscale",
               &y_scale, nullptr);
  EXPECT_EQ((std::vector{x_align, y_align, x_scale, y_scale}),
            (std::vector{0.5f, 0.0f, 0.0f, 0.0f}));

  gtk_button_clicked(GTK_BUTTON(button));
  EXPECT_TRUE(v_window_stack_is_abort_requested(stack.get()));
  EXPECT_FALSE(gtk_widget_get_sensitive(button));
  v_window_stack_hide_abort_button(stack.get());
  EXPECT_FALSE(gtk_widget_get_mapped(button));
  EXPECT_TRUE(v_window_stack_is_abort_requested(stack.get()));
  v_window_stack_show_abort_button(stack.get());
  EXPECT_EQ(GTK_WIDGET(busy()->abort_button), button);
  EXPECT_TRUE(gtk_widget_get_mapped(button));

  v_window_stack_push_native_window(stack.get());
  EXPECT_FALSE(v_window_stack_is_abort_requested(stack.get()));
  v_window_stack_pop_window(stack.get());
  v_window_stack_busy_end(stack.get());
  EXPECT_FALSE(v_window_stack_is_abort_requested(stack.get()));
}

TEST_F(BusyWindow, IsNotEndedByAPopOrByTheUser) {
  WindowStackNode *node = top();
  v_window_stack_pop_window(stack.get());
  EXPECT_EQ(top(), node);
  gtk_window_close(busy()->window);
  EXPECT_TRUE(holds_for(
      100, [this] { return busy()->window != nullptr && gtk_widget_get_visible(busy_widget()); }));
}

TEST_F(BusyWindow, IsDestroyedAtTheEnd) {
  GtkWindow *busy_window = busy()->window;
  bool is_destroyed = false;
  g_signal_connect(busy_window, "destroy",
                   G_CALLBACK(+[](GtkWidget *, bool *flag) { *flag = true; }), &is_destroyed);
  v_window_stack_busy_end(stack.get());
  EXPECT_TRUE(is_destroyed);
  EXPECT_TRUE(is_sensitive(window));
  EXPECT_EQ(name_cursor(window), "none");
  EXPECT_EQ(top()->window, window.get());
  v_window_stack_busy_end(stack.get());
  EXPECT_EQ(top()->window, window.get());
}

TEST_F(BusyWindow, IsHiddenWhileAWindowIsAbove) {
  TestWindow dialog;
  v_window_stack_push_window(stack.get(), dialog.get());
  WindowStackNode *busy_node = top()->previous;
  GtkWidget *busy_window = GTK_WIDGET(busy_node->busy->window);
  EXPECT_FALSE(gtk_widget_get_visible(busy_window));
  EXPECT_EQ(gtk_window_get_transient_for(dialog.get()), window.get());
  // Calls for the busy window do nothing now.
  v_window_stack_set_busy_window_message(stack.get(), "other");
  v_window_stack_show_abort_button(stack.get());
  v_window_stack_show_busy_window(stack.get());
  v_window_stack_busy_end(stack.get());
  EXPECT_STREQ(gtk_window_get_title(GTK_WINDOW(busy_window)), "Please wait");
  EXPECT_EQ(busy_node->busy->abort_button, nullptr);
  EXPECT_EQ(top()->window, dialog.get());

  v_window_stack_pop_window(stack.get());
  EXPECT_TRUE(gtk_widget_get_visible(busy_window));
  EXPECT_FALSE(is_sensitive(window));
  EXPECT_EQ(name_cursor(window), "wait");
}

TEST_F(BusyWindow, IsHiddenWhileANativeDialogIsAbove) {
  GtkWidget *busy_window = busy_widget();
  EXPECT_EQ(v_window_stack_push_native_window(stack.get()), window.get());
  EXPECT_FALSE(gtk_widget_get_visible(busy_window));
  v_window_stack_pop_window(stack.get());
  EXPECT_TRUE(gtk_widget_get_visible(busy_window));
}

TEST_F(BusyWindow, OfAnInnerTaskReplacesThatOfTheOuterOne) {
  GtkWidget *outer = busy_widget();
  v_window_stack_busy_begin(stack.get(), ShowBusyWindow::no);
  EXPECT_TRUE(gtk_widget_get_visible(outer));
  v_window_stack_set_busy_window_message(stack.get(), "without a window");
  v_window_stack_show_busy_window(stack.get());
  GtkWidget *inner = busy_widget();
  EXPECT_NE(inner, outer);
  EXPECT_FALSE(gtk_widget_get_visible(outer));
  EXPECT_TRUE(gtk_widget_get_visible(inner));
  v_window_stack_show_busy_window(stack.get());
  EXPECT_EQ(busy_widget(), inner);

  // A third task without a window shows the window of the second.
  v_window_stack_busy_begin(stack.get(), ShowBusyWindow::no);
  v_window_stack_push_native_window(stack.get());
  EXPECT_FALSE(gtk_widget_get_visible(inner));
  v_window_stack_pop_window(stack.get());
  EXPECT_TRUE(gtk_widget_get_visible(inner));
  EXPECT_FALSE(gtk_widget_get_visible(outer));

  v_window_stack_busy_end(stack.get());
  v_window_stack_busy_end(stack.get());
  EXPECT_TRUE(gtk_widget_get_visible(outer));
  EXPECT_FALSE(is_sensitive(window));
  v_window_stack_busy_end(stack.get());
  EXPECT_TRUE(is_sensitive(window));
}

TEST_F(WindowStack, ABusyWindowMayBeTheFirstWindow) {
  v_window_stack_busy_begin(stack.get(), ShowBusyWindow::yes);
  EXPECT_TRUE(gtk_widget_get_visible(GTK_WIDGET(busy()->window)));
  EXPECT_EQ(gtk_window_get_transient_for(busy()->window), nullptr);
  EXPECT_FALSE(gtk_window_get_modal(busy()->window));
  v_window_stack_present(stack.get());
  v_window_stack_busy_end(stack.get());
  EXPECT_EQ(stack->bottom->next.get(), stack->top);
}

// The stack destroys no windows, so its busy window remains and the user has to close it.
TEST_F(BusyWindow, CanBeClosedAfterTheStackIsDestroyed) {
  v_window_stack_show_abort_button(stack.get());
  const OwnedObject<GtkWindow> left = share(busy()->window);
  GtkButton *abort_button = busy()->abort_button;
  stack.reset();
  gtk_button_clicked(abort_button);
  bool is_destroyed = false;
  g_signal_connect(left.get(), "destroy",
                   G_CALLBACK(+[](GtkWidget *, bool *flag) { *flag = true; }), &is_destroyed);
  gtk_window_close(left.get());
  EXPECT_TRUE(wait_until([&] { return is_destroyed; }));
}

TEST(Events, AreHandledUntilNoneIsPending) {
  int calls = 0;
  for (int i = 0; i < 3; ++i) {
    g_idle_add(
        [](void *data) -> gboolean {
          ++*static_cast<int *>(data);
          return G_SOURCE_REMOVE;
        },
        &calls);
  }
  v_util_let_through_gtk_events();
  EXPECT_EQ(calls, 3);
  EXPECT_FALSE(gtk_events_pending());
}

} // namespace
