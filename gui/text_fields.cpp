#include "gui/text_fields.h"

#include "gui/placing.h"

namespace {

GtkInputHints without_emojis(GtkInputHints hints) {
  return static_cast<GtkInputHints>((hints & ~GTK_INPUT_HINT_EMOJI) | GTK_INPUT_HINT_NO_EMOJI);
}

} // namespace

GtkEntry *v_gui_create_entry(const char *text, ActivatesDefault activates_default) {
  GtkEntry *entry = GTK_ENTRY(shown(gtk_entry_new()));
  v_gui_disable_emojis_in_entry(entry);
  if (text != nullptr) {
    v_gui_set_entry_text(entry, text);
  }
  gtk_entry_set_activates_default(entry, activates_default == ActivatesDefault::yes);
  return entry;
}

GtkEntry *v_gui_pack_entry(GtkBox *box, Expand expand, const char *text,
                           ActivatesDefault activates_default) {
  return packed(box, expand, v_gui_create_entry(text, activates_default));
}

void v_gui_set_entry_text(GtkEntry *entry, const char *text) { gtk_entry_set_text(entry, text); }

const char *v_gui_get_entry_text(GtkEntry *entry) { return gtk_entry_get_text(entry); }

GtkTextView *v_gui_add_text_view(GtkContainer *container, Editable editable) {
  GtkTextView *text_view = GTK_TEXT_VIEW(shown(gtk_text_view_new()));
  gtk_text_view_set_wrap_mode(text_view, GTK_WRAP_WORD);
  gtk_text_view_set_editable(text_view, editable == Editable::yes);
  gtk_text_view_set_cursor_visible(text_view, editable == Editable::yes);
  v_gui_disable_emojis_in_text_view(text_view);
  return added(container, text_view);
}

void v_gui_disable_emojis_in_entry(GtkEntry *entry) {
  g_object_set(entry, "show-emoji-icon", FALSE, nullptr);
  gtk_entry_set_input_hints(entry, without_emojis(gtk_entry_get_input_hints(entry)));
}

void v_gui_disable_emojis_in_text_view(GtkTextView *text_view) {
  gtk_text_view_set_input_hints(text_view,
                                without_emojis(gtk_text_view_get_input_hints(text_view)));
}
