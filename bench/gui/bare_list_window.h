#pragma once
// The lowest cost of a list of a given number of rows, and of a text beside it: a window with only
// a view of fixed-height rows.

#include <string>
#include <vector>

#include <gtk/gtk.h>

class BareListWindow {
public:
  // rows: their texts (UTF-8). Maximised, like the editing window.
  explicit BareListWindow(const std::vector<std::string> &rows);
  // The same in a window with other widgets, which is not shown yet and is destroyed with this
  // object. list: an empty view without columns in that window.
  BareListWindow(const std::vector<std::string> &rows, GtkTreeView *list);
  ~BareListWindow();
  BareListWindow(const BareListWindow &) = delete;
  BareListWindow &operator=(const BareListWindow &) = delete;

  // Rebuilds all rows while the view has no store.
  void refill(const std::vector<std::string> &rows);
  // Removes the row (from 0) and inserts a new one there, while the view shows the store.
  void replace_row(int place, const std::string &row);
  GtkTreeView *view() { return tree_view; }

  // Adds a text view beside the list, which shows the text for the selected row. texts: UTF-8, one
  // for each row; they must live as long as the window.
  void show_descriptions(const std::vector<std::string> &texts);

private:
  void show(const std::vector<std::string> &rows);
  static void selection_change_callback(GtkTreeSelection *selection, BareListWindow *self);

  const std::vector<std::string> *descriptions = nullptr;
  GtkTextBuffer *description_buffer = nullptr; // of the text view
  GtkWidget *window;
  GtkWidget *views = nullptr; // null when the caller gave the window
  GtkTreeView *tree_view;
};
