#pragma once
// A one-line text field that accepts only text that an ISO-8859-1 file can hold. Typed or pasted
// text is repaired at once, with a beep: whitespace other than spaces becomes spaces, and
// characters outside ISO-8859-1 and control characters are dropped. The program sets and gets
// ISO-8859-1.

#include <gtk/gtk.h>

#include "base/owned.h"
#include "gui/widget_options.h"

#define V_TYPE_SPACIFYING_ENTRY (v_spacifying_entry_get_type())
G_DECLARE_FINAL_TYPE(VSpacifyingEntry, v_spacifying_entry, V, SPACIFYING_ENTRY, GtkEntry)

// Floating, like every new widget. Compact::yes: setting and getting the text collapses each run of
// whitespace to one space, else each whitespace character becomes a space; both ends are stripped
// either way.
GtkWidget *v_spacifying_entry_new(Compact compact);
void v_spacifying_entry_set_text(VSpacifyingEntry *entry, const char *latin1_text);
// The normalised text (ISO-8859-1), "" for a field with only spaces; null with a message when it
// cannot be read. The field itself is unchanged. If the text that was set has more than 65,534
// bytes of UTF-8, the field shows only the beginning, but returns the whole text until it is
// changed.
OwnedText v_spacifying_entry_get_text(VSpacifyingEntry *entry);
