#include "gui/editing/spacifying_widgets.h"

#include "gui/placing.h"

VSpacifyingEntry *v_gui_create_spacifying_entry(Compact compact, const char *latin1_text,
                                                ActivatesDefault activates_default) {
  VSpacifyingEntry *entry = shown(V_SPACIFYING_ENTRY(v_spacifying_entry_new(compact)));
  gtk_entry_set_activates_default(GTK_ENTRY(entry), activates_default == ActivatesDefault::yes);
  if (latin1_text != nullptr) {
    v_spacifying_entry_set_text(entry, latin1_text);
  }
  return entry;
}

VSpacifyingEntry *v_gui_pack_spacifying_entry(GtkBox *box, Expand expand, Compact compact,
                                              const char *latin1_text,
                                              ActivatesDefault activates_default) {
  return packed(box, expand,
                v_gui_create_spacifying_entry(compact, latin1_text, activates_default));
}

VSpacifyingTextView *v_gui_add_spacifying_text_view(GtkContainer *container) {
  VSpacifyingTextView *view = shown(V_SPACIFYING_TEXT_VIEW(v_spacifying_text_view_new()));
  gtk_text_view_set_wrap_mode(GTK_TEXT_VIEW(view), GTK_WRAP_WORD_CHAR);
  return added(container, view);
}
