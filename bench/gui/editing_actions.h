#pragma once
// What a user does in the editing window, as the benchmarks repeat it, and the codeset for it.

#include <functional>
#include <string>
#include <vector>

#include <gtk/gtk.h>

#include "gui/editing/editing_window.h"
#include "support/scratch_folder.h"

// A codeset file in a workspace, and the texts that its rows and descriptions have on the screen.
struct Vocabulary {
  Vocabulary(int remarks, int described_remarks);

  int remark_count;
  ScratchFolder folder;
  std::string path;
  VWorkspace workspace;
  OwnedWindowStack window_stack = v_window_stack_new();
  RunContext context = {window_stack.get(), &workspace};
  std::vector<std::string> rows;         // UTF-8
  std::vector<std::string> descriptions; // UTF-8, in all languages, of the first rows
};

using WidgetTest = std::function<bool(GtkWidget *widget)>;

bool v_bench_is_list(GtkWidget *widget);
bool v_bench_is_langstr_editor(GtkWidget *widget);
// The first widget at or below the root that passes the test; null when there is none.
GtkWidget *v_bench_find(GtkWidget *root, const WidgetTest &test);
// The same in the window that is shown and not covered by another; it must have such a widget.
GtkWidget *v_bench_find_in_top_window(const WidgetTest &test);
GtkTreeView *v_bench_find_list();

void v_bench_click(const std::string &label);
// Moves the cursor, as the arrow keys do.
void v_bench_select_row(GtkTreeView *view, int row);
// Changes the text of the first description, and so its row.
void v_bench_change_description();
void v_bench_close_editing_window();

// Opens the window, acts when it is idle, and returns when the window is closed.
void v_bench_edit(const Vocabulary &vocabulary, const std::function<void(double seconds)> &act);
// Opens the dialog for the middle remark and acts when it is idle. window: receives the window
// below the dialog; may be null.
void v_bench_open_dialog(const Vocabulary &vocabulary,
                         const std::function<void(double seconds)> &act,
                         GtkWidget **window = nullptr);
