#pragma once
// Packs the widgets for texts in several languages at the start of a box, and includes the helpers
// for the spacifying fields.

#include "gui/editing/langstr_display.h"
#include "gui/editing/langstr_editor.h"
#include "gui/editing/spacifying_widgets.h"

// Arguments as for v_langstr_editor_new; packed without expanding.
VLangstrEditor *v_gui_pack_langstr_editor(GtkBox *box, VWindowStack *window_stack,
                                          const VSettings *settings, LangstrEditorMode mode,
                                          const VLangstr *initial_value,
                                          const VLangstr *locked_texts,
                                          ActivatesDefault activates_default);
// Packed, expanding.
VLangstrDisplay *v_gui_pack_langstr_display(GtkBox *box, int width, int height);
