#include "gui/editing/langstr_editor.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "base/error.h"
#include "gui/message_dialogs.h"
#include "gui/owned_objects.h"
#include "gui/widgets.h"
#include "gui/window_commands.h"
#include "langstr/supported_languages.h"
#include "langstr_editor_focus.h"
#include "langstr_editor_row.h"
#include "langstr_editor_table.h"

namespace {

constexpr char broken_message[] = "An error occured with the user interface.";

struct LangstrEditorState {
  VWindowStack *window_stack = nullptr;
  const VSettings *settings = nullptr;
  LangstrEditorMode mode = LangstrEditorMode::single_line;
  ActivatesDefault activates_default = ActivatesDefault::no;
  LangstrEditorRows rows;
  bool broken = false;       // an initial row could not be created
  GtkTable *table = nullptr; // rebuilt whenever the rows change; null while they change
  OwnedObject<GtkAlignment> plus_alignment; // around the plus button; null unless multi-line
  OwnedObject<GtkButton> plus_button;
  gulong clicked_handler = 0;
};

} // namespace

struct _VLangstrEditor {
  GtkBox parent_instance;

  LangstrEditorState *state;
};

G_DEFINE_TYPE(VLangstrEditor, v_langstr_editor, GTK_TYPE_BOX)

namespace {

guint changed_signal = 0;
guint shrunk_signal = 0;

void add_row_callback(GtkButton *button, VLangstrEditor *editor);
void delete_row_callback(GtkButton *button, LangstrEditorRow *row);
void row_changed_callback(GObject *emitter, LangstrEditorRow *row);
gboolean field_key_press_event_callback(GtkWidget *field, GdkEventKey *event,
                                        LangstrEditorRow *row);

// ---- Adding and deleting rows -------------------------------------------------------------------

void connect_row(LangstrEditorRow *row) {
  g_signal_connect(row->delete_button.get(), "clicked", G_CALLBACK(delete_row_callback), row);
  g_signal_connect(row->text_field.get(), "key-press-event",
                   G_CALLBACK(field_key_press_event_callback), row);
  g_signal_connect(row->language_combo.get(), "changed", G_CALLBACK(row_changed_callback), row);
  g_signal_connect(v_langstr_editor_row_get_text_object(row), "changed",
                   G_CALLBACK(row_changed_callback), row);
}

// Appends a row with the translation (null: empty) without adding it to the table. Null when it
// cannot be created.
LangstrEditorRow *append_row(VLangstrEditor *editor, const VLangstr *translation) {
  LangstrEditorState *state = editor->state;
  std::unique_ptr<LangstrEditorRow> row = v_langstr_editor_row_new(
      editor, state->mode, state->activates_default, state->settings, state->rows, translation);
  if (!row) {
    return nullptr;
  }
  connect_row(row.get());
  state->rows.push_back(std::move(row));
  return state->rows.back().get();
}

void create_table(VLangstrEditor *editor) {
  LangstrEditorState *state = editor->state;
  GtkWidget *plus_widget = state->plus_alignment ? GTK_WIDGET(state->plus_alignment.get())
                                                 : GTK_WIDGET(state->plus_button.get());
  state->table = v_langstr_editor_table_new(state->mode, state->rows, plus_widget);
  for (const auto &row : state->rows) {
    v_langstr_editor_row_update_sensitivity(row.get(), state->rows.size());
  }
  gtk_box_pack_start(GTK_BOX(editor), GTK_WIDGET(state->table), FALSE, FALSE, 0);
}

void drop_table(VLangstrEditor *editor) {
  if (GtkTable *table = std::exchange(editor->state->table, nullptr)) {
    v_langstr_editor_table_drop(table, GTK_CONTAINER(editor));
  }
}

void add_plus_button(VLangstrEditor *editor) {
  LangstrEditorState *state = editor->state;
  state->plus_button = sink(v_langstr_editor_row_create_button(" + ", "Add a translation"));
  v_window_commands_announce(state->plus_button.get(), "Ctrl+Return");
  state->clicked_handler =
      g_signal_connect(state->plus_button.get(), "clicked", G_CALLBACK(add_row_callback), editor);
  if (state->mode == LangstrEditorMode::multi_line) {
    state->plus_alignment = sink(v_gui_create_alignment_for_widget(
        1.0f, 1.0f, 0.0f, 0.0f, GTK_WIDGET(state->plus_button.get())));
  }
}

// Appends one row per translation, until one fails; for null, one empty row.
bool append_initial_rows(VLangstrEditor *editor, const VLangstr *initial_value) {
  if (initial_value == nullptr) {
    return append_row(editor, nullptr) != nullptr;
  }
  for (const VLangstr *translation = initial_value; translation != nullptr;
       translation = translation->next.get()) {
    if (append_row(editor, translation) == nullptr) {
      return false;
    }
  }
  return true;
}

void lock_rows(const LangstrEditorState *state, const VLangstr *locked_texts) {
  for (const VLangstr *locked = locked_texts; locked != nullptr; locked = locked->next.get()) {
    const char *tag = locked->lang.get();
    const OwnedText language = v_supported_languages_format_language_string(tag);
    for (const auto &row : state->rows) {
      if (v_langstr_editor_row_has_language(row.get(), language.get())) {
        row->text_locked = true;
        row->language_locked = *tag != '\0';
      }
    }
  }
}

void delete_row(VLangstrEditor *editor, LangstrEditorRow *row) {
  LangstrEditorState *state = editor->state;
  const auto deleted = std::find_if(state->rows.begin(), state->rows.end(),
                                    [row](const auto &other) { return other.get() == row; });
  const auto index = static_cast<std::size_t>(deleted - state->rows.begin());
  const OwnedObject<GtkWidget> focus_widget = v_langstr_editor_focus_share(GTK_WIDGET(editor));
  v_langstr_editor_row_detach(row);
  drop_table(editor);
  state->rows.erase(deleted);
  create_table(editor);
  v_langstr_editor_focus_restore(GTK_WIDGET(editor), state->rows, focus_widget.get(), index);
  // A handler of the signal may destroy the editor.
  const OwnedObject<VLangstrEditor> held = share(editor);
  g_signal_emit(editor, changed_signal, 0);
  g_signal_emit(editor, shrunk_signal, 0);
}

// ---- Handlers -----------------------------------------------------------------------------------

// "clicked" of the plus button. The new row gets the focus again, which it lost when the old table
// was dropped.
void add_row_callback(GtkButton *, VLangstrEditor *editor) {
  const LangstrEditorRow *row = append_row(editor, nullptr);
  if (row == nullptr) {
    return;
  }
  drop_table(editor);
  create_table(editor);
  v_langstr_editor_row_grab_focus(row);
}

bool is_ctrl_return(const GdkEventKey *event) {
  return (event->keyval == GDK_KEY_Return || event->keyval == GDK_KEY_KP_Enter ||
          event->keyval == GDK_KEY_ISO_Enter) &&
         (event->state & gtk_accelerator_get_default_mod_mask()) == GDK_CONTROL_MASK;
}

// "key-press-event" of a row's text field. A multi-line field would insert a line break.
gboolean field_key_press_event_callback(GtkWidget *, GdkEventKey *event, LangstrEditorRow *row) {
  if (!is_ctrl_return(event)) {
    return GDK_EVENT_PROPAGATE;
  }
  gtk_button_clicked(row->editor->state->plus_button.get());
  return GDK_EVENT_STOP;
}

// "clicked" of a row's delete button. The signal emission holds a reference to the button.
void delete_row_callback(GtkButton *, LangstrEditorRow *row) {
  VLangstrEditor *editor = row->editor;
  if (editor->state->rows.size() == 1) {
    v_message_show_error(editor->state->window_stack, "There must be at least one row.");
  } else {
    delete_row(editor, row);
  }
}

// "changed" of a row's text, or of its combo box after the row has applied the language.
void row_changed_callback(GObject *, LangstrEditorRow *row) {
  g_signal_emit(row->editor, changed_signal, 0);
}

// "focus-in-event" of the editor itself. Passes the focus to the first text field.
gboolean focus_in_event_callback(GtkWidget *widget, GdkEvent *, void *) {
  const LangstrEditorState *state = V_LANGSTR_EDITOR(widget)->state;
  if (gtk_widget_is_focus(widget) && !state->rows.empty()) {
    v_langstr_editor_row_grab_focus(state->rows.front().get());
  }
  return GDK_EVENT_PROPAGATE;
}

// "grab-focus" of the editor. The first text field takes the focus at once: screen readers would
// not announce it if only "focus-in-event" passed the focus on (seen with GTK 3.24.38).
void grab_focus_callback(GtkWidget *widget) {
  const LangstrEditorState *state = V_LANGSTR_EDITOR(widget)->state;
  if (state->rows.empty()) {
    GTK_WIDGET_CLASS(v_langstr_editor_parent_class)->grab_focus(widget);
  } else {
    v_langstr_editor_row_grab_focus(state->rows.front().get());
  }
}

// "focus" of the editor: a key moves the focus in it or into it. True when a text field takes it.
gboolean focus_callback(GtkWidget *widget, GtkDirectionType direction) {
  const LangstrEditorState *state = V_LANGSTR_EDITOR(widget)->state;
  return v_langstr_editor_focus_move(widget, state->rows, state->plus_button.get(), direction);
}

// Tab moves the focus between text fields only. Ctrl+Tab and Ctrl+Shift+Tab move it between all
// widgets of the editor, and out of it at either end.
gboolean key_press_event_callback(GtkWidget *widget, GdkEventKey *event) {
  VLangstrEditor *editor = V_LANGSTR_EDITOR(widget);
  if (is_ctrl_return(event)) {
    gtk_button_clicked(editor->state->plus_button.get());
    return GDK_EVENT_STOP;
  }
  const bool is_tab = event->keyval == GDK_KEY_Tab || event->keyval == GDK_KEY_KP_Tab ||
                      event->keyval == GDK_KEY_ISO_Left_Tab;
  if (!is_tab || (event->state & GDK_CONTROL_MASK) == 0) {
    return GTK_WIDGET_CLASS(v_langstr_editor_parent_class)->key_press_event(widget, event);
  }
  const bool backward = (event->state & GDK_SHIFT_MASK) != 0;
  if (!v_langstr_editor_focus_move_to_neighbour(
          widget, editor->state->rows, editor->state->plus_button.get(),
          backward ? FocusNeighbour::previous : FocusNeighbour::next)) {
    gtk_widget_child_focus(gtk_widget_get_toplevel(widget),
                           backward ? GTK_DIR_TAB_BACKWARD : GTK_DIR_TAB_FORWARD);
  }
  return GDK_EVENT_STOP;
}

// show_all must not reveal children that the editor has hidden.
void show_all_callback(GtkWidget *widget) { gtk_widget_show(widget); }

// "destroy", which may be emitted more than once.
void destroy_callback(GtkWidget *widget) {
  VLangstrEditor *editor = V_LANGSTR_EDITOR(widget);
  LangstrEditorState *state = editor->state;
  g_clear_signal_handler(&state->clicked_handler, state->plus_button.get());
  drop_table(editor);
  state->plus_alignment.reset();
  state->plus_button.reset();
  for (const auto &row : state->rows) {
    v_langstr_editor_row_detach(row.get());
  }
  state->rows.clear();
  GTK_WIDGET_CLASS(v_langstr_editor_parent_class)->destroy(widget);
}

void finalize_callback(GObject *object) {
  delete V_LANGSTR_EDITOR(object)->state;
  G_OBJECT_CLASS(v_langstr_editor_parent_class)->finalize(object);
}

int collect_text(VLangstrEditor *editor, OwnedLangstr &langstr, TextUse use) {
  langstr.reset();
  if (editor->state->broken) {
    v_error_set(broken_message);
    return 0;
  }
  OwnedLangstr collected;
  for (const auto &row : editor->state->rows) {
    if (!v_langstr_editor_row_add_translation(row.get(), collected, use)) {
      return 0;
    }
  }
  langstr = std::move(collected);
  return 1;
}

} // namespace

static void v_langstr_editor_class_init(VLangstrEditorClass *klass) {
  GTK_WIDGET_CLASS(klass)->destroy = destroy_callback;
  GTK_WIDGET_CLASS(klass)->focus = focus_callback;
  GTK_WIDGET_CLASS(klass)->grab_focus = grab_focus_callback;
  GTK_WIDGET_CLASS(klass)->key_press_event = key_press_event_callback;
  GTK_WIDGET_CLASS(klass)->show_all = show_all_callback;
  G_OBJECT_CLASS(klass)->finalize = finalize_callback;
  changed_signal = g_signal_new("changed", V_TYPE_LANGSTR_EDITOR, G_SIGNAL_RUN_FIRST, 0, nullptr,
                                nullptr, nullptr, G_TYPE_NONE, 0);
  shrunk_signal = g_signal_new("shrunk", V_TYPE_LANGSTR_EDITOR, G_SIGNAL_RUN_FIRST, 0, nullptr,
                               nullptr, nullptr, G_TYPE_NONE, 0);
}

static void v_langstr_editor_init(VLangstrEditor *editor) {
  editor->state = new LangstrEditorState;
  gtk_orientable_set_orientation(GTK_ORIENTABLE(editor), GTK_ORIENTATION_VERTICAL);
  gtk_widget_set_can_focus(GTK_WIDGET(editor), TRUE);
  gtk_widget_set_focus_on_click(GTK_WIDGET(editor), FALSE);
}

GtkWidget *v_langstr_editor_new(VWindowStack *window_stack, const VSettings *settings,
                                LangstrEditorMode mode, const VLangstr *initial_value,
                                const VLangstr *locked_texts, ActivatesDefault activates_default) {
  auto *editor = V_LANGSTR_EDITOR(g_object_new(V_TYPE_LANGSTR_EDITOR, nullptr));
  LangstrEditorState *state = editor->state;
  state->window_stack = window_stack;
  state->settings = settings;
  state->mode = mode;
  state->activates_default = activates_default;
  add_plus_button(editor);
  state->broken = !append_initial_rows(editor, initial_value);
  lock_rows(state, locked_texts);
  create_table(editor);
  if (state->broken) {
    v_message_show_error(window_stack, broken_message);
  }
  g_signal_connect(editor, "focus-in-event", G_CALLBACK(focus_in_event_callback), nullptr);
  return GTK_WIDGET(editor);
}

int v_langstr_editor_get_text(VLangstrEditor *editor, OwnedLangstr &langstr) {
  return collect_text(editor, langstr, TextUse::codeset);
}

int v_langstr_editor_get_text_for_draft(VLangstrEditor *editor, OwnedLangstr &langstr) {
  return collect_text(editor, langstr, TextUse::draft);
}

OwnedText v_langstr_editor_get_focused_language(VLangstrEditor *editor) {
  const LangstrEditorState *state = editor->state;
  const VFocusPosition position =
      v_langstr_editor_focus_find(GTK_WIDGET(editor), state->rows, state->plus_button.get());
  return position.place == VFocusPlace::text_field
             ? v_langstr_editor_row_get_language(state->rows[position.row].get())
             : nullptr;
}

GtkWidget *v_langstr_editor_find_field(VLangstrEditor *editor, const char *language) {
  for (const auto &row : editor->state->rows) {
    if (v_langstr_editor_row_has_language(row.get(), language)) {
      return row->text_field.get();
    }
  }
  return nullptr;
}
