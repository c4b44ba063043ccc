#pragma once
// The stack of open windows. Every window of the program is modal over the one below it: pushing a
// window greys out the one below, and popping it restores that one, including its focus. A window
// below the top entry ignores requests to close it. The stack also sets the mouse cursor of all its
// windows, detects when the whole program has lost the keyboard focus, and can show a small busy
// window. Knows nothing of the purpose of the windows.
//
// The stack never destroys a window that was pushed onto it. If a window is destroyed while its
// entry is on the stack, the entry remains, without a window, until it is popped. When an entry or
// the stack is freed, all its handlers are disconnected and its idle and timeout callbacks are
// removed. The stack destroys a busy window when its busy state ends, but not when the stack is
// destroyed before that.

#include <gtk/gtk.h>

#include "base/owned.h"
#include "gui/window_entries.h"

enum class Maximize { no, yes };
enum class ShowBusyWindow { no, yes };

void v_window_stack_destroy(VWindowStack *window_stack);
using OwnedWindowStack = Owned<VWindowStack, v_window_stack_destroy>;

// An empty stack.
OwnedWindowStack v_window_stack_new();

// Pushes a window without showing it. The first one becomes a plain top-level window; any other
// becomes modal over, transient for and centred on the nearest window below, which is made
// insensitive. Busy windows directly below are hidden. The window gets no "delete-event" while
// another entry is above its own.
void v_window_stack_push_window(VWindowStack *window_stack, GtkWindow *window);
// Pushes an entry for a native dialog and returns the window to use as its parent (borrowed); null
// when there is none.
GtkWindow *v_window_stack_push_native_window(VWindowStack *window_stack);
// Removes the top entry without changing its window, and makes the window below usable again. Does
// nothing when the top entry is a busy entry or the stack is empty.
void v_window_stack_pop_window(VWindowStack *window_stack);

// Pushes and shows the window, and returns when it has been destroyed, by its close button or by a
// handler that calls gtk_widget_destroy; its entry is then removed. focus_widget: the widget with
// the initial focus, null for none. Destroying a window below destroys this one too.
void v_window_stack_run_window(VWindowStack *window_stack, GtkWindow *window, Maximize maximize,
                               GtkWidget *focus_widget = nullptr,
                               VCursorCallback cursor_callback = nullptr,
                               void *cursor_callback_data = nullptr);

// Sets the callback (null: none) of the top entry.
void v_window_stack_set_mouse_cursor_callback(VWindowStack *window_stack, VCursorCallback callback,
                                              void *data);
void v_window_stack_set_focus_callback(VWindowStack *window_stack, VFocusCallback callback,
                                       void *data);
// Presents the window of the topmost entry that has one.
void v_window_stack_present(VWindowStack *window_stack);

// Busy entries. A long task runs between begin and end; in the meantime every window shows the
// "wait" cursor. The functions for the busy window do nothing unless the top entry is a busy entry
// and, except for the one that shows it, its window exists.
void v_window_stack_busy_begin(VWindowStack *window_stack, ShowBusyWindow show_window);
void v_window_stack_show_busy_window(VWindowStack *window_stack);
void v_window_stack_busy_end(VWindowStack *window_stack);
// The text (UTF-8, shown bold) and title; null shows "Please wait".
void v_window_stack_set_busy_window_message(VWindowStack *window_stack, const char *message);
void v_window_stack_set_busy_window_message_utf8_printf(VWindowStack *window_stack,
                                                        const char *format, ...)
    G_GNUC_PRINTF(2, 3);
void v_window_stack_show_abort_button(VWindowStack *window_stack);
void v_window_stack_hide_abort_button(VWindowStack *window_stack);
// True when the abort button was pressed; the task has to check for this request.
bool v_window_stack_is_abort_requested(const VWindowStack *window_stack);
