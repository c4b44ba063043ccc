#pragma once
// The lowest cost of a list of a given number of rows, and of a text beside it: a window with only
// a view of fixed-height rows.

#include <string>
#include <vector>

#include <gtk/gtk.h>

class BareListWindow {
public:
  // Rows: what they show (UTF-8). Maximised, as the editing window is.
  explicit BareListWindow(const std::vector<std::string> &rows);
  // The same in a window with other widgets, which is not shown yet and is destroyed with this. The
  // list is that window's, an empty view without columns.
  BareListWindow(const std::vector<std::string> &rows, GtkTreeView *list);
  ~BareListWindow();
  BareListWindow(const BareListWindow &) = delete;
  BareListWindow &operator=(const BareListWindow &) = delete;

  // Rebuilds all rows while the view has no store.
  void refill(const std::vector<std::string> &rows);
  // Removes the row (from 0) and makes a new one in its place, while the store is on the view.
  void replace_row(int place, const std::string &row);
  GtkTreeView *view() { return tree_view; }

  // From now on a text view beside the list shows the selected row's own of these texts (UTF-8, one
  // for each row), which must live as long as the window.
  void show_descriptions(const std::vector<std::string> &texts);

private:
  void show(const std::vector<std::string> &rows);
  static void selection_change_callback(GtkTreeSelection *selection, BareListWindow *self);

  const std::vector<std::string> *descriptions = nullptr;
  GtkTextBuffer *description_buffer = nullptr; // the text view's
  GtkWidget *window;
  GtkWidget *views = nullptr; // null when the window was given
  GtkTreeView *tree_view;
};
