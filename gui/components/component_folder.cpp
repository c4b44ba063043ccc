#include "gui/components/component_folder.h"

#include <cstdio>

#include "base/error.h"
#include "base/file_utils.h"
#include "base/fs_utils.h"
#include "base/platform.h"
#include "base/streams.h"
#include "gui/message_dialogs.h"

namespace {

// The display text; null for an incompatible file.
OwnedText read_text(const VComponentFolder &folder, const char *path) {
  return folder.kind.text_callback(path, folder.kind.user_data);
}

bool can_be_read(const char *path) {
  VFileInfo info;
  if (!v_fs_utils_get_info(path, info) || !v_fs_utils_is_regular_file(info)) {
    return false;
  }
  const OwnedFile file = v_fs_utils_open_file(path, "rb");
  return file && (std::fgetc(file.get()) != EOF || std::ferror(file.get()) == 0);
}

bool check_extension(const VComponentFolder &folder, const char *path) {
  if (v_component_kind_has_extension(folder.kind, path)) {
    return true;
  }
  v_message_show_error_utf8_printf(folder.window_stack, "The file name must end with \"%s\".",
                                   v_component_kind_get_extension(folder.kind));
  return false;
}

// Creates the managed folder if it is missing. The messages intentionally name the fonts folder for
// every kind of file, because all managers of the suite share them.
bool ensure_exists(const VComponentFolder &folder) {
  const char *path = folder.path.get();
  VFileInfo info;
  bool known = v_fs_utils_get_info(path, info);
  if (known && !info.exists) {
    v_fs_utils_create_folder(path);
    known = v_fs_utils_get_info(path, info);
  }
  if (!known) {
    v_error_append("Can not access the workspace fonts folder.");
    v_message_show_error(folder.window_stack, v_error_get());
  } else if (!info.is_folder) {
    v_message_show_error(folder.window_stack,
                         "The workspace fonts folder does not exist and could not be created.");
  }
  return known && info.is_folder;
}

// True when nothing is at the destination or the user agrees to overwrite it.
bool may_write(const VComponentFolder &folder, const char *source, const char *destination) {
  VFileInfo info;
  if (!v_fs_utils_get_info(destination, info) || !info.exists) {
    return true;
  }
  const OwnedText source_text = read_text(folder, source);
  const OwnedText destination_text = read_text(folder, destination);
  return v_message_ask_yes_no_question_utf8_printf(
             folder.window_stack, 0, WarningIcon::yes, "Really overwrite \"%s\" with \"%s\"?",
             destination_text ? destination_text.get() : destination,
             source_text ? source_text.get() : source) == 1;
}

} // namespace

OwnedText v_component_folder_create_path(const VComponentFolder &folder, const char *entry_name) {
  return v_fs_utils_create_path_in_folder(folder.path.get(), entry_name);
}

std::vector<VComponentRow> v_component_folder_read(const VComponentFolder &folder) {
  std::vector<VComponentRow> rows;
  for (OwnedText &name : v_component_list_find_names(folder.path.get(), folder.kind)) {
    const OwnedText path = v_component_folder_create_path(folder, name.get());
    VFileInfo info;
    if (v_fs_utils_get_info(path.get(), info) && v_fs_utils_is_regular_file(info)) {
      rows.push_back({read_text(folder, path.get()), std::move(name)});
    }
  }
  return rows;
}

bool v_component_folder_add(const VComponentFolder &folder, const char *source_path) {
  if (!check_extension(folder, source_path) || !ensure_exists(folder)) {
    return false;
  }
  const OwnedText destination =
      v_component_folder_create_path(folder, v_fs_utils_find_entry_name_in_path(source_path));
  if (!may_write(folder, source_path, destination.get())) {
    return false;
  }
  if (!v_component_folder_copy_file(source_path, destination.get())) {
    v_message_show_error_utf8_printf(
        folder.window_stack, "An error occured when writing file.\n\n%s", destination.get());
  }
  return true;
}

// Checks the source first, because copying deletes the destination before it reads.
bool v_component_folder_copy_file(const char *source_path, const char *destination_path) {
  return can_be_read(source_path) &&
         v_stream_copy_from_file_path_to_file_path(source_path, destination_path);
}

bool v_component_folder_may_edit(const VComponentFolder &folder, const char *entry_name) {
  const OwnedText install_folder = v_platform_get_install_folder_path();
  if (!install_folder) {
    return true;
  }
  const OwnedText delivered =
      v_fs_utils_create_path_in_folder(install_folder.get(), folder.kind.folder_name, entry_name);
  const OwnedText path = v_component_folder_create_path(folder, entry_name);
  return !v_util_test_if_files_are_identical(path.get(), delivered.get()) ||
         v_message_ask_yes_no_question(
             folder.window_stack, 0, WarningIcon::yes,
             "This item was bundled with Vantorelle. You might want to clone it first, to make "
             "your own independent copy.\n\nProceed anyway?") == 1;
}
