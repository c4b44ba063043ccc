#include "gui/editing/editing_window.h"

#include <cstdint>
#include <optional>
#include <utility>

#include "base/error.h"
#include "base/fs_utils.h"
#include "base/text_buffer.h"
#include "base/text_encoding.h"
#include "codeset/codeset_io.h"
#include "codeset/remark_history.h"
#include "gui/accessibility.h"
#include "gui/editing/editing_widgets.h"
#include "gui/editing/remark_dialog.h"
#include "gui/list_place.h"
#include "gui/list_search.h"
#include "gui/message_dialogs.h"
#include "gui/owned_objects.h"
#include "gui/widgets.h"
#include "gui/window_commands.h"
#include "gui/window_keys.h"
#include "workspace/display_text.h"
#include "workspace/drafts.h"

namespace {

// From the first change that the draft lacks until it is written. With the time for that, and for
// what the main loop does before, no change stays out of the draft for two seconds.
constexpr guint draft_delay = 1000; // milliseconds

enum CodesColumn { display_text_column, remark_column };

struct EditingWindow {
  const RunContext *context = nullptr;
  const char *path = nullptr; // UTF-8
  OwnedCodeset codeset;
  OwnedRemarkHistory history; // of the codeset's remarks, since the window was opened
  OwnedDraft draft;
  guint draft_timer = 0; // id of the source; 0 while the draft is up to date
  // One row per remark, in list order: what it reads (UTF-8), and the remark, which the codeset
  // owns.
  OwnedObject<GtkListStore> codes_store;
  GtkWindow *window = nullptr;
  VLangstrEditor *name_editor = nullptr;
  VLangstrEditor *author_editor = nullptr;
  VSpacifyingEntry *version_entry = nullptr;
  GtkTreeView *codes_view = nullptr;
  VLangstrDisplay *description_display = nullptr;
  // Sensitive while a remark is selected.
  GtkButton *edit_button = nullptr;
  GtkButton *delete_button = nullptr;
  int saved = 0;
};

void text_changed_callback(GtkWidget *field, EditingWindow *editing);
gboolean draft_timer_callback(void *editing_window);
void shrunk_callback(VLangstrEditor *editor, EditingWindow *editing);
void selection_change_callback(GtkTreeSelection *selection, EditingWindow *editing);
void add_callback(GtkButton *button, EditingWindow *editing);
void edit_callback(GtkButton *button, EditingWindow *editing);
void delete_callback(GtkButton *button, EditingWindow *editing);
void take_back(void *editing_window);
void do_again(void *editing_window);
void save_button_clicked_callback(GtkButton *button, EditingWindow *editing);
void close_button_clicked_callback(GtkButton *button, EditingWindow *editing);
gboolean window_delete_event_callback(GtkWidget *window, GdkEvent *event, EditingWindow *editing);
void window_destroy_callback(GtkWidget *window, EditingWindow *editing);

const VSettings *settings_of(const EditingWindow *editing) {
  return editing->context->workspace->settings.get();
}

// Build steps, one per row of the layout.

VLangstrEditor *pack_langstr(EditingWindow *editing, GtkBox *box, const char *label,
                             Required required, const VLangstr *value) {
  GtkBox *frame_box = v_gui_pack_vbox_in_frame_with_input_field_label(box, Expand::no, label,
                                                                      required, Spacing::standard);
  VLangstrEditor *editor = v_gui_pack_langstr_editor(
      frame_box, editing->context->window_stack, settings_of(editing),
      VLangstrEditorMode::single_line, value, nullptr, ActivatesDefault::no);
  v_gui_set_accessible_name(GTK_WIDGET(editor), label);
  g_signal_connect(editor, "changed", G_CALLBACK(text_changed_callback), editing);
  g_signal_connect(editor, "shrunk", G_CALLBACK(shrunk_callback), editing);
  return editor;
}

void pack_version(EditingWindow *editing, GtkBox *box) {
  GtkBox *frame_box = v_gui_pack_vbox_in_frame_with_input_field_label(
      box, Expand::no, "Version", Required::no, Spacing::standard);
  editing->version_entry = v_gui_pack_spacifying_entry(
      frame_box, Expand::no, Compact::yes, editing->codeset->version.get(), ActivatesDefault::no);
  v_gui_set_accessible_name(GTK_WIDGET(editing->version_entry), "Version");
  g_signal_connect(editing->version_entry, "changed", G_CALLBACK(text_changed_callback), editing);
}

// One fixed-height column: with rows of their own heights a long list would be measured row by row.
// What does not fit ends in an ellipsis, the display beside it shows it whole.
void add_codes_column(GtkTreeView *view) {
  GtkCellRenderer *renderer = gtk_cell_renderer_text_new();
  g_object_set(renderer, "ellipsize", PANGO_ELLIPSIZE_END, nullptr);
  GtkTreeViewColumn *column = gtk_tree_view_column_new_with_attributes(
      "Remark", renderer, "text", display_text_column, nullptr);
  gtk_tree_view_column_set_sizing(column, GTK_TREE_VIEW_COLUMN_FIXED);
  gtk_tree_view_append_column(view, column);
}

void pack_codes_view(EditingWindow *editing, GtkBox *box) {
  GtkScrolledWindow *scroller = v_gui_pack_list_scrolled_window(box, 200, 150);
  editing->codes_view = v_gui_add_tree_view(GTK_CONTAINER(scroller), HeadersVisible::no,
                                            FixedHeight::yes, SelectionMode::single);
  add_codes_column(editing->codes_view);
  v_gui_set_accessible_name(GTK_WIDGET(editing->codes_view), "Remark codes");
  g_signal_connect(gtk_tree_view_get_selection(editing->codes_view), "changed",
                   G_CALLBACK(selection_change_callback), editing);
}

GtkButton *pack_code_button(EditingWindow *editing, GtkBox *box, const char *label,
                            GCallback callback) {
  GtkButton *button = v_gui_pack_button(box, label, MakeDefault::no);
  g_signal_connect(button, "clicked", callback, editing);
  return button;
}

void pack_codes(EditingWindow *editing, GtkBox *box) {
  GtkBox *frame_box = v_gui_pack_vbox_in_frame_with_input_field_label(
      box, Expand::yes, "Remark codes", Required::yes, Spacing::standard);
  GtkBox *list_row = v_gui_pack_hbox(frame_box, Expand::yes, Spacing::standard);
  pack_codes_view(editing, list_row);
  editing->description_display = v_gui_pack_langstr_display(list_row, 300, 150);
  v_gui_set_accessible_name(gtk_bin_get_child(GTK_BIN(editing->description_display)),
                            "Description of the selected remark code");
  GtkBox *button_row = v_gui_pack_hbox(frame_box, Expand::no, Spacing::standard);
  GtkButton *add_button =
      pack_code_button(editing, button_row, "Add new", G_CALLBACK(add_callback));
  v_window_keys_add(editing->window, GDK_KEY_n, GDK_CONTROL_MASK, add_button);
  editing->edit_button = pack_code_button(editing, button_row, "Edit", G_CALLBACK(edit_callback));
  editing->delete_button =
      pack_code_button(editing, button_row, "Delete", G_CALLBACK(delete_callback));
}

void pack_window_buttons(EditingWindow *editing, GtkBox *box) {
  GtkBox *row = v_gui_pack_hbox(box, Expand::no, Spacing::standard);
  GtkButton *save = v_gui_pack_button(row, "Save codeset", MakeDefault::yes);
  g_signal_connect(save, "clicked", G_CALLBACK(save_button_clicked_callback), editing);
  v_window_keys_add(editing->window, GDK_KEY_s, GDK_CONTROL_MASK, save);
  GtkButton *close = v_gui_pack_button_in_alignment(row, Expand::yes, "Close", MakeDefault::no,
                                                    1.0F, 0.0F, 0.0F, 0.0F);
  g_signal_connect(close, "clicked", G_CALLBACK(close_button_clicked_callback), editing);
}

void add_keys_of_history(EditingWindow *editing) {
  v_window_commands_add(editing->window, GDK_KEY_z, GDK_CONTROL_MASK, take_back, editing);
  v_window_commands_add(editing->window, GDK_KEY_z,
                        static_cast<GdkModifierType>(GDK_CONTROL_MASK | GDK_SHIFT_MASK), do_again,
                        editing);
}

void add_keys_of_codes(EditingWindow *editing) {
  v_window_keys_add_return_in_list(editing->window, editing->codes_view, editing->edit_button);
  v_window_keys_add_in_list(editing->window, editing->codes_view, GDK_KEY_Delete,
                            editing->delete_button);
}

void build_window(EditingWindow *editing) {
  const OwnedText title(g_strdup_printf("Edit remark codeset - %s",
                                        v_fs_utils_find_entry_name_in_path(editing->path)));
  editing->window = v_gui_create_window(title.get());
  v_gui_close_on_escape(editing->window);
  GtkBox *box = v_gui_add_vbox(GTK_CONTAINER(editing->window), Spacing::standard);
  // However many translations there are, the codes and all buttons stay in view.
  GtkBox *fields = v_gui_pack_yielding_vbox(box, Spacing::standard);
  const VCodeset *codeset = editing->codeset.get();
  editing->name_editor =
      pack_langstr(editing, fields, "Codeset name", Required::yes, codeset->name.get());
  editing->author_editor =
      pack_langstr(editing, fields, "Author", Required::no, codeset->author.get());
  pack_version(editing, fields);
  pack_codes(editing, box);
  add_keys_of_codes(editing);
  pack_window_buttons(editing, box);
  add_keys_of_history(editing);
  g_signal_connect(editing->window, "delete-event", G_CALLBACK(window_delete_event_callback),
                   editing);
  g_signal_connect(editing->window, "destroy", G_CALLBACK(window_destroy_callback), editing);
}

// Update: model to widgets.

// Into the text, in place of what it held.
void format_row(const EditingWindow *editing, const VRemark *remark, VUtf8String *text) {
  g_string_truncate(text, 0);
  v_utf8_string_append_latin1(text, remark->code.get());
  v_utf8_string_append(text, ". ");
  if (const char *description =
          v_util_get_langstr_string(settings_of(editing), remark->description.get())) {
    v_utf8_string_append_latin1(text, description);
  }
}

// The values only point to what the store copies: gtk_list_store_insert_with_values would copy each
// text once more, which makes filling a third slower. Text: room for what the row reads, which many
// rows may use in turns. Place: from 0; -1 is the end.
void insert_row(const EditingWindow *editing, VRemark *remark, VUtf8String *text, int place) {
  format_row(editing, remark, text);
  int columns[] = {display_text_column, remark_column};
  GValue values[] = {G_VALUE_INIT, G_VALUE_INIT};
  g_value_init(&values[0], G_TYPE_STRING);
  g_value_set_static_string(&values[0], text->str);
  g_value_init(&values[1], G_TYPE_POINTER);
  g_value_set_pointer(&values[1], remark);
  gtk_list_store_insert_with_valuesv(editing->codes_store.get(), nullptr, place, columns, values,
                                     2);
}

void fill_codes_store(const EditingWindow *editing) {
  const OwnedUtf8String text = v_utf8_string_new(nullptr);
  const VRemarkList *list = editing->codeset->remarks.get();
  for (VRemark *remark = list->head.next; remark != &list->tail; remark = remark->next) {
    insert_row(editing, remark, text.get(), -1);
  }
}

// Fills iter with the selected row and returns its remark; null when no row is selected.
VRemark *get_selected_remark(const EditingWindow *editing, GtkTreeIter *iter) {
  GtkTreeModel *model = nullptr;
  VRemark *remark = nullptr;
  GtkTreeSelection *selection = gtk_tree_view_get_selection(editing->codes_view);
  if (gtk_tree_selection_get_selected(selection, &model, iter)) {
    gtk_tree_model_get(model, iter, remark_column, &remark, -1);
  }
  return remark;
}

void update_gui(EditingWindow *editing) {
  GtkTreeIter iter;
  const VRemark *remark = get_selected_remark(editing, &iter);
  for (GtkButton *button : {editing->edit_button, editing->delete_button}) {
    gtk_widget_set_sensitive(GTK_WIDGET(button), remark != nullptr);
  }
  v_langstr_display_set_text(editing->description_display,
                             remark == nullptr ? nullptr : remark->description.get());
}

OwnedText get_display_text(GtkTreeModel *model, GtkTreeIter *row) {
  OwnedText text;
  gtk_tree_model_get(model, row, display_text_column, static_cast<char **>(receive(text)), -1);
  return text;
}

// The view gets the rows when they are all there: it would follow each of them.
void show_codes(EditingWindow *editing) {
  fill_codes_store(editing);
  gtk_tree_view_set_model(editing->codes_view, GTK_TREE_MODEL(editing->codes_store.get()));
  v_list_search_enable(editing->codes_view, display_text_column, get_display_text);
  update_gui(editing);
}

// Changes rows and returns the one (from 0) on which the cursor is to be. No row is selected
// afterwards.
template <typename Change>
void change_codes_store(EditingWindow *editing, Change change) {
  int row = 0;
  {
    const VListWithoutSelection without_selection(editing->codes_view);
    row = change();
  }
  v_list_place_set(editing->codes_view, row);
  update_gui(editing);
  v_list_place_take_free_focus(editing->codes_view);
}

void remove_row(const EditingWindow *editing, int place) {
  GtkTreeIter row;
  if (gtk_tree_model_iter_nth_child(GTK_TREE_MODEL(editing->codes_store.get()), &row, nullptr,
                                    place)) {
    gtk_list_store_remove(editing->codes_store.get(), &row);
  }
}

// The rows follow the list of remarks. Returns the row concerned, or the one that is now where it
// was.
int follow_exchange(const EditingWindow *editing, const VRemarkExchange &exchange) {
  if (exchange.removed != nullptr) {
    remove_row(editing, exchange.removed_index);
  }
  if (exchange.inserted == nullptr) {
    return exchange.removed_index;
  }
  const OwnedUtf8String text = v_utf8_string_new(nullptr);
  insert_row(editing, exchange.inserted, text.get(), exchange.inserted_index);
  return exchange.inserted_index;
}

// Read: widgets to model. Each false leaves its reason in the error state; what has been taken over
// stays taken over, and is taken over again at the next attempt.

bool check_remarks(const EditingWindow *editing) {
  if (v_remark_list_is_empty(editing->codeset->remarks.get())) {
    v_error_set("There must be at least one remark code in the codeset.");
    return false;
  }
  return true;
}

// An editor that refuses leaves the value as it was.
bool read_langstr(VLangstrEditor *editor, OwnedLangstr &value) {
  OwnedLangstr text;
  if (v_langstr_editor_get_text(editor, text) == 0) {
    return false;
  }
  value = std::move(text);
  return true;
}

bool read_name(EditingWindow *editing) {
  if (!read_langstr(editing->name_editor, editing->codeset->name)) {
    return false;
  }
  if (!editing->codeset->name) {
    v_error_set("The codeset must have a name.");
    return false;
  }
  return true;
}

bool read_author(EditingWindow *editing) {
  return read_langstr(editing->author_editor, editing->codeset->author);
}

bool read_version(EditingWindow *editing) {
  OwnedText version = v_spacifying_entry_get_text(editing->version_entry);
  if (!version) {
    v_error_set_unknown();
    return false;
  }
  editing->codeset->version = *version == '\0' ? nullptr : std::move(version);
  return true;
}

// The draft.

void draft_is_due(EditingWindow *editing) {
  if (editing->draft_timer == 0) {
    // Keys and drawing have precedence.
    editing->draft_timer = g_timeout_add_full(G_PRIORITY_DEFAULT_IDLE, draft_delay,
                                              draft_timer_callback, editing, nullptr);
  }
}

void draft_is_not_due(EditingWindow *editing) {
  g_clear_handle_id(&editing->draft_timer, g_source_remove);
}

bool write_draft(EditingWindow *editing) {
  draft_is_not_due(editing);
  // A field that is refused, as while two rows have the same language, is in the draft with the
  // last value that was not.
  read_name(editing);
  read_author(editing);
  read_version(editing);
  return v_draft_write(editing->draft.get(), editing->codeset.get());
}

// Handlers.

// "changed" of the name, the author and the version.
void text_changed_callback(GtkWidget *, EditingWindow *editing) { draft_is_due(editing); }

gboolean draft_timer_callback(void *editing_window) {
  auto *editing = static_cast<EditingWindow *>(editing_window);
  if (!write_draft(editing)) {
    draft_is_due(editing); // a full disk may have room by then
  }
  return G_SOURCE_REMOVE;
}

// "shrunk" of the two editors: a row has gone.
void shrunk_callback(VLangstrEditor *, EditingWindow *editing) {
  v_gui_resize_window_to_minimum_unless_maximized(editing->window);
}

// "changed" of the list's selection; several times while rows go.
void selection_change_callback(GtkTreeSelection *, EditingWindow *editing) { update_gui(editing); }

void show_exchange(EditingWindow *editing, const VRemarkExchange &exchange) {
  change_codes_store(editing, [&] { return follow_exchange(editing, exchange); });
  draft_is_due(editing);
}

void add_callback(GtkButton *, EditingWindow *editing) {
  OwnedRemark remark = v_remark_new();
  if (v_remark_gui_edit_remark(editing->context->window_stack, settings_of(editing), remark.get(),
                               editing->codeset.get(), "Edit remark code") != 0) {
    show_exchange(editing, v_remark_history_add_remark(editing->history.get(), std::move(remark)));
  }
}

// An edit that changes nothing is none to take back.
void replace_remark(EditingWindow *editing, VRemark *remark, OwnedRemark edited) {
  if (const std::optional<VRemarkExchange> exchange =
          v_remark_history_replace_remark(editing->history.get(), remark, std::move(edited))) {
    show_exchange(editing, *exchange);
  } else {
    change_codes_store(editing, [remark] { return v_remark_get_index(remark); });
  }
}

// The remark that many steps further in the list; null beyond either end.
VRemark *find_neighbour(const VRemarkList *list, const VRemark *remark, int step) {
  VRemark *neighbour = step > 0 ? remark->next : remark->prev;
  return step == 0 || neighbour == &list->head || neighbour == &list->tail ? nullptr : neighbour;
}

// Returns the remark to go on with; null when the user goes on with none.
VRemark *edit_remark(EditingWindow *editing, VRemark *remark, VRemarkPass &pass) {
  OwnedRemark edited = v_remark_clone(remark);
  if (v_remark_gui_edit_remark_in_pass(editing->context->window_stack, settings_of(editing),
                                       edited.get(), editing->codeset.get(), "Edit remark code",
                                       pass) == 0) {
    return nullptr;
  }
  // Before its own code leads it to another place.
  VRemark *neighbour = find_neighbour(editing->codeset->remarks.get(), remark, pass.step);
  replace_remark(editing, remark, std::move(edited));
  return neighbour;
}

void edit_callback(GtkButton *, EditingWindow *editing) {
  GtkTreeIter iter;
  VRemarkPass pass;
  for (VRemark *remark = get_selected_remark(editing, &iter); remark != nullptr;) {
    remark = edit_remark(editing, remark, pass);
  }
}

void delete_callback(GtkButton *, EditingWindow *editing) {
  GtkTreeIter iter;
  if (VRemark *remark = get_selected_remark(editing, &iter)) {
    show_exchange(editing, v_remark_history_remove_remark(editing->history.get(), remark));
  }
}

// Ctrl+Z.
void take_back(void *editing_window) {
  auto *editing = static_cast<EditingWindow *>(editing_window);
  if (const std::optional<VRemarkExchange> exchange =
          v_remark_history_take_back(editing->history.get())) {
    show_exchange(editing, *exchange);
  }
}

// Ctrl+Shift+Z.
void do_again(void *editing_window) {
  auto *editing = static_cast<EditingWindow *>(editing_window);
  if (const std::optional<VRemarkExchange> exchange =
          v_remark_history_do_again(editing->history.get())) {
    show_exchange(editing, *exchange);
  }
}

void save_button_clicked_callback(GtkButton *, EditingWindow *editing) {
  if (check_remarks(editing) && read_name(editing) && read_author(editing) &&
      read_version(editing) && v_draft_save_codeset(editing->draft.get(), editing->codeset.get())) {
    draft_is_not_due(editing);
    editing->saved = 1;
    gtk_widget_destroy(GTK_WIDGET(editing->window));
  } else {
    v_message_show_error(editing->context->window_stack, v_error_get());
  }
}

// Asked every time, whether or not anything was changed. The draft is gone when it may.
bool may_close(EditingWindow *editing) {
  GtkDialog *dialog = v_message_create_question_dialog(
      "Really close?", "Are you sure you want to close the codeset without saving?");
  v_gui_add_dialog_button(dialog, "gtk-close", GTK_RESPONSE_CLOSE);
  v_gui_add_dialog_button(dialog, "gtk-cancel", GTK_RESPONSE_CANCEL);
  gtk_dialog_set_default_response(dialog, GTK_RESPONSE_CANCEL);
  if (v_message_run_and_destroy_dialog(editing->context->window_stack, dialog) !=
      GTK_RESPONSE_CLOSE) {
    return false;
  }
  draft_is_not_due(editing);
  v_draft_remove(editing->draft.get());
  return true;
}

void close_button_clicked_callback(GtkButton *, EditingWindow *editing) {
  if (may_close(editing)) {
    gtk_widget_destroy(GTK_WIDGET(editing->window));
  }
}

// The window manager's close button, and Escape. True keeps the window.
gboolean window_delete_event_callback(GtkWidget *, GdkEvent *, EditingWindow *editing) {
  return !may_close(editing);
}

// However the window ends, nothing that was changed is missing in a draft that stays.
void window_destroy_callback(GtkWidget *, EditingWindow *editing) {
  if (editing->draft_timer != 0) {
    write_draft(editing);
  }
}

// Opening.

// In UTF-8, as the locale writes them; seconds: since the epoch.
OwnedText format_date_and_time(std::int64_t seconds) {
  const Owned<GDateTime, g_date_time_unref> time(g_date_time_new_from_unix_local(seconds));
  return OwnedText(g_date_time_format(time.get(), "%c"));
}

// Null when no changes were left behind, or when the user does without them.
OwnedCodeset restore_draft(const RunContext *context, VDraft *draft) {
  if (!draft->left_behind) {
    return nullptr;
  }
  const OwnedText time = format_date_and_time(draft->left_behind_time);
  if (v_message_ask_yes_no_question_utf8_printf(
          context->window_stack, 1, WarningIcon::no,
          "Unsaved changes to this codeset were found, from %s. Restore them?", time.get()) == 0) {
    v_draft_remove(draft);
  }
  return std::move(draft->left_behind);
}

// The codeset at the path, or the draft of it that the user wants back, or a new one when there is
// neither. A draft needs no file that can be read: the program may have ended while it was written.
// Null after having told why.
OwnedCodeset open_codeset(const RunContext *context, const char *path, VDraft *draft) {
  VFileInfo info;
  if (!v_fs_utils_get_info(path, info)) {
    v_message_show_error_utf8_printf(
        context->window_stack, "Something went wrong when accessing the codeset file:\n\n%s", path);
    return nullptr;
  }
  if (OwnedCodeset restored = restore_draft(context, draft)) {
    return restored;
  }
  if (!info.exists) {
    return v_codeset_new();
  }
  OwnedCodeset codeset = v_codeset_io_read_from_file(path);
  if (!codeset) {
    v_error_append_utf8_printf("Error when loading the codeset file:\n\n%s", path);
    v_message_show_error(context->window_stack, v_error_get());
  }
  return codeset;
}

} // namespace

int run_editing_window(const RunContext *context, const char *path) {
  EditingWindow editing;
  editing.context = context;
  editing.path = path;
  editing.draft = v_draft_open(path);
  editing.codeset = open_codeset(context, path, editing.draft.get());
  if (!editing.codeset) {
    return 0;
  }
  editing.history = v_remark_history_new(editing.codeset->remarks.get());
  editing.codes_store = take(gtk_list_store_new(2, G_TYPE_STRING, G_TYPE_POINTER));
  build_window(&editing);
  show_codes(&editing);
  v_window_stack_run_window(context->window_stack, editing.window, Maximize::yes,
                            GTK_WIDGET(editing.name_editor));
  return editing.saved;
}
