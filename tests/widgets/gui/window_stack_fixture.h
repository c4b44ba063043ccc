#pragma once
// An empty window stack, and the state of the windows on it.

#include <functional>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "gui/window_stack.h"
#include "support/gui_driver.h"

class WindowStack : public testing::Test {
protected:
  WindowStackNode *top() const { return stack->top->previous; }
  VBusyRecord *busy() const { return top()->busy.get(); }

  // Pushes and shows, as a GUI function does.
  void open(TestWindow &window) {
    v_window_stack_push_window(stack.get(), window.get());
    window.show_active();
  }

  // Runs the window, and acts when it has the keyboard.
  void run(TestWindow &window, std::function<void()> act) {
    when_active(window.get(), std::move(act));
    v_window_stack_run_window(stack.get(), window.get(), Maximize::no);
  }

  OwnedWindowStack stack = v_window_stack_new();
};

// Two fields in a window; the first has the focus.
struct TwoFields {
  explicit TwoFields(const TestWindow &window)
      : box(GTK_BOX(gtk_box_new(GTK_ORIENTATION_VERTICAL, 0))), first(gtk_entry_new()),
        second(gtk_entry_new()) {
    gtk_container_add(GTK_CONTAINER(window.get()), GTK_WIDGET(box));
    gtk_box_pack_start(box, first, TRUE, TRUE, 0);
    gtk_box_pack_start(box, second, TRUE, TRUE, 0);
    gtk_widget_show_all(GTK_WIDGET(box));
    gtk_entry_set_text(GTK_ENTRY(first), "text");
    gtk_widget_grab_focus(first);
    gtk_editable_set_position(GTK_EDITABLE(first), 2);
  }

  GtkBox *box;
  GtkWidget *first;
  GtkWidget *second;
};

bool is_sensitive(const TestWindow &window);
GdkCursor *get_cursor(const TestWindow &window);
// "default", "wait", "none" or "other". The display has one cursor object per name.
std::string name_cursor(const TestWindow &window);
