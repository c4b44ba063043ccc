#include "gui/editing/draft_timer.h"

namespace {

// Short enough that, with the time for writing and the main loop's delay, a draft lacks no change
// for more than two seconds.
constexpr guint delay = 1000; // milliseconds

} // namespace

void VDraftTimer::start() {
  if (source == 0) {
    // Keys and drawing have precedence.
    source = g_timeout_add_full(G_PRIORITY_DEFAULT_IDLE, delay, timeout_callback, this, nullptr);
  }
}

void VDraftTimer::stop() { g_clear_handle_id(&source, g_source_remove); }

gboolean VDraftTimer::timeout_callback(void *timer) {
  auto *draft_timer = static_cast<VDraftTimer *>(timer);
  draft_timer->source = 0;
  if (!draft_timer->write_callback(draft_timer->callback_data)) {
    draft_timer->start(); // a full disk may have room by then
  }
  return G_SOURCE_REMOVE;
}
