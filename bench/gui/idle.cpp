#include "idle.h"

#include <memory>
#include <utility>

#include <gtk/gtk.h>

namespace {

constexpr int quiet_milliseconds = 100;

struct Waiting {
  Stopwatch stopwatch;
  std::function<void(double seconds)> act;
  double seconds = 0;
};

std::unique_ptr<Waiting> waiting;

gboolean act_callback(void *data) {
  const std::unique_ptr<Waiting> ready(static_cast<Waiting *>(data));
  ready->act(ready->seconds);
  return G_SOURCE_REMOVE;
}

// Replaces the main loop's wait, which begins when all work is done.
gint poll(GPollFD *descriptors, guint count, gint timeout) {
  const bool would_be_quiet = timeout < 0 || timeout >= quiet_milliseconds;
  if (!waiting || !would_be_quiet) {
    return g_poll(descriptors, count, timeout);
  }
  waiting->seconds = waiting->stopwatch.seconds();
  const gint events = g_poll(descriptors, count, quiet_milliseconds);
  if (events == 0) {
    g_idle_add(act_callback, waiting.release());
  }
  return events;
}

} // namespace

void v_bench_when_idle(const Stopwatch &stopwatch, std::function<void(double seconds)> act) {
  g_main_context_set_poll_func(nullptr, poll);
  waiting = std::make_unique<Waiting>(Waiting{stopwatch, std::move(act)});
}

double v_bench_run_until_idle(const Stopwatch &stopwatch) {
  double result = 0;
  v_bench_when_idle(stopwatch, [&result](double seconds) {
    result = seconds;
    gtk_main_quit();
  });
  gtk_main();
  return result;
}
