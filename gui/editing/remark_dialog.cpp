#include "gui/editing/remark_dialog.h"

#include <cstring>

#include "base/error.h"
#include "gui/accessibility.h"
#include "gui/editing/editing_widgets.h"
#include "gui/labels.h"
#include "gui/message_dialogs.h"
#include "gui/widgets.h"
#include "gui/window_commands.h"

namespace {

// ---- State --------------------------------------------------------------------------------------

struct RemarkDialog {
  VWindowStack *window_stack = nullptr;
  const VSettings *settings = nullptr;
  VRemark *remark = nullptr;
  const VCodeset *codeset = nullptr; // null: every code is free
  const char *title = nullptr;
  VRemarkTyping *typing = nullptr; // null: no drafts
  VRemarkPass *pass = nullptr;     // null: not in a pass
  GtkWindow *window = nullptr;
  VSpacifyingEntry *code_entry = nullptr;
  VLangstrEditor *description_editor = nullptr;
  int result = 0;
};

OwnedRemark read_typed(const RemarkDialog *state);
void ok_callback(GtkButton *button, RemarkDialog *state);
void shrunk_callback(VLangstrEditor *editor, RemarkDialog *state);
void changed_callback(GtkWidget *field, RemarkDialog *state);
void destroy_callback(GtkWidget *window, RemarkDialog *state);
void go_to_next(void *dialog);
void go_to_previous(void *dialog);

// ---- Build --------------------------------------------------------------------------------------

void pack_code(RemarkDialog *state, GtkBox *box) {
  GtkLabel *label = v_gui_pack_label_for_input_field(box, "Remark code", Required::yes, 0.0F, 0.0F);
  state->code_entry = v_gui_pack_spacifying_entry(box, Expand::no, Compact::yes,
                                                  state->remark->code.get(), ActivatesDefault::yes);
  gtk_label_set_mnemonic_widget(label, GTK_WIDGET(state->code_entry));
}

void pack_description(RemarkDialog *state, GtkBox *box) {
  v_gui_pack_label_for_input_field(box, "Short description", Required::yes, 0.0F, 0.0F);
  state->description_editor = v_gui_pack_langstr_editor(
      box, state->window_stack, state->settings, LangstrEditorMode::single_line,
      state->remark->description.get(), nullptr, ActivatesDefault::yes);
  v_gui_set_accessible_group_name(GTK_WIDGET(state->description_editor), "Short description");
  g_signal_connect(state->description_editor, "shrunk", G_CALLBACK(shrunk_callback), state);
}

void pack_buttons(RemarkDialog *state, GtkBox *box) {
  GtkBox *row =
      v_gui_pack_hbox_in_alignment(box, Expand::yes, Spacing::standard, 0.0F, 1.0F, 1.0F, 0.0F);
  v_gui_pack_ok_and_cancel(row, state->window, G_CALLBACK(ok_callback), state);
}

void add_keys_of_pass(RemarkDialog *state) {
  v_window_commands_add(state->window, GDK_KEY_Down, GDK_CONTROL_MASK, go_to_next, state);
  v_window_commands_add(state->window, GDK_KEY_KP_Down, GDK_CONTROL_MASK, go_to_next, state);
  v_window_commands_add(state->window, GDK_KEY_Up, GDK_CONTROL_MASK, go_to_previous, state);
  v_window_commands_add(state->window, GDK_KEY_KP_Up, GDK_CONTROL_MASK, go_to_previous, state);
  GtkButton *ok = GTK_BUTTON(gtk_window_get_default_widget(state->window));
  gtk_widget_set_tooltip_text(
      GTK_WIDGET(ok),
      "Keys: Return. Ctrl+Down and Ctrl+Up also open the next code or the one before.");
}

void offer_typing(RemarkDialog *state) {
  state->typing->read = [state] { return read_typed(state); };
  g_signal_connect(state->code_entry, "changed", G_CALLBACK(changed_callback), state);
  g_signal_connect(state->description_editor, "changed", G_CALLBACK(changed_callback), state);
  g_signal_connect(state->window, "destroy", G_CALLBACK(destroy_callback), state);
}

void build_window(RemarkDialog *state) {
  state->window = v_gui_create_window(state->title);
  v_gui_close_on_escape(state->window);
  GtkBox *box = v_gui_add_vbox(GTK_CONTAINER(state->window), Spacing::standard);
  GtkBox *fields = v_gui_pack_scrolling_vbox(box, Expand::no, Spacing::standard);
  pack_code(state, fields);
  pack_description(state, fields);
  pack_buttons(state, box);
  if (state->pass != nullptr) {
    add_keys_of_pass(state);
  }
  if (state->typing != nullptr) {
    offer_typing(state);
  }
}

// ---- Read ---------------------------------------------------------------------------------------

bool code_is_taken(const RemarkDialog *state, const char *code) {
  const char *own_code = state->remark->code.get();
  const bool keeps_its_code = own_code != nullptr && std::strcmp(own_code, code) == 0;
  return state->codeset != nullptr && !keeps_its_code &&
         v_remark_list_get_remark_for_code(state->codeset->remarks.get(), code) != nullptr;
}

// The code, or one like it that is free; null when it cannot be read.
OwnedText read_free_code(const RemarkDialog *state) {
  OwnedText code = v_spacifying_entry_get_text(state->code_entry);
  while (code && (*code == '\0' || code_is_taken(state, code.get()))) {
    code.reset(g_strconcat(code.get(), "?", nullptr));
  }
  return code;
}

// See VRemarkTyping.
OwnedRemark read_typed(const RemarkDialog *state) {
  OwnedRemark typed = v_remark_new();
  typed->code = read_free_code(state);
  v_langstr_editor_get_text_for_draft(state->description_editor, typed->description);
  return typed->code && typed->description ? std::move(typed) : nullptr;
}

// Null, after an error message, when there is no usable description.
OwnedLangstr read_description(RemarkDialog *state) {
  OwnedLangstr description;
  if (v_langstr_editor_get_text(state->description_editor, description) == 0) {
    v_message_show_error(state->window_stack, v_error_get());
  } else if (!description) {
    v_message_show_error(state->window_stack, "Missing a description.");
  }
  return description;
}

// If the input is valid, changes the remark and closes the window. Otherwise shows the error, or
// does nothing when the code cannot be read.
void confirm(RemarkDialog *state) {
  OwnedText code = v_spacifying_entry_get_text(state->code_entry);
  if (!code) {
    return;
  }
  if (*code == '\0') {
    v_message_show_error(state->window_stack, "Missing a code.");
    return;
  }
  if (code_is_taken(state, code.get())) {
    v_message_show_error(state->window_stack, "That code is already taken.");
    return;
  }
  OwnedLangstr description = read_description(state);
  if (!description) {
    return;
  }
  state->remark->code = std::move(code);
  state->remark->description = std::move(description);
  state->result = 1;
  gtk_widget_destroy(GTK_WIDGET(state->window));
}

// step: see VRemarkPass.
void confirm_and_go_on(RemarkDialog *state, int step) {
  OwnedText language = v_langstr_editor_get_focused_language(state->description_editor);
  confirm(state);
  if (state->result == 1) {
    *state->pass = {step, std::move(language)};
  }
}

// ---- Handlers -----------------------------------------------------------------------------------

// "clicked" of "OK", and Return in a field.
void ok_callback(GtkButton *, RemarkDialog *state) { confirm(state); }

// Ctrl+Down, in a pass.
void go_to_next(void *dialog) { confirm_and_go_on(static_cast<RemarkDialog *>(dialog), 1); }

// Ctrl+Up, in a pass.
void go_to_previous(void *dialog) { confirm_and_go_on(static_cast<RemarkDialog *>(dialog), -1); }

// "shrunk" of the description editor: a row was removed.
void shrunk_callback(VLangstrEditor *, RemarkDialog *state) {
  v_gui_resize_window_to_minimum_unless_maximized(state->window);
}

// "changed" of the code and of the description editor.
void changed_callback(GtkWidget *, RemarkDialog *state) { state->typing->changed(); }

// "destroy": the fields cannot be read any more.
void destroy_callback(GtkWidget *, RemarkDialog *state) { state->typing->read = nullptr; }

// ---- Run ----------------------------------------------------------------------------------------

// The field for the pass's language, else the code.
GtkWidget *find_first_focus(const RemarkDialog *state) {
  GtkWidget *field = nullptr;
  if (state->pass != nullptr && state->pass->language) {
    field = v_langstr_editor_find_field(state->description_editor, state->pass->language.get());
  }
  return field == nullptr ? GTK_WIDGET(state->code_entry) : field;
}

int run(RemarkDialog &state) {
  build_window(&state);
  v_window_stack_run_window(state.window_stack, state.window, Maximize::no,
                            find_first_focus(&state));
  return state.result;
}

} // namespace

int v_remark_gui_edit_remark(VWindowStack *window_stack, const VSettings *settings, VRemark *remark,
                             const VCodeset *codeset, const char *title) {
  RemarkDialog state = {window_stack, settings, remark, codeset, title};
  return run(state);
}

int v_remark_gui_edit_remark_for_drafts(VWindowStack *window_stack, const VSettings *settings,
                                        VRemark *remark, const VCodeset *codeset, const char *title,
                                        VRemarkTyping &typing, VRemarkPass *pass) {
  if (pass != nullptr) {
    pass->step = 0;
  }
  RemarkDialog state = {window_stack, settings, remark, codeset, title, &typing, pass};
  return run(state);
}
