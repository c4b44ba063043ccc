#pragma once
// The keyboard cursor of a flat list, independent of its selection: after an action nothing is
// selected, but the cursor marks the row that the action affected, and the arrow keys continue from
// there.
//
// Rows are counted from 0. The toolkit puts the cursor of a list that gets the focus on its first
// row; only a cursor that was set here counts as placed.

#include <gtk/gtk.h>

// Unselects all rows. During its lifetime no row of the list can be selected, neither by the
// program nor by the toolkit, which would otherwise select the row that gets the cursor. The view
// must outlive it.
class VListWithoutSelection {
public:
  explicit VListWithoutSelection(GtkTreeView *view);
  ~VListWithoutSelection();
  VListWithoutSelection(const VListWithoutSelection &) = delete;
  VListWithoutSelection &operator=(const VListWithoutSelection &) = delete;

private:
  GtkTreeSelection *selection;
  GtkSelectionMode mode;
};

// The row with the cursor; -1 when there is none.
int v_list_place_get(GtkTreeView *view);
// True when the cursor was placed and has not moved since.
bool v_list_place_is_placed(GtkTreeView *view);
// Puts the cursor on the row, or on the last one if there are fewer, scrolls it into view and
// unselects all rows. Down then selects the next row and Up the previous one. Does nothing in an
// empty list. Does not move the focus.
void v_list_place_set(GtkTreeView *view, int row);
// Makes the focus visible in the list's window; in a list it is drawn around the row with the
// cursor. The toolkit itself shows it only after the first key press.
void v_list_place_reveal_focus(GtkTreeView *view);
// Scrolls the row into view by the smallest distance. Does nothing when there is no such row.
void v_list_place_show(GtkTreeView *view, int row);
// Selects the row with a placed cursor, if no row is selected.
void v_list_place_select(GtkTreeView *view);
// Gives the list the focus without changing its selection: the toolkit would select the first row
// of a list without a cursor.
void v_list_place_grab_focus(GtkTreeView *view);
// Gives the list the focus if no sensitive widget of its window has it, for instance because the
// focused one became insensitive.
void v_list_place_take_free_focus(GtkTreeView *view);
