#pragma once
// The small undecorated window that shows a message during a long task, with an optional abort
// button. Knows nothing of other windows: the window stack places, shows and destroys it.

#include <gtk/gtk.h>

// The widgets are all null until the window is built, and again once it is destroyed.
struct VBusyRecord {
  GtkWindow *window = nullptr;
  GtkBox *content_box = nullptr; // holds the message and the abort button
  GtkLabel *message_label = nullptr;
  GtkAlignment *abort_button_alignment = nullptr;
  GtkButton *abort_button = nullptr; // null until it is first shown
  int abort_requested = 0;           // 1 once the abort button is pressed
};

// Builds the window without a message and without showing it. It refuses requests to close it. The
// record must outlive the window, or be disconnected from it first.
void v_busy_window_build(VBusyRecord *busy);
// Disconnects all handlers that use the record from the window, if there is one.
void v_busy_window_disconnect(VBusyRecord *busy);

// The following functions require a window, and return once the change is on the screen.

// The text (UTF-8, shown bold) and title; null shows "Please wait".
void v_busy_window_set_message(VBusyRecord *busy, const char *message);
void v_busy_window_show_abort_button(VBusyRecord *busy);
// Does nothing when the button was never shown.
void v_busy_window_hide_abort_button(VBusyRecord *busy);

// Runs the main loop until no event is pending.
void v_util_let_through_gtk_events();
