#pragma once
// A workspace and an installation folder, both empty at first, and a fake kind of component: a file
// that begins with "text:" has the rest of its first line as its summary, any other file is
// incompatible.

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "gui/components/component_kind.h"
#include "gui/window_stack.h"
#include "support/fake_platform.h"
#include "support/files.h"
#include "support/gui_driver.h"
#include "workspace/workspace.h"

class ComponentFixture : public testing::Test {
protected:
  ComponentFixture();

  // Paths of, or in, the workspace's managed folder and the folder of the delivered files. Neither
  // exists before make_folders.
  std::string managed(const std::string &name = "") const;
  std::string delivered(const std::string &name = "") const;
  void make_folders();

  // Waits until the list of the window has the focus. Windows undo the selection that comes with
  // it.
  void await_focus_in_list(const std::string &title);
  // Types the name in the window "Add new", which is open or about to open, and clicks OK.
  void enter_name(const std::string &name);

  static OwnedText text_callback(const char *path, void *fixture);

  FakePlatformReset reset_platform;
  TemporaryFolder workspace_folder;
  TemporaryFolder install_folder;
  TemporaryFolder elsewhere;
  VWorkspace workspace;
  OwnedWindowStack window_stack = v_window_stack_new();
  VComponentKind kind = {"codesets", VFileType::remark_codeset, text_callback, this};
  std::vector<std::string> summarised; // the paths that text_callback was called with
  GuiScript script;
};

// The only entry of the top window.
GtkEntry *entry();

// The text and the style of a row in a list.
struct ShownRow {
  std::string text;
  bool is_red = false;

  bool operator==(const ShownRow &) const = default;
};
void PrintTo(const ShownRow &row, std::ostream *stream);

// The rows of the only list in the window, from top to bottom.
std::vector<ShownRow> shown_rows(GtkWindow *window);
std::vector<std::string> shown_texts(GtkWindow *window);
// Selects the row that shows the text; fails the test when there is none.
void select_row(GtkWindow *window, const std::string &text);
bool has_selection(GtkWindow *window);
GtkTreeView *list_of(GtkWindow *window);
