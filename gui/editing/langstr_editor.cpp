#include "gui/editing/langstr_editor.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <utility>
#include <vector>

#include <gspell/gspell.h>

#include "base/error.h"
#include "gui/accessibility.h"
#include "gui/editing/editing_widgets.h"
#include "gui/editing/shared_checkers.h"
#include "gui/message_dialogs.h"
#include "gui/owned_objects.h"
#include "gui/window_commands.h"
#include "langstr/spelling_dictionaries.h"
#include "langstr/supported_languages.h"

namespace {

constexpr char broken_message[] = "An error occured with the user interface.";
// Every supported language fits; a tag that only a file knows may be as long as it likes.
constexpr int longest_language_chars = 40;
// Of a one-line text, as long as the screen is wide enough for it beside a language and the
// buttons.
constexpr int text_characters = 68;
constexpr int characters_beside_text = 28;
constexpr int pixels_beside_text = 240;

// What the two kinds of text field do each in their own way.
struct FieldKind {
  void (*set_text)(GtkWidget *field, const char *latin1_text);
  OwnedText (*get_text)(GtkWidget *field);
  void (*set_checker)(GtkWidget *field, GspellChecker *checker);
  void (*set_inline_checking)(GtkWidget *field, bool is_on);
  // The object that emits "changed" when the text does.
  gpointer (*get_text_object)(GtkWidget *field);
};

// A row holds a reference to each of its widgets, so that they outlive the tables they stand in.
// What only the multi-line mode has is null otherwise.
struct LangstrEditorRow {
  VLangstrEditor *editor = nullptr;
  bool text_locked = false; // nor may the row be deleted
  bool language_locked = false;
  OwnedObject<GtkScrolledWindow> scroller; // multi-line, around the text field
  OwnedObject<GtkWidget> text_field;
  OwnedObject<GtkComboBoxText> language_combo;
  OwnedObject<GtkAlignment> delete_alignment; // multi-line, around the delete button
  OwnedObject<GtkButton> delete_button;
  const GspellLanguage *spelling_language = nullptr; // null: the field is not checked
  bool has_own_checker = false;                      // else it shares one with other fields
  gulong clicked_handler = 0;
  gulong changed_handler = 0;
  gulong popup_handler = 0;
  gulong text_handler = 0;
  gulong key_handler = 0;
};

struct LangstrEditorState {
  VWindowStack *window_stack = nullptr;
  const VSettings *settings = nullptr;
  VLangstrEditorMode mode = VLangstrEditorMode::single_line;
  ActivatesDefault activates_default = ActivatesDefault::no;
  std::vector<std::unique_ptr<LangstrEditorRow>> rows;
  bool broken = false;       // not all initial rows could be made
  GtkTable *table = nullptr; // made anew after every change of the rows; null while there is none
  OwnedObject<GtkAlignment> plus_alignment; // multi-line, around the plus button
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
void lang_combo_box_text_changed_callback(GtkComboBox *combo, LangstrEditorRow *row);
void text_changed_callback(GObject *text_object, LangstrEditorRow *row);
gboolean field_key_press_event_callback(GtkWidget *field, GdkEventKey *event,
                                        LangstrEditorRow *row);
gboolean combo_scroll_event_callback(GtkWidget *combo, GdkEvent *event, void *);

// ---- The two kinds of text field ----------------------------------------------------------------

constexpr FieldKind entry_kind = {
    [](GtkWidget *field, const char *latin1_text) {
      v_spacifying_entry_set_text(V_SPACIFYING_ENTRY(field), latin1_text);
    },
    [](GtkWidget *field) { return v_spacifying_entry_get_text(V_SPACIFYING_ENTRY(field)); },
    [](GtkWidget *field, GspellChecker *checker) {
      gspell_entry_buffer_set_spell_checker(
          gspell_entry_buffer_get_from_gtk_entry_buffer(gtk_entry_get_buffer(GTK_ENTRY(field))),
          checker);
    },
    [](GtkWidget *field, bool is_on) {
      gspell_entry_set_inline_spell_checking(gspell_entry_get_from_gtk_entry(GTK_ENTRY(field)),
                                             is_on);
    },
    [](GtkWidget *field) -> gpointer { return field; },
};

constexpr FieldKind text_view_kind = {
    [](GtkWidget *field, const char *latin1_text) {
      v_spacifying_text_view_set_text(V_SPACIFYING_TEXT_VIEW(field), latin1_text);
    },
    [](GtkWidget *field) { return v_spacifying_text_view_get_text(V_SPACIFYING_TEXT_VIEW(field)); },
    [](GtkWidget *field, GspellChecker *checker) {
      gspell_text_buffer_set_spell_checker(gspell_text_buffer_get_from_gtk_text_buffer(
                                               gtk_text_view_get_buffer(GTK_TEXT_VIEW(field))),
                                           checker);
    },
    [](GtkWidget *field, bool is_on) {
      GspellTextView *view = gspell_text_view_get_from_gtk_text_view(GTK_TEXT_VIEW(field));
      gspell_text_view_set_inline_spell_checking(view, is_on);
      gspell_text_view_set_enable_language_menu(view, FALSE);
    },
    [](GtkWidget *field) -> gpointer { return gtk_text_view_get_buffer(GTK_TEXT_VIEW(field)); },
};

bool is_multi_line(const LangstrEditorState *state) {
  return state->mode == VLangstrEditorMode::multi_line;
}

const FieldKind &kind_of(const LangstrEditorRow *row) {
  return is_multi_line(row->editor->state) ? text_view_kind : entry_kind;
}

// ---- Building a row -----------------------------------------------------------------------------

GtkButton *create_sign_button(const char *sign, const char *description) {
  GtkButton *button = v_gui_create_button(sign);
  g_object_set(gtk_bin_get_child(GTK_BIN(button)), "xpad", 0, "ypad", 0, nullptr);
  v_gui_set_accessible_description(GTK_WIDGET(button), description);
  return button;
}

void add_delete_button(LangstrEditorRow *row) {
  row->delete_button = sink(create_sign_button(" - ", "Delete this translation"));
  row->clicked_handler =
      g_signal_connect(row->delete_button.get(), "clicked", G_CALLBACK(delete_row_callback), row);
  if (is_multi_line(row->editor->state)) {
    row->delete_alignment = sink(v_gui_create_alignment_for_widget(
        0.0f, 1.0f, 0.0f, 0.0f, GTK_WIDGET(row->delete_button.get())));
  }
}

void add_text_view(LangstrEditorRow *row) {
  row->scroller = sink(
      v_gui_create_scrolled_window(400, -1, GTK_POLICY_NEVER, GTK_POLICY_AUTOMATIC, GTK_SHADOW_IN));
  VSpacifyingTextView *view = v_gui_add_spacifying_text_view(GTK_CONTAINER(row->scroller.get()));
  row->text_field = share(GTK_WIDGET(view));
}

void add_entry(LangstrEditorRow *row) {
  VSpacifyingEntry *entry =
      v_gui_create_spacifying_entry(Compact::yes, nullptr, row->editor->state->activates_default);
  row->text_field = sink(GTK_WIDGET(entry));
  const int room = v_gui_count_characters_across_screen(GTK_WIDGET(entry), characters_beside_text,
                                                        pixels_beside_text);
  gtk_entry_set_width_chars(GTK_ENTRY(entry), std::min(text_characters, room));
}

// Null when nothing is chosen.
OwnedText get_shown_language(const LangstrEditorRow *row) {
  return OwnedText(gtk_combo_box_text_get_active_text(row->language_combo.get()));
}

bool shows_language(const LangstrEditorRow *row, const char *language) {
  return g_strcmp0(get_shown_language(row).get(), language) == 0;
}

bool is_shown_by_any_row(const LangstrEditorState *state, const char *language) {
  return std::any_of(state->rows.begin(), state->rows.end(),
                     [language](const auto &row) { return shows_language(row.get(), language); });
}

// As the user sees them, in the order of the settings; never empty.
std::vector<OwnedText> format_languages(const VSettings *settings) {
  std::vector<OwnedText> languages;
  for (const std::string &tag : settings->preferred_languages) {
    languages.push_back(v_supported_languages_format_language_string(tag.c_str()));
  }
  if (languages.empty()) {
    languages.push_back(v_supported_languages_format_language_string(""));
  }
  return languages;
}

void keep_combo_narrow(GtkComboBoxText *combo) {
  const Owned<GList, g_list_free> cells(gtk_cell_layout_get_cells(GTK_CELL_LAYOUT(combo)));
  g_object_set(cells->data, "ellipsize", PANGO_ELLIPSIZE_END, "width-chars", longest_language_chars,
               nullptr);
}

void append_and_select(GtkComboBoxText *combo, const char *language) {
  gtk_combo_box_text_append_text(combo, language);
  GtkTreeModel *model = gtk_combo_box_get_model(GTK_COMBO_BOX(combo));
  gtk_combo_box_set_active(GTK_COMBO_BOX(combo),
                           gtk_tree_model_iter_n_children(model, nullptr) - 1);
  if (g_utf8_strlen(language, -1) > longest_language_chars) {
    keep_combo_narrow(combo);
  }
}

// The translation's language, added to the choices if it is not among them.
void select_language_of(GtkComboBoxText *combo, const std::vector<OwnedText> &languages,
                        const VLangstr *translation) {
  const OwnedText wanted = v_supported_languages_format_language_string(translation->lang.get());
  const auto found =
      std::find_if(languages.begin(), languages.end(), [&wanted](const OwnedText &language) {
        return std::strcmp(language.get(), wanted.get()) == 0;
      });
  if (found == languages.end()) {
    append_and_select(combo, wanted.get());
  } else {
    gtk_combo_box_set_active(GTK_COMBO_BOX(combo), static_cast<int>(found - languages.begin()));
  }
}

// The first language that no row has yet, or else the first.
void select_unused_language(GtkComboBoxText *combo, const std::vector<OwnedText> &languages,
                            const LangstrEditorState *state) {
  const auto found =
      std::find_if_not(languages.begin(), languages.end(), [state](const OwnedText &language) {
        return is_shown_by_any_row(state, language.get());
      });
  gtk_combo_box_set_active(GTK_COMBO_BOX(combo), found == languages.end()
                                                     ? 0
                                                     : static_cast<int>(found - languages.begin()));
}

bool add_language_combo(LangstrEditorRow *row, const VLangstr *translation) {
  const LangstrEditorState *state = row->editor->state;
  row->language_combo = sink(v_gui_create_combo_box_text());
  GtkComboBoxText *combo = row->language_combo.get();
  if (combo == nullptr) {
    return false;
  }
  v_gui_set_accessible_description(GTK_WIDGET(combo), "Language");
  g_signal_connect(combo, "scroll-event", G_CALLBACK(combo_scroll_event_callback), nullptr);
  const std::vector<OwnedText> languages = format_languages(state->settings);
  for (const OwnedText &language : languages) {
    gtk_combo_box_text_append_text(combo, language.get());
  }
  if (translation != nullptr) {
    select_language_of(combo, languages, translation);
  } else {
    select_unused_language(combo, languages, state);
  }
  return true;
}

// The tag of the language that the row shows; null, with a message, for one that is not supported.
OwnedText get_selected_langtag(const LangstrEditorRow *row) {
  const OwnedText shown = get_shown_language(row);
  return shown ? v_supported_languages_get_tag_from_language_string(shown.get()) : copy_text("");
}

// Null when there is no dictionary for it on this machine.
const GspellLanguage *find_spelling_language(const char *tag) {
  const char *dictionary = v_spellcheck_get_dict_name_for_langtag(tag);
  return dictionary == nullptr ? nullptr : gspell_language_lookup(dictionary);
}

// Checks the row in the language, or not at all for null. Setting the checker first keeps gspell
// from loading the default language's dictionary for the field.
void set_spelling_language(LangstrEditorRow *row, const GspellLanguage *language) {
  kind_of(row).set_checker(row->text_field.get(), v_shared_checkers_get(language));
  kind_of(row).set_inline_checking(row->text_field.get(), language != nullptr);
  row->spelling_language = language;
  row->has_own_checker = false;
}

// "populate-popup" of the text field, before gspell adds to its context menu. What is chosen there,
// another language or a word to let pass, is meant for this field only.
void populate_popup_callback(GtkWidget *field, GtkWidget *, LangstrEditorRow *row) {
  if (row->spelling_language != nullptr && !row->has_own_checker) {
    const OwnedObject<GspellChecker> checker = take(gspell_checker_new(row->spelling_language));
    kind_of(row).set_checker(field, checker.get());
    row->has_own_checker = true;
  }
}

// What follows from the language that the row shows.
void apply_language(LangstrEditorRow *row) {
  GtkWidget *field = row->text_field.get();
  const OwnedText tag = get_selected_langtag(row);
  set_spelling_language(row, tag ? find_spelling_language(tag.get()) : nullptr);
  if (const OwnedText shown = get_shown_language(row)) {
    v_gui_set_accessible_name(field, shown.get());
  }
  v_gui_grab_focus_without_selecting(field);
}

// Makes the row ready to be deleted.
void detach_row(LangstrEditorRow *row) {
  g_clear_signal_handler(&row->clicked_handler, row->delete_button.get());
  if (row->language_combo) {
    g_clear_signal_handler(&row->changed_handler, row->language_combo.get());
  }
  g_clear_signal_handler(&row->popup_handler, row->text_field.get());
  g_clear_signal_handler(&row->key_handler, row->text_field.get());
  g_clear_signal_handler(&row->text_handler, kind_of(row).get_text_object(row->text_field.get()));
  // A text view that goes while it is checked marks the words of a buffer that is half gone (seen
  // with gspell 1.12 and GTK 3.24.38, which then ends the program).
  kind_of(row).set_inline_checking(row->text_field.get(), false);
}

// Appends a row, with the translation if there is one. Null when it could not be made. It stands in
// no table yet.
LangstrEditorRow *append_row(VLangstrEditor *editor, const VLangstr *translation) {
  LangstrEditorState *state = editor->state;
  auto row = std::make_unique<LangstrEditorRow>();
  row->editor = editor;
  add_delete_button(row.get());
  if (is_multi_line(state)) {
    add_text_view(row.get());
  } else {
    add_entry(row.get());
  }
  row->popup_handler = g_signal_connect(row->text_field.get(), "populate-popup",
                                        G_CALLBACK(populate_popup_callback), row.get());
  row->key_handler = g_signal_connect(row->text_field.get(), "key-press-event",
                                      G_CALLBACK(field_key_press_event_callback), row.get());
  if (!add_language_combo(row.get(), translation)) {
    detach_row(row.get());
    return nullptr;
  }
  apply_language(row.get());
  row->changed_handler =
      g_signal_connect(row->language_combo.get(), "changed",
                       G_CALLBACK(lang_combo_box_text_changed_callback), row.get());
  if (translation != nullptr) {
    kind_of(row.get()).set_text(row->text_field.get(), translation->text.get());
  }
  row->text_handler = g_signal_connect(kind_of(row.get()).get_text_object(row->text_field.get()),
                                       "changed", G_CALLBACK(text_changed_callback), row.get());
  state->rows.push_back(std::move(row));
  return state->rows.back().get();
}

// ---- The table ----------------------------------------------------------------------------------

constexpr GtkAttachOptions shrink = GTK_SHRINK;
constexpr auto shrink_and_fill = static_cast<GtkAttachOptions>(GTK_SHRINK | GTK_FILL);
constexpr auto expand_and_fill = static_cast<GtkAttachOptions>(GTK_EXPAND | GTK_FILL);

// In columns from left up to, not including, right; likewise the table rows.
struct Cell {
  guint left;
  guint right;
  guint top;
  guint bottom;
};

void attach(GtkTable *table, gpointer widget, Cell cell, GtkAttachOptions x_options,
            GtkAttachOptions y_options) {
  gtk_table_attach(table, GTK_WIDGET(widget), cell.left, cell.right, cell.top, cell.bottom,
                   x_options, y_options, 0, 0);
}

void attach_one_line_row(GtkTable *table, const LangstrEditorRow *row, guint top) {
  attach(table, row->text_field.get(), {0, 1, top, top + 1}, expand_and_fill, expand_and_fill);
  attach(table, row->language_combo.get(), {1, 2, top, top + 1}, shrink, shrink);
  attach(table, row->delete_button.get(), {2, 3, top, top + 1}, shrink, shrink);
}

void attach_multi_line_row(GtkTable *table, const LangstrEditorRow *row, guint top) {
  attach(table, row->scroller.get(), {0, 1, top, top + 2}, expand_and_fill, expand_and_fill);
  attach(table, row->language_combo.get(), {1, 4, top, top + 1}, shrink, shrink);
  attach(table, row->delete_alignment.get(), {1, 2, top + 1, top + 2}, shrink_and_fill, shrink);
}

void update_sensitivity(const LangstrEditorState *state) {
  for (const auto &row : state->rows) {
    gtk_widget_set_sensitive(row->text_field.get(), !row->text_locked);
    gtk_widget_set_sensitive(GTK_WIDGET(row->language_combo.get()), !row->language_locked);
    gtk_widget_set_sensitive(GTK_WIDGET(row->delete_button.get()),
                             !row->text_locked && state->rows.size() > 1);
  }
}

void create_table(VLangstrEditor *editor) {
  LangstrEditorState *state = editor->state;
  const bool multi_line = is_multi_line(state);
  const guint height = multi_line ? 2 : 1; // of an editor row, in table rows
  // Also without any editor row the plus button has its place.
  const guint bottom = std::max(height * static_cast<guint>(state->rows.size()), 1u);
  state->table = v_gui_create_table(bottom, 4, Homogeneous::no);
  guint top = 0;
  for (const auto &row : state->rows) {
    if (multi_line) {
      attach_multi_line_row(state->table, row.get(), top);
    } else {
      attach_one_line_row(state->table, row.get(), top);
    }
    top += height;
  }
  const Cell last = {3, 4, bottom - 1, bottom};
  if (multi_line) {
    attach(state->table, state->plus_alignment.get(), last, shrink_and_fill, shrink);
  } else {
    attach(state->table, state->plus_button.get(), last, shrink, shrink);
  }
  update_sensitivity(state);
  gtk_box_pack_start(GTK_BOX(editor), GTK_WIDGET(state->table), FALSE, FALSE, 0);
}

void take_out(GtkWidget *child, void *table) { gtk_container_remove(GTK_CONTAINER(table), child); }

void drop_table(VLangstrEditor *editor) {
  if (GtkTable *table = std::exchange(editor->state->table, nullptr)) {
    gtk_widget_hide(GTK_WIDGET(table));
    gtk_container_foreach(GTK_CONTAINER(table), take_out, table);
    gtk_container_remove(GTK_CONTAINER(editor), GTK_WIDGET(table));
  }
}

// ---- Focus --------------------------------------------------------------------------------------

// Where the keyboard is, as far as the editor can tell; a row where there is one.
enum class FocusPlace { field, row_button, plus_button, outside };

struct Focus {
  FocusPlace place = FocusPlace::outside;
  std::size_t row = 0;
};

// Which row's text field a key leads to, seen from the row that has the focus; for the plus button
// that is the last.
enum class Step { leave, first, last, own, next, previous };

// By place and GtkDirectionType: tab forward, tab backward, up, down, left, right.
constexpr Step steps[][6] = {
    {Step::next, Step::previous, Step::previous, Step::next, Step::leave, Step::leave},
    {Step::next, Step::own, Step::previous, Step::next, Step::own, Step::leave},
    {Step::leave, Step::own, Step::previous, Step::leave, Step::own, Step::leave},
    {Step::first, Step::last, Step::last, Step::first, Step::first, Step::first},
};

// The widget that has the focus of the editor's window; null when there is none.
GtkWidget *get_focus_widget(VLangstrEditor *editor) {
  GtkWidget *window = gtk_widget_get_toplevel(GTK_WIDGET(editor));
  return GTK_IS_WINDOW(window) ? gtk_window_get_focus(GTK_WINDOW(window)) : nullptr;
}

bool is_inside(GtkWidget *widget, gpointer container) {
  return widget != nullptr && container != nullptr &&
         (widget == container || gtk_widget_is_ancestor(widget, GTK_WIDGET(container)));
}

Focus find_focus(const LangstrEditorState *state, GtkWidget *focus_widget) {
  for (std::size_t i = 0; i < state->rows.size(); i++) {
    const LangstrEditorRow *row = state->rows[i].get();
    if (is_inside(focus_widget, row->text_field.get())) {
      return {FocusPlace::field, i};
    }
    if (is_inside(focus_widget, row->language_combo.get()) ||
        is_inside(focus_widget, row->delete_button.get())) {
      return {FocusPlace::row_button, i};
    }
  }
  if (is_inside(focus_widget, state->plus_button.get()) && !state->rows.empty()) {
    return {FocusPlace::plus_button, state->rows.size() - 1};
  }
  return {};
}

// Null where the step leads out of the editor.
LangstrEditorRow *find_row(const LangstrEditorState *state, std::size_t from, Step step) {
  const std::size_t count = state->rows.size();
  std::size_t target = count;
  switch (step) {
  case Step::leave:
    break;
  case Step::first:
    target = 0;
    break;
  case Step::last:
    target = count - 1;
    break;
  case Step::own:
    target = from;
    break;
  case Step::next:
    target = from + 1;
    break;
  case Step::previous:
    target = from - 1; // before the first: larger than any
    break;
  }
  return target < count ? state->rows[target].get() : nullptr;
}

gboolean focus_field(const LangstrEditorRow *row) {
  gtk_widget_grab_focus(row->text_field.get());
  return gtk_widget_is_focus(row->text_field.get());
}

// What can have the focus now, as the eye meets it: row by row, each from left to right.
std::vector<GtkWidget *> list_stops(const LangstrEditorState *state) {
  std::vector<GtkWidget *> stops;
  const auto add_if_sensitive = [&stops](gpointer widget) {
    if (gtk_widget_is_sensitive(GTK_WIDGET(widget))) {
      stops.push_back(GTK_WIDGET(widget));
    }
  };
  for (const auto &row : state->rows) {
    add_if_sensitive(row->text_field.get());
    add_if_sensitive(row->language_combo.get());
    add_if_sensitive(row->delete_button.get());
  }
  add_if_sensitive(state->plus_button.get());
  return stops;
}

// Moves the focus to the stop after or before the one that has it. False when there is none.
bool focus_neighbour(VLangstrEditor *editor, bool backward) {
  const std::vector<GtkWidget *> stops = list_stops(editor->state);
  GtkWidget *focus_widget = get_focus_widget(editor);
  const auto current = std::find_if(stops.begin(), stops.end(), [focus_widget](GtkWidget *stop) {
    return is_inside(focus_widget, stop);
  });
  if (current == stops.end() || current == (backward ? stops.begin() : stops.end() - 1)) {
    return false;
  }
  gtk_widget_grab_focus(*(backward ? current - 1 : current + 1));
  return true;
}

// Null when the focus is not in the editor.
OwnedObject<GtkWidget> share_focus_widget(VLangstrEditor *editor) {
  GtkWidget *focus_widget = get_focus_widget(editor);
  return share(is_inside(focus_widget, editor) ? focus_widget : nullptr);
}

// Dropping a table loses the focus that was in it. A widget that has gone with its row leaves the
// focus to the row that has taken its place.
void restore_focus(VLangstrEditor *editor, GtkWidget *focus_widget, std::size_t place) {
  const LangstrEditorState *state = editor->state;
  if (focus_widget == nullptr) {
    return;
  }
  const LangstrEditorRow *heir = state->rows[std::min(place, state->rows.size() - 1)].get();
  v_gui_grab_focus_without_selecting(is_inside(focus_widget, editor) ? focus_widget
                                                                     : heir->text_field.get());
}

// ---- Adding and deleting rows -------------------------------------------------------------------

void add_plus_button(VLangstrEditor *editor) {
  LangstrEditorState *state = editor->state;
  state->plus_button = sink(create_sign_button(" + ", "Add a translation"));
  v_window_commands_announce(state->plus_button.get(), "Ctrl+Return");
  state->clicked_handler =
      g_signal_connect(state->plus_button.get(), "clicked", G_CALLBACK(add_row_callback), editor);
  if (is_multi_line(state)) {
    state->plus_alignment = sink(v_gui_create_alignment_for_widget(
        1.0f, 1.0f, 0.0f, 0.0f, GTK_WIDGET(state->plus_button.get())));
  }
}

// One row per translation, up to the first that cannot be made; one empty row for no value.
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
      if (shows_language(row.get(), language.get())) {
        row->text_locked = true;
        row->language_locked = *tag != '\0';
      }
    }
  }
}

std::size_t index_of(const LangstrEditorState *state, const LangstrEditorRow *row) {
  const auto found = std::find_if(state->rows.begin(), state->rows.end(),
                                  [row](const auto &other) { return other.get() == row; });
  return static_cast<std::size_t>(found - state->rows.begin());
}

void delete_row(VLangstrEditor *editor, LangstrEditorRow *row) {
  LangstrEditorState *state = editor->state;
  const std::size_t place = index_of(state, row);
  const OwnedObject<GtkWidget> focus_widget = share_focus_widget(editor);
  detach_row(row);
  drop_table(editor);
  state->rows.erase(state->rows.begin() + static_cast<std::ptrdiff_t>(place));
  create_table(editor);
  restore_focus(editor, focus_widget.get(), place);
  // A handler may destroy the editor.
  const OwnedObject<VLangstrEditor> held = share(editor);
  g_signal_emit(editor, changed_signal, 0);
  g_signal_emit(editor, shrunk_signal, 0);
}

// ---- Reading -----------------------------------------------------------------------------------

// Adds the row's translation, unless its text is empty.
bool collect_row(OwnedLangstr &collected, const LangstrEditorRow *row) {
  const OwnedText text = kind_of(row).get_text(row->text_field.get());
  if (!text) {
    v_error_set_unknown();
    return false;
  }
  if (*text == '\0') {
    return true;
  }
  const OwnedText tag = get_selected_langtag(row);
  if (!tag) {
    return false;
  }
  if (v_langstr_get_string(collected.get(), tag.get(), false) != nullptr) {
    v_error_set_utf8_printf(
        "Each language may only appear once. Language \"%s\" appears several times.", tag.get());
    return false;
  }
  v_langstr_set_translation(collected, tag.get(), text.get());
  return true;
}

// ---- Handlers -----------------------------------------------------------------------------------

// "clicked" of the plus button. The focus is given once more because the one that the row took when
// it was made went with the old table.
void add_row_callback(GtkButton *, VLangstrEditor *editor) {
  const LangstrEditorRow *row = append_row(editor, nullptr);
  if (row == nullptr) {
    return;
  }
  drop_table(editor);
  create_table(editor);
  focus_field(row);
}

bool is_ctrl_return(const GdkEventKey *event) {
  return (event->keyval == GDK_KEY_Return || event->keyval == GDK_KEY_KP_Enter ||
          event->keyval == GDK_KEY_ISO_Enter) &&
         (event->state & gtk_accelerator_get_default_mod_mask()) == GDK_CONTROL_MASK;
}

// "key-press-event" of a row's text field. A text of several lines would take the key for itself.
gboolean field_key_press_event_callback(GtkWidget *, GdkEventKey *event, LangstrEditorRow *row) {
  if (!is_ctrl_return(event)) {
    return GDK_EVENT_PROPAGATE;
  }
  gtk_button_clicked(row->editor->state->plus_button.get());
  return GDK_EVENT_STOP;
}

// "clicked" of a row's delete button, which the emission keeps alive.
void delete_row_callback(GtkButton *, LangstrEditorRow *row) {
  VLangstrEditor *editor = row->editor;
  if (editor->state->rows.size() == 1) {
    v_message_show_error(editor->state->window_stack, "There must be at least one row.");
  } else {
    delete_row(editor, row);
  }
}

// "changed" of a row's combo.
void lang_combo_box_text_changed_callback(GtkComboBox *, LangstrEditorRow *row) {
  apply_language(row);
  g_signal_emit(row->editor, changed_signal, 0);
}

// "changed" of a row's text.
void text_changed_callback(GObject *, LangstrEditorRow *row) {
  g_signal_emit(row->editor, changed_signal, 0);
}

// "scroll-event" of a row's combo, which would choose another language for whoever scrolls the
// window with the pointer over it. The event goes on to the window.
gboolean combo_scroll_event_callback(GtkWidget *combo, GdkEvent *, void *) {
  g_signal_stop_emission_by_name(combo, "scroll-event");
  return GDK_EVENT_PROPAGATE;
}

// "focus-in-event" of the editor itself: the focus goes on to where the user can type.
gboolean focus_in_event_callback(GtkWidget *widget, GdkEvent *, void *) {
  const LangstrEditorState *state = V_LANGSTR_EDITOR(widget)->state;
  if (gtk_widget_is_focus(widget) && !state->rows.empty()) {
    focus_field(state->rows.front().get());
  }
  return GDK_EVENT_PROPAGATE;
}

// The focus is given to the editor: the first text field takes it at once. Passed on only when the
// focus has come (above), it would not be announced to a screen reader (seen with GTK 3.24.38).
void grab_focus_callback(GtkWidget *widget) {
  const LangstrEditorState *state = V_LANGSTR_EDITOR(widget)->state;
  if (state->rows.empty()) {
    GTK_WIDGET_CLASS(v_langstr_editor_parent_class)->grab_focus(widget);
  } else {
    focus_field(state->rows.front().get());
  }
}

// A key moves the focus, in or into the editor. True when a text field has it now.
gboolean focus_callback(GtkWidget *widget, GtkDirectionType direction) {
  VLangstrEditor *editor = V_LANGSTR_EDITOR(widget);
  const Focus focus = find_focus(editor->state, get_focus_widget(editor));
  const Step step = steps[static_cast<int>(focus.place)][direction];
  const LangstrEditorRow *row = find_row(editor->state, focus.row, step);
  return row != nullptr && focus_field(row);
}

// Ctrl+Tab and Ctrl+Shift+Tab walk through everything in the editor: Tab alone goes from text to
// text. From either end they lead out of the editor, as Tab would.
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
  if (!focus_neighbour(editor, backward)) {
    gtk_widget_child_focus(gtk_widget_get_toplevel(widget),
                           backward ? GTK_DIR_TAB_BACKWARD : GTK_DIR_TAB_FORWARD);
  }
  return GDK_EVENT_STOP;
}

// Of what the editor has hidden nothing comes to light.
void show_all_callback(GtkWidget *widget) { gtk_widget_show(widget); }

// "destroy", which may come more than once.
void destroy_callback(GtkWidget *widget) {
  VLangstrEditor *editor = V_LANGSTR_EDITOR(widget);
  LangstrEditorState *state = editor->state;
  g_clear_signal_handler(&state->clicked_handler, state->plus_button.get());
  drop_table(editor);
  state->plus_alignment.reset();
  state->plus_button.reset();
  for (const auto &row : state->rows) {
    detach_row(row.get());
  }
  state->rows.clear();
  GTK_WIDGET_CLASS(v_langstr_editor_parent_class)->destroy(widget);
}

void finalize_callback(GObject *object) {
  delete V_LANGSTR_EDITOR(object)->state;
  G_OBJECT_CLASS(v_langstr_editor_parent_class)->finalize(object);
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
                                VLangstrEditorMode mode, const VLangstr *initial_value,
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
  langstr.reset();
  if (editor->state->broken) {
    v_error_set(broken_message);
    return 0;
  }
  OwnedLangstr collected;
  for (const auto &row : editor->state->rows) {
    if (!collect_row(collected, row.get())) {
      return 0;
    }
  }
  langstr = std::move(collected);
  return 1;
}

OwnedText v_langstr_editor_get_focused_language(VLangstrEditor *editor) {
  const Focus focus = find_focus(editor->state, get_focus_widget(editor));
  return focus.place == FocusPlace::field ? get_shown_language(editor->state->rows[focus.row].get())
                                          : nullptr;
}

GtkWidget *v_langstr_editor_find_field(VLangstrEditor *editor, const char *language) {
  for (const auto &row : editor->state->rows) {
    if (shows_language(row.get(), language)) {
      return row->text_field.get();
    }
  }
  return nullptr;
}
