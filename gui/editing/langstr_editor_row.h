#pragma once
// One row of a VLangstrEditor: a text field, its language and a delete button. Spell-checks the
// text in the row's language. The table places the widgets.

#include <memory>
#include <vector>

#include <gspell/gspell.h>
#include <gtk/gtk.h>

#include "gui/editing/langstr_editor_mode.h"
#include "gui/owned_objects.h"
#include "gui/widget_options.h"
#include "langstr/langstr.h"
#include "workspace/settings.h"

typedef struct _VLangstrEditor VLangstrEditor;

// A row holds a reference to each of its widgets, so that they outlive the tables that show them.
struct LangstrEditorRow {
  VLangstrEditor *editor = nullptr; // for the editor's own handlers
  LangstrEditorMode mode = LangstrEditorMode::single_line;
  bool text_locked = false; // the row cannot be deleted either
  bool language_locked = false;
  OwnedObject<GtkScrolledWindow> scroller; // around the text field; null unless multi-line
  OwnedObject<GtkWidget> text_field;
  OwnedObject<GtkComboBoxText> language_combo;
  OwnedObject<GtkAlignment> delete_alignment; // around the delete button; null unless multi-line
  OwnedObject<GtkButton> delete_button;
  const GspellLanguage *spelling_language = nullptr; // null: the field is not checked
  bool has_own_checker = false;                      // false: shares one with other fields
};

using LangstrEditorRows = std::vector<std::unique_ptr<LangstrEditorRow>>;

// Offers the preferred languages of the settings. The row gets the text and the language of the
// translation; for null, no text and the first language that no other row has. Null when the combo
// box for the language cannot be created. The text field takes the focus.
std::unique_ptr<LangstrEditorRow>
v_langstr_editor_row_new(VLangstrEditor *editor, LangstrEditorMode mode,
                         ActivatesDefault activates_default, const VSettings *settings,
                         const LangstrEditorRows &other_rows, const VLangstr *translation);
// Disconnects all handlers that have the row as data, including the editor's. Must be called before
// the row is freed.
void v_langstr_editor_row_detach(LangstrEditorRow *row);

// The display text of the selected language (UTF-8); null when none is selected.
OwnedText v_langstr_editor_row_get_language(const LangstrEditorRow *row);
bool v_langstr_editor_row_has_language(const LangstrEditorRow *row, const char *language);
// A codeset gets only valid texts. A draft gets everything that is typed: texts in one language are
// joined with a slash, and a text in an unknown language has no tag.
enum class TextUse { codeset, draft };

// Adds the row's translation unless its text is empty. False with a message when the text or the
// language cannot be read or, for a codeset, when collected already has a text in that language.
bool v_langstr_editor_row_add_translation(const LangstrEditorRow *row, OwnedLangstr &collected,
                                          TextUse use);
// The object that emits "changed" when the text changes.
gpointer v_langstr_editor_row_get_text_object(const LangstrEditorRow *row);

// True when the text field has the focus afterwards: a locked one does not take it.
bool v_langstr_editor_row_grab_focus(const LangstrEditorRow *row);
// row_count: that of the editor. The only row cannot be deleted.
void v_langstr_editor_row_update_sensitivity(const LangstrEditorRow *row, std::size_t row_count);

// A button of the editor, labelled with a symbol. description: for screen readers.
GtkButton *v_langstr_editor_row_create_button(const char *sign, const char *description);
