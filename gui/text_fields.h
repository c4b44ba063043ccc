#pragma once
// Text fields, with the conventions of gui/widgets.h. Texts are UTF-8.

#include <gtk/gtk.h>

#include "gui/widget_options.h"

// text: null leaves the entry empty.
GtkEntry *v_gui_create_entry(const char *text, ActivatesDefault activates_default);
GtkEntry *v_gui_pack_entry(GtkBox *box, Expand expand, const char *text,
                           ActivatesDefault activates_default);
void v_gui_set_entry_text(GtkEntry *entry, const char *text);
// Borrowed from the entry until its next change.
const char *v_gui_get_entry_text(GtkEntry *entry);
// Wraps at words. Editable::no also hides the cursor.
GtkTextView *v_gui_add_text_view(GtkContainer *container, Editable editable);
// Turn off the toolkit's emoji input, and tell input methods not to offer emojis.
void v_gui_disable_emojis_in_entry(GtkEntry *entry);
void v_gui_disable_emojis_in_text_view(GtkTextView *text_view);
