#include "gui/components/bundled_file_selector.h"

#include <optional>
#include <utility>

#include "base/fs_utils.h"
#include "base/platform.h"
#include "gui/accessibility.h"
#include "gui/components/component_list.h"
#include "gui/message_dialogs.h"
#include "gui/widgets.h"
#include "gui/window_keys.h"

namespace {

// ---- State --------------------------------------------------------------------------------------

struct BundledFileSelector {
  VWindowStack *window_stack = nullptr;
  const VComponentKind &kind;
  OwnedObject<GtkListStore> list; // the second column holds the path
  GtkWindow *window = nullptr;
  GtkTreeView *tree_view = nullptr;
  OwnedText result; // null until a file is chosen
};

void cell_data_func(GtkTreeViewColumn *column, GtkCellRenderer *cell, GtkTreeModel *model,
                    GtkTreeIter *row, void *);
void ok_callback(GtkButton *button, BundledFileSelector *state);

// ---- Build --------------------------------------------------------------------------------------

void pack_buttons(BundledFileSelector *state, GtkBox *box) {
  GtkBox *row = v_gui_pack_hbox(box, Expand::no, Spacing::standard);
  GtkButton *ok = v_gui_pack_ok_and_cancel(row, state->window, G_CALLBACK(ok_callback), state);
  v_window_keys_add_return_in_list(state->window, state->tree_view, ok);
  v_window_keys_press_on_double_click(state->tree_view, ok);
}

void build_window(BundledFileSelector *state) {
  state->window = v_gui_create_window("Select one to add");
  GtkBox *box = v_gui_add_vbox(GTK_CONTAINER(state->window), Spacing::standard);
  state->tree_view = v_component_list_pack_view(box, state->list.get(), cell_data_func);
  v_component_list_set_accessible_name(state->tree_view, state->kind);
  pack_buttons(state, box);
  v_gui_close_on_escape(state->window);
}

// ---- Update -------------------------------------------------------------------------------------

// A file without a display text is listed by its name.
void fill_list(BundledFileSelector *state, const char *folder_path) {
  const VComponentKind &kind = state->kind;
  for (const OwnedText &name : v_component_list_find_names(folder_path, kind)) {
    const OwnedText path = v_fs_utils_create_path_in_folder(folder_path, name.get());
    const OwnedText text = kind.text_callback(path.get(), kind.user_data);
    v_component_list_append(state->list.get(), text ? text.get() : name.get(), path.get());
  }
}

// ---- Read ---------------------------------------------------------------------------------------

// The path (UTF-8) of the selected file; null, after an error message, when none is selected.
OwnedText read_path(const BundledFileSelector *state) {
  std::optional<VComponentRow> row = v_component_list_get_selected_row(state->tree_view);
  if (!row) {
    v_message_show_error(state->window_stack, "None selected.");
    return nullptr;
  }
  return std::move(row->file);
}

// ---- Handlers -----------------------------------------------------------------------------------

// Called by the list for each row that it draws or measures.
void cell_data_func(GtkTreeViewColumn *column, GtkCellRenderer *cell, GtkTreeModel *model,
                    GtkTreeIter *row, void *) {
  v_component_list_show_text(column, cell,
                             v_component_list_get_text(model, row, v_component_column_text).get());
}

// "clicked" of "OK", Return in the list, and a double click on a row.
void ok_callback(GtkButton *, BundledFileSelector *state) {
  state->result = read_path(state);
  if (state->result) {
    gtk_widget_destroy(GTK_WIDGET(state->window));
  }
}

} // namespace

// ---- Run ----------------------------------------------------------------------------------------

OwnedText v_components_gui_get_bundled_file_path(VWindowStack *window_stack,
                                                 const VWorkspace *workspace,
                                                 const VComponentKind &kind) {
  return v_components_gui_bundled_file_selector_run(window_stack, workspace, kind);
}

OwnedText v_components_gui_bundled_file_selector_run(VWindowStack *window_stack, const VWorkspace *,
                                                     const VComponentKind &kind) {
  const OwnedText install_folder = v_platform_get_install_folder_path();
  if (!install_folder) {
    return nullptr;
  }
  const OwnedText folder_path =
      v_fs_utils_create_path_in_folder(install_folder.get(), kind.folder_name);
  BundledFileSelector state = {window_stack, kind,    v_component_list_new(),
                               nullptr,      nullptr, nullptr};
  fill_list(&state, folder_path.get());
  build_window(&state);
  v_component_list_unselect_when_idle(state.tree_view);
  v_window_stack_run_window(window_stack, state.window, Maximize::no, GTK_WIDGET(state.tree_view));
  return std::move(state.result);
}
