#include "gui/editing/editing_window.h"

#include <optional>
#include <utility>

#include "base/error.h"
#include "base/fs_utils.h"
#include "codeset/remark_history.h"
#include "gui/accessibility.h"
#include "gui/editing/codes_list.h"
#include "gui/editing/codeset_fields.h"
#include "gui/editing/codeset_opening.h"
#include "gui/editing/draft_timer.h"
#include "gui/editing/editing_widgets.h"
#include "gui/editing/remark_dialog.h"
#include "gui/list_place.h"
#include "gui/message_dialogs.h"
#include "gui/widgets.h"
#include "gui/window_commands.h"
#include "gui/window_keys.h"
#include "workspace/drafts.h"

namespace {

// ---- State --------------------------------------------------------------------------------------

bool write_draft(void *editing_window);

struct EditingWindow {
  const RunContext *context = nullptr;
  const char *path = nullptr; // UTF-8
  OwnedCodeset codeset;
  OwnedRemarkHistory history; // changes to the codeset's remarks since the window was opened
  OwnedDraft draft;
  VDraftTimer draft_timer = {write_draft, this};
  VRemarkTyping typing = {[this] { draft_timer.start(); }, nullptr};
  // The remark of the list that is being edited in the remark dialog; null for a new one.
  const VRemark *retyped = nullptr;
  GtkWindow *window = nullptr;
  VCodesetFields fields;
  VCodesList codes;
  VLangstrDisplay *description_display = nullptr;
  // Sensitive while a remark is selected.
  GtkButton *edit_button = nullptr;
  GtkButton *delete_button = nullptr;
  int saved = 0;
};

void text_changed_callback(GtkWidget *field, EditingWindow *state);
void shrunk_callback(VLangstrEditor *editor, EditingWindow *state);
void selection_change_callback(GtkTreeSelection *selection, EditingWindow *state);
void add_callback(GtkButton *button, EditingWindow *state);
void edit_callback(GtkButton *button, EditingWindow *state);
void delete_callback(GtkButton *button, EditingWindow *state);
void undo(void *editing_window);
void redo(void *editing_window);
void save_button_clicked_callback(GtkButton *button, EditingWindow *state);
void close_button_clicked_callback(GtkButton *button, EditingWindow *state);
gboolean window_delete_event_callback(GtkWidget *window, GdkEvent *event, EditingWindow *state);
void window_destroy_callback(GtkWidget *window, EditingWindow *state);

const VSettings *settings_of(const EditingWindow *state) {
  return state->context->workspace->settings.get();
}

// ---- Build --------------------------------------------------------------------------------------

void pack_fields(EditingWindow *state, GtkBox *box) {
  state->fields = v_codeset_fields_pack(box, state->context->window_stack, settings_of(state),
                                        state->codeset.get());
  for (VLangstrEditor *editor : {state->fields.name_editor, state->fields.author_editor}) {
    g_signal_connect(editor, "changed", G_CALLBACK(text_changed_callback), state);
    g_signal_connect(editor, "shrunk", G_CALLBACK(shrunk_callback), state);
  }
  g_signal_connect(state->fields.version_entry, "changed", G_CALLBACK(text_changed_callback),
                   state);
}

void pack_list_and_display(EditingWindow *state, GtkBox *box) {
  GtkBox *row = v_gui_pack_hbox(box, Expand::yes, Spacing::standard);
  state->codes = v_codes_list_pack(row, settings_of(state));
  g_signal_connect(gtk_tree_view_get_selection(state->codes.view), "changed",
                   G_CALLBACK(selection_change_callback), state);
  state->description_display = v_gui_pack_langstr_display(row, 300, 150);
  v_gui_set_accessible_name(gtk_bin_get_child(GTK_BIN(state->description_display)),
                            "Description of the selected remark code");
}

GtkButton *pack_code_button(EditingWindow *state, GtkBox *row, const char *label,
                            GCallback callback) {
  GtkButton *button = v_gui_pack_button(row, label, MakeDefault::no);
  g_signal_connect(button, "clicked", callback, state);
  return button;
}

void pack_code_buttons(EditingWindow *state, GtkBox *box) {
  GtkBox *row = v_gui_pack_hbox(box, Expand::no, Spacing::standard);
  GtkButton *add_button = pack_code_button(state, row, "Add new", G_CALLBACK(add_callback));
  v_window_keys_add(state->window, GDK_KEY_n, GDK_CONTROL_MASK, add_button);
  state->edit_button = pack_code_button(state, row, "Edit", G_CALLBACK(edit_callback));
  state->delete_button = pack_code_button(state, row, "Delete", G_CALLBACK(delete_callback));
}

void pack_codes(EditingWindow *state, GtkBox *box) {
  GtkBox *frame_box = v_gui_pack_vbox_in_frame_with_input_field_label(
      box, Expand::yes, "Remark codes", Required::yes, Spacing::standard);
  pack_list_and_display(state, frame_box);
  pack_code_buttons(state, frame_box);
  v_window_keys_add_return_in_list(state->window, state->codes.view, state->edit_button);
  v_window_keys_add_in_list(state->window, state->codes.view, GDK_KEY_Delete, state->delete_button);
}

void pack_window_buttons(EditingWindow *state, GtkBox *box) {
  GtkBox *row = v_gui_pack_hbox(box, Expand::no, Spacing::standard);
  GtkButton *save = v_gui_pack_button(row, "Save codeset", MakeDefault::yes);
  g_signal_connect(save, "clicked", G_CALLBACK(save_button_clicked_callback), state);
  v_window_keys_add(state->window, GDK_KEY_s, GDK_CONTROL_MASK, save);
  GtkButton *close = v_gui_pack_button_in_alignment(row, Expand::yes, "Close", MakeDefault::no,
                                                    1.0F, 0.0F, 0.0F, 0.0F);
  g_signal_connect(close, "clicked", G_CALLBACK(close_button_clicked_callback), state);
}

void add_keys_of_history(EditingWindow *state) {
  v_window_commands_add(state->window, GDK_KEY_z, GDK_CONTROL_MASK, undo, state);
  v_window_commands_add(state->window, GDK_KEY_z,
                        static_cast<GdkModifierType>(GDK_CONTROL_MASK | GDK_SHIFT_MASK), redo,
                        state);
}

void build_window(EditingWindow *state) {
  const OwnedText title(
      g_strdup_printf("Edit remark codeset - %s", v_fs_utils_find_entry_name_in_path(state->path)));
  state->window = v_gui_create_window(title.get());
  v_gui_close_on_escape(state->window);
  GtkBox *box = v_gui_add_vbox(GTK_CONTAINER(state->window), Spacing::standard);
  // Only the fields scroll, so that the codes and all buttons remain visible, however many
  // translations there are.
  pack_fields(state, v_gui_pack_yielding_vbox(box, Spacing::standard));
  pack_codes(state, box);
  pack_window_buttons(state, box);
  add_keys_of_history(state);
  g_signal_connect(state->window, "delete-event", G_CALLBACK(window_delete_event_callback), state);
  g_signal_connect(state->window, "destroy", G_CALLBACK(window_destroy_callback), state);
}

// ---- Update -------------------------------------------------------------------------------------

void update_gui(EditingWindow *state) {
  const VRemark *remark = v_codes_list_get_selected(&state->codes);
  for (GtkButton *button : {state->edit_button, state->delete_button}) {
    gtk_widget_set_sensitive(GTK_WIDGET(button), remark != nullptr);
  }
  v_langstr_display_set_text(state->description_display,
                             remark == nullptr ? nullptr : remark->description.get());
}

// Called after the cursor has moved to another row, which may make the focused button insensitive.
void update_after_move(EditingWindow *state) {
  update_gui(state);
  v_list_place_take_free_focus(state->codes.view);
}

// The remark dialog has changed nothing, but the text typed there may be in the draft.
void forget_typing(EditingWindow *state, bool was_changed_before) {
  if (was_changed_before) {
    state->draft_timer.start();
  } else {
    state->draft_timer.stop();
    v_draft_remove(state->draft.get());
  }
}

void show_exchange(EditingWindow *state, const VRemarkExchange &exchange) {
  v_codes_list_follow_exchange(&state->codes, exchange);
  update_after_move(state);
  state->draft_timer.start();
}

// Without an exchange the remark is unchanged, so only the cursor moves to its row.
void show_edit(EditingWindow *state, const VRemark *remark,
               const std::optional<VRemarkExchange> &exchange) {
  if (exchange) {
    show_exchange(state, *exchange);
  } else {
    v_codes_list_set_place(&state->codes, v_remark_get_index(remark));
    update_after_move(state);
  }
}

// ---- Read ---------------------------------------------------------------------------------------

// False with a message when there is no remark.
bool check_remarks(const EditingWindow *state) {
  if (v_remark_list_is_empty(state->codeset->remarks.get())) {
    v_error_set("There must be at least one remark code in the codeset.");
    return false;
  }
  return true;
}

// The next remark for step 1, the previous one for -1; null for step 0 and at either end.
VRemark *find_neighbour(const VRemarkList *list, const VRemark *remark, int step) {
  VRemark *neighbour = step > 0 ? remark->next : remark->prev;
  return step == 0 || neighbour == &list->head || neighbour == &list->tail ? nullptr : neighbour;
}

// True when the codeset was changed since it was opened or saved, or may have been.
bool is_changed(const EditingWindow *state) {
  return state->draft->path || state->draft_timer.is_running();
}

// Lets the user edit the remark, which is new or a copy of retyped. True when the user confirms.
bool run_remark_dialog(EditingWindow *state, VRemark *remark, const VRemark *retyped,
                       VRemarkPass *pass) {
  state->retyped = retyped;
  return v_remark_gui_edit_remark_for_drafts(state->context->window_stack, settings_of(state),
                                             remark, state->codeset.get(), "Edit remark code",
                                             state->typing, pass) != 0;
}

// Lets the user edit a copy of the remark. Returns the remark to edit next, or null.
VRemark *edit_remark(EditingWindow *state, VRemark *remark, VRemarkPass &pass) {
  const bool was_changed = is_changed(state);
  OwnedRemark edited = v_remark_clone(remark);
  if (!run_remark_dialog(state, edited.get(), remark, &pass)) {
    forget_typing(state, was_changed);
    return nullptr;
  }
  // Find it first, because a new code may move the remark.
  VRemark *neighbour = find_neighbour(state->codeset->remarks.get(), remark, pass.step);
  const std::optional<VRemarkExchange> exchange =
      v_remark_history_replace_remark(state->history.get(), remark, std::move(edited));
  if (!exchange) {
    forget_typing(state, was_changed);
  }
  show_edit(state, remark, exchange);
  return neighbour;
}

// A copy of the codeset with the remark typed in the remark dialog.
OwnedCodeset clone_with_typed(const EditingWindow *state, OwnedRemark typed) {
  OwnedCodeset codeset = v_codeset_clone(state->codeset.get());
  VRemarkList *remarks = codeset->remarks.get();
  if (state->retyped != nullptr) {
    v_remark_destroy(v_remark_list_get_remark_for_code(remarks, state->retyped->code.get()));
  }
  v_remark_list_add_remark_sorted(remarks, std::move(typed));
  return codeset;
}

// Asks even when nothing was changed. If the user confirms, removes the draft and returns true.
bool confirm_closing(EditingWindow *state) {
  GtkDialog *dialog = v_message_create_question_dialog(
      "Really close?", "Are you sure you want to close the codeset without saving?");
  v_gui_add_dialog_button(dialog, "gtk-close", GTK_RESPONSE_CLOSE);
  v_gui_add_dialog_button(dialog, "gtk-cancel", GTK_RESPONSE_CANCEL);
  gtk_dialog_set_default_response(dialog, GTK_RESPONSE_CANCEL);
  if (v_message_run_and_destroy_dialog(state->context->window_stack, dialog) !=
      GTK_RESPONSE_CLOSE) {
    return false;
  }
  state->draft_timer.stop();
  v_draft_remove(state->draft.get());
  return true;
}

// ---- Handlers -----------------------------------------------------------------------------------

// Called by the timer, a second after the first change that the draft lacks. False when the draft
// could not be written.
bool write_draft(void *editing_window) {
  auto *state = static_cast<EditingWindow *>(editing_window);
  v_codeset_fields_read_all(&state->fields, state->codeset.get());
  OwnedRemark typed = state->typing.read ? state->typing.read() : nullptr;
  return v_draft_write(state->draft.get(), typed ? clone_with_typed(state, std::move(typed)).get()
                                                 : state->codeset.get());
}

// "changed" of the name, the author and the version.
void text_changed_callback(GtkWidget *, EditingWindow *state) { state->draft_timer.start(); }

// "shrunk" of the two editors: a row was removed.
void shrunk_callback(VLangstrEditor *, EditingWindow *state) {
  v_gui_resize_window_to_minimum_unless_maximized(state->window);
}

// "changed" of the list's selection; emitted several times while rows are removed.
void selection_change_callback(GtkTreeSelection *, EditingWindow *state) { update_gui(state); }

// "clicked" of "Add new", and Ctrl+N.
void add_callback(GtkButton *, EditingWindow *state) {
  const bool was_changed = is_changed(state);
  OwnedRemark remark = v_remark_new();
  if (run_remark_dialog(state, remark.get(), nullptr, nullptr)) {
    show_exchange(state, v_remark_history_add_remark(state->history.get(), std::move(remark)));
  } else {
    forget_typing(state, was_changed);
  }
}

// "clicked" of "Edit", and Return in the list.
void edit_callback(GtkButton *, EditingWindow *state) {
  VRemarkPass pass;
  for (VRemark *remark = v_codes_list_get_selected(&state->codes); remark != nullptr;) {
    remark = edit_remark(state, remark, pass);
  }
}

// "clicked" of "Delete", and the key Delete in the list.
void delete_callback(GtkButton *, EditingWindow *state) {
  if (VRemark *remark = v_codes_list_get_selected(&state->codes)) {
    show_exchange(state, v_remark_history_remove_remark(state->history.get(), remark));
  }
}

// Ctrl+Z.
void undo(void *editing_window) {
  auto *state = static_cast<EditingWindow *>(editing_window);
  if (const std::optional<VRemarkExchange> exchange = v_remark_history_undo(state->history.get())) {
    show_exchange(state, *exchange);
  }
}

// Ctrl+Shift+Z.
void redo(void *editing_window) {
  auto *state = static_cast<EditingWindow *>(editing_window);
  if (const std::optional<VRemarkExchange> exchange = v_remark_history_redo(state->history.get())) {
    show_exchange(state, *exchange);
  }
}

// "clicked" of "Save codeset", and Ctrl+S. After a failure the window remains open.
void save_button_clicked_callback(GtkButton *, EditingWindow *state) {
  if (check_remarks(state) && v_codeset_fields_read(&state->fields, state->codeset.get()) &&
      v_draft_save_codeset(state->draft.get(), state->codeset.get())) {
    state->draft_timer.stop();
    state->saved = 1;
    gtk_widget_destroy(GTK_WIDGET(state->window));
  } else {
    v_message_show_error(state->context->window_stack, v_error_get());
  }
}

// "clicked" of "Close".
void close_button_clicked_callback(GtkButton *, EditingWindow *state) {
  if (confirm_closing(state)) {
    gtk_widget_destroy(GTK_WIDGET(state->window));
  }
}

// "delete-event": the window manager's close button, and Escape. TRUE keeps the window open.
gboolean window_delete_event_callback(GtkWidget *, GdkEvent *, EditingWindow *state) {
  return !confirm_closing(state);
}

// "destroy". Writes pending changes, so that a draft that is kept is complete.
void window_destroy_callback(GtkWidget *, EditingWindow *state) {
  if (state->draft_timer.is_running()) {
    state->draft_timer.stop();
    write_draft(state);
  }
}

} // namespace

// ---- Run ----------------------------------------------------------------------------------------

int run_editing_window(const RunContext *context, const char *path) {
  EditingWindow state;
  state.context = context;
  state.path = path;
  state.draft = v_draft_open(path);
  state.codeset = v_codeset_opening_run(context->window_stack, path, state.draft.get());
  if (!state.codeset) {
    return 0;
  }
  state.history = v_remark_history_new(state.codeset->remarks.get());
  build_window(&state);
  v_codes_list_show(&state.codes, state.codeset->remarks.get());
  update_gui(&state);
  v_window_stack_run_window(context->window_stack, state.window, Maximize::yes,
                            GTK_WIDGET(state.fields.name_editor));
  return state.saved;
}
