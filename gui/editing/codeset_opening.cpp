#include "gui/editing/codeset_opening.h"

#include <cstdint>
#include <utility>

#include "base/error.h"
#include "base/fs_utils.h"
#include "codeset/codeset_io.h"
#include "gui/message_dialogs.h"

namespace {

// UTF-8, in the format of the locale. seconds: since the epoch.
OwnedText format_date_and_time(std::int64_t seconds) {
  const Owned<GDateTime, g_date_time_unref> time(g_date_time_new_from_unix_local(seconds));
  return OwnedText(g_date_time_format(time.get(), "%c"));
}

// "" unless the file was changed after the draft was left behind, for instance by a colleague.
OwnedText make_warning(const VDraft *draft, const VFileInfo &file) {
  if (!file.exists || file.modification_time <= draft->left_behind_time) {
    return copy_text("");
  }
  const OwnedText time = format_date_and_time(file.modification_time);
  return OwnedText(g_strdup_printf(
      " The file was changed after that, at %s, and will be replaced if you save them.",
      time.get()));
}

// Null when no changes were left behind or the user does not want them.
OwnedCodeset restore_draft(VWindowStack *window_stack, VDraft *draft, const VFileInfo &file) {
  if (!draft->left_behind) {
    return nullptr;
  }
  const OwnedText time = format_date_and_time(draft->left_behind_time);
  const OwnedText warning = make_warning(draft, file);
  if (v_message_ask_yes_no_question_utf8_printf(
          window_stack, 1, WarningIcon::no,
          "Unsaved changes to this codeset were found, from %s.%s Restore them?", time.get(),
          warning.get()) == 0) {
    v_draft_remove(draft);
  }
  return std::move(draft->left_behind);
}

OwnedCodeset read_codeset(VWindowStack *window_stack, const char *path) {
  OwnedCodeset codeset = v_codeset_io_read_from_file(path);
  if (!codeset) {
    v_error_append_utf8_printf("Error when loading the codeset file:\n\n%s", path);
    v_message_show_error(window_stack, v_error_get());
  }
  return codeset;
}

} // namespace

OwnedCodeset v_codeset_opening_run(VWindowStack *window_stack, const char *path, VDraft *draft) {
  VFileInfo info;
  if (!v_fs_utils_get_info(path, info)) {
    v_message_show_error_utf8_printf(
        window_stack, "Something went wrong when accessing the codeset file:\n\n%s", path);
    return nullptr;
  }
  if (OwnedCodeset restored = restore_draft(window_stack, draft, info)) {
    return restored;
  }
  return info.exists ? read_codeset(window_stack, path) : v_codeset_new();
}
