#include "app/codesets_manager.h"

#include "app/user_session.h"
#include "codeset/codeset_io.h"
#include "gui/components/main_window.h"
#include "workspace/display_text.h"

void run(int, char **) {
  const OwnedWindowStack window_stack = v_window_stack_new();
  OwnedWorkspace workspace;
  if (v_user_session_start(window_stack.get(), workspace)) {
    RunContext context = {window_stack.get(), workspace.get()};
    run_main_window(&context);
    v_user_session_end(std::move(workspace));
  }
}

void run_main_window(RunContext *context) {
  v_components_gui_main_window_run(context->window_stack, context->workspace,
                                   "Vantorelle Remark Codesets Manager " VANTORELLE_VERSION,
                                   "codesets", VFileType::remark_codeset, OfferBundled::yes,
                                   text_callback, edit_callback, nullptr, context);
}

OwnedText text_callback(const char *file_path, void *run_context) {
  const OwnedCodeset codeset = v_codeset_io_read_from_file(file_path);
  if (!codeset) {
    return nullptr;
  }
  const auto *context = static_cast<const RunContext *>(run_context);
  return v_util_get_codeset_string(context->workspace->settings.get(), codeset.get());
}

int edit_callback(const char *file_path, void *run_context) {
  return run_editing_window(static_cast<const RunContext *>(run_context), file_path);
}
