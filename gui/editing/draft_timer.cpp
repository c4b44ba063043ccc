#include "gui/editing/draft_timer.h"

#include <csignal>
#include <initializer_list>

#include <glib-unix.h>

namespace {

// Short enough that, including the time for writing and the main loop's delay, a draft is never
// more than two seconds behind.
constexpr guint delay = 1000; // milliseconds

// The timer whose draft lacks a change; null for none. There is at most one, because only the top
// window can be edited.
VDraftTimer *due_timer = nullptr;

// Afterwards the signal ends the program by its default action.
gboolean ending_signal_callback(void *signal_number) {
  if (due_timer != nullptr) {
    due_timer->write_now();
  }
  const int number = GPOINTER_TO_INT(signal_number);
  std::signal(number, SIG_DFL);
  std::raise(number);
  return G_SOURCE_CONTINUE;
}

// True for instance in a program that is meant to outlive its terminal (nohup).
bool is_ignored(int signal_number) {
  struct sigaction action = {};
  return sigaction(signal_number, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

// Handles the signals with which a user, a terminal or the end of a session ends a program. The
// handlers are never removed: a signal that arrives at that moment would be lost.
void watch_ending_signals() {
  static bool are_watched = false;
  if (are_watched) {
    return;
  }
  are_watched = true;
  for (const int number : {SIGTERM, SIGHUP, SIGINT}) {
    if (!is_ignored(number)) {
      g_unix_signal_add(number, ending_signal_callback, GINT_TO_POINTER(number));
    }
  }
}

} // namespace

void VDraftTimer::start() {
  if (source == 0) {
    // Keys and drawing have precedence.
    source = g_timeout_add_full(G_PRIORITY_DEFAULT_IDLE, delay, timeout_callback, this, nullptr);
    due_timer = this;
    watch_ending_signals();
  }
}

void VDraftTimer::stop() {
  g_clear_handle_id(&source, g_source_remove);
  if (due_timer == this) {
    due_timer = nullptr;
  }
}

void VDraftTimer::write_now() {
  stop();
  if (!write_callback(callback_data)) {
    start(); // a full disk may have space by then
  }
}

gboolean VDraftTimer::timeout_callback(void *timer) {
  auto *draft_timer = static_cast<VDraftTimer *>(timer);
  draft_timer->source = 0;
  draft_timer->write_now();
  return G_SOURCE_REMOVE;
}
