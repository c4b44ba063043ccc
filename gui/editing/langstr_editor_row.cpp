#include "langstr_editor_row.h"

#include <algorithm>
#include <cstring>

#include "base/error.h"
#include "gui/accessibility.h"
#include "gui/editing/spacifying_widgets.h"
#include "gui/editing/spell_checker_cache.h"
#include "gui/lists.h"
#include "gui/screen_area.h"
#include "gui/widgets.h"
#include "langstr/spelling_dictionaries.h"
#include "langstr/supported_languages.h"

namespace {

// Enough for every supported language. An unsupported tag from a file may be longer.
constexpr int longest_language_chars = 40;
// Width of a one-line field in characters, less on screens that are too narrow for it beside a
// language and the buttons.
constexpr int text_characters = 68;
constexpr int characters_beside_text = 28;
constexpr int pixels_beside_text = 240;

// ---- The two kinds of text field ----------------------------------------------------------------

struct FieldKind {
  void (*set_text)(GtkWidget *field, const char *latin1_text);
  OwnedText (*get_text)(GtkWidget *field);
  void (*set_checker)(GtkWidget *field, GspellChecker *checker);
  void (*set_inline_checking)(GtkWidget *field, bool is_on);
  // The object that emits "changed" for the text.
  gpointer (*get_text_object)(GtkWidget *field);
};

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

const FieldKind &kind_of(const LangstrEditorRow *row) {
  return row->mode == LangstrEditorMode::multi_line ? text_view_kind : entry_kind;
}

// ---- Spelling -----------------------------------------------------------------------------------

// The gspell language for the tag; null when no dictionary for it is installed.
const GspellLanguage *find_spelling_language(const char *tag) {
  const char *dictionary = v_spellcheck_get_dict_name_for_langtag(tag);
  return dictionary == nullptr ? nullptr : gspell_language_lookup(dictionary);
}

// Spell-checks the row in the language; null turns checking off. The checker is set first, so that
// gspell does not load the dictionary of the default language.
void set_spelling_language(LangstrEditorRow *row, const GspellLanguage *language) {
  kind_of(row).set_checker(row->text_field.get(), v_spell_checker_cache_get(language));
  kind_of(row).set_inline_checking(row->text_field.get(), language != nullptr);
  row->spelling_language = language;
  row->has_own_checker = false;
}

// "populate-popup" of the text field, before gspell fills its context menu. Choosing a language or
// ignoring a word there affects only this field, so the row gets a checker of its own.
void populate_popup_callback(GtkWidget *field, GtkWidget *, LangstrEditorRow *row) {
  if (row->spelling_language != nullptr && !row->has_own_checker) {
    const OwnedObject<GspellChecker> checker = take(gspell_checker_new(row->spelling_language));
    kind_of(row).set_checker(field, checker.get());
    row->has_own_checker = true;
  }
}

// ---- The language -------------------------------------------------------------------------------

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

// The display texts of the preferred languages in the settings, in their order; never empty.
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

// The first language that no row has; else the first one.
const char *find_unused_language(const LangstrEditorRows &rows,
                                 const std::vector<OwnedText> &languages) {
  const auto is_unused = [&rows](const OwnedText &language) {
    return std::none_of(rows.begin(), rows.end(), [&language](const auto &row) {
      return v_langstr_editor_row_has_language(row.get(), language.get());
    });
  };
  const auto found = std::find_if(languages.begin(), languages.end(), is_unused);
  return (found == languages.end() ? languages.front() : *found).get();
}

void select_language(GtkComboBoxText *combo, const std::vector<OwnedText> &languages,
                     const char *wanted) {
  const auto found =
      std::find_if(languages.begin(), languages.end(), [wanted](const OwnedText &language) {
        return std::strcmp(language.get(), wanted) == 0;
      });
  if (found == languages.end()) {
    append_and_select(combo, wanted);
  } else {
    gtk_combo_box_set_active(GTK_COMBO_BOX(combo), static_cast<int>(found - languages.begin()));
  }
}

// The tag of the selected language, empty when none is selected; null, with a message, for a
// language that is not supported.
OwnedText get_selected_langtag(const LangstrEditorRow *row) {
  const OwnedText language = v_langstr_editor_row_get_language(row);
  return language ? v_supported_languages_get_tag_from_language_string(language.get())
                  : copy_text("");
}

// Sets the spell checker and the accessible name for the selected language. The text field takes
// the focus.
void apply_language(LangstrEditorRow *row) {
  GtkWidget *field = row->text_field.get();
  const OwnedText tag = get_selected_langtag(row);
  set_spelling_language(row, tag ? find_spelling_language(tag.get()) : nullptr);
  if (const OwnedText language = v_langstr_editor_row_get_language(row)) {
    v_gui_set_accessible_name(field, language.get());
  }
  v_gui_grab_focus_without_selecting(field);
}

// "changed" of the combo box, connected before any handler of the editor.
void lang_combo_box_text_changed_callback(GtkComboBox *, LangstrEditorRow *row) {
  apply_language(row);
}

// "scroll-event" of the combo box, which would select another language when the user scrolls the
// window with the pointer over it. The window gets the event instead.
gboolean combo_scroll_event_callback(GtkWidget *combo, GdkEvent *, void *) {
  g_signal_stop_emission_by_name(combo, "scroll-event");
  return GDK_EVENT_PROPAGATE;
}

// ---- Building -----------------------------------------------------------------------------------

void add_delete_button(LangstrEditorRow *row) {
  row->delete_button = sink(v_langstr_editor_row_create_button(" - ", "Delete this translation"));
  if (row->mode == LangstrEditorMode::multi_line) {
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

void add_entry(LangstrEditorRow *row, ActivatesDefault activates_default) {
  VSpacifyingEntry *entry = v_gui_create_spacifying_entry(Compact::yes, nullptr, activates_default);
  row->text_field = sink(GTK_WIDGET(entry));
  const int room =
      v_screen_area_count_characters(GTK_WIDGET(entry), characters_beside_text, pixels_beside_text);
  gtk_entry_set_width_chars(GTK_ENTRY(entry), std::min(text_characters, room));
}

void add_text_field(LangstrEditorRow *row, ActivatesDefault activates_default) {
  if (row->mode == LangstrEditorMode::multi_line) {
    add_text_view(row);
  } else {
    add_entry(row, activates_default);
  }
  g_signal_connect(row->text_field.get(), "populate-popup", G_CALLBACK(populate_popup_callback),
                   row);
}

bool add_language_combo(LangstrEditorRow *row, const VSettings *settings,
                        const LangstrEditorRows &other_rows, const VLangstr *translation) {
  row->language_combo = sink(v_gui_create_combo_box_text());
  GtkComboBoxText *combo = row->language_combo.get();
  if (combo == nullptr) {
    return false;
  }
  v_gui_set_accessible_description(GTK_WIDGET(combo), "Language");
  g_signal_connect(combo, "scroll-event", G_CALLBACK(combo_scroll_event_callback), nullptr);
  const std::vector<OwnedText> languages = format_languages(settings);
  for (const OwnedText &language : languages) {
    gtk_combo_box_text_append_text(combo, language.get());
  }
  if (translation == nullptr) {
    select_language(combo, languages, find_unused_language(other_rows, languages));
  } else {
    const OwnedText own = v_supported_languages_format_language_string(translation->lang.get());
    select_language(combo, languages, own.get());
  }
  apply_language(row);
  g_signal_connect(combo, "changed", G_CALLBACK(lang_combo_box_text_changed_callback), row);
  return true;
}

} // namespace

std::unique_ptr<LangstrEditorRow>
v_langstr_editor_row_new(VLangstrEditor *editor, LangstrEditorMode mode,
                         ActivatesDefault activates_default, const VSettings *settings,
                         const LangstrEditorRows &other_rows, const VLangstr *translation) {
  auto row = std::make_unique<LangstrEditorRow>();
  row->editor = editor;
  row->mode = mode;
  add_delete_button(row.get());
  add_text_field(row.get(), activates_default);
  if (!add_language_combo(row.get(), settings, other_rows, translation)) {
    v_langstr_editor_row_detach(row.get());
    return nullptr;
  }
  if (translation != nullptr) {
    kind_of(row.get()).set_text(row->text_field.get(), translation->text.get());
  }
  return row;
}

void v_langstr_editor_row_detach(LangstrEditorRow *row) {
  g_signal_handlers_disconnect_by_data(row->delete_button.get(), row);
  if (row->language_combo) {
    g_signal_handlers_disconnect_by_data(row->language_combo.get(), row);
  }
  g_signal_handlers_disconnect_by_data(row->text_field.get(), row);
  g_signal_handlers_disconnect_by_data(v_langstr_editor_row_get_text_object(row), row);
  // Stop checking before the text view is destroyed: otherwise gspell marks words in a partly
  // destroyed buffer, which crashes the program (seen with gspell 1.12 and GTK 3.24.38).
  kind_of(row).set_inline_checking(row->text_field.get(), false);
}

OwnedText v_langstr_editor_row_get_language(const LangstrEditorRow *row) {
  return OwnedText(gtk_combo_box_text_get_active_text(row->language_combo.get()));
}

bool v_langstr_editor_row_has_language(const LangstrEditorRow *row, const char *language) {
  return g_strcmp0(v_langstr_editor_row_get_language(row).get(), language) == 0;
}

bool v_langstr_editor_row_add_translation(const LangstrEditorRow *row, OwnedLangstr &collected,
                                          TextUse use) {
  OwnedText text = kind_of(row).get_text(row->text_field.get());
  if (!text) {
    v_error_set_unknown();
    return false;
  }
  if (*text == '\0') {
    return true;
  }
  OwnedText tag = get_selected_langtag(row);
  if (!tag && use == TextUse::codeset) {
    return false;
  }
  if (!tag) {
    tag = copy_text("");
  }
  if (const char *other = v_langstr_get_string(collected.get(), tag.get(), false)) {
    if (use == TextUse::codeset) {
      v_error_set_utf8_printf(
          "Each language may only appear once. Language \"%s\" appears several times.", tag.get());
      return false;
    }
    text.reset(g_strdup_printf("%s / %s", other, text.get()));
  }
  v_langstr_set_translation(collected, tag.get(), text.get());
  return true;
}

gpointer v_langstr_editor_row_get_text_object(const LangstrEditorRow *row) {
  return kind_of(row).get_text_object(row->text_field.get());
}

bool v_langstr_editor_row_grab_focus(const LangstrEditorRow *row) {
  gtk_widget_grab_focus(row->text_field.get());
  return gtk_widget_is_focus(row->text_field.get());
}

void v_langstr_editor_row_update_sensitivity(const LangstrEditorRow *row, std::size_t row_count) {
  gtk_widget_set_sensitive(row->text_field.get(), !row->text_locked);
  gtk_widget_set_sensitive(GTK_WIDGET(row->language_combo.get()), !row->language_locked);
  gtk_widget_set_sensitive(GTK_WIDGET(row->delete_button.get()),
                           !row->text_locked && row_count > 1);
}

GtkButton *v_langstr_editor_row_create_button(const char *sign, const char *description) {
  GtkButton *button = v_gui_create_button(sign);
  v_gui_set_accessible_description(GTK_WIDGET(button), description);
  return button;
}
