#include "gui/file_dialogs.h"

#include <filesystem>
#include <functional>
#include <string>

#include <gtest/gtest.h>

#include "gui/owned_objects.h"
#include "support/files.h"
#include "support/gui/file_choosers.h"
#include "support/gui_driver.h"

namespace {

using Types = std::vector<VFileType>;

GtkFileChooserAction get_chooser_action(FileDialogAction action) {
  switch (action) {
  case FileDialogAction::save:
    return GTK_FILE_CHOOSER_ACTION_SAVE;
  case FileDialogAction::select_folder:
    return GTK_FILE_CHOOSER_ACTION_SELECT_FOLDER;
  default:
    return GTK_FILE_CHOOSER_ACTION_OPEN;
  }
}

OwnedObject<GtkFileChooserNative> set_up(FileDialogAction action, const Types &types,
                                         const char *proposed_name = nullptr,
                                         const char *filter_name = nullptr,
                                         SelectMultiple select_multiple = SelectMultiple::no) {
  OwnedObject<GtkFileChooserNative> dialog = take(
      gtk_file_chooser_native_new("Title", nullptr, get_chooser_action(action), nullptr, nullptr));
  v_file_dialog_set_up_chooser(GTK_FILE_CHOOSER(dialog.get()), action, select_multiple,
                               proposed_name, filter_name, types.data(),
                               static_cast<int>(types.size()));
  return dialog;
}

std::vector<GtkFileFilter *> list_filters(GtkFileChooser *chooser) {
  std::vector<GtkFileFilter *> filters;
  GSList *list = gtk_file_chooser_list_filters(chooser);
  for (GSList *item = list; item != nullptr; item = item->next) {
    filters.push_back(GTK_FILE_FILTER(item->data));
  }
  g_slist_free(list);
  return filters;
}

std::vector<std::string> list_filter_names(GtkFileChooser *chooser) {
  std::vector<std::string> names;
  for (GtkFileFilter *filter : list_filters(chooser)) {
    names.emplace_back(gtk_file_filter_get_name(filter));
  }
  return names;
}

bool matches(GtkFileFilter *filter, const char *name, const char *media_type = "x-test/none") {
  GtkFileFilterInfo info = {};
  info.contains =
      static_cast<GtkFileFilterFlags>(GTK_FILE_FILTER_DISPLAY_NAME | GTK_FILE_FILTER_MIME_TYPE);
  info.display_name = name;
  info.mime_type = media_type;
  return gtk_file_filter_filter(filter, &info) != FALSE;
}

class FileDialogs : public testing::Test {
protected:
  ~FileDialogs() override { v_file_dialog_clean_up(); }

  TemporaryFolder folder;
};

struct FilterRow {
  Types types;
  const char *filter_name;
  std::vector<std::string> names; // the first is current
};

TEST_F(FileDialogs, OfferFiltersForTheirTypes) {
  const FilterRow rows[] = {
      {{VFileType::remark_codeset}, nullptr, {"Remark codeset files", "All files"}},
      {{VFileType::remark_codeset}, "Unused", {"Remark codeset files", "All files"}},
      {{VFileType::jpeg, VFileType::tiff},
       nullptr,
       {"Matching files", "JPEG files", "TIFF files", "All files"}},
      {{VFileType::tiff, VFileType::jpeg, VFileType::png},
       "Images & photos",
       {"Images & photos", "TIFF files", "JPEG files", "PNG files", "All files"}},
      {{}, nullptr, {"All files"}},
      {{}, "Unused", {"All files"}},
      {{static_cast<VFileType>(99)}, nullptr, {"Unknown files", "All files"}},
  };
  for (const FilterRow &row : rows) {
    for (const FileDialogAction action : {FileDialogAction::open, FileDialogAction::save}) {
      const auto dialog = set_up(action, row.types, nullptr, row.filter_name);
      GtkFileChooser *chooser = GTK_FILE_CHOOSER(dialog.get());
      EXPECT_EQ(list_filter_names(chooser), row.names);
      EXPECT_EQ(gtk_file_filter_get_name(gtk_file_chooser_get_filter(chooser)), row.names[0]);
    }
  }
}

TEST_F(FileDialogs, FiltersMatchPatternsAndMediaTypes) {
  const auto dialog = set_up(FileDialogAction::open, {VFileType::jpeg, VFileType::tiff});
  const std::vector<GtkFileFilter *> filters = list_filters(GTK_FILE_CHOOSER(dialog.get()));
  ASSERT_EQ(filters.size(), 4u);
  struct Row {
    const char *name;
    const char *media_type;
    std::vector<bool> matched; // by each filter
  };
  const Row rows[] = {
      {"a.jpg", "x-test/none", {true, true, false, true}},
      {"a.jpeg", "x-test/none", {true, true, false, true}},
      {"a.tif", "x-test/none", {true, false, true, true}},
      {"a.tiff", "x-test/none", {true, false, true, true}},
      {"a", "image/jpeg", {false, true, false, true}},
      {"a", "image/tiff", {false, false, true, true}},
      {"a.png", "image/png", {false, false, false, true}},
      {"jpg", "x-test/none", {false, false, false, true}},
  };
  for (const Row &row : rows) {
    for (std::size_t i = 0; i < filters.size(); ++i) {
      EXPECT_EQ(matches(filters[i], row.name, row.media_type), row.matched[i])
          << row.name << " " << row.media_type << " " << i;
    }
  }
}

TEST_F(FileDialogs, ACodesetIsRecognisedOnlyByItsExtension) {
  const auto dialog = set_up(FileDialogAction::open, {VFileType::remark_codeset});
  GtkFileFilter *filter = list_filters(GTK_FILE_CHOOSER(dialog.get()))[0];
  EXPECT_TRUE(matches(filter, "paintings.codeset"));
  EXPECT_FALSE(matches(filter, "paintings.codeset.txt"));
  EXPECT_EQ(gtk_file_filter_get_needed(filter), GTK_FILE_FILTER_DISPLAY_NAME);
}

TEST_F(FileDialogs, AFolderDialogHasNoFilters) {
  const auto dialog = set_up(FileDialogAction::select_folder, {VFileType::png}, "name");
  EXPECT_TRUE(list_filter_names(GTK_FILE_CHOOSER(dialog.get())).empty());
}

TEST_F(FileDialogs, ASaveDialogProposesAName) {
  struct Row {
    const char *proposed_name;
    Types types;
    const char *name;
  };
  const Row rows[] = {
      {nullptr, {VFileType::remark_codeset}, "untitled.codeset"},
      {nullptr, {VFileType::jpeg, VFileType::png}, "untitled.jpg"},
      {nullptr, {static_cast<VFileType>(99)}, "untitled.unknown"},
      {nullptr, {}, "untitled"},
      {"Målning 100 %s & <b>.codeset", {VFileType::remark_codeset}, "Målning 100 %s & <b>.codeset"},
  };
  for (const Row &row : rows) {
    const auto dialog = set_up(FileDialogAction::save, row.types, row.proposed_name);
    GtkFileChooser *chooser = GTK_FILE_CHOOSER(dialog.get());
    const OwnedText name(gtk_file_chooser_get_current_name(chooser));
    EXPECT_STREQ(name.get(), row.name);
    EXPECT_TRUE(gtk_file_chooser_get_do_overwrite_confirmation(chooser));
    EXPECT_FALSE(gtk_file_chooser_get_select_multiple(chooser));
  }
}

TEST_F(FileDialogs, OnlyAnOpenDialogSelectsMultiple) {
  const auto selects_multiple = [](FileDialogAction action, SelectMultiple select_multiple) {
    const auto dialog = set_up(action, {VFileType::png}, nullptr, nullptr, select_multiple);
    return gtk_file_chooser_get_select_multiple(GTK_FILE_CHOOSER(dialog.get())) != FALSE;
  };
  EXPECT_TRUE(selects_multiple(FileDialogAction::open, SelectMultiple::yes));
  EXPECT_FALSE(selects_multiple(FileDialogAction::open, SelectMultiple::no));
  EXPECT_FALSE(selects_multiple(FileDialogAction::save, SelectMultiple::yes));
}

// ---- Through the dialog itself ------------------------------------------------------------------

GtkFileChooser *as_chooser(GtkDialog *dialog) {
  EXPECT_TRUE(GTK_IS_FILE_CHOOSER(dialog));
  return GTK_FILE_CHOOSER(dialog);
}

std::string get_button_label(GtkDialog *dialog, int response) {
  return gtk_button_get_label(GTK_BUTTON(gtk_dialog_get_widget_for_response(dialog, response)));
}

// Presses the accept button only once: the chooser examines the file for each press.
void accept(GtkDialog *dialog) {
  gtk_dialog_response(dialog, GTK_RESPONSE_ACCEPT);
  EXPECT_TRUE(wait_until("the end of the chooser",
                         [&] { return gtk_widget_get_mapped(GTK_WIDGET(dialog)) == FALSE; }));
  if (gtk_widget_get_mapped(GTK_WIDGET(dialog))) {
    gtk_dialog_response(dialog, GTK_RESPONSE_CANCEL);
  }
}

std::string get_current_folder(GtkFileChooser *chooser) {
  const OwnedText name(gtk_file_chooser_get_current_folder(chooser));
  return name ? name.get() : "";
}

std::vector<std::string> list_chosen(GtkFileChooser *chooser) {
  std::vector<std::string> paths;
  GSList *names = gtk_file_chooser_get_filenames(chooser);
  for (GSList *item = names; item != nullptr; item = item->next) {
    paths.emplace_back(static_cast<const char *>(item->data));
  }
  g_slist_free_full(names, g_free);
  return paths;
}

void enter_folder(GtkFileChooser *chooser, const std::string &path) {
  EXPECT_TRUE(wait_until("a loaded chooser", chooser_to_be_loaded()));
  gtk_file_chooser_set_current_folder(chooser, path.c_str());
  EXPECT_TRUE(
      wait_until("a chooser in " + path, [&] { return get_current_folder(chooser) == path; }));
  EXPECT_TRUE(wait_until("a loaded chooser", chooser_to_be_loaded()));
}

// Chooses a file or folder as a click on it would, then accepts.
void choose(GtkDialog *dialog, const std::string &path) {
  enter_folder(as_chooser(dialog), std::filesystem::path(path).parent_path());
  gtk_file_chooser_select_filename(as_chooser(dialog), path.c_str());
  EXPECT_TRUE(wait_until("the choice of " + path,
                         [&] { return list_chosen(as_chooser(dialog)) == std::vector{path}; }));
  accept(dialog);
}

// Chooses all files in the folder once it shows `count` of them, then accepts.
void choose_all(GtkDialog *dialog, const std::string &path, std::size_t count) {
  enter_folder(as_chooser(dialog), path);
  EXPECT_TRUE(wait_until("the choice of all files in " + path, [&] {
    gtk_file_chooser_select_all(as_chooser(dialog));
    return list_chosen(as_chooser(dialog)).size() == count;
  }));
  accept(dialog);
}

// Types the name in a folder, as into the name field, then accepts.
void save_as(GtkDialog *dialog, const std::string &folder, const char *name) {
  GtkFileChooser *chooser = as_chooser(dialog);
  enter_folder(chooser, folder);
  gtk_file_chooser_set_current_name(chooser, name);
  const std::string path = std::filesystem::path(folder) / name;
  EXPECT_TRUE(wait_until("the choice of " + path,
                         [&] { return list_chosen(chooser) == std::vector{path}; }));
  accept(dialog);
}

void cancel(GtkDialog *dialog) {
  EXPECT_TRUE(wait_until("a loaded chooser", chooser_to_be_loaded()));
  gtk_dialog_response(dialog, GTK_RESPONSE_CANCEL);
}

// Looks at the chooser of a new dialog, and cancels the dialog.
void look_at_new_dialog(FileDialogAction action, const Types &types,
                        const std::function<void(GtkFileChooser *)> &look) {
  when_dialog_shows([&](GtkDialog *dialog) {
    look(as_chooser(dialog));
    cancel(dialog);
  });
  EXPECT_TRUE(run_file_dialog(nullptr, action, SelectMultiple::no, "Title", nullptr, nullptr,
                              types.data(), static_cast<int>(types.size()))
                  .empty());
}

void expect_start_in(const std::string &folder, FileDialogAction action, const Types &types) {
  look_at_new_dialog(action, types, [&](GtkFileChooser *chooser) {
    EXPECT_TRUE(
        wait_until("a chooser in " + folder, [&] { return get_current_folder(chooser) == folder; }))
        << folder << " instead of " << get_current_folder(chooser);
  });
}

void expect_start_elsewhere(const std::string &folder, FileDialogAction action,
                            const Types &types) {
  look_at_new_dialog(action, types, [&](GtkFileChooser *chooser) {
    EXPECT_TRUE(holds_for(200, "a chooser elsewhere than in " + folder,
                          [&] { return get_current_folder(chooser) != folder; }));
  });
}

OwnedText save(const std::string &target_folder, const char *name, VFileType file_type) {
  when_dialog_shows([&](GtkDialog *dialog) { save_as(dialog, target_folder, name); });
  return v_file_dialog_get_file_path_for_writing(nullptr, nullptr, file_type);
}

TEST_F(FileDialogs, HaveTheirTitlesAndLabels) {
  struct Row {
    std::function<OwnedText()> run;
    const char *title;
    const char *accept_label;
    GtkFileChooserAction action;
  };
  const Row rows[] = {
      {[] {
         return v_file_dialog_get_file_path_for_reading(nullptr, "Select 100 % of <a>", nullptr,
                                                        VFileType::remark_codeset);
       },
       "Select 100 % of <a>", "_Open", GTK_FILE_CHOOSER_ACTION_OPEN},
      {[] { return v_file_dialog_get_file_path_for_writing(nullptr, nullptr, VFileType::csv); },
       "Save As", "_Save", GTK_FILE_CHOOSER_ACTION_SAVE},
      {[] { return v_file_dialog_get_folder_path(nullptr, "Select a folder"); }, "Select a folder",
       "_OK", GTK_FILE_CHOOSER_ACTION_SELECT_FOLDER},
  };
  for (const Row &row : rows) {
    bool was_seen = false;
    when_dialog_shows([&](GtkDialog *dialog) {
      was_seen = true;
      EXPECT_STREQ(gtk_window_get_title(GTK_WINDOW(dialog)), row.title);
      EXPECT_EQ(gtk_file_chooser_get_action(as_chooser(dialog)), row.action);
      EXPECT_EQ(get_button_label(dialog, GTK_RESPONSE_ACCEPT), row.accept_label);
      EXPECT_EQ(get_button_label(dialog, GTK_RESPONSE_CANCEL), "_Cancel");
      cancel(dialog);
    });
    EXPECT_EQ(row.run(), nullptr);
    EXPECT_TRUE(was_seen);
  }
}

TEST_F(FileDialogs, RunOverTheTopWindowOfTheStack) {
  TestWindow window;
  const OwnedWindowStack stack = v_window_stack_new();
  v_window_stack_push_window(stack.get(), window.get());
  window.show_active();
  bool was_pushed = false;
  when_dialog_shows([&](GtkDialog *dialog) {
    was_pushed = stack->top->previous->window == nullptr;
    EXPECT_EQ(stack->top->previous->previous->window, window.get());
    EXPECT_EQ(gtk_window_get_transient_for(GTK_WINDOW(dialog)), window.get());
    EXPECT_TRUE(gtk_window_get_modal(GTK_WINDOW(dialog)));
    EXPECT_FALSE(gtk_widget_get_sensitive(window.widget()));
    cancel(dialog);
  });
  EXPECT_EQ(v_file_dialog_get_folder_path(stack.get(), "Title"), nullptr);
  EXPECT_TRUE(was_pushed);
  EXPECT_EQ(stack->top->previous->window, window.get());
  EXPECT_TRUE(gtk_widget_get_sensitive(window.widget()));
}

TEST_F(FileDialogs, ReturnTheChosenFileInUtf8) {
  const std::string path = folder / "Målning 100 %.codeset";
  write_file(path, "");
  when_dialog_shows([&](GtkDialog *dialog) { choose(dialog, path); });
  const OwnedText chosen =
      v_file_dialog_get_file_path_for_reading(nullptr, "Title", nullptr, VFileType::remark_codeset);
  ASSERT_TRUE(chosen);
  EXPECT_EQ(chosen.get(), path);
  EXPECT_STREQ(save(folder.path(), "é & <b>.codeset", VFileType::remark_codeset).get(),
               (folder / "é & <b>.codeset").c_str());
}

TEST_F(FileDialogs, ReturnTheChosenFolder) {
  make_folder(folder / "chosen");
  when_dialog_shows([&](GtkDialog *dialog) { choose(dialog, folder / "chosen"); });
  const OwnedText chosen = v_file_dialog_get_folder_path(nullptr, "Title");
  ASSERT_TRUE(chosen);
  EXPECT_EQ(chosen.get(), folder / "chosen");
}

TEST_F(FileDialogs, ReturnSeveralFilesInTheChoosersOrder) {
  for (const char *name : {"a.png", "b.png", "c.png"}) {
    write_file(folder / name, "");
  }
  const Types types = {VFileType::png};
  std::vector<std::string> order;
  when_dialog_shows([&](GtkDialog *dialog) {
    choose_all(dialog, folder.path(), 3);
    order = list_chosen(as_chooser(dialog));
  });
  std::vector<std::string> paths;
  for (const OwnedText &path : run_file_dialog(nullptr, FileDialogAction::open, SelectMultiple::yes,
                                               "Title", nullptr, nullptr, types.data(), 1)) {
    paths.emplace_back(path.get());
  }
  EXPECT_EQ(paths.size(), 3u);
  EXPECT_EQ(paths, order);
}

TEST_F(FileDialogs, ANameThatIsNoUtf8CountsAsNotChosen) {
  make_folder(folder / "broken");
  const std::string broken = folder / "broken/\xe5.png";
  write_file(broken, "");
  write_file(folder / "broken/good.png", "");
  const Types types = {VFileType::png};
  when_dialog_shows([&](GtkDialog *dialog) { choose(dialog, broken); });
  EXPECT_TRUE(run_file_dialog(nullptr, FileDialogAction::open, SelectMultiple::no, "Title", nullptr,
                              nullptr, types.data(), 1)
                  .empty());
  expect_start_elsewhere(folder / "broken", FileDialogAction::open, types);

  // The filter hides the name that cannot be shown.
  when_dialog_shows([&](GtkDialog *dialog) { choose_all(dialog, folder / "broken", 1); });
  const std::vector<OwnedText> paths =
      run_file_dialog(nullptr, FileDialogAction::open, SelectMultiple::yes, "Title", nullptr,
                      nullptr, types.data(), 1);
  ASSERT_EQ(paths.size(), 1u);
  EXPECT_EQ(paths[0].get(), folder / "broken/good.png");
}

TEST_F(FileDialogs, RememberTheFolderForEachCombinationOfTypes) {
  make_folder(folder / "a");
  make_folder(folder / "a/bé");
  const std::string remembered = folder / "a/bé";
  ASSERT_TRUE(save(remembered, "c.codeset", VFileType::remark_codeset));
  expect_start_in(remembered, FileDialogAction::save, {VFileType::remark_codeset});
  expect_start_in(remembered, FileDialogAction::open, {VFileType::remark_codeset});
  for (const Types &others :
       {Types{VFileType::png}, Types{VFileType::remark_codeset, VFileType::png}, Types{}}) {
    expect_start_elsewhere(remembered, FileDialogAction::open, others);
  }
  // Two types share a folder only in the same order.
  write_file(folder / "a/x.png", "");
  when_dialog_shows([&](GtkDialog *dialog) { choose(dialog, folder / "a/x.png"); });
  ASSERT_TRUE(v_file_dialog_get_file_path_for_reading(nullptr, "Title", nullptr, VFileType::jpeg,
                                                      VFileType::png));
  expect_start_in(folder / "a", FileDialogAction::save, {VFileType::jpeg, VFileType::png});
  expect_start_elsewhere(folder / "a", FileDialogAction::save, {VFileType::png, VFileType::jpeg});
  expect_start_in(remembered, FileDialogAction::save, {VFileType::remark_codeset});
}

TEST_F(FileDialogs, RememberAFolderUnderTheNamesOfTheTypes) {
  const std::pair<Types, const char *> rows[] = {
      {{}, ""},
      {{VFileType::remark_codeset}, "Remark codeset"},
      {{VFileType::jpeg, VFileType::png}, "JPEG#PNG"},
      {{VFileType::png, VFileType::jpeg}, "PNG#JPEG"},
      {{VFileType::jpeg, VFileType::jpeg, VFileType::csv}, "JPEG#JPEG#CSV"},
      {{static_cast<VFileType>(99)}, "Unknown"},
  };
  for (const auto &[types, key] : rows) {
    EXPECT_EQ(v_file_dialog_make_key(types.data(), static_cast<int>(types.size())), key);
  }
}

// Writes the user's folders as the desktop does; null: the desktop has not written them.
void set_documents_folder(const char *path) {
  const std::string file = std::string(g_get_user_config_dir()) + "/user-dirs.dirs";
  std::filesystem::remove(file);
  if (path != nullptr) {
    write_file(file, std::string("XDG_DOCUMENTS_DIR=\"") + path + "\"\n");
  }
  g_reload_user_special_dirs_cache();
}

TEST_F(FileDialogs, StartInTheDocumentsFolderUntilThereIsOneToRemember) {
  make_folder(folder / "Dokument é");
  make_folder(folder / "used");
  set_documents_folder((folder / "Dokument é").c_str());
  const Types types = {VFileType::remark_codeset};
  expect_start_in(folder / "Dokument é", FileDialogAction::open, types);
  expect_start_in(folder / "Dokument é", FileDialogAction::save, types);
  ASSERT_TRUE(save(folder / "used", "c.codeset", VFileType::remark_codeset));
  expect_start_in(folder / "used", FileDialogAction::open, types);
  expect_start_in(folder / "Dokument é", FileDialogAction::open, {VFileType::png});
  set_documents_folder(nullptr);
}

TEST_F(FileDialogs, StartInTheHomeFolderWhereThereAreNoDocuments) {
  const std::string missing = folder / "missing";
  for (const char *documents : {static_cast<const char *>(nullptr), missing.c_str()}) {
    set_documents_folder(documents);
    for (const FileDialogAction action : {FileDialogAction::open, FileDialogAction::save}) {
      expect_start_in(g_get_home_dir(), action, {VFileType::remark_codeset});
    }
  }
  set_documents_folder(nullptr);
}

TEST_F(FileDialogs, RememberTheLatestFolderUntilTheCleanUp) {
  make_folder(folder / "first");
  make_folder(folder / "second");
  ASSERT_TRUE(save(folder / "first", "c.codeset", VFileType::remark_codeset));
  ASSERT_TRUE(save(folder / "second", "c.codeset", VFileType::remark_codeset));
  expect_start_in(folder / "second", FileDialogAction::open, {VFileType::remark_codeset});
  v_file_dialog_clean_up();
  expect_start_elsewhere(folder / "second", FileDialogAction::open, {VFileType::remark_codeset});
  v_file_dialog_clean_up();
}

TEST_F(FileDialogs, RememberTheRootFolder) {
  const OwnedText path = save("/", "no such file.codeset", VFileType::remark_codeset);
  EXPECT_STREQ(path.get(), "/no such file.codeset");
  expect_start_in("/", FileDialogAction::open, {VFileType::remark_codeset});
}

TEST_F(FileDialogs, ACancelledDialogOrAFolderDialogLeavesTheRememberedFolder) {
  make_folder(folder / "kept");
  make_folder(folder / "other");
  ASSERT_TRUE(save(folder / "kept", "c.codeset", VFileType::remark_codeset));
  when_dialog_shows([&](GtkDialog *dialog) {
    enter_folder(as_chooser(dialog), folder / "other");
    cancel(dialog);
  });
  EXPECT_EQ(v_file_dialog_get_file_path_for_writing(nullptr, nullptr, VFileType::remark_codeset),
            nullptr);
  expect_start_in(folder / "kept", FileDialogAction::save, {VFileType::remark_codeset});

  when_dialog_shows([&](GtkDialog *dialog) { choose(dialog, folder / "other"); });
  ASSERT_TRUE(v_file_dialog_get_folder_path(nullptr, "Title"));
  expect_start_elsewhere(folder.path(), FileDialogAction::open, {});
}

TEST_F(FileDialogs, IgnoreARememberedFolderThatDoesNotExist) {
  make_folder(folder / "gone");
  ASSERT_TRUE(save(folder / "gone", "c.codeset", VFileType::remark_codeset));
  std::filesystem::remove(folder / "gone");
  expect_start_elsewhere(folder / "gone", FileDialogAction::open, {VFileType::remark_codeset});
}

} // namespace
