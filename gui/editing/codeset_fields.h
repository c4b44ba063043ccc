#pragma once
// The fields of a codeset's own values in the editing window: its name, author and version.

#include "codeset/codeset.h"
#include "gui/editing/editing_widgets.h"

// Owned by the box.
struct VCodesetFields {
  VLangstrEditor *name_editor = nullptr;
  VLangstrEditor *author_editor = nullptr;
  VSpacifyingEntry *version_entry = nullptr;
};

// Packs the fields below each other, with the codeset's values. The window stack and the settings
// must outlive them.
VCodesetFields v_codeset_fields_pack(GtkBox *box, VWindowStack *window_stack,
                                     const VSettings *settings, const VCodeset *codeset);
// Reads the fields into the codeset. Stops at the first invalid one: false with a message, and the
// codeset keeps the values read so far.
bool v_codeset_fields_read(const VCodesetFields *fields, VCodeset *codeset);
// Reads everything that is typed, for a draft (see v_langstr_editor_get_text_for_draft); without a
// name the codeset has none. The codeset keeps its value for a field that cannot be read.
void v_codeset_fields_read_all(const VCodesetFields *fields, VCodeset *codeset);
