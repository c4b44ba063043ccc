#include "workspace/assistant/new_workspace_assistant.h"

#include <string>

#include "base/error.h"
#include "base/fs_utils.h"
#include "base/whitespace.h"
#include "gui/file_dialogs.h"
#include "gui/idle_call.h"
#include "gui/labels.h"
#include "gui/message_dialogs.h"
#include "gui/owned_objects.h"
#include "gui/text_fields.h"
#include "gui/widgets.h"
#include "workspace/workspace.h"
#include "workspace/workspace_location.h"

namespace {

// ---- State --------------------------------------------------------------------------------------

struct NewWorkspaceAssistant {
  VWindowStack *window_stack = nullptr;
  GtkAssistant *assistant = nullptr;
  int location_page = -1; // index
  GtkEntry *location_entry = nullptr;
  GtkButton *browse_button = nullptr;
  int created = 0;
};

void location_activate_callback(GtkEntry *entry, NewWorkspaceAssistant *state);
void browse_callback(GtkButton *button, NewWorkspaceAssistant *state);
void apply_callback(GtkAssistant *assistant, NewWorkspaceAssistant *state);
int forward_page_func(int current_page, void *data);

// ---- Build --------------------------------------------------------------------------------------

constexpr const char *page_title = "Vantorelle Workspace Setup";

// In characters. The texts have their own line breaks, so this limits only overlong lines.
constexpr int widest_line = 120;

// Width in pixels of the margins around the text and around the page titles beside it, and of the
// window's border.
constexpr int margins_beside_text = 80;

// Width in pixels.
int measure_page_title(GtkBox *page) {
  const OwnedObject<PangoLayout> layout =
      take(gtk_widget_create_pango_layout(GTK_WIDGET(page), page_title));
  int width = 0;
  pango_layout_get_pixel_size(layout.get(), &width, nullptr);
  return width;
}

void pack_text(GtkBox *page, const char *text) {
  GtkLabel *label = v_gui_pack_label(page, text, 0.0f, 0.0f);
  v_gui_wrap_overlong_label(label, widest_line, measure_page_title(page) + margins_beside_text);
}

// Returns the box of a new last page.
GtkBox *append_page(GtkAssistant *assistant, GtkAssistantPageType type) {
  GtkBox *page = v_gui_create_vbox(Spacing::standard);
  v_gui_set_default_surrounding_margin(GTK_WIDGET(page));
  gtk_assistant_append_page(assistant, GTK_WIDGET(page));
  gtk_assistant_set_page_type(assistant, GTK_WIDGET(page), type);
  gtk_assistant_set_page_title(assistant, GTK_WIDGET(page), page_title);
  gtk_assistant_set_page_complete(assistant, GTK_WIDGET(page), TRUE);
  return page;
}

void append_intro_page(NewWorkspaceAssistant *state) {
  GtkBox *page = append_page(state->assistant, GTK_ASSISTANT_PAGE_INTRO);
  const OwnedText text(g_strdup_printf(
      "Before you can start using Vantorelle we need to create a workspace for you. This is a "
      "personal\n"
      "folder on the computer where the following things are stored:\n"
      "\n"
      "- The object files you are working with\n"
      "- Your remark codesets\n"
      "- Your object file templates\n"
      "- Your print layouts\n"
      "- Your personal program settings\n"
      "\n"
      "The typical place for the workspace is in a folder named \"%s\" in \"My Documents\",\n"
      "but this guide will let you choose a different location should you want to.\n"
      "\n"
      "Click [Next] to continue.",
      v_workspace_default_folder_name));
  pack_text(page, text.get());
}

void pack_location_row(NewWorkspaceAssistant *state, GtkBox *page) {
  GtkLabel *label =
      v_gui_pack_label_for_input_field(page, "Workspace location", Required::no, 0.0f, 0.0f);
  GtkBox *row = v_gui_pack_hbox(page, Expand::no, Spacing::standard);
  state->location_entry = v_gui_pack_entry(
      row, Expand::yes, v_workspace_get_default_folder_path().get(), ActivatesDefault::no);
  g_signal_connect(state->location_entry, "activate", G_CALLBACK(location_activate_callback),
                   state);
  gtk_label_set_mnemonic_widget(label, GTK_WIDGET(state->location_entry));
  state->browse_button = v_gui_pack_button(row, "Browse...", MakeDefault::no);
  g_signal_connect(state->browse_button, "clicked", G_CALLBACK(browse_callback), state);
}

void append_location_page(NewWorkspaceAssistant *state) {
  state->location_page = gtk_assistant_get_n_pages(state->assistant);
  GtkBox *page = append_page(state->assistant, GTK_ASSISTANT_PAGE_CONFIRM);
  pack_location_row(state, page);
  pack_text(
      page,
      "Please make sure that the workspace is located in a folder which can always be reached "
      "from\n"
      "this computer. For instance, if this is a portable computer then you should not put it on "
      "a server on\n"
      "the network. This is because when you bring your computer with you into the field, you "
      "will want\n"
      "to also bring the material you are working with.\n"
      "\n"
      "Click [Apply] to create your workspace.");
}

void append_summary_page(NewWorkspaceAssistant *state) {
  GtkBox *page = append_page(state->assistant, GTK_ASSISTANT_PAGE_SUMMARY);
  pack_text(page, "Your workspace was successfully created, and you can now start using "
                  "Vantorelle.\n"
                  "\n"
                  "Click [Close] to continue.");
}

void build_assistant(NewWorkspaceAssistant *state) {
  state->assistant = GTK_ASSISTANT(gtk_assistant_new());
  // Shown until the toolkit replaces it by the title of the first page.
  gtk_window_set_title(GTK_WINDOW(state->assistant), "Vantorelle");
  append_intro_page(state);
  append_location_page(state);
  append_summary_page(state);
  g_signal_connect(state->assistant, "cancel", G_CALLBACK(gtk_widget_destroy), nullptr);
  g_signal_connect(state->assistant, "close", G_CALLBACK(gtk_widget_destroy), nullptr);
  g_signal_connect(state->assistant, "apply", G_CALLBACK(apply_callback), state);
  gtk_assistant_set_forward_page_func(state->assistant, forward_page_func, state, nullptr);
}

// ---- Read ---------------------------------------------------------------------------------------

// Returns an absolute path (UTF-8), because the other tools read it from the pointer file and run
// in other folders. Null with a message on failure.
OwnedText read_location(const NewWorkspaceAssistant *state) {
  const OwnedText location =
      v_strip_surrounding_in_new_for_utf8(v_gui_get_entry_text(state->location_entry));
  v_fs_utils_strip_ending_path_delimiters(location.get());
  return v_workspace_make_place_absolute(location.get());
}

// Null when the workspace was created, otherwise the error to show.
OwnedText create_workspace(const NewWorkspaceAssistant *state) {
  const OwnedText location = read_location(state);
  VFileInfo info;
  if (!location || !v_fs_utils_get_info(location.get(), info)) {
    v_error_append("Cannot access the specified location.");
    return copy_text(v_error_get());
  }
  if (info.exists) {
    return copy_text("There is already a folder or a file with that name.\n\n"
                     "Please choose a new location.");
  }
  return v_workspace_create(location.get())
             ? nullptr
             : copy_text("Creating a workspace at the chosen location failed.");
}

// ---- Handlers -----------------------------------------------------------------------------------

// "activate" of the location. Return presses the button for the next page, which the assistant
// makes the default on every page. The click acts at once: if the toolkit activated the button,
// keys typed in the meantime could change the location first.
void location_activate_callback(GtkEntry *, NewWorkspaceAssistant *state) {
  GtkWidget *button = gtk_window_get_default_widget(GTK_WINDOW(state->assistant));
  if (gtk_widget_is_sensitive(button)) {
    gtk_button_clicked(GTK_BUTTON(button));
  }
}

// "clicked" of "Browse...".
void browse_callback(GtkButton *, NewWorkspaceAssistant *state) {
  if (const OwnedText folder = v_file_dialog_get_folder_path(
          state->window_stack, "Select a parent folder for your workspace")) {
    const OwnedText location = v_workspace_create_path_in_parent_folder(folder.get());
    v_gui_set_entry_text(state->location_entry, location.get());
  }
}

// "apply", emitted once per press of the button, before the assistant calls forward_page_func. The
// workspace is created here, because that function is also called without a press. The error is
// shown after the press is answered (see gui/answering_button.h), so that an assistive technology
// that pressed the button can read it.
void apply_callback(GtkAssistant *, NewWorkspaceAssistant *state) {
  const OwnedText error = create_workspace(state);
  state->created = !error;
  if (error) {
    v_idle_call_add(GTK_WIDGET(state->assistant), G_PRIORITY_DEFAULT,
                    [window_stack = state->window_stack, message = std::string(error.get())] {
                      v_message_show_error(window_stack, message.c_str());
                    });
  }
}

// Called by the assistant to find the next page. After an error, starts over at the first page with
// the typed location.
int forward_page_func(int current_page, void *data) {
  const auto *state = static_cast<const NewWorkspaceAssistant *>(data);
  return current_page == state->location_page && !state->created ? 0 : current_page + 1;
}

} // namespace

// ---- Run ----------------------------------------------------------------------------------------

bool v_workspace_gui_create_workspace(VWindowStack *window_stack) {
  return v_workspace_gui_new_workspace_assistant_run(window_stack);
}

bool v_workspace_gui_new_workspace_assistant_run(VWindowStack *window_stack) {
  NewWorkspaceAssistant state;
  state.window_stack = window_stack;
  build_assistant(&state);
  v_window_stack_run_window(window_stack, GTK_WINDOW(state.assistant), Maximize::no);
  return state.created != 0;
}
