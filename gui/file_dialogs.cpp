#include "gui/file_dialogs.h"

#include <map>
#include <span>
#include <string>

#include "base/fs_utils.h"
#include "gui/owned_objects.h"

namespace {

using FileTypes = std::span<const VFileType>;

inline void free_names(GSList *names) { g_slist_free_full(names, g_free); }
using OwnedNames = Owned<GSList, free_names>;

// Maps the names of a dialog's file types to the folder (UTF-8) last used with them.
std::map<std::string, std::string> remembered_folders;

FileTypes list_types(const VFileType *file_types, int count) {
  return {file_types, static_cast<std::size_t>(count)};
}

std::string make_key(FileTypes file_types) {
  return v_file_dialog_make_key(file_types.data(), static_cast<int>(file_types.size()));
}

// ---- Setting up ---------------------------------------------------------------------------------

// The chooser owns the filter.
GtkFileFilter *add_filter(GtkFileChooser *chooser, const char *name) {
  GtkFileFilter *filter = gtk_file_filter_new();
  gtk_file_filter_set_name(filter, name);
  gtk_file_chooser_add_filter(chooser, filter);
  return filter;
}

void add_patterns(GtkFileFilter *filter, VFileType file_type) {
  gtk_file_filter_add_pattern(
      filter, v_file_type_get_default_file_name_extension_wildcard_pattern(file_type));
  if (const char *alternative =
          v_file_type_get_alternative_file_name_extension_wildcard_pattern(file_type)) {
    gtk_file_filter_add_pattern(filter, alternative);
  }
}

GtkFileFilter *add_type_filter(GtkFileChooser *chooser, VFileType file_type) {
  const OwnedText name(g_strdup_printf("%s files", v_file_type_get_name(file_type)));
  GtkFileFilter *filter = add_filter(chooser, name.get());
  if (const char *media_type = v_file_type_get_media_type(file_type)) {
    gtk_file_filter_add_mime_type(filter, media_type);
  }
  add_patterns(filter, file_type);
  return filter;
}

GtkFileFilter *add_joint_filter(GtkFileChooser *chooser, const char *name, FileTypes file_types) {
  GtkFileFilter *filter = add_filter(chooser, name == nullptr ? "Matching files" : name);
  for (const VFileType file_type : file_types) {
    add_patterns(filter, file_type);
  }
  return filter;
}

// Makes the first filter the current one.
void add_filters(GtkFileChooser *chooser, const char *filter_name, FileTypes file_types) {
  GtkFileFilter *first = nullptr;
  const auto keep_first = [&first](GtkFileFilter *filter) {
    first = first == nullptr ? filter : first;
  };
  if (file_types.size() >= 2) {
    keep_first(add_joint_filter(chooser, filter_name, file_types));
  }
  for (const VFileType file_type : file_types) {
    keep_first(add_type_filter(chooser, file_type));
  }
  GtkFileFilter *all_files = add_filter(chooser, "All files");
  gtk_file_filter_add_pattern(all_files, "*");
  keep_first(all_files);
  gtk_file_chooser_set_filter(chooser, first);
}

// By default the chooser starts with the list of recently used files, which may be empty.
void start_in_documents_folder(GtkFileChooser *chooser) {
  const char *documents = g_get_user_special_dir(G_USER_DIRECTORY_DOCUMENTS);
  const bool exists = documents != nullptr && g_file_test(documents, G_FILE_TEST_IS_DIR);
  gtk_file_chooser_set_current_folder(chooser, exists ? documents : g_get_home_dir());
}

void start_in_folder(GtkFileChooser *chooser, FileTypes file_types) {
  const auto remembered = remembered_folders.find(make_key(file_types));
  if (remembered == remembered_folders.end()) {
    start_in_documents_folder(chooser);
    return;
  }
  // "" stands for the root folder.
  const std::string &folder = remembered->second;
  const OwnedText name =
      v_fs_utils_convert_utf8_to_glibfsenc(folder.empty() ? "/" : folder.c_str());
  if (name) {
    gtk_file_chooser_set_current_folder(chooser, name.get());
  }
}

void propose_name(GtkFileChooser *chooser, const char *proposed_name, FileTypes file_types) {
  const char *extension =
      file_types.empty() ? ""
                         : v_file_type_get_default_file_name_extension_with_period(file_types[0]);
  const OwnedText name(proposed_name == nullptr ? g_strdup_printf("untitled%s", extension)
                                                : g_strdup(proposed_name));
  gtk_file_chooser_set_current_name(chooser, name.get());
  gtk_file_chooser_set_do_overwrite_confirmation(chooser, TRUE);
}

// ---- Reading the choice -------------------------------------------------------------------------

OwnedNames get_chosen_names(GtkFileChooser *chooser, SelectMultiple select_multiple) {
  if (select_multiple == SelectMultiple::yes) {
    return OwnedNames(gtk_file_chooser_get_filenames(chooser));
  }
  char *name = gtk_file_chooser_get_filename(chooser);
  return OwnedNames(name == nullptr ? nullptr : g_slist_prepend(nullptr, name));
}

std::vector<OwnedText> convert_names(const GSList *names) {
  std::vector<OwnedText> paths;
  for (; names != nullptr; names = names->next) {
    OwnedText path = v_fs_utils_convert_glibfsenc_to_utf8(static_cast<const char *>(names->data));
    if (path) {
      paths.push_back(std::move(path));
    }
  }
  return paths;
}

void remember_folder_of(const char *path, FileTypes file_types) {
  const OwnedText folder = copy_text(path);
  v_fs_utils_strip_entry_name_from_path(folder.get());
  remembered_folders[make_key(file_types)] = folder.get();
}

// ---- The dialog ---------------------------------------------------------------------------------

struct ActionRow {
  GtkFileChooserAction chooser_action;
  const char *accept_label;
};

ActionRow get_row(FileDialogAction action) {
  switch (action) {
  case FileDialogAction::save:
    return {GTK_FILE_CHOOSER_ACTION_SAVE, "_Save"};
  case FileDialogAction::select_folder:
    return {GTK_FILE_CHOOSER_ACTION_SELECT_FOLDER, "_OK"};
  case FileDialogAction::open:
    break;
  }
  return {GTK_FILE_CHOOSER_ACTION_OPEN, "_Open"};
}

OwnedText get_first(std::vector<OwnedText> paths) {
  return paths.empty() ? nullptr : std::move(paths.front());
}

} // namespace

void v_file_dialog_set_up_chooser(GtkFileChooser *chooser, FileDialogAction action,
                                  SelectMultiple select_multiple, const char *proposed_name,
                                  const char *filter_name, const VFileType *file_types, int count) {
  if (action == FileDialogAction::select_folder) {
    return;
  }
  const FileTypes types = list_types(file_types, count);
  add_filters(chooser, filter_name, types);
  if (action == FileDialogAction::save) {
    propose_name(chooser, proposed_name, types);
  } else {
    gtk_file_chooser_set_select_multiple(chooser, select_multiple == SelectMultiple::yes);
  }
}

std::vector<OwnedText> v_file_dialog_take_over_choice(GtkFileChooser *chooser,
                                                      FileDialogAction action,
                                                      SelectMultiple select_multiple,
                                                      const VFileType *file_types, int count) {
  const OwnedNames names = get_chosen_names(chooser, select_multiple);
  std::vector<OwnedText> paths = convert_names(names.get());
  if (!paths.empty() && action != FileDialogAction::select_folder) {
    remember_folder_of(paths.front().get(), list_types(file_types, count));
  }
  return paths;
}

std::vector<OwnedText> run_file_dialog(VWindowStack *window_stack, FileDialogAction action,
                                       SelectMultiple select_multiple, const char *title,
                                       const char *proposed_name, const char *filter_name,
                                       const VFileType *file_types, int count) {
  GtkWindow *parent =
      window_stack == nullptr ? nullptr : v_window_stack_push_native_window(window_stack);
  const auto [chooser_action, accept_label] = get_row(action);
  OwnedObject<GtkFileChooserNative> dialog =
      take(gtk_file_chooser_native_new(title, parent, chooser_action, accept_label, "_Cancel"));
  GtkFileChooser *chooser = GTK_FILE_CHOOSER(dialog.get());
  v_file_dialog_set_up_chooser(chooser, action, select_multiple, proposed_name, filter_name,
                               file_types, count);
  if (action != FileDialogAction::select_folder) {
    start_in_folder(chooser, list_types(file_types, count));
  }
  std::vector<OwnedText> paths;
  if (gtk_native_dialog_run(GTK_NATIVE_DIALOG(dialog.get())) == GTK_RESPONSE_ACCEPT) {
    paths = v_file_dialog_take_over_choice(chooser, action, select_multiple, file_types, count);
  }
  dialog.reset();
  if (window_stack != nullptr) {
    v_window_stack_pop_window(window_stack);
  }
  return paths;
}

OwnedText v_file_dialog_get_file_path_for_reading_(VWindowStack *window_stack, const char *title,
                                                   const char *filter_name,
                                                   const VFileType *file_types, int count) {
  return get_first(run_file_dialog(window_stack, FileDialogAction::open, SelectMultiple::no, title,
                                   nullptr, filter_name, file_types, count));
}

OwnedText v_file_dialog_get_file_path_for_writing(VWindowStack *window_stack,
                                                  const char *proposed_name, VFileType file_type) {
  return get_first(run_file_dialog(window_stack, FileDialogAction::save, SelectMultiple::no,
                                   "Save As", proposed_name, nullptr, &file_type, 1));
}

OwnedText v_file_dialog_get_folder_path(VWindowStack *window_stack, const char *title) {
  return get_first(run_file_dialog(window_stack, FileDialogAction::select_folder,
                                   SelectMultiple::no, title, nullptr, nullptr, nullptr, 0));
}

std::string v_file_dialog_make_key(const VFileType *file_types, int count) {
  std::string key;
  for (int i = 0; i < count; i++) {
    key += i == 0 ? "" : "#";
    key += v_file_type_get_name(file_types[i]);
  }
  return key;
}

void v_file_dialog_clean_up() { remembered_folders.clear(); }
