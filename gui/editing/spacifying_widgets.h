#pragma once
// Creates and packs the spacifying text fields, with the conventions of gui/widgets.h: new widgets
// are shown, "pack" puts them at the start of a box, "add" into a container.

#include "gui/editing/spacifying_entry.h"
#include "gui/editing/spacifying_text_view.h"

// latin1_text: null leaves the field empty.
VSpacifyingEntry *v_gui_create_spacifying_entry(Compact compact, const char *latin1_text,
                                                ActivatesDefault activates_default);
VSpacifyingEntry *v_gui_pack_spacifying_entry(GtkBox *box, Expand expand, Compact compact,
                                              const char *latin1_text,
                                              ActivatesDefault activates_default);
// Wraps at words, and inside words that are too long.
VSpacifyingTextView *v_gui_add_spacifying_text_view(GtkContainer *container);
