#include "gui/editing/editing_widgets.h"

namespace {

template <typename T>
T *show(T *widget) {
  gtk_widget_show(GTK_WIDGET(widget));
  return widget;
}

template <typename T>
T *pack(GtkBox *box, Expand expand, T *widget) {
  const gboolean expands = expand == Expand::yes;
  gtk_box_pack_start(box, GTK_WIDGET(widget), expands, expands, 0);
  return widget;
}

} // namespace

VSpacifyingEntry *v_gui_create_spacifying_entry(Compact compact, const char *latin1_text,
                                                ActivatesDefault activates_default) {
  VSpacifyingEntry *entry = show(V_SPACIFYING_ENTRY(v_spacifying_entry_new(compact)));
  gtk_entry_set_activates_default(GTK_ENTRY(entry), activates_default == ActivatesDefault::yes);
  if (latin1_text != nullptr) {
    v_spacifying_entry_set_text(entry, latin1_text);
  }
  return entry;
}

VSpacifyingEntry *v_gui_pack_spacifying_entry(GtkBox *box, Expand expand, Compact compact,
                                              const char *latin1_text,
                                              ActivatesDefault activates_default) {
  return pack(box, expand, v_gui_create_spacifying_entry(compact, latin1_text, activates_default));
}

VSpacifyingTextView *v_gui_add_spacifying_text_view(GtkContainer *container) {
  VSpacifyingTextView *view = show(V_SPACIFYING_TEXT_VIEW(v_spacifying_text_view_new()));
  gtk_text_view_set_wrap_mode(GTK_TEXT_VIEW(view), GTK_WRAP_WORD_CHAR);
  gtk_container_add(container, GTK_WIDGET(view));
  return view;
}

VLangstrEditor *v_gui_pack_langstr_editor(GtkBox *box, VWindowStack *window_stack,
                                          const VSettings *settings, VLangstrEditorMode mode,
                                          const VLangstr *initial_value,
                                          const VLangstr *locked_texts,
                                          ActivatesDefault activates_default) {
  GtkWidget *editor = v_langstr_editor_new(window_stack, settings, mode, initial_value,
                                           locked_texts, activates_default);
  return pack(box, Expand::no, show(V_LANGSTR_EDITOR(editor)));
}

VLangstrDisplay *v_gui_pack_langstr_display(GtkBox *box, int width, int height) {
  return pack(box, Expand::yes, show(V_LANGSTR_DISPLAY(v_langstr_display_new(width, height))));
}
