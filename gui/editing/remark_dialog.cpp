#include "gui/editing/remark_dialog.h"

#include <cstring>

#include "base/error.h"
#include "gui/accessibility.h"
#include "gui/editing/editing_widgets.h"
#include "gui/message_dialogs.h"
#include "gui/widgets.h"
#include "gui/window_commands.h"

namespace {

struct RemarkDialog {
  VWindowStack *window_stack = nullptr;
  const VSettings *settings = nullptr;
  VRemark *remark = nullptr;
  const VCodeset *codeset = nullptr; // null: no code is taken
  const char *title = nullptr;
  VRemarkPass *pass = nullptr; // null: no key for going on
  GtkWindow *window = nullptr;
  VSpacifyingEntry *code_entry = nullptr;
  VLangstrEditor *description_editor = nullptr;
  int result = 0;
};

void ok_callback(GtkButton *button, RemarkDialog *dialog);
void shrunk_callback(VLangstrEditor *editor, RemarkDialog *dialog);
void go_to_next(void *dialog);
void go_to_previous(void *dialog);

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

void add_keys_of_pass(RemarkDialog *dialog) {
  v_window_commands_add(dialog->window, GDK_KEY_Down, GDK_CONTROL_MASK, go_to_next, dialog);
  v_window_commands_add(dialog->window, GDK_KEY_KP_Down, GDK_CONTROL_MASK, go_to_next, dialog);
  v_window_commands_add(dialog->window, GDK_KEY_Up, GDK_CONTROL_MASK, go_to_previous, dialog);
  v_window_commands_add(dialog->window, GDK_KEY_KP_Up, GDK_CONTROL_MASK, go_to_previous, dialog);
  GtkButton *ok = GTK_BUTTON(gtk_window_get_default_widget(dialog->window));
  gtk_widget_set_tooltip_text(
      GTK_WIDGET(ok),
      "Keys: Return. Ctrl+Down and Ctrl+Up also open the next code or the one before.");
}

void build_window(RemarkDialog *dialog) {
  dialog->window = v_gui_create_window(dialog->title);
  v_gui_close_on_escape(dialog->window);
  GtkBox *box = v_gui_add_vbox(GTK_CONTAINER(dialog->window), Spacing::standard);
  GtkBox *fields = v_gui_pack_scrolling_vbox(box, Expand::no, Spacing::standard);
  pack_code(dialog, fields);
  pack_description(dialog, fields);
  pack_buttons(dialog, box);
  if (dialog->pass != nullptr) {
    add_keys_of_pass(dialog);
  }
}

GtkWidget *find_first_focus(const RemarkDialog *dialog) {
  GtkWidget *field = nullptr;
  if (dialog->pass != nullptr && dialog->pass->language) {
    field = v_langstr_editor_find_field(dialog->description_editor, dialog->pass->language.get());
  }
  return field == nullptr ? GTK_WIDGET(dialog->code_entry) : field;
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

// Takes valid input over and closes; anything else is reported and stays as it is.
void confirm(RemarkDialog *dialog) {
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

// "clicked" of OK.
void ok_callback(GtkButton *, RemarkDialog *dialog) { confirm(dialog); }

void go_on(RemarkDialog *dialog, int step) {
  OwnedText language = v_langstr_editor_get_focused_language(dialog->description_editor);
  confirm(dialog);
  if (dialog->result == 1) {
    *dialog->pass = {step, std::move(language)};
  }
}

void go_to_next(void *dialog) { go_on(static_cast<RemarkDialog *>(dialog), 1); }

void go_to_previous(void *dialog) { go_on(static_cast<RemarkDialog *>(dialog), -1); }

void shrunk_callback(VLangstrEditor *, RemarkDialog *dialog) {
  v_gui_resize_window_to_minimum_unless_maximized(dialog->window);
}

int run(RemarkDialog &dialog) {
  build_window(&dialog);
  v_window_stack_run_window(dialog.window_stack, dialog.window, Maximize::no,
                            find_first_focus(&dialog));
  return dialog.result;
}

} // namespace

int v_remark_gui_edit_remark(VWindowStack *window_stack, const VSettings *settings, VRemark *remark,
                             const VCodeset *codeset, const char *title) {
  RemarkDialog dialog = {window_stack, settings, remark, codeset, title};
  return run(dialog);
}

int v_remark_gui_edit_remark_in_pass(VWindowStack *window_stack, const VSettings *settings,
                                     VRemark *remark, const VCodeset *codeset, const char *title,
                                     VRemarkPass &pass) {
  pass.step = 0;
  RemarkDialog dialog = {window_stack, settings, remark, codeset, title, &pass};
  return run(dialog);
}
