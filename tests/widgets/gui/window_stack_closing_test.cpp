#include "window_stack_fixture.h"

#include <functional>

#include "gui/accessibility.h"
#include "gui/message_dialogs.h"
#include "gui/owned_objects.h"

namespace {

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

} // namespace
