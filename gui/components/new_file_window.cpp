#include "gui/components/new_file_window.h"

#include <cstring>

#include "base/fs_utils.h"
#include "base/whitespace.h"
#include "gui/accessibility.h"
#include "gui/labels.h"
#include "gui/message_dialogs.h"
#include "gui/text_fields.h"
#include "gui/widgets.h"

namespace {

// ---- State --------------------------------------------------------------------------------------

struct NewFileWindow {
  VWindowStack *window_stack = nullptr;
  const VWorkspace *workspace = nullptr;
  const VComponentKind &kind;
  GtkWindow *window = nullptr;
  GtkEntry *entry = nullptr;
  OwnedText result; // null until a name is accepted
};

gboolean focus_in_event_callback(GtkWidget *entry, GdkEventFocus *event, void *);
void ok_callback(GtkButton *button, NewFileWindow *state);

// ---- Build --------------------------------------------------------------------------------------

void pack_name_entry(NewFileWindow *state, GtkBox *box) {
  GtkLabel *label =
      v_gui_pack_label_for_input_field(box, "Enter new file name", Required::no, 0.0f, 0.0f);
  state->entry = v_gui_pack_entry(box, Expand::no, v_component_kind_get_extension(state->kind),
                                  ActivatesDefault::yes);
  gtk_label_set_mnemonic_widget(label, GTK_WIDGET(state->entry));
  g_signal_connect(state->entry, "focus-in-event", G_CALLBACK(focus_in_event_callback), nullptr);
  v_gui_pack_label(box, "Permitted characters: Lowercase letters, digits and underscores.", 0.0f,
                   0.0f);
}

void pack_buttons(NewFileWindow *state, GtkBox *box) {
  GtkBox *row =
      v_gui_pack_hbox_in_alignment(box, Expand::yes, Spacing::standard, 0.0f, 1.0f, 1.0f, 0.0f);
  v_gui_pack_ok_and_cancel(row, state->window, G_CALLBACK(ok_callback), state);
}

void build_window(NewFileWindow *state) {
  state->window = v_gui_create_window("Add new");
  GtkBox *box = v_gui_add_vbox(GTK_CONTAINER(state->window), Spacing::standard);
  pack_name_entry(state, box);
  pack_buttons(state, box);
  v_gui_close_on_escape(state->window);
}

// ---- Read ---------------------------------------------------------------------------------------

bool is_permitted(char byte) {
  return g_ascii_islower(byte) || g_ascii_isdigit(byte) || byte == '_';
}

// True when the name consists of one or more permitted characters and the extension; else shows an
// error.
bool check_form(const NewFileWindow *state, const char *name) {
  const char *extension = v_component_kind_get_extension(state->kind);
  const std::size_t length = std::strlen(name);
  if (length <= std::strlen(extension) || !v_component_kind_has_extension(state->kind, name)) {
    v_message_show_error_utf8_printf(
        state->window_stack,
        "The file name must contain at least one character and then end with \"%s\"", extension);
    return false;
  }
  const char *const end = name + length - std::strlen(extension);
  for (const char *character = name; character < end; character++) {
    if (!is_permitted(*character)) {
      const OwnedText whole(g_utf8_substring(character, 0, 1));
      v_message_show_error_utf8_printf(state->window_stack,
                                       "The character \"%s\" is not permitted.", whole.get());
      return false;
    }
  }
  return true;
}

// True when nothing is at the path; else shows an error.
bool check_free(const NewFileWindow *state, const char *path) {
  if (v_fs_utils_is_missing(path)) {
    return true;
  }
  if (const OwnedText text = state->kind.text_callback(path, state->kind.user_data)) {
    v_message_show_error_utf8_printf(state->window_stack,
                                     "That file name is already taken for \"%s\"", text.get());
  } else {
    v_message_show_error(state->window_stack, "That file name is already taken.");
  }
  return false;
}

// The path (UTF-8) that the user entered; null, after an error message, when it cannot be used.
OwnedText read_path(const NewFileWindow *state) {
  const OwnedText name = v_strip_surrounding_in_new_for_utf8(v_gui_get_entry_text(state->entry));
  if (!check_form(state, name.get())) {
    return nullptr;
  }
  OwnedText path = v_fs_utils_create_path_in_folder(state->workspace->folder_path.get(),
                                                    state->kind.folder_name, name.get());
  return check_free(state, path.get()) ? std::move(path) : nullptr;
}

// ---- Handlers -----------------------------------------------------------------------------------

// "focus-in-event" of the entry. An entry selects its text when it gets the focus, so the first key
// would replace the extension; put the cursor before it instead.
gboolean focus_in_event_callback(GtkWidget *entry, GdkEventFocus *, void *) {
  int start = 0;
  if (gtk_editable_get_selection_bounds(GTK_EDITABLE(entry), &start, nullptr)) {
    gtk_editable_set_position(GTK_EDITABLE(entry), start);
  }
  return GDK_EVENT_PROPAGATE;
}

// "clicked" of "OK", and Return in the entry.
void ok_callback(GtkButton *, NewFileWindow *state) {
  state->result = read_path(state);
  if (state->result) {
    gtk_widget_destroy(GTK_WIDGET(state->window));
  }
}

} // namespace

// ---- Run ----------------------------------------------------------------------------------------

OwnedText v_components_gui_get_new_file_path(VWindowStack *window_stack,
                                             const VWorkspace *workspace,
                                             const VComponentKind &kind) {
  return v_components_gui_new_file_window_run(window_stack, workspace, kind);
}

OwnedText v_components_gui_new_file_window_run(VWindowStack *window_stack,
                                               const VWorkspace *workspace,
                                               const VComponentKind &kind) {
  NewFileWindow state = {window_stack, workspace, kind, nullptr, nullptr, nullptr};
  build_window(&state);
  v_window_stack_run_window(window_stack, state.window, Maximize::no, GTK_WIDGET(state.entry));
  return std::move(state.result);
}
