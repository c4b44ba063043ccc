#include "langstr_editor_focus.h"

#include <algorithm>

#include "gui/widgets.h"
#include "gui/window_focus.h"

namespace {

FocusKey to_focus_key(GtkDirectionType direction) {
  switch (direction) {
  case GTK_DIR_TAB_FORWARD:
    return FocusKey::tab;
  case GTK_DIR_TAB_BACKWARD:
    return FocusKey::shift_tab;
  case GTK_DIR_UP:
    return FocusKey::up;
  case GTK_DIR_DOWN:
    return FocusKey::down;
  case GTK_DIR_LEFT:
    return FocusKey::left;
  case GTK_DIR_RIGHT:
    break;
  }
  return FocusKey::right;
}

bool is_inside(GtkWidget *widget, gpointer container) {
  return widget != nullptr && container != nullptr &&
         (widget == container || gtk_widget_is_ancestor(widget, GTK_WIDGET(container)));
}

// The widgets that can have the focus now, in the order of Ctrl+Tab.
std::vector<GtkWidget *> list_stops(const LangstrEditorRows &rows, GtkButton *plus_button) {
  std::vector<GtkWidget *> stops;
  const auto add_if_sensitive = [&stops](gpointer widget) {
    if (gtk_widget_is_sensitive(GTK_WIDGET(widget))) {
      stops.push_back(GTK_WIDGET(widget));
    }
  };
  for (const auto &row : rows) {
    add_if_sensitive(row->text_field.get());
    add_if_sensitive(row->language_combo.get());
    add_if_sensitive(row->delete_button.get());
  }
  add_if_sensitive(plus_button);
  return stops;
}

} // namespace

VFocusPosition v_langstr_editor_focus_find(GtkWidget *editor, const LangstrEditorRows &rows,
                                           GtkButton *plus_button) {
  GtkWidget *focus_widget = v_window_focus_find_focus(editor);
  for (std::size_t i = 0; i < rows.size(); i++) {
    if (is_inside(focus_widget, rows[i]->text_field.get())) {
      return {VFocusPlace::text_field, i};
    }
    if (is_inside(focus_widget, rows[i]->language_combo.get()) ||
        is_inside(focus_widget, rows[i]->delete_button.get())) {
      return {VFocusPlace::row_button, i};
    }
  }
  if (is_inside(focus_widget, plus_button) && !rows.empty()) {
    return {VFocusPlace::plus_button, rows.size() - 1};
  }
  return {};
}

bool v_langstr_editor_focus_move(GtkWidget *editor, const LangstrEditorRows &rows,
                                 GtkButton *plus_button, GtkDirectionType direction) {
  const VFocusPosition position = v_langstr_editor_focus_find(editor, rows, plus_button);
  const std::optional<std::size_t> row =
      v_focus_order_find_row(position, to_focus_key(direction), rows.size());
  return row && v_langstr_editor_row_grab_focus(rows[*row].get());
}

bool v_langstr_editor_focus_move_to_neighbour(GtkWidget *editor, const LangstrEditorRows &rows,
                                              GtkButton *plus_button, FocusNeighbour neighbour) {
  const bool backward = neighbour == FocusNeighbour::previous;
  const std::vector<GtkWidget *> stops = list_stops(rows, plus_button);
  GtkWidget *focus_widget = v_window_focus_find_focus(editor);
  const auto current = std::find_if(stops.begin(), stops.end(), [focus_widget](GtkWidget *stop) {
    return is_inside(focus_widget, stop);
  });
  if (current == stops.end() || current == (backward ? stops.begin() : stops.end() - 1)) {
    return false;
  }
  gtk_widget_grab_focus(*(backward ? current - 1 : current + 1));
  return true;
}

OwnedObject<GtkWidget> v_langstr_editor_focus_share(GtkWidget *editor) {
  GtkWidget *focus_widget = v_window_focus_find_focus(editor);
  return share(is_inside(focus_widget, editor) ? focus_widget : nullptr);
}

void v_langstr_editor_focus_restore(GtkWidget *editor, const LangstrEditorRows &rows,
                                    GtkWidget *focus_widget, std::size_t deleted_index) {
  if (focus_widget == nullptr) {
    return;
  }
  const auto &replacement = rows[std::min(deleted_index, rows.size() - 1)];
  v_gui_grab_focus_without_selecting(
      is_inside(focus_widget, editor) ? focus_widget : replacement->text_field.get());
}
