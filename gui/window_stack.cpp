#include "gui/window_stack.h"

#include <cstdarg>

#include "gui/css.h"
#include "gui/key_guard.h"
#include "gui/owned_objects.h"
#include "gui/widgets.h"

// One call of v_window_stack_run_window. It waits on the call stack, so it outlives its window, and
// may outlive its entry and the window stack.
struct VWindowRun {
  VWindowStack *stack = nullptr;   // null once the stack is destroyed
  WindowStackNode *node = nullptr; // null once the entry is gone
  VWindowRun *outer = nullptr;     // the call in whose main loop this one was made
  guint main_level = 0;            // of its main loop
  guint maximize_source = 0;       // 0 when none is under way
  bool is_over = false;            // the window is destroyed
};

namespace {

constexpr guint focus_loss_delay = 500; // milliseconds

enum class Cursor { standard, wait };
enum class LeaveOutTop { no, yes };
enum class ClearTop { no, yes };

// ---- Entries ------------------------------------------------------------------------------------

GtkWindow *own_window(const WindowStackNode *node) {
  return node->busy ? node->busy->window : node->window;
}

// The topmost entry, or the bottom sentinel.
WindowStackNode *top_entry(const VWindowStack *stack) { return stack->top->previous; }

VBusyRecord *top_busy_record(const VWindowStack *stack) { return top_entry(stack)->busy.get(); }

VBusyRecord *top_busy_record_with_window(const VWindowStack *stack) {
  VBusyRecord *busy = top_busy_record(stack);
  return busy != nullptr && busy->window != nullptr ? busy : nullptr;
}

void disconnect(WindowStackNode *node) {
  if (GtkWindow *window = own_window(node)) {
    g_signal_handlers_disconnect_by_data(window, node);
  }
  if (node->busy && node->busy->abort_button != nullptr) {
    g_signal_handlers_disconnect_by_data(node->busy->abort_button, node);
  }
}

// Whatever destroys the window, the entry no longer knows of it.
void destroy_callback(GtkWidget *, WindowStackNode *node) {
  disconnect(node);
  node->window = nullptr;
  node->focus_widget.reset();
  if (node->busy) {
    *node->busy = VBusyRecord{.abort_requested = node->busy->abort_requested};
  }
}

void forget_when_destroyed(WindowStackNode *node) {
  g_signal_connect(own_window(node), "destroy", G_CALLBACK(destroy_callback), node);
}

void remove_entry(WindowStackNode *node) {
  disconnect(node);
  if (node->run != nullptr) {
    node->run->node = nullptr;
  }
  node->next->previous = node->previous;
  // The entry is destroyed at the end of the scope, after it has lost what is above it.
  const std::unique_ptr<WindowStackNode> removed = std::move(node->previous->next);
  removed->previous->next = std::move(removed->next);
}

// ---- Cursors ------------------------------------------------------------------------------------

OwnedObject<GdkCursor> create_cursor(GdkDisplay *display, Cursor kind) {
  return take(gdk_cursor_new_from_name(display, kind == Cursor::wait ? "wait" : "default"));
}

void set_cursors(VWindowStack *stack, Cursor kind, LeaveOutTop leave_out_top, ClearTop clear_top) {
  OwnedObject<GdkCursor> cursor;
  GdkDisplay *cursor_display = nullptr;
  for (WindowStackNode *node = stack->bottom->next.get(); node != stack->top;
       node = node->next.get()) {
    const bool is_top = node == top_entry(stack);
    if (is_top && leave_out_top == LeaveOutTop::yes) {
      break;
    }
    GtkWindow *window = own_window(node);
    GdkWindow *gdk_window = window == nullptr ? nullptr : gtk_widget_get_window(GTK_WIDGET(window));
    if (gdk_window == nullptr) {
      continue;
    }
    if (GdkDisplay *display = gdk_window_get_display(gdk_window); display != cursor_display) {
      cursor = create_cursor(display, kind);
      cursor_display = display;
    }
    GdkCursor *set = is_top && clear_top == ClearTop::yes ? nullptr : cursor.get();
    gdk_window_set_cursor(gdk_window, set);
    if (node->cursor_callback != nullptr) {
      node->cursor_callback(set != nullptr, node->cursor_callback_data);
    }
  }
}

void show_wait_cursor(VWindowStack *stack) {
  set_cursors(stack, Cursor::wait, LeaveOutTop::no, ClearTop::no);
}

// ---- Focus --------------------------------------------------------------------------------------

VTimeValue get_present_time() { return v_time_value_from_microseconds(g_get_real_time()); }

bool has_focus(const VWindowStack *stack) {
  for (WindowStackNode *node = stack->bottom->next.get(); node != stack->top;
       node = node->next.get()) {
    GtkWindow *window = own_window(node);
    if (window != nullptr && gtk_window_has_toplevel_focus(window)) {
      return true;
    }
  }
  return false;
}

// The source whose callback is running removes itself by returning G_SOURCE_REMOVE.
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

// The focus may only be on its way to another window of the program, so whether it is lost is seen
// when things have calmed down.
gboolean focus_out_event_callback(GtkWidget *, GdkEventFocus *, WindowStackNode *node) {
  VWindowStack *stack = node->stack;
  stack->focus_lost_time = get_present_time();
  stack->sources.push_back(
      g_idle_add_full(G_PRIORITY_LOW, focus_loss_idle_callback, stack, nullptr));
  return GDK_EVENT_PROPAGATE;
}

gboolean focus_in_event_callback(GtkWidget *, GdkEventFocus *, WindowStackNode *node) {
  VWindowStack *stack = node->stack;
  if (stack->focus_lost != 0) {
    stack->focus_lost = 0;
    if (stack->focus_callback != nullptr) {
      stack->focus_callback(
          v_time_value_count_whole_seconds(stack->focus_lost_time, get_present_time()),
          stack->focus_callback_data);
    }
  }
  return GDK_EVENT_PROPAGATE;
}

// ---- Modality -----------------------------------------------------------------------------------

// "event" precedes "delete-event" and, when it is handled, replaces it. So a covered window neither
// asks nor closes, whichever handlers it has and whether or not the window above holds a grab.
gboolean event_callback(GtkWidget *, GdkEvent *event, WindowStackNode *node) {
  const bool is_covered = node != top_entry(node->stack);
  return event->type == GDK_DELETE && is_covered ? GDK_EVENT_STOP : GDK_EVENT_PROPAGATE;
}

// A modal window loses its grab when it becomes insensitive. Hiding it releases the new grab, as it
// releases the one that showing it adds.
void restore_grab(GtkWindow *window) {
  if (gtk_window_get_modal(window) && gtk_widget_get_visible(GTK_WIDGET(window))) {
    gtk_grab_add(GTK_WIDGET(window));
  }
}

// ---- Pushing and popping ------------------------------------------------------------------------

WindowStackNode *add_entry(VWindowStack *stack, GtkWindow *window) {
  auto added = std::make_unique<WindowStackNode>();
  WindowStackNode *node = added.get();
  node->window = window;
  node->stack = stack;
  node->previous = top_entry(stack);
  node->next = std::move(node->previous->next);
  node->previous->next = std::move(added);
  stack->top->previous = node;
  if (window != nullptr) {
    g_signal_connect(window, "event", G_CALLBACK(event_callback), node);
    g_signal_connect(window, "focus-in-event", G_CALLBACK(focus_in_event_callback), node);
    g_signal_connect(window, "focus-out-event", G_CALLBACK(focus_out_event_callback), node);
    forget_when_destroyed(node);
  }
  return node;
}

// Hides the busy windows directly below the entry and returns the nearest entry with a window of
// its own, or null.
WindowStackNode *find_entry_to_cover(const WindowStackNode *node) {
  WindowStackNode *below = node->previous;
  for (; below->busy; below = below->previous) {
    if (below->busy->window != nullptr) {
      gtk_widget_hide(GTK_WIDGET(below->busy->window));
    }
  }
  while (below->window == nullptr && below->previous != nullptr) {
    below = below->previous;
  }
  return below->window == nullptr ? nullptr : below;
}

// A window that is not sensitive forgets what had the focus in it, so the entry remembers.
void make_insensitive(WindowStackNode *covered) {
  if (GtkWidget *focus_widget = gtk_window_get_focus(covered->window)) {
    covered->focus_widget = share(focus_widget);
  }
  gtk_widget_set_sensitive(GTK_WIDGET(covered->window), FALSE);
}

void make_sensitive(WindowStackNode *uncovered) {
  gtk_widget_set_sensitive(GTK_WIDGET(uncovered->window), TRUE);
  restore_grab(uncovered->window);
  const OwnedObject<GtkWidget> focus_widget = std::move(uncovered->focus_widget);
  // Meanwhile it may have left the window, or become insensitive by itself.
  if (focus_widget &&
      gtk_widget_get_toplevel(focus_widget.get()) == GTK_WIDGET(uncovered->window) &&
      gtk_widget_is_sensitive(focus_widget.get())) {
    v_gui_grab_focus_without_selecting(focus_widget.get());
  }
}

void cover_window(GtkWindow *window, WindowStackNode *covered) {
  gtk_window_set_transient_for(window, covered->window);
  gtk_window_set_destroy_with_parent(window, TRUE);
  gtk_window_set_modal(window, TRUE);
  gtk_window_set_skip_taskbar_hint(window, TRUE);
  make_insensitive(covered);
}

void show_busy_window_below(VWindowStack *stack) {
  const WindowStackNode *node = top_entry(stack);
  while (node->busy && node->busy->window == nullptr) {
    node = node->previous;
  }
  if (node->busy) {
    gtk_widget_show(GTK_WIDGET(node->busy->window));
    v_util_let_through_gtk_events();
  }
}

// Gives the entry that has become the top one back to the user, or to the busy task.
void uncover_top_entry(VWindowStack *stack) {
  WindowStackNode *node = top_entry(stack);
  if (node->busy) {
    show_busy_window_below(stack);
    show_wait_cursor(stack);
  } else if (node != stack->bottom.get()) {
    if (node->window != nullptr) {
      make_sensitive(node);
    }
    set_cursors(stack, Cursor::standard, LeaveOutTop::no, ClearTop::yes);
  }
}

// ---- Running ------------------------------------------------------------------------------------

gboolean maximize_idle_callback(void *data) {
  auto *run = static_cast<VWindowRun *>(data);
  run->maximize_source = 0;
  if (run->node != nullptr) {
    gtk_window_maximize(run->node->window);
  }
  return G_SOURCE_REMOVE;
}

// Some window managers forget what was asked before the window existed for them, others what is
// asked later: both get told.
void run_realize_callback(GtkWidget *, VWindowRun *run) {
  if (run->maximize_source == 0) {
    run->maximize_source = g_idle_add(maximize_idle_callback, run);
  }
}

// The entry goes wherever it is: a window below the top one may be destroyed from outside.
void take_out_entry_of(VWindowRun *run) {
  if (run->node == nullptr) {
    return;
  }
  const bool was_top = run->node == top_entry(run->stack);
  remove_entry(run->node);
  if (was_top) {
    uncover_top_entry(run->stack);
  }
}

// A main loop can only be ended when it is the innermost one. One further out is ended by the run
// inside it, see v_window_stack_run_window.
void quit_main_loop_if_innermost(const VWindowRun *run) {
  if (gtk_main_level() == run->main_level) {
    gtk_main_quit();
  }
}

void run_destroy_callback(GtkWidget *, VWindowRun *run) {
  run->is_over = true;
  if (run->maximize_source != 0) {
    g_source_remove(run->maximize_source);
    run->maximize_source = 0;
  }
  take_out_entry_of(run);
  quit_main_loop_if_innermost(run);
}

void begin_run(VWindowRun *run, VWindowStack *stack) {
  run->stack = stack;
  run->node = top_entry(stack);
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

// ---- Busy entries -------------------------------------------------------------------------------

void abort_clicked_callback(GtkWidget *button, WindowStackNode *node) {
  node->busy->abort_requested = 1;
  gtk_widget_set_sensitive(button, FALSE);
  v_util_let_through_gtk_events();
}

// A white area in a black frame of one pixel, with the content in the middle.
void build_busy_window(WindowStackNode *node) {
  VBusyRecord *busy = node->busy.get();
  busy->window = v_gui_create_window(nullptr);
  gtk_window_set_decorated(busy->window, FALSE);
  gtk_window_set_position(busy->window, GTK_WIN_POS_CENTER_ALWAYS);
  v_css_style_widget(GTK_WIDGET(busy->window), "* { background: #000000 }");
  v_gui_set_surrounding_margin(GTK_WIDGET(busy->window), 1);
  forget_when_destroyed(node);
  // It goes when the task is done, not before.
  g_signal_connect(busy->window, "delete-event", G_CALLBACK(gtk_true), node);

  GtkWidget *area = gtk_event_box_new();
  v_css_style_widget(area, "* { background: #ffffff }");
  gtk_container_add(GTK_CONTAINER(busy->window), area);
  GtkBox *columns = GTK_BOX(gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 0));
  gtk_container_add(GTK_CONTAINER(area), GTK_WIDGET(columns));
  v_gui_pack_space(columns, 20, 1);
  GtkBox *rows = v_gui_pack_vbox(columns, Expand::yes, Spacing::none);
  v_gui_pack_space(columns, 20, 1);
  v_gui_pack_space(rows, 1, 20);
  busy->content_box = v_gui_pack_vbox(rows, Expand::yes, Spacing::none);
  v_gui_set_box_spacing(busy->content_box, 15);
  v_gui_pack_space(rows, 280, 20);
  busy->message_label = v_gui_pack_label(busy->content_box, "", 0.5f, 0.5f);
}

void build_abort_button(WindowStackNode *node) {
  VBusyRecord *busy = node->busy.get();
  busy->abort_button = v_gui_pack_button_in_alignment(busy->content_box, Expand::no, "Abort",
                                                      MakeDefault::no, 0.5f, 0.0f, 0.0f, 0.0f);
  busy->abort_button_alignment =
      GTK_ALIGNMENT(gtk_widget_get_parent(GTK_WIDGET(busy->abort_button)));
  g_signal_connect(busy->abort_button, "clicked", G_CALLBACK(abort_clicked_callback), node);
}

void shrink_to_fit(GtkWindow *window) { gtk_window_resize(window, 1, 1); }

} // namespace

OwnedWindowStack v_window_stack_new() {
  v_key_guard_install();
  OwnedWindowStack stack(new VWindowStack);
  stack->bottom = std::make_unique<WindowStackNode>();
  stack->bottom->next = std::make_unique<WindowStackNode>();
  stack->top = stack->bottom->next.get();
  stack->top->previous = stack->bottom.get();
  return stack;
}

void v_window_stack_destroy(VWindowStack *window_stack) {
  if (window_stack == nullptr) {
    return;
  }
  for (guint source : window_stack->sources) {
    g_source_remove(source);
  }
  while (top_entry(window_stack) != window_stack->bottom.get()) {
    remove_entry(top_entry(window_stack));
  }
  for (VWindowRun *run = window_stack->innermost_run; run != nullptr; run = run->outer) {
    run->stack = nullptr;
  }
  delete window_stack;
}

void v_window_stack_push_window(VWindowStack *window_stack, GtkWindow *window) {
  WindowStackNode *covered = find_entry_to_cover(add_entry(window_stack, window));
  if (covered == nullptr) {
    gtk_window_set_transient_for(window, nullptr);
    gtk_window_set_destroy_with_parent(window, FALSE);
    gtk_window_set_modal(window, FALSE);
    gtk_window_set_skip_taskbar_hint(window, FALSE);
    return;
  }
  gtk_window_set_position(window, GTK_WIN_POS_CENTER_ON_PARENT);
  cover_window(window, covered);
  set_cursors(window_stack, Cursor::standard, LeaveOutTop::yes, ClearTop::no);
}

GtkWindow *v_window_stack_push_native_window(VWindowStack *window_stack) {
  WindowStackNode *covered = find_entry_to_cover(add_entry(window_stack, nullptr));
  if (covered == nullptr) {
    return nullptr;
  }
  make_insensitive(covered);
  set_cursors(window_stack, Cursor::standard, LeaveOutTop::yes, ClearTop::no);
  return covered->window;
}

void v_window_stack_pop_window(VWindowStack *window_stack) {
  WindowStackNode *node = top_entry(window_stack);
  if (node == window_stack->bottom.get() || node->busy) {
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
  if (!run.is_over) { // showing runs handlers, which may have ended it already
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
  WindowStackNode *node = top_entry(window_stack);
  node->cursor_callback = callback;
  node->cursor_callback_data = data;
}

void v_window_stack_set_focus_callback(VWindowStack *window_stack, VFocusCallback callback,
                                       void *data) {
  window_stack->focus_callback = callback;
  window_stack->focus_callback_data = data;
}

void v_window_stack_present(VWindowStack *window_stack) {
  for (const WindowStackNode *node = top_entry(window_stack); node != nullptr;
       node = node->previous) {
    if (GtkWindow *window = own_window(node)) {
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
    show_wait_cursor(window_stack);
  }
}

void v_window_stack_show_busy_window(VWindowStack *window_stack) {
  WindowStackNode *node = top_entry(window_stack);
  if (!node->busy || node->busy->window != nullptr) {
    return;
  }
  build_busy_window(node);
  v_window_stack_set_busy_window_message(window_stack, nullptr);
  if (WindowStackNode *covered = find_entry_to_cover(node)) {
    cover_window(node->busy->window, covered);
  }
  gtk_widget_show_all(GTK_WIDGET(node->busy->window));
  v_util_let_through_gtk_events();
  show_wait_cursor(window_stack);
}

void v_window_stack_busy_end(VWindowStack *window_stack) {
  const VBusyRecord *busy = top_busy_record(window_stack);
  if (busy == nullptr) {
    return;
  }
  GtkWindow *window = busy->window;
  remove_entry(top_entry(window_stack));
  if (window != nullptr) {
    gtk_widget_destroy(GTK_WIDGET(window));
  }
  uncover_top_entry(window_stack);
}

void v_window_stack_set_busy_window_message(VWindowStack *window_stack, const char *message) {
  VBusyRecord *busy = top_busy_record_with_window(window_stack);
  if (busy == nullptr) {
    return;
  }
  const char *text = message == nullptr ? "Please wait" : message;
  const OwnedText markup(g_markup_printf_escaped("<b>%s</b>", text));
  gtk_label_set_markup(busy->message_label, markup.get());
  gtk_window_set_title(busy->window, text);
  shrink_to_fit(busy->window);
  v_util_let_through_gtk_events();
}

void v_window_stack_set_busy_window_message_utf8_printf(VWindowStack *window_stack,
                                                        const char *format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const OwnedText message(g_strdup_vprintf(format, arguments));
  va_end(arguments);
  v_window_stack_set_busy_window_message(window_stack, message.get());
}

void v_window_stack_show_abort_button(VWindowStack *window_stack) {
  VBusyRecord *busy = top_busy_record_with_window(window_stack);
  if (busy == nullptr) {
    return;
  }
  if (busy->abort_button == nullptr) {
    build_abort_button(top_entry(window_stack));
  }
  gtk_widget_show(GTK_WIDGET(busy->abort_button_alignment));
  v_util_let_through_gtk_events();
}

void v_window_stack_hide_abort_button(VWindowStack *window_stack) {
  VBusyRecord *busy = top_busy_record_with_window(window_stack);
  if (busy == nullptr || busy->abort_button == nullptr) {
    return;
  }
  gtk_widget_hide(GTK_WIDGET(busy->abort_button_alignment));
  shrink_to_fit(busy->window);
  v_util_let_through_gtk_events();
}

bool v_window_stack_is_abort_requested(const VWindowStack *window_stack) {
  const VBusyRecord *busy = top_busy_record(window_stack);
  return busy != nullptr && busy->abort_requested != 0;
}

void v_util_let_through_gtk_events() {
  while (gtk_events_pending()) {
    gtk_main_iteration();
  }
}
