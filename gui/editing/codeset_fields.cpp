#include "gui/editing/codeset_fields.h"

#include <utility>

#include "base/error.h"
#include "gui/accessibility.h"
#include "gui/widgets.h"

namespace {

GtkBox *pack_frame(GtkBox *box, const char *label, Required required) {
  return v_gui_pack_vbox_in_frame_with_input_field_label(box, Expand::no, label, required,
                                                         Spacing::standard);
}

VLangstrEditor *pack_langstr(GtkBox *box, VWindowStack *window_stack, const VSettings *settings,
                             const char *label, Required required, const VLangstr *value) {
  VLangstrEditor *editor = v_gui_pack_langstr_editor(pack_frame(box, label, required), window_stack,
                                                     settings, LangstrEditorMode::single_line,
                                                     value, nullptr, ActivatesDefault::no);
  v_gui_set_accessible_name(GTK_WIDGET(editor), label);
  return editor;
}

VSpacifyingEntry *pack_version(GtkBox *box, const char *version) {
  VSpacifyingEntry *entry =
      v_gui_pack_spacifying_entry(pack_frame(box, "Version", Required::no), Expand::no,
                                  Compact::yes, version, ActivatesDefault::no);
  v_gui_set_accessible_name(GTK_WIDGET(entry), "Version");
  return entry;
}

using LangstrReader = int (*)(VLangstrEditor *editor, OwnedLangstr &langstr);

// Leaves the value unchanged when the editor's text cannot be used.
bool read_langstr(VLangstrEditor *editor, OwnedLangstr &value,
                  LangstrReader read = v_langstr_editor_get_text) {
  OwnedLangstr text;
  if (read(editor, text) == 0) {
    return false;
  }
  value = std::move(text);
  return true;
}

bool read_name(const VCodesetFields *fields, VCodeset *codeset) {
  if (!read_langstr(fields->name_editor, codeset->name)) {
    return false;
  }
  if (!codeset->name) {
    v_error_set("The codeset must have a name.");
    return false;
  }
  return true;
}

bool read_author(const VCodesetFields *fields, VCodeset *codeset) {
  return read_langstr(fields->author_editor, codeset->author);
}

bool read_version(const VCodesetFields *fields, VCodeset *codeset) {
  OwnedText version = v_spacifying_entry_get_text(fields->version_entry);
  if (!version) {
    v_error_set_unknown();
    return false;
  }
  codeset->version = *version == '\0' ? nullptr : std::move(version);
  return true;
}

} // namespace

VCodesetFields v_codeset_fields_pack(GtkBox *box, VWindowStack *window_stack,
                                     const VSettings *settings, const VCodeset *codeset) {
  VCodesetFields fields;
  fields.name_editor =
      pack_langstr(box, window_stack, settings, "Codeset name", Required::yes, codeset->name.get());
  fields.author_editor =
      pack_langstr(box, window_stack, settings, "Author", Required::no, codeset->author.get());
  fields.version_entry = pack_version(box, codeset->version.get());
  return fields;
}

bool v_codeset_fields_read(const VCodesetFields *fields, VCodeset *codeset) {
  return read_name(fields, codeset) && read_author(fields, codeset) &&
         read_version(fields, codeset);
}

void v_codeset_fields_read_all(const VCodesetFields *fields, VCodeset *codeset) {
  read_langstr(fields->name_editor, codeset->name, v_langstr_editor_get_text_for_draft);
  read_langstr(fields->author_editor, codeset->author, v_langstr_editor_get_text_for_draft);
  read_version(fields, codeset);
}
