#pragma once
// The list of component files, as the component manager and the bundled file selector show it: two
// texts for each file; the first is shown, and the rows are sorted by it. All texts are UTF-8.

#include <optional>
#include <vector>

#include <gtk/gtk.h>

#include "gui/components/component_kind.h"
#include "gui/owned_objects.h"

enum VComponentColumn {
  v_component_column_text, // the display text; null for an incompatible file
  v_component_column_file, // what identifies the file: its entry name or its path
};

struct VComponentRow {
  OwnedText text;
  OwnedText file;
};

// Sorted ascending by the display text in the locale's order; null sorts as an empty text.
OwnedObject<GtkListStore> v_component_list_new();
// text: null for none.
void v_component_list_append(GtkListStore *list, const char *text, const char *file);
// Changes, adds and removes rows until the list holds these. Rows that stay keep the cursor and
// their place on the screen. No two rows have the same file.
void v_component_list_update(GtkListStore *list, const std::vector<VComponentRow> &rows);
// The place (from 0) of the row with the file; -1 when there is none, and for a null file.
int v_component_list_find(GtkListStore *list, const char *file);
// A place in the list, which can be found again when the list has changed.
struct VComponentPlace {
  std::vector<OwnedText> files; // of the row, and of the rows below it
  bool is_chosen = false;       // by the user or by an earlier action, and not by the toolkit
};
// The place of the row with the cursor, which is also on any selected row.
VComponentPlace v_component_list_get_place(GtkTreeView *view);
// Puts the cursor on the row of the new file (null for none), or on that of the place or, if that
// row was removed, on the row after it or else the last one. Does nothing without a new file when
// the place was not chosen.
void v_component_list_return_to_place(GtkTreeView *view, const char *new_file,
                                      const VComponentPlace &place);
// Packs a scrolled view of the list, expanding, in which rows are found by typing. cell_data_func
// fills the one cell of a row with v_component_list_show_text; its data is null.
GtkTreeView *v_component_list_pack_view(GtkBox *box, GtkListStore *list,
                                        GtkTreeCellDataFunc cell_data_func);
// Sets the name that a screen reader speaks: the files that are listed, "Remark codeset files" for
// instance.
void v_component_list_set_accessible_name(GtkTreeView *view, const VComponentKind &kind);
// New text that the row shows: its display text, or else its file.
OwnedText v_component_list_get_shown_text(GtkTreeModel *model, GtkTreeIter *row);
// Shows plain text in the cell of a view's column. Overlong text ends in an ellipsis when the
// window has no room for it: there is no horizontal scroll bar, and no file may make the window
// wider than the screen.
void v_component_list_show_text(GtkTreeViewColumn *column, GtkCellRenderer *cell, const char *text);
// New text from a column of a row; null for none.
OwnedText v_component_list_get_text(GtkTreeModel *model, GtkTreeIter *row, VComponentColumn column);
// The row of that number (from 0), if there is one.
std::optional<VComponentRow> v_component_list_get_row(GtkListStore *list, int row);
std::optional<VComponentRow> v_component_list_get_selected_row(GtkTreeView *view);
// Unselects the row that the toolkit selects when it gives the view its first focus, once that has
// happened, and shows the cursor instead.
void v_component_list_unselect_when_idle(GtkTreeView *view);

// The names in the folder that have the kind's extension, in the system's order. Empty when the
// folder cannot be opened.
std::vector<OwnedText> v_component_list_find_names(const char *folder_path,
                                                   const VComponentKind &kind);
