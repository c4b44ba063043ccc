#include "gui/window_stack.h"

#include "base/text_buffer.h"
#include "covered_windows.h"
#include "gui/key_guard.h"
#include "gui/owned_objects.h"
#include "program_focus.h"
#include "window_cursors.h"

// One call of v_window_stack_run_window. The record is in the stack frame of that call, so it
// outlives its window, and may outlive its entry and the window stack.
struct VWindowRun {
  VWindowStack *stack = nullptr;   // null once the stack is destroyed
  WindowStackNode *node = nullptr; // null once the entry is removed
  VWindowRun *outer = nullptr;     // the call in whose main loop this one was made
  guint main_level = 0;            // gtk_main_level in its main loop
  guint maximize_source = 0;       // 0 when no callback is pending
  bool is_over = false;            // the window is destroyed
};

namespace {

// ---- Entries ------------------------------------------------------------------------------------

VBusyRecord *top_busy_record(const VWindowStack *stack) {
  return v_window_entries_get_top(stack)->busy.get();
}

VBusyRecord *top_busy_record_with_window(const VWindowStack *stack) {
  VBusyRecord *busy = top_busy_record(stack);
  return busy != nullptr && busy->window != nullptr ? busy : nullptr;
}

WindowStackNode *add_entry(VWindowStack *stack, GtkWindow *window) {
  WindowStackNode *node = v_window_entries_add(stack, window);
  if (window != nullptr) {
    v_covered_windows_guard(node);
    v_program_focus_watch(node);
  }
  return node;
}

void remove_entry(WindowStackNode *node) {
  if (node->run != nullptr) {
    node->run->node = nullptr;
  }
  v_window_entries_remove(node);
}

// The nearest entry below that has a window of its own; null when there is none.
WindowStackNode *find_entry_to_cover(const WindowStackNode *node) {
  WindowStackNode *below = node->previous;
  while (below != nullptr && below->window == nullptr) {
    below = below->previous;
  }
  return below;
}

void hide_busy_windows_directly_below(const WindowStackNode *node) {
  for (node = node->previous; node->busy; node = node->previous) {
    if (node->busy->window != nullptr) {
      gtk_widget_hide(GTK_WIDGET(node->busy->window));
    }
  }
}

void show_busy_window_below(VWindowStack *stack) {
  const WindowStackNode *node = v_window_entries_get_top(stack);
  while (node->busy && node->busy->window == nullptr) {
    node = node->previous;
  }
  if (node->busy) {
    gtk_widget_show(GTK_WIDGET(node->busy->window));
    v_util_let_through_gtk_events();
  }
}

// Makes the new top entry usable again, or shows that it is busy.
void uncover_top_entry(VWindowStack *stack) {
  WindowStackNode *node = v_window_entries_get_top(stack);
  if (node->busy) {
    show_busy_window_below(stack);
    v_window_cursors_show_wait(stack);
  } else if (node != stack->bottom.get()) {
    if (node->window != nullptr) {
      v_covered_windows_uncover(node);
    }
    v_window_cursors_clear_top(stack);
  }
}

// ---- Running ------------------------------------------------------------------------------------

// Called when idle after "realize".
gboolean maximize_idle_callback(void *data) {
  auto *run = static_cast<VWindowRun *>(data);
  run->maximize_source = 0;
  if (run->node != nullptr) {
    gtk_window_maximize(run->node->window);
  }
  return G_SOURCE_REMOVE;
}

// "realize" of a window to be maximized. Some window managers ignore a request made before the
// window is shown, others one made after, so the stack makes both.
void run_realize_callback(GtkWidget *, VWindowRun *run) {
  if (run->maximize_source == 0) {
    run->maximize_source = g_idle_add(maximize_idle_callback, run);
  }
}

// The entry may be below the top, because other code may destroy its window.
void remove_entry_of(VWindowRun *run) {
  if (run->node == nullptr) {
    return;
  }
  const bool was_top = run->node == v_window_entries_get_top(run->stack);
  remove_entry(run->node);
  if (was_top) {
    uncover_top_entry(run->stack);
  }
}

// Only the innermost main loop can be quit. An outer one is quit by end_run of the call inside it.
void quit_main_loop_if_innermost(const VWindowRun *run) {
  if (gtk_main_level() == run->main_level) {
    gtk_main_quit();
  }
}

// "destroy" of the window.
void run_destroy_callback(GtkWidget *, VWindowRun *run) {
  run->is_over = true;
  if (run->maximize_source != 0) {
    g_source_remove(run->maximize_source);
    run->maximize_source = 0;
  }
  remove_entry_of(run);
  quit_main_loop_if_innermost(run);
}

void begin_run(VWindowRun *run, VWindowStack *stack) {
  run->stack = stack;
  run->node = v_window_entries_get_top(stack);
  run->node->run = run;
  run->outer = stack->innermost_run;
  run->main_level = gtk_main_level() + 1;
  stack->innermost_run = run;
}

void end_run(VWindowRun *run) {
  if (run->stack != nullptr) {
    run->stack->innermost_run = run->outer;
  }
  if (run->outer != nullptr && run->outer->is_over) {
    quit_main_loop_if_innermost(run->outer);
  }
}

} // namespace

OwnedWindowStack v_window_stack_new() {
  v_key_guard_install();
  OwnedWindowStack stack(new VWindowStack);
  v_window_entries_init(stack.get());
  return stack;
}

void v_window_stack_destroy(VWindowStack *window_stack) {
  if (window_stack == nullptr) {
    return;
  }
  v_program_focus_stop(window_stack);
  while (!v_window_entries_is_empty(window_stack)) {
    remove_entry(v_window_entries_get_top(window_stack));
  }
  for (VWindowRun *run = window_stack->innermost_run; run != nullptr; run = run->outer) {
    run->stack = nullptr;
  }
  delete window_stack;
}

void v_window_stack_push_window(VWindowStack *window_stack, GtkWindow *window) {
  const WindowStackNode *node = add_entry(window_stack, window);
  hide_busy_windows_directly_below(node);
  WindowStackNode *covered = find_entry_to_cover(node);
  if (covered == nullptr) {
    gtk_window_set_transient_for(window, nullptr);
    gtk_window_set_destroy_with_parent(window, FALSE);
    gtk_window_set_modal(window, FALSE);
    gtk_window_set_skip_taskbar_hint(window, FALSE);
    return;
  }
  gtk_window_set_position(window, GTK_WIN_POS_CENTER_ON_PARENT);
  v_covered_windows_cover_with(covered, window);
  v_window_cursors_show_standard_below_top(window_stack);
}

GtkWindow *v_window_stack_push_native_window(VWindowStack *window_stack) {
  const WindowStackNode *node = add_entry(window_stack, nullptr);
  hide_busy_windows_directly_below(node);
  WindowStackNode *covered = find_entry_to_cover(node);
  if (covered == nullptr) {
    return nullptr;
  }
  v_covered_windows_cover(covered);
  v_window_cursors_show_standard_below_top(window_stack);
  return covered->window;
}

void v_window_stack_pop_window(VWindowStack *window_stack) {
  WindowStackNode *node = v_window_entries_get_top(window_stack);
  if (v_window_entries_is_empty(window_stack) || node->busy) {
    return;
  }
  remove_entry(node);
  uncover_top_entry(window_stack);
}

void v_window_stack_run_window(VWindowStack *window_stack, GtkWindow *window, Maximize maximize,
                               GtkWidget *focus_widget, VCursorCallback cursor_callback,
                               void *cursor_callback_data) {
  const OwnedObject<GtkWindow> held = share(window);
  v_window_stack_push_window(window_stack, window);
  if (cursor_callback != nullptr) {
    v_window_stack_set_mouse_cursor_callback(window_stack, cursor_callback, cursor_callback_data);
  }
  VWindowRun run;
  begin_run(&run, window_stack);
  g_signal_connect(window, "destroy", G_CALLBACK(run_destroy_callback), &run);
  if (maximize == Maximize::yes) {
    gtk_window_maximize(window);
    g_signal_connect(window, "realize", G_CALLBACK(run_realize_callback), &run);
  }
  gtk_widget_show(GTK_WIDGET(window));
  if (!run.is_over) { // handlers of showing may have destroyed the window
    gtk_window_set_focus(window, focus_widget);
    gtk_main();
  }
  if (!run.is_over) {
    gtk_widget_destroy(GTK_WIDGET(window));
  }
  end_run(&run);
}

void v_window_stack_set_mouse_cursor_callback(VWindowStack *window_stack, VCursorCallback callback,
                                              void *data) {
  WindowStackNode *node = v_window_entries_get_top(window_stack);
  node->cursor_callback = callback;
  node->cursor_callback_data = data;
}

void v_window_stack_set_focus_callback(VWindowStack *window_stack, VFocusCallback callback,
                                       void *data) {
  window_stack->focus_callback = callback;
  window_stack->focus_callback_data = data;
}

void v_window_stack_present(VWindowStack *window_stack) {
  for (const WindowStackNode *node = v_window_entries_get_top(window_stack); node != nullptr;
       node = node->previous) {
    if (GtkWindow *window = v_window_entries_get_window(node)) {
      gtk_window_present(window);
      return;
    }
  }
}

void v_window_stack_busy_begin(VWindowStack *window_stack, ShowBusyWindow show_window) {
  add_entry(window_stack, nullptr)->busy = std::make_unique<VBusyRecord>();
  if (show_window == ShowBusyWindow::yes) {
    v_window_stack_show_busy_window(window_stack);
  } else {
    v_window_cursors_show_wait(window_stack);
  }
}

void v_window_stack_show_busy_window(VWindowStack *window_stack) {
  WindowStackNode *node = v_window_entries_get_top(window_stack);
  if (!node->busy || node->busy->window != nullptr) {
    return;
  }
  v_busy_window_build(node->busy.get());
  v_busy_window_set_message(node->busy.get(), nullptr);
  hide_busy_windows_directly_below(node);
  if (WindowStackNode *covered = find_entry_to_cover(node)) {
    v_covered_windows_cover_with(covered, node->busy->window);
  }
  gtk_widget_show_all(GTK_WIDGET(node->busy->window));
  v_util_let_through_gtk_events();
  v_window_cursors_show_wait(window_stack);
}

void v_window_stack_busy_end(VWindowStack *window_stack) {
  const VBusyRecord *busy = top_busy_record(window_stack);
  if (busy == nullptr) {
    return;
  }
  GtkWindow *window = busy->window;
  remove_entry(v_window_entries_get_top(window_stack));
  if (window != nullptr) {
    gtk_widget_destroy(GTK_WIDGET(window));
  }
  uncover_top_entry(window_stack);
}

void v_window_stack_set_busy_window_message(VWindowStack *window_stack, const char *message) {
  if (VBusyRecord *busy = top_busy_record_with_window(window_stack)) {
    v_busy_window_set_message(busy, message);
  }
}

void v_window_stack_set_busy_window_message_utf8_printf(VWindowStack *window_stack,
                                                        const char *format, ...) {
  V_FORMAT_ARGUMENTS(message, format);
  v_window_stack_set_busy_window_message(window_stack, message.get());
}

void v_window_stack_show_abort_button(VWindowStack *window_stack) {
  if (VBusyRecord *busy = top_busy_record_with_window(window_stack)) {
    v_busy_window_show_abort_button(busy);
  }
}

void v_window_stack_hide_abort_button(VWindowStack *window_stack) {
  if (VBusyRecord *busy = top_busy_record_with_window(window_stack)) {
    v_busy_window_hide_abort_button(busy);
  }
}

bool v_window_stack_is_abort_requested(const VWindowStack *window_stack) {
  const VBusyRecord *busy = top_busy_record(window_stack);
  return busy != nullptr && busy->abort_requested != 0;
}
