#include "support/gui/waiting.h"

#include <cstdio>
#include <cstdlib>
#include <memory>

#include "support/gui/widget_search.h"

namespace {

constexpr unsigned look_interval = 10; // milliseconds

void run_main_loop_briefly() {
  if (!g_main_context_iteration(nullptr, FALSE)) {
    g_usleep(1000);
  }
}

gboolean run_action(void *action) {
  (*static_cast<std::function<void()> *>(action))();
  return G_SOURCE_REMOVE;
}

struct Step {
  std::string what;
  std::function<bool()> ready;
  std::function<void()> action;
  Wait wait;
};

// Each look has a source of its own, because the action may wait in a nested loop.
void look(const std::shared_ptr<Step> &step) {
  if (!gtk_events_pending() && step->ready()) {
    step->action();
  } else {
    end_if_too_long(step->wait, step->what);
    after(look_interval, [step] { look(step); });
  }
}

GtkDialog *find_active_dialog() {
  for (GtkWindow *window : shown_windows()) {
    if (GTK_IS_DIALOG(window) && gtk_window_is_active(window)) {
      return GTK_DIALOG(window);
    }
  }
  return nullptr;
}

} // namespace

std::string describe_failure(const Wait &wait, const std::string &what) {
  return wait.describe_failure(what) + ". Windows:" + describe_windows();
}

void end_if_too_long(Wait &wait, const std::string &what) {
  if (wait.is_too_long()) {
    std::fprintf(stderr, "%s\n", describe_failure(wait, what).c_str());
    std::abort();
  }
}

Hold::Hold(unsigned milliseconds) : end(begin + gint64{1000} * milliseconds) {}

bool Hold::is_over(const std::function<bool()> &condition) {
  latest = g_get_monotonic_time();
  held = condition();
  return !held || latest >= end;
}

testing::AssertionResult Hold::result(const std::string &what) const {
  if (held) {
    return testing::AssertionSuccess();
  }
  return testing::AssertionFailure()
         << "There was not " << what << " any more after " << format_seconds(latest - begin)
         << " of " << format_seconds(end - begin) << ". Windows:" << describe_windows();
}

void settle() {
  do {
    while (gtk_events_pending()) {
      gtk_main_iteration();
    }
    gdk_display_sync(gdk_display_get_default());
  } while (gtk_events_pending());
}

testing::AssertionResult wait_until(const std::string &what,
                                    const std::function<bool()> &condition) {
  Wait wait;
  while (!condition()) {
    if (wait.is_too_long()) {
      return testing::AssertionFailure() << describe_failure(wait, what);
    }
    run_main_loop_briefly();
  }
  return testing::AssertionSuccess();
}

testing::AssertionResult holds_for(unsigned milliseconds, const std::string &what,
                                   const std::function<bool()> &condition) {
  Hold hold(milliseconds);
  while (!hold.is_over(condition)) {
    run_main_loop_briefly();
  }
  return hold.result(what);
}

void after(unsigned milliseconds, std::function<void()> action) {
  auto *kept = new std::function<void()>(std::move(action));
  g_timeout_add_full(G_PRIORITY_DEFAULT, milliseconds, run_action, kept,
                     [](void *data) { delete static_cast<std::function<void()> *>(data); });
}

void when(std::string what, std::function<bool()> ready, std::function<void()> action) {
  const auto step =
      std::make_shared<Step>(Step{std::move(what), std::move(ready), std::move(action), Wait{}});
  after(look_interval, [step] { look(step); });
}

void when_active(GtkWindow *window, std::function<void()> action) {
  when(
      "the window to be active", [window] { return gtk_window_is_active(window) != FALSE; },
      std::move(action));
}

void when_dialog_shows(std::function<void(GtkDialog *)> action) {
  when(
      "an active dialog", [] { return find_active_dialog() != nullptr; },
      [action = std::move(action)] { action(find_active_dialog()); });
}
