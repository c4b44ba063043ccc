#include "gui/components/main_window.h"

#include <algorithm>

#include "base/fs_utils.h"
#include "gui/components/bundled_file_selector.h"
#include "gui/components/component_folder.h"
#include "gui/components/component_list.h"
#include "gui/components/new_file_window.h"
#include "gui/file_dialogs.h"
#include "gui/labels.h"
#include "gui/list_place.h"
#include "gui/message_dialogs.h"
#include "gui/text_fields.h"
#include "gui/widgets.h"
#include "gui/window_keys.h"

namespace {

// ---- State --------------------------------------------------------------------------------------

struct MainWindow {
  VWindowStack *window_stack = nullptr;
  const VWorkspace *workspace = nullptr;
  VComponentFolder folder;
  VComponentEditCallback edit_callback = nullptr;
  VComponentCanEditCallback can_edit_callback = nullptr;
  OwnedObject<GtkListStore> list_store; // the second column holds the entry name
  // Null once the window is destroyed; then the other widgets must not be used.
  GtkWindow *window = nullptr;
  GtkLabel *notice_label = nullptr;
  GtkTreeView *tree_view = nullptr;
  GtkEntry *file_name_entry = nullptr;
  GtkButton *clone_button = nullptr; // both are null without an edit callback
  GtkButton *edit_button = nullptr;
  GtkButton *save_button = nullptr;
  GtkButton *delete_button = nullptr;
};

using ClickedCallback = void (*)(GtkButton *button, MainWindow *state);

void cell_data_func(GtkTreeViewColumn *column, GtkCellRenderer *cell, GtkTreeModel *model,
                    GtkTreeIter *row, void *);
void selection_change_callback(GtkTreeSelection *selection, MainWindow *state);
void add_from_file_callback(GtkButton *button, MainWindow *state);
void add_bundled_callback(GtkButton *button, MainWindow *state);
void add_new_callback(GtkButton *button, MainWindow *state);
void clone_callback(GtkButton *button, MainWindow *state);
void edit_button_callback(GtkButton *button, MainWindow *state);
void save_callback(GtkButton *button, MainWindow *state);
void delete_callback(GtkButton *button, MainWindow *state);
void refresh_callback(GtkButton *button, MainWindow *state);

// The path (UTF-8) of the row's file.
OwnedText path_of(const MainWindow *state, const VComponentRow &row) {
  return v_component_folder_create_path(state->folder, row.file.get());
}

// ---- Build --------------------------------------------------------------------------------------

void pack_notice(MainWindow *state, GtkBox *box) {
  state->notice_label = v_gui_pack_label_with_markup(
      box,
      "Some incompatible files found. They are marked with <span color=\"red\">red</span> in the "
      "list:",
      0.0f, 0.5f);
  gtk_widget_hide(GTK_WIDGET(state->notice_label));
}

void pack_list(MainWindow *state, GtkBox *row) {
  GtkBox *box = v_gui_pack_vbox(row, Expand::yes, Spacing::standard);
  state->tree_view = v_component_list_pack_view(box, state->list_store.get(), cell_data_func);
  v_component_list_set_accessible_name(state->tree_view, state->folder.kind);
  g_signal_connect(gtk_tree_view_get_selection(state->tree_view), "changed",
                   G_CALLBACK(selection_change_callback), state);
  GtkLabel *label = v_gui_pack_label(box, "File name of selected item:", 0.0f, 0.5f);
  state->file_name_entry = v_gui_pack_entry(box, Expand::no, nullptr, ActivatesDefault::no);
  gtk_editable_set_editable(GTK_EDITABLE(state->file_name_entry), FALSE);
  gtk_label_set_mnemonic_widget(label, GTK_WIDGET(state->file_name_entry));
}

GtkButton *pack_button(MainWindow *state, GtkBox *column, const char *label,
                       ClickedCallback callback) {
  GtkButton *button = v_gui_pack_button(column, label, MakeDefault::no);
  g_signal_connect(button, "clicked", G_CALLBACK(callback), state);
  return button;
}

void pack_buttons(MainWindow *state, GtkBox *row, OfferBundled offer_bundled) {
  GtkBox *column = v_gui_pack_vbox(row, Expand::no, Spacing::standard);
  pack_button(state, column, "Add from file", add_from_file_callback);
  if (offer_bundled == OfferBundled::yes) {
    pack_button(state, column, "Add bundled", add_bundled_callback);
  }
  if (state->edit_callback != nullptr) {
    GtkButton *add_new = pack_button(state, column, "Add new", add_new_callback);
    v_window_keys_add(state->window, GDK_KEY_n, GDK_CONTROL_MASK, add_new);
    state->clone_button = pack_button(state, column, "Clone", clone_callback);
    state->edit_button = pack_button(state, column, "Edit", edit_button_callback);
    v_window_keys_add_return_in_list(state->window, state->tree_view, state->edit_button);
    v_window_keys_press_on_double_click(state->tree_view, state->edit_button);
  }
  state->save_button = pack_button(state, column, "Save a copy", save_callback);
  state->delete_button = pack_button(state, column, "Delete", delete_callback);
  v_window_keys_add_in_list(state->window, state->tree_view, GDK_KEY_Delete, state->delete_button);
  v_gui_pack_space(column, 1, 10);
  GtkButton *refresh = v_gui_pack_button_in_alignment(column, Expand::yes, "Refresh list",
                                                      MakeDefault::no, 0.0f, 1.0f, 1.0f, 0.0f);
  g_signal_connect(refresh, "clicked", G_CALLBACK(refresh_callback), state);
  v_window_keys_add(state->window, GDK_KEY_F5, GdkModifierType{}, refresh);
}

void build_window(MainWindow *state, const char *title, OfferBundled offer_bundled) {
  state->window = v_gui_create_window(title);
  g_signal_connect(state->window, "destroy", G_CALLBACK(gtk_widget_destroyed), &state->window);
  GtkBox *box = v_gui_add_vbox(GTK_CONTAINER(state->window), Spacing::standard);
  pack_notice(state, box);
  GtkBox *row = v_gui_pack_hbox(box, Expand::yes, Spacing::standard);
  pack_list(state, row);
  pack_buttons(state, row, offer_bundled);
}

// ---- Update -------------------------------------------------------------------------------------

void set_sensitive_if_any(GtkButton *button, bool sensitive) {
  if (button != nullptr) {
    gtk_widget_set_sensitive(GTK_WIDGET(button), sensitive);
  }
}

bool can_edit(const MainWindow *state, const std::optional<VComponentRow> &row) {
  return row &&
         (state->can_edit_callback == nullptr ||
          state->can_edit_callback(path_of(state, *row).get(), state->folder.kind.user_data));
}

void update_buttons(const MainWindow *state, const std::optional<VComponentRow> &row) {
  const bool editable = can_edit(state, row);
  set_sensitive_if_any(state->clone_button, editable);
  set_sensitive_if_any(state->edit_button, editable);
  set_sensitive_if_any(state->save_button, row.has_value());
  set_sensitive_if_any(state->delete_button, row.has_value());
}

bool is_scrolled_to_top(const MainWindow *state) {
  GtkAdjustment *adjustment = gtk_scrollable_get_vadjustment(GTK_SCROLLABLE(state->tree_view));
  return gtk_adjustment_get_value(adjustment) <= gtk_adjustment_get_lower(adjustment);
}

// Incompatible files are at the top of the list. The list scrolls to them when the notice appears;
// afterwards it keeps the user's position.
void show_notice(const MainWindow *state, bool found_incompatible) {
  GtkWidget *notice = GTK_WIDGET(state->notice_label);
  const bool was_shown = gtk_widget_get_visible(notice);
  gtk_widget_set_visible(notice, found_incompatible);
  if (!found_incompatible) {
    v_gui_resize_window_to_minimum_unless_maximized(state->window);
  } else if (!was_shown) {
    v_list_place_show(state->tree_view, 0);
  }
}

// Leaves nothing selected. The cursor is on the row of the new file (an entry name; null for none),
// or keeps its position in the list.
void refresh_list(const MainWindow *state, const char *new_file = nullptr) {
  if (state->window == nullptr) {
    return;
  }
  const VComponentPlace place = v_component_list_get_place(state->tree_view);
  const bool was_at_top = is_scrolled_to_top(state);
  const std::vector<VComponentRow> rows = v_component_folder_read(state->folder);
  {
    const VListWithoutSelection without_selection(state->tree_view);
    v_component_list_update(state->list_store.get(), rows);
  }
  if (was_at_top) {
    v_list_place_show(state->tree_view, 0);
  }
  v_component_list_return_to_place(state->tree_view, new_file, place);
  show_notice(state, std::any_of(rows.begin(), rows.end(),
                                 [](const VComponentRow &row) { return row.text == nullptr; }));
  update_buttons(state, std::nullopt);
  v_list_place_take_free_focus(state->tree_view);
}

// Adds a file to the folder and shows it.
void add_and_show(const MainWindow *state, const char *source_path) {
  const bool is_added = v_component_folder_add(state->folder, source_path);
  refresh_list(state, is_added ? v_fs_utils_find_entry_name_in_path(source_path) : nullptr);
}

// ---- Read ---------------------------------------------------------------------------------------

// No value when no row is selected or the window is destroyed.
std::optional<VComponentRow> get_selected_row(const MainWindow *state) {
  return state->window == nullptr ? std::nullopt
                                  : v_component_list_get_selected_row(state->tree_view);
}

// The last part of the path, borrowed from it; null for null.
const char *get_entry_name(const OwnedText &path) {
  return path ? v_fs_utils_find_entry_name_in_path(path.get()) : nullptr;
}

// ---- Handlers -----------------------------------------------------------------------------------

// The list may change, and even the main window may be destroyed, while a handler waits for another
// window.

// Called by the list for each row that it draws or measures. Incompatible files are red.
void cell_data_func(GtkTreeViewColumn *column, GtkCellRenderer *cell, GtkTreeModel *model,
                    GtkTreeIter *row, void *) {
  v_component_list_show_text(column, cell, v_component_list_get_shown_text(model, row).get());
  if (v_component_list_get_text(model, row, v_component_column_text)) {
    g_object_set(cell, "foreground-set", FALSE, nullptr);
  } else {
    g_object_set(cell, "foreground", "Red", "foreground-set", TRUE, nullptr);
  }
}

// "changed" of the list's selection; emitted several times while rows are changed.
void selection_change_callback(GtkTreeSelection *, MainWindow *state) {
  if (state->window == nullptr) {
    return;
  }
  const std::optional<VComponentRow> row = get_selected_row(state);
  update_buttons(state, row);
  v_gui_set_entry_text(state->file_name_entry, row ? row->file.get() : "");
}

// "clicked" of "Add from file".
void add_from_file_callback(GtkButton *, MainWindow *state) {
  if (const OwnedText path = v_file_dialog_get_file_path_for_reading(
          state->window_stack, "Select a file to add", nullptr, state->folder.kind.file_type)) {
    add_and_show(state, path.get());
  }
}

// "clicked" of "Add bundled".
void add_bundled_callback(GtkButton *, MainWindow *state) {
  if (const OwnedText path = v_components_gui_get_bundled_file_path(
          state->window_stack, state->workspace, state->folder.kind)) {
    add_and_show(state, path.get());
  }
}

// "clicked" of "Add new", and Ctrl+N.
void add_new_callback(GtkButton *, MainWindow *state) {
  const OwnedText path =
      v_components_gui_get_new_file_path(state->window_stack, state->workspace, state->folder.kind);
  if (path) {
    state->edit_callback(path.get(), state->folder.kind.user_data);
  }
  refresh_list(state, get_entry_name(path));
}

// "clicked" of "Clone".
void clone_callback(GtkButton *, MainWindow *state) {
  const OwnedText target =
      v_components_gui_get_new_file_path(state->window_stack, state->workspace, state->folder.kind);
  const std::optional<VComponentRow> row = get_selected_row(state);
  if (target && row && !v_component_folder_copy_file(path_of(state, *row).get(), target.get())) {
    v_message_show_error(state->window_stack, "An error occured when copying the file.");
  }
  refresh_list(state, get_entry_name(target));
}

// "clicked" of "Edit", Return in the list, and a double click on a row.
void edit_button_callback(GtkButton *, MainWindow *state) {
  const std::optional<VComponentRow> row = get_selected_row(state);
  if (row && v_component_folder_may_edit(state->folder, row->file.get())) {
    state->edit_callback(path_of(state, *row).get(), state->folder.kind.user_data);
  }
  refresh_list(state);
}

// "clicked" of "Save a copy".
void save_callback(GtkButton *, MainWindow *state) {
  const std::optional<VComponentRow> row = get_selected_row(state);
  if (!row) {
    return;
  }
  const OwnedText destination = v_file_dialog_get_file_path_for_writing(
      state->window_stack, row->file.get(), state->folder.kind.file_type);
  if (destination && !v_component_folder_copy_file(path_of(state, *row).get(), destination.get())) {
    v_message_show_error_utf8_printf(state->window_stack,
                                     "An error occured when saving the copy of the file.\n\n%s",
                                     destination.get());
  }
  refresh_list(state);
}

// "clicked" of "Delete", and the key Delete in the list.
void delete_callback(GtkButton *, MainWindow *state) {
  const std::optional<VComponentRow> row = get_selected_row(state);
  if (!row) {
    return;
  }
  const OwnedText path = path_of(state, *row);
  if (v_message_ask_yes_no_question_utf8_printf(
          state->window_stack, 0, WarningIcon::yes,
          "Do you really want to delete \"%s\" from your workspace?",
          row->text ? row->text.get() : row->file.get()) == 1 &&
      !v_fs_utils_delete_file_if_exists(path.get())) {
    v_message_show_error_utf8_printf(state->window_stack, "Couldn't delete the file.\n\n%s",
                                     path.get());
  }
  refresh_list(state);
}

// "clicked" of "Refresh list", and F5.
void refresh_callback(GtkButton *, MainWindow *state) { refresh_list(state); }

} // namespace

// ---- Run ----------------------------------------------------------------------------------------

void v_components_gui_main_window_run(VWindowStack *window_stack, const VWorkspace *workspace,
                                      const char *title, const char *folder_name,
                                      VFileType file_type, OfferBundled offer_bundled,
                                      VComponentTextCallback text_callback,
                                      VComponentEditCallback edit_callback,
                                      VComponentCanEditCallback can_edit_callback,
                                      void *user_data) {
  MainWindow state;
  state.window_stack = window_stack;
  state.workspace = workspace;
  state.folder = {window_stack,
                  {folder_name, file_type, text_callback, user_data},
                  v_fs_utils_create_path_in_folder(workspace->folder_path.get(), folder_name)};
  state.edit_callback = edit_callback;
  state.can_edit_callback = can_edit_callback;
  state.list_store = v_component_list_new();
  build_window(&state, title, offer_bundled);
  refresh_list(&state);
  v_component_list_unselect_when_idle(state.tree_view);
  v_window_stack_run_window(window_stack, state.window, Maximize::no, GTK_WIDGET(state.tree_view));
}
