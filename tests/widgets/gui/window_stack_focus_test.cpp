#include "window_stack_fixture.h"

#include <algorithm>
#include <optional>
#include <vector>

namespace {

// The time of day (microseconds) of a stopped clock; the real clock runs while it is not set.
std::optional<gint64> time_of_day;

} // namespace

// The linker redirects the program's calls to the wrapped function.
gint64 real_get_real_time() __asm__("__real_g_get_real_time");
gint64 wrapped_get_real_time() __asm__("__wrap_g_get_real_time");

gint64 wrapped_get_real_time() { return time_of_day ? *time_of_day : real_get_real_time(); }

namespace {

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
    EXPECT_TRUE(holds_for(past_focus_loss, "a program with the focus",
                          [&] { return stack->focus_lost == 0; }));
    v_window_stack_pop_window(stack.get());
  }
  ASSERT_TRUE(wait_until("the keyboard in the main window", [&] {
    return gtk_window_has_toplevel_focus(main_window.get()) != FALSE;
  }));
  EXPECT_TRUE(holds_for(past_focus_loss, "a program with the focus",
                        [&] { return stack->focus_lost == 0; }));
  EXPECT_TRUE(stack->sources.empty());
  EXPECT_TRUE(reports.seconds.empty());
}

TEST_F(WindowStack, ReportsOnceWhenTheFocusReturnsFromAnotherProgram) {
  FocusReports reports;
  v_window_stack_set_focus_callback(stack.get(), report, &reports);
  TestWindow main_window;
  open(main_window);
  ASSERT_TRUE(wait_until("an end of the focus changes", [&] { return stack->sources.empty(); }));
  const StoppedClock clock(noon);
  {
    TestWindow other_program;
    const gint64 begin = g_get_monotonic_time();
    other_program.show_active();
    ASSERT_TRUE(wait_until("the loss of the focus", [&] { return stack->focus_lost == 1; }));
    EXPECT_GE(g_get_monotonic_time() - begin, 500'000);
    settle();
    EXPECT_EQ(stack->focus_lost, 1);
    EXPECT_TRUE(reports.seconds.empty());
    time_of_day = noon + 2'200'000;
  }
  ASSERT_TRUE(wait_until("a report", [&] { return !reports.seconds.empty(); }));
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
  EXPECT_TRUE(wait_until("the loss of the focus", [&] { return stack->focus_lost == 1; }));
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
    ASSERT_TRUE(
        wait_until("an end of the focus changes", [&] { return another->sources.empty(); }));
    send_focus_event(window, false);
    ASSERT_EQ(another->sources.size(), 1u);
    const guint first = another->sources[0];
    ASSERT_TRUE(wait_until("the second source",
                           [&] { return !is_waiting || another->sources != std::vector{first}; }));
    ASSERT_FALSE(another->sources.empty());
    sources.insert(sources.end(), another->sources.begin(), another->sources.end());
    another.reset();
    EXPECT_TRUE(all_are_gone());
  }
  EXPECT_TRUE(holds_for(past_focus_loss, "no source of the stack", all_are_gone));
}

} // namespace
