#include "gui/editing/spacifying_entry.h"

#include <cstring>

#include "base/text_encoding.h"
#include "base/whitespace.h"
#include "gui/editing/latin1_input.h"
#include "gui/text_fields.h"

struct _VSpacifyingEntry {
  GtkEntry parent_instance;

  Compact compact;
  gulong insert_text_handler;
  gsize cut_length; // length in bytes of the text that the entry shows
};

G_DEFINE_TYPE(VSpacifyingEntry, v_spacifying_entry, GTK_TYPE_ENTRY)

namespace {

// Object data of an entry that cannot hold its text: the whole text (UTF-8).
constexpr char whole_text_key[] = "vantorelle_whole_text";

// Saves the whole text if the entry has truncated it: the toolkit's entries hold 65,534 bytes.
void remember_if_cut(VSpacifyingEntry *entry, const char *utf8_text) {
  const char *shown = gtk_entry_get_text(GTK_ENTRY(entry));
  const bool is_cut = std::strcmp(shown, utf8_text) != 0;
  entry->cut_length = std::strlen(shown);
  g_object_set_data_full(G_OBJECT(entry), whole_text_key,
                         is_cut ? copy_text(utf8_text).release() : nullptr, g_free);
}

// The whole text while the entry shows its unchanged beginning; else the shown text.
const char *get_whole_text(VSpacifyingEntry *entry) {
  const char *shown = gtk_entry_get_text(GTK_ENTRY(entry));
  const auto *whole = static_cast<const char *>(g_object_get_data(G_OBJECT(entry), whole_text_key));
  const bool is_unchanged =
      whole != nullptr && std::strlen(shown) == entry->cut_length && g_str_has_prefix(whole, shown);
  return is_unchanged ? whole : shown;
}

// "insert-text", before the toolkit inserts typed or pasted text. Moves the position to the end of
// the text.
void insert_text_callback(GtkEditable *editable, const char *text, int length, int *position,
                          void *) {
  v_latin1_input_repair_insertion(editable, text, length, InputLines::one,
                                  [editable, position](const char *repaired) {
                                    gtk_editable_insert_text(editable, repaired, -1, position);
                                  });
}

} // namespace

static void v_spacifying_entry_class_init(VSpacifyingEntryClass *) {}

static void v_spacifying_entry_init(VSpacifyingEntry *entry) {
  v_gui_disable_emojis_in_entry(GTK_ENTRY(entry));
}

GtkWidget *v_spacifying_entry_new(Compact compact) {
  auto *entry = V_SPACIFYING_ENTRY(g_object_new(V_TYPE_SPACIFYING_ENTRY, nullptr));
  entry->compact = compact;
  entry->insert_text_handler =
      g_signal_connect(entry, "insert-text", G_CALLBACK(insert_text_callback), nullptr);
  return GTK_WIDGET(entry);
}

void v_spacifying_entry_set_text(VSpacifyingEntry *entry, const char *latin1_text) {
  const OwnedText utf8_text = v_convert_latin1_to_utf8(latin1_text);
  const char *normalised =
      entry->compact == Compact::yes
          ? v_strip_surrounding_and_spacify_compactly_within_original_for_utf8(utf8_text.get())
          : v_strip_surrounding_and_spacify_within_original_for_utf8(utf8_text.get());
  // Text set by the program causes no beep.
  g_signal_handler_block(entry, entry->insert_text_handler);
  gtk_entry_set_text(GTK_ENTRY(entry), normalised);
  g_signal_handler_unblock(entry, entry->insert_text_handler);
  remember_if_cut(entry, normalised);
}

OwnedText v_spacifying_entry_get_text(VSpacifyingEntry *entry) {
  const OwnedText latin1_text = v_latin1_input_convert(get_whole_text(entry), InputLines::one);
  if (!latin1_text) {
    return nullptr;
  }
  return entry->compact == Compact::yes
             ? v_strip_surrounding_and_spacify_compactly_in_new_for_latin1(latin1_text.get())
             : v_strip_surrounding_and_spacify_in_new_for_latin1(latin1_text.get());
}
