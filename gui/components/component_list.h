#pragma once
// The list of component files shown by the component manager and the bundled file selector, with
// two texts for each file; the first is displayed, and the rows are sorted by it. All texts are
// UTF-8.

#include <optional>
#include <vector>

#include <gtk/gtk.h>

#include "gui/components/component_kind.h"
#include "gui/owned_objects.h"

enum VComponentColumn {
  v_component_column_text, // the display text; null for an incompatible file
  v_component_column_file, // identifies the file: its entry name or its path
};

struct VComponentRow {
  OwnedText text;
  OwnedText file;
};

// Sorted in ascending order by the display text, with the locale's collation; null sorts as "".
OwnedObject<GtkListStore> v_component_list_new();
// text: null for none.
void v_component_list_append(GtkListStore *list, const char *text, const char *file);
// Changes, adds and removes rows so that the list has exactly these. Rows that remain keep the
// cursor and their position on the screen. No two rows have the same file.
void v_component_list_update(GtkListStore *list, const std::vector<VComponentRow> &rows);
// The index (from 0) of the row with the file; -1 when there is none, and for a null file.
int v_component_list_find(GtkListStore *list, const char *file);
// A position in the list that can be found again after the list has changed.
struct VComponentPlace {
  std::vector<OwnedText> files; // those of the row and of the rows below it
  bool is_chosen = false;       // set by the user or by an earlier action, not by the toolkit
};
// The place of the row with the cursor; if a row is selected, it has the cursor.
VComponentPlace v_component_list_get_place(GtkTreeView *view);
// Puts the cursor on the row of the new file (null for none), else on that of the place or, if it
// was removed, on the row after it, else on the last one. Does nothing when there is no row for a
// new file and the place was not chosen.
void v_component_list_return_to_place(GtkTreeView *view, const char *new_file,
                                      const VComponentPlace &place);
// Packs a scrolled view of the list, expanding, with search by typing. cell_data_func fills the
// only cell of a row with v_component_list_show_text; its data is null.
GtkTreeView *v_component_list_pack_view(GtkBox *box, GtkListStore *list,
                                        GtkTreeCellDataFunc cell_data_func);
// Sets the name that a screen reader announces, such as "Remark codeset files".
void v_component_list_set_accessible_name(GtkTreeView *view, const VComponentKind &kind);
// The text that the row shows, as a new text: its display text, else its file.
OwnedText v_component_list_get_shown_text(GtkTreeModel *model, GtkTreeIter *row);
// Shows plain text in the cell of a view's column. Overlong text is ellipsised when it does not fit
// into the window: there is no horizontal scroll bar, and no file may make the window wider than
// the screen.
void v_component_list_show_text(GtkTreeViewColumn *column, GtkCellRenderer *cell, const char *text);
// The text in a column of a row, as a new text; null for none.
OwnedText v_component_list_get_text(GtkTreeModel *model, GtkTreeIter *row, VComponentColumn column);
// The row with that index (from 0), if there is one.
std::optional<VComponentRow> v_component_list_get_row(GtkListStore *list, int row);
std::optional<VComponentRow> v_component_list_get_selected_row(GtkTreeView *view);
// Unselects, when idle, the row that the toolkit selects when the view gets the focus for the first
// time, and shows the cursor instead.
void v_component_list_unselect_when_idle(GtkTreeView *view);

// The names of the entries in the folder that have the kind's extension, in the system's order.
// Empty when the folder cannot be opened.
std::vector<OwnedText> v_component_list_find_names(const char *folder_path,
                                                   const VComponentKind &kind);
