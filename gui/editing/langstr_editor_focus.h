#pragma once
// Finds the keyboard focus among the widgets of a VLangstrEditor, moves it between them, and
// preserves it while the table is rebuilt.

#include "gui/editing/focus_order.h"
#include "langstr_editor_row.h"

// The position of the focus of the editor's window.
VFocusPosition v_langstr_editor_focus_find(GtkWidget *editor, const LangstrEditorRows &rows,
                                           GtkButton *plus_button);
// Moves the focus to the text field given by v_focus_order_find_row for the key; false when there
// is none or it does not take the focus.
bool v_langstr_editor_focus_move(GtkWidget *editor, const LangstrEditorRows &rows,
                                 GtkButton *plus_button, GtkDirectionType direction);

enum class FocusNeighbour { previous, next };

// Moves the focus to the widget before or after the one that has it, row by row and from left to
// right; false when there is none.
bool v_langstr_editor_focus_move_to_neighbour(GtkWidget *editor, const LangstrEditorRows &rows,
                                              GtkButton *plus_button, FocusNeighbour neighbour);

// A reference to the widget in the editor that has the focus; null when none has.
OwnedObject<GtkWidget> v_langstr_editor_focus_share(GtkWidget *editor);
// Restores the focus to that widget (null: does nothing) after the table is rebuilt. If its row was
// deleted, the text field of the row that is now at deleted_index, or of the last one, gets it.
void v_langstr_editor_focus_restore(GtkWidget *editor, const LangstrEditorRows &rows,
                                    GtkWidget *focus_widget, std::size_t deleted_index);
