#pragma once
// The records of the window stack: a linked list of entries, from the oldest to the newest, between
// a bottom and a top sentinel. An entry whose window is destroyed remains in the list without a
// window. Changes no window.

#include <memory>
#include <vector>

#include <gtk/gtk.h>

#include "gui/busy_window.h"
#include "gui/owned_objects.h"
#include "gui/time_value.h"

// Called when the program gets the focus back, with the number of whole seconds without it.
using VFocusCallback = void (*)(long elapsed_seconds, void *data);
// Called when the stack has set a cursor on the window (true), or cleared it, so that the window's
// own cursor is shown again (false).
using VCursorCallback = void (*)(bool cursor_is_set, void *data);

struct VWindowStack;
struct VWindowRun;

struct WindowStackNode {
  // Null for a native dialog, for a busy entry, and once the window is destroyed.
  GtkWindow *window = nullptr;
  VCursorCallback cursor_callback = nullptr;
  void *cursor_callback_data = nullptr;
  std::unique_ptr<VBusyRecord> busy;     // null unless this is a busy entry
  WindowStackNode *previous = nullptr;   // towards the bottom
  std::unique_ptr<WindowStackNode> next; // towards the top

  VWindowStack *stack = nullptr;
  VWindowRun *run = nullptr; // the v_window_stack_run_window call that waits for this entry, if any
  // The widget that had the focus when another window covered this one; null otherwise.
  OwnedObject<GtkWidget> focus_widget;
};

struct VWindowStack {
  int focus_lost = 0; // 1 from when the program loses the focus until one of its windows gets it
  VTimeValue focus_lost_time; // of the last focus-out event
  VFocusCallback focus_callback = nullptr;
  void *focus_callback_data = nullptr;
  std::unique_ptr<WindowStackNode> bottom; // sentinel; owns all entries above it
  WindowStackNode *top = nullptr;          // sentinel above all entries

  std::vector<guint> sources; // ids of the pending idle and timeout callbacks
  VWindowRun *innermost_run = nullptr;
};

// Initialises a new stack: two sentinels without entries between them.
void v_window_entries_init(VWindowStack *stack);
// The topmost entry; the bottom sentinel when there is none.
WindowStackNode *v_window_entries_get_top(const VWindowStack *stack);
bool v_window_entries_is_empty(const VWindowStack *stack);
// The window of the entry itself or of its busy record; null when it has none.
GtkWindow *v_window_entries_get_window(const WindowStackNode *entry);
// Adds an entry for the window (null: without one) above all others. Borrowed.
WindowStackNode *v_window_entries_add(VWindowStack *stack, GtkWindow *window);
// Removes the entry from the list, wherever it is, and frees it. Disconnects all handlers that have
// the entry or its busy record as data from its window.
void v_window_entries_remove(WindowStackNode *entry);
