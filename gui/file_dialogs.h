#pragma once
// The platform's file chooser, run modally on the window stack (null: without one), with filters
// made from file types. The folder last used is remembered for each combination of file types until
// v_file_dialog_clean_up; without one, opening and saving start in the user's documents folder,
// else in the home folder. Texts and paths are UTF-8; a path that cannot be converted to UTF-8
// counts as not chosen.

#include <string>
#include <vector>

#include <gtk/gtk.h>

#include "base/file_types.h"
#include "base/owned.h"
#include "gui/window_stack.h"

enum class FileDialogAction { open, save, select_folder };
enum class SelectMultiple { no, yes };

// Each returns the chosen path, null when the dialog was cancelled.
//
// filter_name: the name of the filter for all types together, used when there are two or more; null
// gives "Matching files".
OwnedText v_file_dialog_get_file_path_for_reading_(VWindowStack *window_stack, const char *title,
                                                   const char *filter_name,
                                                   const VFileType *file_types, int count);
// The same, with the types as arguments.
template <typename... FileTypes>
OwnedText v_file_dialog_get_file_path_for_reading(VWindowStack *window_stack, const char *title,
                                                  const char *filter_name,
                                                  FileTypes... file_types) {
  const VFileType array[] = {file_types...};
  return v_file_dialog_get_file_path_for_reading_(window_stack, title, filter_name, array,
                                                  sizeof...(file_types));
}
// proposed_name: a file name without folders; null proposes "untitled" with the type's extension.
// The chooser itself asks before a file is overwritten.
OwnedText v_file_dialog_get_file_path_for_writing(VWindowStack *window_stack,
                                                  const char *proposed_name, VFileType file_type);
OwnedText v_file_dialog_get_folder_path(VWindowStack *window_stack, const char *title);

// Runs the dialog for the three functions above. Returns the chosen paths in the chooser's order,
// more than one only with SelectMultiple::yes; empty when cancelled. Arguments that do not apply to
// the action are ignored.
std::vector<OwnedText> run_file_dialog(VWindowStack *window_stack, FileDialogAction action,
                                       SelectMultiple select_multiple, const char *title,
                                       const char *proposed_name, const char *filter_name,
                                       const VFileType *file_types, int count);

// Its two parts that do not need a running dialog: the first sets up a new chooser for the action,
// the second reads an accepted one and remembers its folder.
void v_file_dialog_set_up_chooser(GtkFileChooser *chooser, FileDialogAction action,
                                  SelectMultiple select_multiple, const char *proposed_name,
                                  const char *filter_name, const VFileType *file_types, int count);
std::vector<OwnedText> v_file_dialog_take_over_choice(GtkFileChooser *chooser,
                                                      FileDialogAction action,
                                                      SelectMultiple select_multiple,
                                                      const VFileType *file_types, int count);

// The key under which the folder of a dialog with these types is remembered: their names in the
// given order, joined by "#"; empty without types.
std::string v_file_dialog_make_key(const VFileType *file_types, int count);
// Forgets the remembered folders.
void v_file_dialog_clean_up();
