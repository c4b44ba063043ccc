#pragma once
// Edits a multilingual text: one row per translation, with a text field that is spell-checked in
// the row's language, a combo box for the language, and buttons to delete the row and to add one.
// Ctrl+Return anywhere in the editor also adds one.
//
// Signals, both without arguments:
//   "changed": the user has changed a text or a language, or deleted a row.
//   "shrunk": a row was deleted, so the window may shrink.

#include <gtk/gtk.h>

#include "gui/editing/langstr_editor_mode.h"
#include "gui/widget_options.h"
#include "gui/window_stack.h"
#include "langstr/langstr.h"
#include "workspace/settings.h"

#define V_TYPE_LANGSTR_EDITOR (v_langstr_editor_get_type())
G_DECLARE_FINAL_TYPE(VLangstrEditor, v_langstr_editor, V, LANGSTR_EDITOR, GtkBox)

// The window stack and the settings must outlive the editor; the languages offered are the
// preferred ones of the settings. initial_value is copied into the rows; null gives one empty row.
// Rows whose language is among locked_texts (null: none) cannot be changed. activates_default:
// Return in a one-line field presses the window's default button.
GtkWidget *v_langstr_editor_new(VWindowStack *window_stack, const VSettings *settings,
                                LangstrEditorMode mode, const VLangstr *initial_value,
                                const VLangstr *locked_texts, ActivatesDefault activates_default);
// Returns 1 with the texts that are not empty, in row order (null when all are empty), or 0 with
// null and a message: two texts in one language, or a field or language that cannot be read.
int v_langstr_editor_get_text(VLangstrEditor *editor, OwnedLangstr &langstr);
// The same for a draft, which gets everything that is typed: texts in one language are joined with
// a slash, and a text in an unknown language has no tag.
int v_langstr_editor_get_text_for_draft(VLangstrEditor *editor, OwnedLangstr &langstr);
// The display text (UTF-8) of the language of the row whose text field has the focus; null when
// none has.
OwnedText v_langstr_editor_get_focused_language(VLangstrEditor *editor);
// The text field of the first row with that language (its display text); null when there is none.
GtkWidget *v_langstr_editor_find_field(VLangstrEditor *editor, const char *language);
