#include "gui/window_entries.h"

namespace {

void disconnect(WindowStackNode *entry) {
  if (entry->window != nullptr) {
    g_signal_handlers_disconnect_by_data(entry->window, entry);
  }
  if (entry->busy) {
    v_busy_window_disconnect(entry->busy.get());
  }
}

// "destroy" of an entry's window. The entry remains in the list.
void destroy_callback(GtkWidget *, WindowStackNode *entry) {
  disconnect(entry);
  entry->window = nullptr;
  entry->focus_widget.reset();
}

} // namespace

void v_window_entries_init(VWindowStack *stack) {
  stack->bottom = std::make_unique<WindowStackNode>();
  stack->bottom->next = std::make_unique<WindowStackNode>();
  stack->top = stack->bottom->next.get();
  stack->top->previous = stack->bottom.get();
}

WindowStackNode *v_window_entries_get_top(const VWindowStack *stack) {
  return stack->top->previous;
}

bool v_window_entries_is_empty(const VWindowStack *stack) {
  return v_window_entries_get_top(stack) == stack->bottom.get();
}

GtkWindow *v_window_entries_get_window(const WindowStackNode *entry) {
  return entry->busy ? entry->busy->window : entry->window;
}

WindowStackNode *v_window_entries_add(VWindowStack *stack, GtkWindow *window) {
  auto added = std::make_unique<WindowStackNode>();
  WindowStackNode *entry = added.get();
  entry->window = window;
  entry->stack = stack;
  entry->previous = v_window_entries_get_top(stack);
  entry->next = std::move(entry->previous->next);
  entry->previous->next = std::move(added);
  stack->top->previous = entry;
  if (window != nullptr) {
    g_signal_connect(window, "destroy", G_CALLBACK(destroy_callback), entry);
  }
  return entry;
}

void v_window_entries_remove(WindowStackNode *entry) {
  disconnect(entry);
  entry->next->previous = entry->previous;
  // The entry is destroyed on return, when it no longer owns the entries above it.
  const std::unique_ptr<WindowStackNode> removed = std::move(entry->previous->next);
  removed->previous->next = std::move(removed->next);
}
