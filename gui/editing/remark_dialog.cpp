#include "gui/editing/remark_dialog.h"

#include <cstring>

#include "base/error.h"
#include "gui/accessibility.h"
#include "gui/editing/editing_widgets.h"
#include "gui/message_dialogs.h"

namespace {

struct RemarkDialog {
  VWindowStack *window_stack = nullptr;
  const VSettings *settings = nullptr;
  VRemark *remark = nullptr;
  const VCodeset *codeset = nullptr; // null: no code is taken
  const char *title = nullptr;
  GtkWindow *window = nullptr;
  VSpacifyingEntry *code_entry = nullptr;
  VLangstrEditor *description_editor = nullptr;
  int result = 0;
};

void ok_callback(GtkButton *button, RemarkDialog *dialog);
void shrunk_callback(VLangstrEditor *editor, RemarkDialog *dialog);

// Build steps.

void pack_code(RemarkDialog *dialog, GtkBox *box) {
  GtkLabel *label = v_gui_pack_label_for_input_field(box, "Remark code", Required::yes, 0.0F, 0.0F);
  dialog->code_entry = v_gui_pack_spacifying_entry(
      box, Expand::no, Compact::yes, dialog->remark->code.get(), ActivatesDefault::yes);
  gtk_label_set_mnemonic_widget(label, GTK_WIDGET(dialog->code_entry));
}

void pack_description(RemarkDialog *dialog, GtkBox *box) {
  v_gui_pack_label_for_input_field(box, "Short description", Required::yes, 0.0F, 0.0F);
  dialog->description_editor = v_gui_pack_langstr_editor(
      box, dialog->window_stack, dialog->settings, VLangstrEditorMode::single_line,
      dialog->remark->description.get(), nullptr, ActivatesDefault::yes);
  v_gui_set_accessible_group_name(GTK_WIDGET(dialog->description_editor), "Short description");
  g_signal_connect(dialog->description_editor, "shrunk", G_CALLBACK(shrunk_callback), dialog);
}

void pack_buttons(RemarkDialog *dialog, GtkBox *box) {
  GtkBox *row =
      v_gui_pack_hbox_in_alignment(box, Expand::yes, Spacing::standard, 0.0F, 1.0F, 1.0F, 0.0F);
  v_gui_pack_ok_and_cancel(row, dialog->window, G_CALLBACK(ok_callback), dialog);
}

// Reading.

bool code_is_taken(const RemarkDialog *dialog, const char *code) {
  const char *own_code = dialog->remark->code.get();
  const bool keeps_its_code = own_code != nullptr && std::strcmp(own_code, code) == 0;
  return dialog->codeset != nullptr && !keeps_its_code &&
         v_remark_list_get_remark_for_code(dialog->codeset->remarks.get(), code) != nullptr;
}

// Null for a description that is shown to be unusable.
OwnedLangstr read_description(RemarkDialog *dialog) {
  OwnedLangstr description;
  if (v_langstr_editor_get_text(dialog->description_editor, description) == 0) {
    v_message_show_error(dialog->window_stack, v_error_get());
  } else if (!description) {
    v_message_show_error(dialog->window_stack, "Missing a description.");
  }
  return description;
}

// Handlers.

// "clicked" of OK: takes valid input over and closes; anything else is told of and stays as it is.
void ok_callback(GtkButton *, RemarkDialog *dialog) {
  OwnedText code = v_spacifying_entry_get_text(dialog->code_entry);
  if (!code) {
    return;
  }
  if (*code == '\0') {
    v_message_show_error(dialog->window_stack, "Missing a code.");
    return;
  }
  if (code_is_taken(dialog, code.get())) {
    v_message_show_error(dialog->window_stack, "That code is already taken.");
    return;
  }
  OwnedLangstr description = read_description(dialog);
  if (!description) {
    return;
  }
  dialog->remark->code = std::move(code);
  dialog->remark->description = std::move(description);
  dialog->result = 1;
  gtk_widget_destroy(GTK_WIDGET(dialog->window));
}

void shrunk_callback(VLangstrEditor *, RemarkDialog *dialog) {
  v_gui_resize_window_to_minimum_unless_maximized(dialog->window);
}

} // namespace

int v_remark_gui_edit_remark(VWindowStack *window_stack, const VSettings *settings, VRemark *remark,
                             const VCodeset *codeset, const char *title) {
  RemarkDialog dialog = {window_stack, settings, remark, codeset, title};
  dialog.window = v_gui_create_window(title);
  v_gui_close_on_escape(dialog.window);
  GtkBox *box = v_gui_add_vbox(GTK_CONTAINER(dialog.window), Spacing::standard);
  GtkBox *fields = v_gui_pack_scrolling_vbox(box, Expand::no, Spacing::standard);
  pack_code(&dialog, fields);
  pack_description(&dialog, fields);
  pack_buttons(&dialog, box);
  v_window_stack_run_window(window_stack, dialog.window, Maximize::no,
                            GTK_WIDGET(dialog.code_entry));
  return dialog.result;
}
