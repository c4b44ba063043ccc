#include "gui/components/component_list.h"

#include <algorithm>
#include <climits>
#include <map>
#include <string>

#include "base/fs_utils.h"
#include "gui/accessibility.h"
#include "gui/idle_call.h"
#include "gui/list_place.h"
#include "gui/list_search.h"
#include "gui/lists.h"
#include "gui/screen_area.h"

namespace {

// Maximum width in characters that a row requests; less on a screen that is too narrow for it
// beside the window's buttons.
constexpr int longest_text = 100;
constexpr char longest_text_key[] = "vantorelle_longest_text"; // on a view's cell renderer
constexpr int button_characters = 14;
constexpr int other_pixels = 110;

VComponentRow read_row(GtkTreeModel *model, GtkTreeIter *row) {
  return {v_component_list_get_text(model, row, v_component_column_text),
          v_component_list_get_text(model, row, v_component_column_file)};
}

// The iterators remain valid while their rows exist, even when sorting moves them.
std::vector<GtkTreeIter> all_rows(GtkListStore *list) {
  GtkTreeModel *model = GTK_TREE_MODEL(list);
  std::vector<GtkTreeIter> rows;
  GtkTreeIter row;
  for (gboolean valid = gtk_tree_model_get_iter_first(model, &row); valid;
       valid = gtk_tree_model_iter_next(model, &row)) {
    rows.push_back(row);
  }
  return rows;
}

GtkListStore *get_list(GtkTreeView *view) { return GTK_LIST_STORE(gtk_tree_view_get_model(view)); }

OwnedText get_file(GtkListStore *list, GtkTreeIter *row) {
  return v_component_list_get_text(GTK_TREE_MODEL(list), row, v_component_column_file);
}

void set_text(GtkListStore *list, GtkTreeIter *row, const char *text) {
  const OwnedText current =
      v_component_list_get_text(GTK_TREE_MODEL(list), row, v_component_column_text);
  if (g_strcmp0(current.get(), text) != 0) {
    gtk_list_store_set(list, row, v_component_column_text, text, -1);
  }
}

// Computed when the first row is shown, because by then the view is in its window and has its
// style.
int get_longest_text(GtkTreeViewColumn *column, GtkCellRenderer *cell) {
  if (const int known = GPOINTER_TO_INT(g_object_get_data(G_OBJECT(cell), longest_text_key))) {
    return known;
  }
  GtkWidget *view = gtk_tree_view_column_get_tree_view(column);
  const int room = v_screen_area_count_characters(view, button_characters, other_pixels);
  const int longest = std::min(longest_text, room);
  g_object_set_data(G_OBJECT(cell), longest_text_key, GINT_TO_POINTER(longest));
  return longest;
}

} // namespace

OwnedObject<GtkListStore> v_component_list_new() {
  OwnedObject<GtkListStore> list = take(gtk_list_store_new(2, G_TYPE_STRING, G_TYPE_STRING));
  gtk_tree_sortable_set_sort_column_id(GTK_TREE_SORTABLE(list.get()), v_component_column_text,
                                       GTK_SORT_ASCENDING);
  return list;
}

void v_component_list_append(GtkListStore *list, const char *text, const char *file) {
  gtk_list_store_insert_with_values(list, nullptr, -1, v_component_column_text, text,
                                    v_component_column_file, file, -1);
}

void v_component_list_update(GtkListStore *list, const std::vector<VComponentRow> &rows) {
  std::map<std::string, const VComponentRow *> missing;
  for (const VComponentRow &row : rows) {
    missing.emplace(row.file.get(), &row);
  }
  for (GtkTreeIter &row : all_rows(list)) {
    if (const auto wanted = missing.extract(get_file(list, &row).get())) {
      set_text(list, &row, wanted.mapped()->text.get());
    } else {
      gtk_list_store_remove(list, &row);
    }
  }
  for (const auto &[file, row] : missing) {
    v_component_list_append(list, row->text.get(), file.c_str());
  }
}

int v_component_list_find(GtkListStore *list, const char *file) {
  int place = 0;
  for (GtkTreeIter &row : all_rows(list)) {
    if (g_strcmp0(get_file(list, &row).get(), file) == 0) {
      return place;
    }
    place++;
  }
  return -1;
}

VComponentPlace v_component_list_get_place(GtkTreeView *view) {
  GtkListStore *list = get_list(view);
  VComponentPlace place;
  place.is_chosen = v_component_list_get_selected_row(view) || v_list_place_is_placed(view);
  int row = v_list_place_get(view);
  while (std::optional<VComponentRow> at = v_component_list_get_row(list, row)) {
    place.files.push_back(std::move(at->file));
    row++;
  }
  return place;
}

void v_component_list_return_to_place(GtkTreeView *view, const char *new_file,
                                      const VComponentPlace &place) {
  GtkListStore *list = get_list(view);
  int row = v_component_list_find(list, new_file);
  if (row < 0 && !place.is_chosen) {
    return;
  }
  for (auto file = place.files.begin(); row < 0 && file != place.files.end(); ++file) {
    row = v_component_list_find(list, file->get());
  }
  v_list_place_set(view, row < 0 ? INT_MAX : row);
}

GtkTreeView *v_component_list_pack_view(GtkBox *box, GtkListStore *list,
                                        GtkTreeCellDataFunc cell_data_func) {
  GtkScrolledWindow *scrolled_window = v_gui_pack_scrolled_window(
      box, 300, 250, GTK_POLICY_NEVER, GTK_POLICY_AUTOMATIC, GTK_SHADOW_IN);
  GtkTreeView *view = v_gui_add_tree_view(GTK_CONTAINER(scrolled_window), HeadersVisible::no,
                                          FixedHeight::no, SelectionMode::single);
  GtkCellRenderer *cell = gtk_cell_renderer_text_new();
  gtk_tree_view_insert_column_with_data_func(view, -1, "Item", cell, cell_data_func, nullptr,
                                             nullptr);
  gtk_tree_view_set_model(view, GTK_TREE_MODEL(list));
  v_list_search_enable(view, v_component_column_text, v_component_list_get_shown_text);
  v_gui_set_accessible_name(GTK_WIDGET(view), "Items");
  return view;
}

void v_component_list_set_accessible_name(GtkTreeView *view, const VComponentKind &kind) {
  const OwnedText name(g_strdup_printf("%s files", v_file_type_get_name(kind.file_type)));
  v_gui_set_accessible_name(GTK_WIDGET(view), name.get());
}

void v_component_list_show_text(GtkTreeViewColumn *column, GtkCellRenderer *cell,
                                const char *text) {
  const int longest = get_longest_text(column, cell);
  const bool overlong = g_utf8_strlen(text, -1) > longest;
  g_object_set(cell, "text", text, "ellipsize",
               overlong ? PANGO_ELLIPSIZE_END : PANGO_ELLIPSIZE_NONE, "width-chars",
               overlong ? longest : -1, nullptr);
}

OwnedText v_component_list_get_text(GtkTreeModel *model, GtkTreeIter *row,
                                    VComponentColumn column) {
  OwnedText text;
  gtk_tree_model_get(model, row, column, static_cast<char **>(receive(text)), -1);
  return text;
}

OwnedText v_component_list_get_shown_text(GtkTreeModel *model, GtkTreeIter *row) {
  OwnedText text = v_component_list_get_text(model, row, v_component_column_text);
  return text ? std::move(text) : v_component_list_get_text(model, row, v_component_column_file);
}

std::optional<VComponentRow> v_component_list_get_row(GtkListStore *list, int row) {
  GtkTreeModel *model = GTK_TREE_MODEL(list);
  GtkTreeIter iter;
  if (row < 0 || !gtk_tree_model_iter_nth_child(model, &iter, nullptr, row)) {
    return std::nullopt;
  }
  return read_row(model, &iter);
}

std::optional<VComponentRow> v_component_list_get_selected_row(GtkTreeView *view) {
  GtkTreeModel *model = nullptr;
  GtkTreeIter row;
  if (!gtk_tree_selection_get_selected(gtk_tree_view_get_selection(view), &model, &row)) {
    return std::nullopt;
  }
  return read_row(model, &row);
}

void v_component_list_unselect_when_idle(GtkTreeView *view) {
  v_idle_call_add(GTK_WIDGET(view), G_PRIORITY_DEFAULT_IDLE, [view] {
    gtk_tree_selection_unselect_all(gtk_tree_view_get_selection(view));
    v_list_place_reveal_focus(view);
  });
}

std::vector<OwnedText> v_component_list_find_names(const char *folder_path,
                                                   const VComponentKind &kind) {
  std::vector<OwnedText> names;
  if (const OwnedFolder listing = v_fs_utils_open_folder(folder_path)) {
    while (OwnedText name = v_fs_utils_next_convertible_folder_entry(listing.get())) {
      if (v_component_kind_has_extension(kind, name.get())) {
        names.push_back(std::move(name));
      }
    }
  }
  return names;
}
