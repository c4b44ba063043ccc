#include "gui/components/main_window.h"

#include <algorithm>
#include <climits>
#include <cstdio>

#include "base/error.h"
#include "base/file_utils.h"
#include "base/fs_utils.h"
#include "base/platform.h"
#include "base/streams.h"
#include "gui/components/bundled_file_selector.h"
#include "gui/components/component_list.h"
#include "gui/components/new_file_window.h"
#include "gui/file_dialogs.h"
#include "gui/list_place.h"
#include "gui/message_dialogs.h"
#include "gui/widgets.h"
#include "gui/window_keys.h"

namespace {

struct MainWindow {
  VWindowStack *window_stack = nullptr;
  const VWorkspace *workspace = nullptr;
  VComponentKind kind;
  VComponentEditCallback edit_callback = nullptr;
  VComponentCanEditCallback can_edit_callback = nullptr;
  OwnedText folder_path;                // the managed folder
  OwnedObject<GtkListStore> list_store; // the second column holds the entry name
  // Null once the window is gone; the other widgets must not be touched then.
  GtkWindow *window = nullptr;
  GtkLabel *notice_label = nullptr;
  GtkTreeView *tree_view = nullptr;
  GtkEntry *file_name_entry = nullptr;
  GtkButton *clone_button = nullptr; // this and the next are null without an edit callback
  GtkButton *edit_button = nullptr;
  GtkButton *save_button = nullptr;
  GtkButton *delete_button = nullptr;
};

// A place in the list, which is found again when the list has changed.
struct Place {
  std::vector<OwnedText> files; // that of the row, and those of the rows below it
  bool is_chosen = false;       // by the user or by an earlier action, and not by the toolkit
};

using ClickedCallback = void (*)(GtkButton *button, MainWindow *state);

void cell_data_func(GtkTreeViewColumn *, GtkCellRenderer *cell, GtkTreeModel *model,
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

// Build steps.

void pack_notice(GtkBox *box, MainWindow *state) {
  state->notice_label = v_gui_pack_label_with_markup(
      box,
      "Some incompatible files found. They are marked with <span color=\"red\">red</span> in the "
      "list:",
      0.0f, 0.5f);
  gtk_widget_hide(GTK_WIDGET(state->notice_label));
}

void pack_list(GtkBox *row, MainWindow *state) {
  GtkBox *box = v_gui_pack_vbox(row, Expand::yes, Spacing::standard);
  state->tree_view = v_component_list_pack_view(box, state->list_store.get(), cell_data_func);
  v_component_list_set_accessible_name(state->tree_view, state->kind);
  g_signal_connect(gtk_tree_view_get_selection(state->tree_view), "changed",
                   G_CALLBACK(selection_change_callback), state);
  GtkLabel *label = v_gui_pack_label(box, "File name of selected item:", 0.0f, 0.5f);
  state->file_name_entry = v_gui_pack_entry(box, Expand::no, nullptr, ActivatesDefault::no);
  gtk_editable_set_editable(GTK_EDITABLE(state->file_name_entry), FALSE);
  gtk_label_set_mnemonic_widget(label, GTK_WIDGET(state->file_name_entry));
}

GtkButton *pack_button(GtkBox *column, const char *label, ClickedCallback callback,
                       MainWindow *state) {
  GtkButton *button = v_gui_pack_button(column, label, MakeDefault::no);
  g_signal_connect(button, "clicked", G_CALLBACK(callback), state);
  return button;
}

void pack_buttons(GtkBox *row, OfferBundled offer_bundled, MainWindow *state) {
  GtkBox *column = v_gui_pack_vbox(row, Expand::no, Spacing::standard);
  pack_button(column, "Add from file", add_from_file_callback, state);
  if (offer_bundled == OfferBundled::yes) {
    pack_button(column, "Add bundled", add_bundled_callback, state);
  }
  if (state->edit_callback != nullptr) {
    GtkButton *add_new = pack_button(column, "Add new", add_new_callback, state);
    v_window_keys_add(state->window, GDK_KEY_n, GDK_CONTROL_MASK, add_new);
    state->clone_button = pack_button(column, "Clone", clone_callback, state);
    state->edit_button = pack_button(column, "Edit", edit_button_callback, state);
    v_window_keys_add_return_in_list(state->window, state->tree_view, state->edit_button);
    v_window_keys_press_on_double_click(state->tree_view, state->edit_button);
  }
  state->save_button = pack_button(column, "Save a copy", save_callback, state);
  state->delete_button = pack_button(column, "Delete", delete_callback, state);
  v_window_keys_add_in_list(state->window, state->tree_view, GDK_KEY_Delete, state->delete_button);
  v_gui_pack_space(column, 1, 10);
  GtkButton *refresh = v_gui_pack_button_in_alignment(column, Expand::yes, "Refresh list",
                                                      MakeDefault::no, 0.0f, 1.0f, 1.0f, 0.0f);
  g_signal_connect(refresh, "clicked", G_CALLBACK(refresh_callback), state);
  v_window_keys_add(state->window, GDK_KEY_F5, GdkModifierType{}, refresh);
}

void build_window(const char *title, OfferBundled offer_bundled, MainWindow *state) {
  state->window = v_gui_create_window(title);
  g_signal_connect(state->window, "destroy", G_CALLBACK(gtk_widget_destroyed), &state->window);
  GtkBox *box = v_gui_add_vbox(GTK_CONTAINER(state->window), Spacing::standard);
  pack_notice(box, state);
  GtkBox *row = v_gui_pack_hbox(box, Expand::yes, Spacing::standard);
  pack_list(row, state);
  pack_buttons(row, offer_bundled, state);
}

// Reading.

std::optional<VComponentRow> get_selected_row(const MainWindow *state) {
  return state->window == nullptr ? std::nullopt
                                  : v_component_list_get_selected_row(state->tree_view);
}

OwnedText path_of(const MainWindow *state, const VComponentRow &row) {
  return v_fs_utils_create_path_in_folder(state->folder_path.get(), row.file.get());
}

// Borrowed from the path; null for none.
const char *get_entry_name(const OwnedText &path) {
  return path ? v_fs_utils_find_entry_name_in_path(path.get()) : nullptr;
}

bool can_edit(const MainWindow *state, const std::optional<VComponentRow> &row) {
  return row && (state->can_edit_callback == nullptr ||
                 state->can_edit_callback(path_of(state, *row).get(), state->kind.user_data));
}

// Updating.

void cell_data_func(GtkTreeViewColumn *, GtkCellRenderer *cell, GtkTreeModel *model,
                    GtkTreeIter *row, void *) {
  v_component_list_show_text(cell, v_component_list_get_shown_text(model, row).get());
  if (v_component_list_get_text(model, row, v_component_column_text)) {
    g_object_set(cell, "foreground-set", FALSE, nullptr);
  } else {
    g_object_set(cell, "foreground", "Red", "foreground-set", TRUE, nullptr);
  }
}

void set_sensitive_if_any(GtkButton *button, bool sensitive) {
  if (button != nullptr) {
    gtk_widget_set_sensitive(GTK_WIDGET(button), sensitive);
  }
}

void update_buttons(const MainWindow *state, const std::optional<VComponentRow> &row) {
  const bool editable = can_edit(state, row);
  set_sensitive_if_any(state->clone_button, editable);
  set_sensitive_if_any(state->edit_button, editable);
  set_sensitive_if_any(state->save_button, row.has_value());
  set_sensitive_if_any(state->delete_button, row.has_value());
}

// What the file reads; null for one that is not compatible.
OwnedText read_text(const MainWindow *state, const char *path) {
  return state->kind.text_callback(path, state->kind.user_data);
}

// The rows for the files that are in the folder now.
std::vector<VComponentRow> read_folder(const MainWindow *state) {
  std::vector<VComponentRow> rows;
  for (OwnedText &name : v_component_list_find_names(state->folder_path.get(), state->kind)) {
    const OwnedText path = v_fs_utils_create_path_in_folder(state->folder_path.get(), name.get());
    VFileInfo info;
    if (v_fs_utils_get_info(path.get(), info) && v_fs_utils_is_regular_file(info)) {
      rows.push_back({read_text(state, path.get()), std::move(name)});
    }
  }
  return rows;
}

// Where the user is in the list: the row with the cursor, which any selected row has.
Place get_place(const MainWindow *state) {
  Place place;
  place.is_chosen = get_selected_row(state) || v_list_place_is_placed(state->tree_view);
  int row = v_list_place_get(state->tree_view);
  while (std::optional<VComponentRow> at = v_component_list_get_row(state->list_store.get(), row)) {
    place.files.push_back(std::move(at->file));
    row++;
  }
  return place;
}

// To the new file (null for none), to where the user was or, if that row is gone, to the row after
// it or else the last one.
void return_to_place(const MainWindow *state, const char *new_file, const Place &place) {
  GtkListStore *list = state->list_store.get();
  int row = v_component_list_find(list, new_file);
  if (row < 0 && !place.is_chosen) {
    return;
  }
  for (auto file = place.files.begin(); row < 0 && file != place.files.end(); ++file) {
    row = v_component_list_find(list, file->get());
  }
  v_list_place_set(state->tree_view, row < 0 ? INT_MAX : row);
}

bool is_scrolled_to_top(const MainWindow *state) {
  GtkAdjustment *adjustment = gtk_scrollable_get_vadjustment(GTK_SCROLLABLE(state->tree_view));
  return gtk_adjustment_get_value(adjustment) <= gtk_adjustment_get_lower(adjustment);
}

// The incompatible files are the first in the list. A notice that was not there before draws the
// eye to them, so the first one has to be seen; later the user's place in the list comes first.
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

// Afterwards nothing is selected; the cursor is on the row of the new file (an entry name; null for
// none), or where the user was in the list.
void refresh_list(const MainWindow *state, const char *new_file = nullptr) {
  if (state->window == nullptr) {
    return;
  }
  const Place place = get_place(state);
  const bool was_at_top = is_scrolled_to_top(state);
  const std::vector<VComponentRow> rows = read_folder(state);
  {
    const VListWithoutSelection without_selection(state->tree_view);
    v_component_list_update(state->list_store.get(), rows);
  }
  if (was_at_top) {
    v_list_place_show(state->tree_view, 0);
  }
  return_to_place(state, new_file, place);
  show_notice(state, std::any_of(rows.begin(), rows.end(),
                                 [](const VComponentRow &row) { return row.text == nullptr; }));
  update_buttons(state, std::nullopt);
  v_list_place_take_free_focus(state->tree_view);
}

// Copying into and out of the folder.

bool can_be_read(const char *path) {
  VFileInfo info;
  if (!v_fs_utils_get_info(path, info) || !v_fs_utils_is_regular_file(info)) {
    return false;
  }
  const OwnedFile file = v_fs_utils_open_file(path, "rb");
  return file && (std::fgetc(file.get()) != EOF || std::ferror(file.get()) == 0);
}

// False when the file could not be copied. A source that cannot be read leaves the destination as
// it is, which copying itself would not: it deletes first.
bool copy_file(const char *source, const char *destination) {
  return can_be_read(source) && v_stream_copy_from_file_path_to_file_path(source, destination);
}

bool check_extension(const MainWindow *state, const char *path) {
  if (v_component_kind_has_extension(state->kind, path)) {
    return true;
  }
  v_message_show_error_utf8_printf(state->window_stack, "The file name must end with \"%s\".",
                                   v_component_kind_get_extension(state->kind));
  return false;
}

// Makes the managed folder if it is missing. The messages name the fonts folder whatever the kind
// is, on purpose: all managers of the suite have the same.
bool ensure_folder(const MainWindow *state) {
  const char *path = state->folder_path.get();
  VFileInfo info;
  bool known = v_fs_utils_get_info(path, info);
  if (known && !info.exists) {
    v_fs_utils_create_folder(path);
    known = v_fs_utils_get_info(path, info);
  }
  if (!known) {
    v_error_append("Can not access the workspace fonts folder.");
    v_message_show_error(state->window_stack, v_error_get());
  } else if (!info.is_folder) {
    v_message_show_error(state->window_stack,
                         "The workspace fonts folder does not exist and could not be created.");
  }
  return known && info.is_folder;
}

// Whether nothing is at the destination, or the user gives it up.
bool may_write(const MainWindow *state, const char *source, const char *destination) {
  VFileInfo info;
  if (!v_fs_utils_get_info(destination, info) || !info.exists) {
    return true;
  }
  const OwnedText source_text = state->kind.text_callback(source, state->kind.user_data);
  const OwnedText destination_text = state->kind.text_callback(destination, state->kind.user_data);
  return v_message_ask_yes_no_question_utf8_printf(
             state->window_stack, 0, WarningIcon::yes, "Really overwrite \"%s\" with \"%s\"?",
             destination_text ? destination_text.get() : destination,
             source_text ? source_text.get() : source) == 1;
}

// Copies a file from anywhere into the managed folder, under its own name.
void add(const MainWindow *state, const char *source_path) {
  const char *name = v_fs_utils_find_entry_name_in_path(source_path);
  const char *added_name = nullptr;
  if (check_extension(state, source_path) && ensure_folder(state)) {
    const OwnedText destination = v_fs_utils_create_path_in_folder(state->folder_path.get(), name);
    if (may_write(state, source_path, destination.get())) {
      added_name = name;
      if (!copy_file(source_path, destination.get())) {
        v_message_show_error_utf8_printf(
            state->window_stack, "An error occured when writing file.\n\n%s", destination.get());
      }
    }
  }
  refresh_list(state, added_name);
}

// Whether the file is not one that was delivered, or the user wants to edit it all the same.
bool may_edit(const MainWindow *state, const VComponentRow &row) {
  const OwnedText install_folder = v_platform_get_install_folder_path();
  if (!install_folder) {
    return true;
  }
  const OwnedText delivered = v_fs_utils_create_path_in_folder(
      install_folder.get(), state->kind.folder_name, row.file.get());
  return !v_util_test_if_files_are_identical(path_of(state, row).get(), delivered.get()) ||
         v_message_ask_yes_no_question(
             state->window_stack, 0, WarningIcon::yes,
             "This item was bundled with Vantorelle. You might want to clone it first, to make "
             "your own independent copy.\n\nProceed anyway?") == 1;
}

// Handlers. While one waits for another window, the list and even the main window may change.

void selection_change_callback(GtkTreeSelection *, MainWindow *state) {
  if (state->window == nullptr) {
    return;
  }
  const std::optional<VComponentRow> row = get_selected_row(state);
  update_buttons(state, row);
  v_gui_set_entry_text(state->file_name_entry, row ? row->file.get() : "");
}

void add_from_file_callback(GtkButton *, MainWindow *state) {
  if (const OwnedText path = v_file_dialog_get_file_path_for_reading(
          state->window_stack, "Select a file to add", nullptr, state->kind.file_type)) {
    add(state, path.get());
  }
}

void add_bundled_callback(GtkButton *, MainWindow *state) {
  if (const OwnedText path = v_components_gui_get_bundled_file_path(
          state->window_stack, state->workspace, state->kind)) {
    add(state, path.get());
  }
}

void add_new_callback(GtkButton *, MainWindow *state) {
  const OwnedText path =
      v_components_gui_get_new_file_path(state->window_stack, state->workspace, state->kind);
  if (path) {
    state->edit_callback(path.get(), state->kind.user_data);
  }
  refresh_list(state, get_entry_name(path));
}

void clone_callback(GtkButton *, MainWindow *state) {
  const OwnedText target =
      v_components_gui_get_new_file_path(state->window_stack, state->workspace, state->kind);
  const std::optional<VComponentRow> row = get_selected_row(state);
  if (target && row && !copy_file(path_of(state, *row).get(), target.get())) {
    v_message_show_error(state->window_stack, "An error occured when copying the file.");
  }
  refresh_list(state, get_entry_name(target));
}

void edit_button_callback(GtkButton *, MainWindow *state) {
  const std::optional<VComponentRow> row = get_selected_row(state);
  if (row && may_edit(state, *row)) {
    state->edit_callback(path_of(state, *row).get(), state->kind.user_data);
  }
  refresh_list(state);
}

void save_callback(GtkButton *, MainWindow *state) {
  const std::optional<VComponentRow> row = get_selected_row(state);
  if (!row) {
    return;
  }
  const OwnedText destination = v_file_dialog_get_file_path_for_writing(
      state->window_stack, row->file.get(), state->kind.file_type);
  if (destination && !copy_file(path_of(state, *row).get(), destination.get())) {
    v_message_show_error_utf8_printf(state->window_stack,
                                     "An error occured when saving the copy of the file.\n\n%s",
                                     destination.get());
  }
  refresh_list(state);
}

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

void refresh_callback(GtkButton *, MainWindow *state) { refresh_list(state); }

} // namespace

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
  state.kind = {folder_name, file_type, text_callback, user_data};
  state.edit_callback = edit_callback;
  state.can_edit_callback = can_edit_callback;
  state.folder_path = v_fs_utils_create_path_in_folder(workspace->folder_path.get(), folder_name);
  state.list_store = v_component_list_new();
  build_window(title, offer_bundled, &state);
  refresh_list(&state);
  v_component_list_unselect_when_idle(state.tree_view);
  v_window_stack_run_window(window_stack, state.window, Maximize::no, GTK_WIDGET(state.tree_view));
}
