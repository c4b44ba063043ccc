#pragma once
// The chain of open windows. Every window of the program is modal over the one below it: pushing a
// window greys the one below out, popping gives it back, with the focus where it was. A window
// below the top entry ignores requests to close it. The stack also sets the mouse cursor of all its
// windows, notices when the whole program has lost the keyboard focus, and can show a small busy
// window. Knows nothing of the purpose of the windows.
//
// The stack never destroys a window that was pushed onto it. A window that is destroyed while its
// entry is in the stack leaves a window-less entry behind until that is popped. Once an entry or
// the stack is freed, none of its handlers is connected to a window and no idle or timeout callback
// fires. The stack destroys a busy window when its busy state ends; a stack that is destroyed
// before does not.

#include <gtk/gtk.h>

#include "base/owned.h"
#include "gui/window_entries.h"

enum class Maximize { no, yes };
enum class ShowBusyWindow { no, yes };

void v_window_stack_destroy(VWindowStack *window_stack);
using OwnedWindowStack = Owned<VWindowStack, v_window_stack_destroy>;

// An empty stack.
OwnedWindowStack v_window_stack_new();

// Pushes a window, not yet shown. The first one becomes a plain top-level window; any other becomes
// modal over and transient for the nearest window below, which is made insensitive, and opens in
// the middle of it. Busy windows directly below are hidden. The window gets no "delete-event" while
// another entry is above its own.
void v_window_stack_push_window(VWindowStack *window_stack, GtkWindow *window);
// Pushes the place of a native dialog and returns the window to parent it to (borrowed), null when
// there is none.
GtkWindow *v_window_stack_push_native_window(VWindowStack *window_stack);
// Removes the top entry, without touching its window, and makes the window below usable again. Does
// nothing when the top entry is a busy entry or the stack is empty.
void v_window_stack_pop_window(VWindowStack *window_stack);

// Pushes and shows the window and returns when it has been destroyed, by its close button or by a
// handler that calls gtk_widget_destroy; its entry is removed then. focus_widget: null gives no
// widget the focus at first. A window below that is destroyed takes this one with it.
void v_window_stack_run_window(VWindowStack *window_stack, GtkWindow *window, Maximize maximize,
                               GtkWidget *focus_widget = nullptr,
                               VCursorCallback cursor_callback = nullptr,
                               void *cursor_callback_data = nullptr);

// Sets the callback (null: none) of the top entry.
void v_window_stack_set_mouse_cursor_callback(VWindowStack *window_stack, VCursorCallback callback,
                                              void *data);
void v_window_stack_set_focus_callback(VWindowStack *window_stack, VFocusCallback callback,
                                       void *data);
// Brings the topmost entry that has a window to the front.
void v_window_stack_present(VWindowStack *window_stack);

// Busy entries. A long task runs between begin and end; until the end every window shows the "wait"
// cursor. A function for the busy window does nothing unless the top entry is a busy entry and,
// except for showing it, unless its window exists.
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
// True when the abort button was pressed, a request that the task has to check.
bool v_window_stack_is_abort_requested(const VWindowStack *window_stack);
