#pragma once
// The keyboard cursor of a flat list, independent of its selection: after an action nothing is
// selected, but the cursor marks the row that the action concerned, and the arrow keys continue
// from there.
//
// Rows are counted from 0. The toolkit gives a list that gets the focus a cursor on its first row;
// only a cursor that was set here counts as placed.

#include <gtk/gtk.h>

// Unselects all rows. Until it is destroyed no row of the list can be selected, neither by a call
// nor by the toolkit, which would otherwise select the row that gets the cursor. The view must
// outlive it.
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
// Puts the cursor on the row, or on the last one when there are fewer, scrolls it into view and
// unselects all rows. Down then selects the next row and Up the one before. Does nothing in an
// empty list. The focus stays where it is.
void v_list_place_set(GtkTreeView *view, int row);
// Makes the focus visible in the list's window; in a list this is the row with the cursor. The
// toolkit itself shows it only after the first key.
void v_list_place_reveal_focus(GtkTreeView *view);
// Scrolls the row into view, as little as possible. Does nothing when there is no such row.
void v_list_place_show(GtkTreeView *view, int row);
// Selects the row with a placed cursor, if no row is selected.
void v_list_place_select(GtkTreeView *view);
// Gives the list the focus. No row becomes selected that was not: the toolkit would select the
// first row of a list without a cursor.
void v_list_place_grab_focus(GtkTreeView *view);
// Gives the list the focus if no widget of its window has it, for instance because the one that had
// it became insensitive.
void v_list_place_take_free_focus(GtkTreeView *view);
