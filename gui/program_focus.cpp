#include "program_focus.h"

namespace {

constexpr guint focus_loss_delay = 500; // milliseconds

VTimeValue get_current_time() { return v_time_value_from_microseconds(g_get_real_time()); }

bool has_focus(const VWindowStack *stack) {
  for (WindowStackNode *entry = stack->bottom->next.get(); entry != stack->top;
       entry = entry->next.get()) {
    GtkWindow *window = v_window_entries_get_window(entry);
    if (window != nullptr && gtk_window_has_toplevel_focus(window)) {
      return true;
    }
  }
  return false;
}

// Drops the id of the running source, which the returned G_SOURCE_REMOVE removes.
gboolean end_current_source(VWindowStack *stack) {
  std::erase(stack->sources, g_source_get_id(g_main_current_source()));
  return G_SOURCE_REMOVE;
}

gboolean focus_loss_timeout_callback(void *data) {
  auto *stack = static_cast<VWindowStack *>(data);
  if (!has_focus(stack)) {
    stack->focus_lost = 1;
  }
  return end_current_source(stack);
}

gboolean focus_loss_idle_callback(void *data) {
  auto *stack = static_cast<VWindowStack *>(data);
  stack->sources.push_back(g_timeout_add_full(G_PRIORITY_LOW, focus_loss_delay,
                                              focus_loss_timeout_callback, stack, nullptr));
  return end_current_source(stack);
}

// "focus-out-event" of a watched window. The check is delayed, because another window of the
// program may be about to get the focus.
gboolean focus_out_event_callback(GtkWidget *, GdkEventFocus *, WindowStackNode *entry) {
  VWindowStack *stack = entry->stack;
  stack->focus_lost_time = get_current_time();
  stack->sources.push_back(
      g_idle_add_full(G_PRIORITY_LOW, focus_loss_idle_callback, stack, nullptr));
  return GDK_EVENT_PROPAGATE;
}

// "focus-in-event" of a watched window.
gboolean focus_in_event_callback(GtkWidget *, GdkEventFocus *, WindowStackNode *entry) {
  VWindowStack *stack = entry->stack;
  if (stack->focus_lost == 0) {
    return GDK_EVENT_PROPAGATE;
  }
  stack->focus_lost = 0;
  if (stack->focus_callback != nullptr) {
    stack->focus_callback(
        v_time_value_count_whole_seconds(stack->focus_lost_time, get_current_time()),
        stack->focus_callback_data);
  }
  return GDK_EVENT_PROPAGATE;
}

} // namespace

void v_program_focus_watch(WindowStackNode *entry) {
  g_signal_connect(entry->window, "focus-in-event", G_CALLBACK(focus_in_event_callback), entry);
  g_signal_connect(entry->window, "focus-out-event", G_CALLBACK(focus_out_event_callback), entry);
}

void v_program_focus_stop(VWindowStack *stack) {
  for (guint source : stack->sources) {
    g_source_remove(source);
  }
  stack->sources.clear();
}
