#include "gui/components/main_window.h"

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
#include "gui/message_dialogs.h"
#include "gui/widgets.h"

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
  v_component_list_announce_kind(state->tree_view, state->kind);
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
    pack_button(column, "Add new", add_new_callback, state);
    state->clone_button = pack_button(column, "Clone", clone_callback, state);
    state->edit_button = pack_button(column, "Edit", edit_button_callback, state);
  }
  state->save_button = pack_button(column, "Save a copy", save_callback, state);
  state->delete_button = pack_button(column, "Delete", delete_callback, state);
  v_gui_pack_space(column, 1, 10);
  GtkButton *refresh = v_gui_pack_button_in_alignment(column, Expand::yes, "Refresh list",
                                                      MakeDefault::no, 0.0f, 1.0f, 1.0f, 0.0f);
  g_signal_connect(refresh, "clicked", G_CALLBACK(refresh_callback), state);
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

bool can_edit(const MainWindow *state, const std::optional<VComponentRow> &row) {
  return row && (state->can_edit_callback == nullptr ||
                 state->can_edit_callback(path_of(state, *row).get(), state->kind.user_data));
}

// Updating.

void cell_data_func(GtkTreeViewColumn *, GtkCellRenderer *cell, GtkTreeModel *model,
                    GtkTreeIter *row, void *) {
  if (const OwnedText text = v_component_list_get_text(model, row, v_component_column_text)) {
    v_component_list_show_text(cell, text.get());
    g_object_set(cell, "foreground-set", FALSE, nullptr);
  } else {
    v_component_list_show_text(
        cell, v_component_list_get_text(model, row, v_component_column_file).get());
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

// Lists what is in the folder now. Returns whether an incompatible file is among it.
bool fill_list(const MainWindow *state) {
  bool found_incompatible = false;
  gtk_list_store_clear(state->list_store.get());
  for (OwnedText &name : v_component_list_find_names(state->folder_path.get(), state->kind)) {
    const VComponentRow row = {nullptr, std::move(name)};
    const OwnedText path = path_of(state, row);
    VFileInfo info;
    if (v_fs_utils_get_info(path.get(), info) && v_fs_utils_is_regular_file(info)) {
      const OwnedText text = state->kind.text_callback(path.get(), state->kind.user_data);
      v_component_list_append(state->list_store.get(), text.get(), row.file.get());
      found_incompatible |= text == nullptr;
    }
  }
  return found_incompatible;
}

// Afterwards nothing is selected.
void refresh_list(const MainWindow *state) {
  if (state->window == nullptr) {
    return;
  }
  // Off the view, so that neither selection nor cursor wander while rows come and go.
  gtk_tree_view_set_model(state->tree_view, nullptr);
  const bool found_incompatible = fill_list(state);
  gtk_tree_view_set_model(state->tree_view, GTK_TREE_MODEL(state->list_store.get()));
  gtk_widget_set_visible(GTK_WIDGET(state->notice_label), found_incompatible);
  if (!found_incompatible) {
    v_gui_resize_window_to_minimum_unless_maximized(state->window);
  }
  update_buttons(state, get_selected_row(state));
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
  if (check_extension(state, source_path) && ensure_folder(state)) {
    const OwnedText destination = v_fs_utils_create_path_in_folder(
        state->folder_path.get(), v_fs_utils_find_entry_name_in_path(source_path));
    if (may_write(state, source_path, destination.get()) &&
        !copy_file(source_path, destination.get())) {
      v_message_show_error_utf8_printf(
          state->window_stack, "An error occured when writing file.\n\n%s", destination.get());
    }
  }
  refresh_list(state);
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
  if (const OwnedText path =
          v_components_gui_get_new_file_path(state->window_stack, state->workspace, state->kind)) {
    state->edit_callback(path.get(), state->kind.user_data);
  }
  refresh_list(state);
}

void clone_callback(GtkButton *, MainWindow *state) {
  const OwnedText target =
      v_components_gui_get_new_file_path(state->window_stack, state->workspace, state->kind);
  const std::optional<VComponentRow> row = get_selected_row(state);
  if (target && row && !copy_file(path_of(state, *row).get(), target.get())) {
    v_message_show_error(state->window_stack, "An error occured when copying the file.");
  }
  refresh_list(state);
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
