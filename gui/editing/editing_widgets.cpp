#include "gui/editing/editing_widgets.h"

#include "gui/placing.h"

VLangstrEditor *v_gui_pack_langstr_editor(GtkBox *box, VWindowStack *window_stack,
                                          const VSettings *settings, LangstrEditorMode mode,
                                          const VLangstr *initial_value,
                                          const VLangstr *locked_texts,
                                          ActivatesDefault activates_default) {
  GtkWidget *editor = v_langstr_editor_new(window_stack, settings, mode, initial_value,
                                           locked_texts, activates_default);
  return packed(box, Expand::no, shown(V_LANGSTR_EDITOR(editor)));
}

VLangstrDisplay *v_gui_pack_langstr_display(GtkBox *box, int width, int height) {
  return packed(box, Expand::yes, shown(V_LANGSTR_DISPLAY(v_langstr_display_new(width, height))));
}
