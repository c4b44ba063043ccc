#pragma once
// A one-line text field that accepts only text that an ISO-8859-1 file can hold. Typed or pasted
// text is repaired at once, with a beep: unusual white space becomes a plain space, characters
// outside ISO-8859-1 and control characters are dropped. The program sets and reads ISO-8859-1.

#include <gtk/gtk.h>

#include "base/owned.h"
#include "gui/widget_options.h"

#define V_TYPE_SPACIFYING_ENTRY (v_spacifying_entry_get_type())
G_DECLARE_FINAL_TYPE(VSpacifyingEntry, v_spacifying_entry, V, SPACIFYING_ENTRY, GtkEntry)

// Floating, like every new widget. Compact::yes: the text is set and read with each run of white
// space as one space, else white space is kept one for one; both ends are stripped either way.
GtkWidget *v_spacifying_entry_new(Compact compact);
void v_spacifying_entry_set_text(VSpacifyingEntry *entry, const char *latin1_text);
// The normalised text (ISO-8859-1), "" for a field of only spaces; null, with a message, when it
// cannot be read. The field itself is unchanged. Of a text of more than 65,534 bytes of UTF-8 the
// field shows only the beginning, but until it is changed the whole text is returned.
OwnedText v_spacifying_entry_get_text(VSpacifyingEntry *entry);
