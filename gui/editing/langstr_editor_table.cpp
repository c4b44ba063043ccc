#include "langstr_editor_table.h"

#include <algorithm>

#include "gui/widgets.h"

namespace {

constexpr GtkAttachOptions shrink = GTK_SHRINK;
constexpr auto shrink_and_fill = static_cast<GtkAttachOptions>(GTK_SHRINK | GTK_FILL);
constexpr auto expand_and_fill = static_cast<GtkAttachOptions>(GTK_EXPAND | GTK_FILL);

// Columns and rows of the table; right and bottom are exclusive.
struct Cell {
  guint left;
  guint right;
  guint top;
  guint bottom;
};

void attach(GtkTable *table, gpointer widget, Cell cell, GtkAttachOptions x_options,
            GtkAttachOptions y_options) {
  gtk_table_attach(table, GTK_WIDGET(widget), cell.left, cell.right, cell.top, cell.bottom,
                   x_options, y_options, 0, 0);
}

void attach_one_line_row(GtkTable *table, const LangstrEditorRow *row, guint top) {
  attach(table, row->text_field.get(), {0, 1, top, top + 1}, expand_and_fill, expand_and_fill);
  attach(table, row->language_combo.get(), {1, 2, top, top + 1}, shrink, shrink);
  attach(table, row->delete_button.get(), {2, 3, top, top + 1}, shrink, shrink);
}

void attach_multi_line_row(GtkTable *table, const LangstrEditorRow *row, guint top) {
  attach(table, row->scroller.get(), {0, 1, top, top + 2}, expand_and_fill, expand_and_fill);
  attach(table, row->language_combo.get(), {1, 4, top, top + 1}, shrink, shrink);
  attach(table, row->delete_alignment.get(), {1, 2, top + 1, top + 2}, shrink_and_fill, shrink);
}

void take_out(GtkWidget *child, void *table) { gtk_container_remove(GTK_CONTAINER(table), child); }

} // namespace

GtkTable *v_langstr_editor_table_new(LangstrEditorMode mode, const LangstrEditorRows &rows,
                                     GtkWidget *plus_widget) {
  const bool multi_line = mode == LangstrEditorMode::multi_line;
  const guint height = multi_line ? 2 : 1; // table rows per editor row
  // At least one table row, for the plus button.
  const guint bottom = std::max(height * static_cast<guint>(rows.size()), 1u);
  GtkTable *table = v_gui_create_table(bottom, 4, Homogeneous::no);
  guint top = 0;
  for (const auto &row : rows) {
    if (multi_line) {
      attach_multi_line_row(table, row.get(), top);
    } else {
      attach_one_line_row(table, row.get(), top);
    }
    top += height;
  }
  attach(table, plus_widget, {3, 4, bottom - 1, bottom}, multi_line ? shrink_and_fill : shrink,
         shrink);
  return table;
}

void v_langstr_editor_table_drop(GtkTable *table, GtkContainer *container) {
  gtk_widget_hide(GTK_WIDGET(table));
  gtk_container_foreach(GTK_CONTAINER(table), take_out, table);
  gtk_container_remove(container, GTK_WIDGET(table));
}
