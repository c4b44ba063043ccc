#pragma once
// What a list of so many rows costs at least: a window with nothing but a view of fixed-height
// rows.

#include <string>
#include <vector>

#include <gtk/gtk.h>

class BareListWindow {
public:
  // Rows: what they show (UTF-8). Maximised, as the editing window is.
  explicit BareListWindow(const std::vector<std::string> &rows);
  ~BareListWindow();
  BareListWindow(const BareListWindow &) = delete;
  BareListWindow &operator=(const BareListWindow &) = delete;

  // Makes all rows anew while the store is off the view.
  void refill(const std::vector<std::string> &rows);
  GtkTreeView *view() { return tree_view; }

private:
  GtkWidget *window;
  GtkTreeView *tree_view;
};
