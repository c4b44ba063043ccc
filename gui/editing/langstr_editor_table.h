#pragma once
// The table that shows the rows of a VLangstrEditor and, beside the last one, its plus button.

#include "langstr_editor_row.h"

// plus_widget: the plus button, or in multi-line mode the alignment around it. The table is
// floating, like every new widget.
GtkTable *v_langstr_editor_table_new(LangstrEditorMode mode, const LangstrEditorRows &rows,
                                     GtkWidget *plus_widget);
// Removes all widgets from the table, and the table from its container.
void v_langstr_editor_table_drop(GtkTable *table, GtkContainer *container);
