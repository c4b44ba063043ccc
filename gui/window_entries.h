#pragma once
// The records of the window stack, and the chain that its entries form: from the bottom sentinel
// over the oldest entry to the newest one and the top sentinel. An entry whose window is destroyed
// stays in the chain without a window. Changes no window.

#include <memory>
#include <vector>

#include <gtk/gtk.h>

#include "gui/busy_window.h"
#include "gui/owned_objects.h"
#include "gui/time_value.h"

// Called when the program has the focus again, with the whole seconds that it did not have it.
using VFocusCallback = void (*)(long elapsed_seconds, void *data);
// Called when the stack has set a cursor on the window (true), or cleared it, so that the window's
// own shows again (false).
using VCursorCallback = void (*)(bool cursor_is_set, void *data);

struct VWindowStack;
struct VWindowRun;

struct WindowStackNode {
  // Null for the place of a native dialog, for a busy entry, and once the window is destroyed.
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
  int focus_lost = 0; // 1 from the time the program lost the focus until one of its windows gets it
  VTimeValue focus_lost_time; // of the last focus-out event
  VFocusCallback focus_callback = nullptr;
  void *focus_callback_data = nullptr;
  std::unique_ptr<WindowStackNode> bottom; // sentinel; owns the chain of entries above it
  WindowStackNode *top = nullptr;          // sentinel above all entries

  std::vector<guint> sources; // ids of the idle and timeout callbacks under way
  VWindowRun *innermost_run = nullptr;
};

// Makes the chain of a new stack: two sentinels without an entry between them.
void v_window_entries_init(VWindowStack *stack);
// The topmost entry; the bottom sentinel when there is none.
WindowStackNode *v_window_entries_get_top(const VWindowStack *stack);
bool v_window_entries_is_empty(const VWindowStack *stack);
// The window of the entry itself or of its busy record; null when it has none.
GtkWindow *v_window_entries_get_window(const WindowStackNode *entry);
// Adds an entry for the window (null: without one) above all others. Borrowed.
WindowStackNode *v_window_entries_add(VWindowStack *stack, GtkWindow *window);
// Takes the entry out of the chain, wherever it is, and frees it. No handler that was connected
// with the entry or its busy record as data remains on its window.
void v_window_entries_remove(WindowStackNode *entry);
