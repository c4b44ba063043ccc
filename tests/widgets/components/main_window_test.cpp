#include "gui/components/main_window.h"

#include <functional>
#include <optional>

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include "component_fixture.h"
#include "gui/file_dialogs.h"
#include "support/gui/layout.h"

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

namespace {

constexpr const char *title = "Manager 100%s <b>& co";
constexpr const char *bundled_question =
    "This item was bundled with Vantorelle. You might want to clone it first, to make your own "
    "independent copy.\n\nProceed anyway?";
constexpr const char *notice_text =
    "Some incompatible files found. They are marked with red in the list:";
constexpr const char *folder_message =
    "The workspace fonts folder does not exist and could not be created.";

GtkEntry *entry() { return find_widget<GtkEntry>(GTK_WIDGET(top_window()), GTK_TYPE_ENTRY); }

bool is_on_top() {
  return top_window() != nullptr && g_strcmp0(gtk_window_get_title(top_window()), title) == 0;
}

bool is_sensitive(const char *label) {
  return gtk_widget_is_sensitive(GTK_WIDGET(find_button(GTK_WIDGET(top_window()), label)));
}

// Labels of the sensitive buttons among the four that depend on the selection.
std::string sensitive_buttons() {
  std::string text;
  for (const char *label : {"Clone", "Edit", "Save a copy", "Delete"}) {
    if (find_button(GTK_WIDGET(top_window()), label) != nullptr && is_sensitive(label)) {
      text += std::string(text.empty() ? "" : ", ") + label;
    }
  }
  return text;
}

bool shows_notice() {
  for (GtkWidget *label : find_widgets(GTK_WIDGET(top_window()), GTK_TYPE_LABEL)) {
    if (std::string(gtk_label_get_text(GTK_LABEL(label))) == notice_text) {
      return gtk_widget_get_mapped(label);
    }
  }
  ADD_FAILURE() << "There is no notice.";
  return false;
}

int height_of_top_window() {
  int height = 0;
  gtk_window_get_size(top_window(), nullptr, &height);
  return height;
}

class MainWindow : public ComponentFixture {
protected:
  ~MainWindow() override { v_file_dialog_clean_up(); }

  // Returns when the script has closed the window.
  void run() {
    v_components_gui_main_window_run(window_stack.get(), &workspace, title, kind.folder_name,
                                     kind.file_type, offer_bundled, text_callback,
                                     has_edit_callback ? edit_callback : nullptr,
                                     cannot_edit ? can_edit_callback : nullptr, this);
    EXPECT_EQ(top_window(), nullptr);
  }

  // Expects that adding the unreadable delivered a.codeset keeps the user's own file of that name.
  void add_in_vain_over_own_file() {
    write_file(managed("a.codeset"), "text:Mine");
    await_start();
    script.click("Add bundled");
    script.when(
        "the window \"Select one to add\"", [] { return top_window() != nullptr && !is_on_top(); },
        [] { select_row(top_window(), "a.codeset"); });
    script.click("OK");
    answer_question("Really overwrite \"Mine\" with \"" + delivered("a.codeset") + "\"?", "Yes");
    script.answer("Error", "An error occured when writing file.\n\n" + managed("a.codeset"),
                  "Close");
    close();
    run();
    EXPECT_EQ(read_file(managed("a.codeset")), "text:Mine");
  }

  static int edit_callback(const char *path, void *fixture) {
    auto *self = static_cast<MainWindow *>(static_cast<ComponentFixture *>(fixture));
    self->edited.emplace_back(path);
    if (self->on_edit) {
      self->on_edit(path);
    }
    return 1;
  }

  static bool can_edit_callback(const char *path, void *fixture) {
    auto *self = static_cast<MainWindow *>(static_cast<ComponentFixture *>(fixture));
    return path != *self->cannot_edit;
  }

  // Waits until the window is shown and its list has the focus.
  void await_start() {
    script.when(
        "the window with the focus in its list",
        [] { return is_on_top() && gtk_widget_has_focus(GTK_WIDGET(list_of(top_window()))); },
        [] {});
  }

  // All questions of this window have the warning icon.
  void answer_question(const std::string &message, const char *label) {
    script.when(
        "the question \"" + message + "\"",
        [message] { return top_window() != nullptr && message_of(top_window()) == message; },
        [] {
          const char *icon_name = nullptr;
          auto *image = find_widget<GtkImage>(GTK_WIDGET(top_window()), GTK_TYPE_IMAGE);
          ASSERT_NE(image, nullptr);
          gtk_image_get_icon_name(image, &icon_name, nullptr);
          EXPECT_STREQ(icon_name, "dialog-warning");
        });
    script.answer("Question", message, label);
  }

  void check(std::function<void()> act) { script.when("the main window", is_on_top, act); }
  void select(const std::string &text) {
    check([text] { select_row(top_window(), text); });
  }
  void close() { script.close(title); }

  void enter_name(const std::string &name) {
    script.when(
        "the window \"Add new\"",
        [] {
          return top_window() != nullptr &&
                 g_strcmp0(gtk_window_get_title(top_window()), "Add new") == 0;
        },
        [name] { gtk_entry_set_text(entry(), name.c_str()); });
    script.click("OK");
  }

  OfferBundled offer_bundled = OfferBundled::yes;
  bool has_edit_callback = true;
  std::optional<std::string> cannot_edit; // a path; none: there is no such callback
  std::function<void(const std::string &path)> on_edit;
  std::vector<std::string> edited;
  GuiScript script;
};

} // namespace

// ---- The window ---------------------------------------------------------------------------------

TEST_F(MainWindow, OpensWithTheFocusInTheListAndNothingSelected) {
  make_folders();
  write_file(managed("a.codeset"), "text:A");
  write_file(managed("b.codeset"), "text:B");
  await_start();
  check([] {
    GtkWindow *window = top_window();
    EXPECT_FALSE(has_selection(window));
    EXPECT_EQ(sensitive_buttons(), "");
    for (const char *label : {"Add from file", "Add bundled", "Add new", "Refresh list"}) {
      EXPECT_TRUE(is_sensitive(label)) << label;
    }
    EXPECT_STREQ(gtk_entry_get_text(entry()), "");
    EXPECT_FALSE(gtk_editable_get_editable(GTK_EDITABLE(entry())));
    EXPECT_STREQ(gtk_label_get_text(label_of(GTK_WIDGET(entry()))), "File name of selected item:");
    EXPECT_FALSE(gtk_tree_view_get_headers_visible(list_of(window)));
    EXPECT_STREQ(gtk_tree_view_column_get_title(gtk_tree_view_get_column(list_of(window), 0)),
                 "Item");
    EXPECT_STREQ(atk_object_get_name(gtk_widget_get_accessible(GTK_WIDGET(list_of(window)))),
                 "Remark codeset files");
    EXPECT_FALSE(gtk_window_is_maximized(window));
  });
  close();
  run();
}

TEST_F(MainWindow, ButtonsAreInTheirOrder) {
  await_start();
  check([] {
    EXPECT_THAT(button_labels(GTK_WIDGET(top_window())),
                ElementsAre("Add from file", "Add bundled", "Add new", "Clone", "Edit",
                            "Save a copy", "Delete", "Refresh list"));
  });
  close();
  run();
}

// The last button is at the bottom of the column for any height of the window, with a slightly
// larger gap above it than between the others.
TEST_F(MainWindow, RefreshingIsAtTheBottom) {
  await_start();
  check([] {
    GtkWidget *window = GTK_WIDGET(top_window());
    GtkWidget *refresh = GTK_WIDGET(find_button(window, "Refresh list"));
    GtkWidget *place = gtk_widget_get_parent(refresh);
    GtkWidget *column = gtk_widget_get_parent(place);
    EXPECT_EQ(gtk_widget_get_allocated_width(refresh), gtk_widget_get_allocated_width(column));
    EXPECT_EQ(gtk_widget_get_allocated_width(GTK_WIDGET(find_button(window, "Delete"))),
              gtk_widget_get_allocated_width(column));
    int bottom = 0;
    ASSERT_TRUE(gtk_widget_translate_coordinates(
        refresh, column, 0, gtk_widget_get_allocated_height(refresh), nullptr, &bottom));
    EXPECT_EQ(bottom, gtk_widget_get_allocated_height(column));
    int delete_bottom = 0;
    int place_top = 0;
    GtkWidget *button = GTK_WIDGET(find_button(window, "Delete"));
    gtk_widget_translate_coordinates(button, column, 0, gtk_widget_get_allocated_height(button),
                                     nullptr, &delete_bottom);
    gtk_widget_translate_coordinates(place, column, 0, 0, nullptr, &place_top);
    EXPECT_EQ(place_top - delete_bottom, 8 + 10 + 8);
  });
  close();
  run();
}

TEST_F(MainWindow, ListTakesTheRoomBesideTheColumnOfButtons) {
  make_folders();
  write_file(managed("broken.codeset"), "broken");
  script.when_active(title, [] {
    GtkWidget *window = GTK_WIDGET(top_window());
    const auto label = [&](const char *text) { return GTK_WIDGET(find_label(window, text)); };
    const auto button = [&](const char *text) { return GTK_WIDGET(find_button(window, text)); };
    GtkTreeView *list = list_of(top_window());
    EXPECT_EQ(gtk_tree_view_column_get_width(gtk_tree_view_get_column(list, 0)),
              gtk_widget_get_allocated_width(GTK_WIDGET(list)));
    expect_window_layout(
        top_window(), WindowState::not_maximized,
        {{"notice", label(notice_text), corner(), stays, stays, {{0.0f, 0.5f}}},
         {"list", gtk_widget_get_parent(GTK_WIDGET(list)), below("notice", 8), grows, grows},
         {"label",
          label("File name of selected item:"),
          below("list", 8),
          stays,
          moves,
          {{0.0f, 0.5f}}},
         {"entry", GTK_WIDGET(entry()), below("label", 8), grows, moves},
         {"Add from file", button("Add from file"), beside("list", 8), moves, stays},
         {"Add bundled", button("Add bundled"), below("Add from file", 8), moves, stays},
         {"Add new", button("Add new"), below("Add bundled", 8), moves, stays},
         {"Clone", button("Clone"), below("Add new", 8), moves, stays},
         {"Edit", button("Edit"), below("Clone", 8), moves, stays},
         {"Save a copy", button("Save a copy"), below("Edit", 8), moves, stays},
         {"Delete", button("Delete"), below("Save a copy", 8), moves, stays},
         {"end", button("Delete"), end_of_row("Delete"), moves, stays},
         {"Refresh list", button("Refresh list"), anywhere(), moves, moves}});
  });
  close();
  run();
}

TEST_F(MainWindow, OmitsButtonsWithoutAFunction) {
  make_folders();
  write_file(managed("a.codeset"), "text:A");
  offer_bundled = OfferBundled::no;
  has_edit_callback = false;
  await_start();
  select("A");
  check([] {
    EXPECT_THAT(button_labels(GTK_WIDGET(top_window())),
                ElementsAre("Add from file", "Save a copy", "Delete", "Refresh list"));
    EXPECT_EQ(sensitive_buttons(), "Save a copy, Delete");
  });
  close();
  run();
}

TEST_F(MainWindow, SelectionSetsEntryAndButtons) {
  make_folders();
  write_file(managed("a.codeset"), "text:A");
  write_file(managed("b%s<&>.CODESET"), "text:B");
  await_start();
  select("A");
  check([] {
    EXPECT_STREQ(gtk_entry_get_text(entry()), "a.codeset");
    EXPECT_EQ(sensitive_buttons(), "Clone, Edit, Save a copy, Delete");
  });
  select("B");
  check([] {
    EXPECT_STREQ(gtk_entry_get_text(entry()), "b%s<&>.CODESET");
    gtk_tree_selection_unselect_all(gtk_tree_view_get_selection(list_of(top_window())));
    EXPECT_STREQ(gtk_entry_get_text(entry()), "");
    EXPECT_EQ(sensitive_buttons(), "");
  });
  close();
  run();
}

TEST_F(MainWindow, AFileThatMayNotBeEditedMayNotBeCloned) {
  make_folders();
  write_file(managed("a.codeset"), "text:A");
  write_file(managed("b.codeset"), "text:B");
  cannot_edit = managed("a.codeset");
  await_start();
  select("A");
  check([] { EXPECT_EQ(sensitive_buttons(), "Save a copy, Delete"); });
  select("B");
  check([] { EXPECT_EQ(sensitive_buttons(), "Clone, Edit, Save a copy, Delete"); });
  close();
  run();
}

// ---- The list -----------------------------------------------------------------------------------

TEST_F(MainWindow, ListsRegularFilesWithTheExtensionSortedByText) {
  make_folders();
  write_file(managed("A.CODESET"), "text:Wood");
  write_file(managed("b.codeset"), "text:Ceramics");
  write_file(managed("c.codeset"), "text:100%s <b>& \u00e5");
  write_file(managed("notes.txt"), "text:Notes");
  write_file(managed("\xff.codeset"), "text:Not UTF-8");
  make_folder(managed("x.codeset"));
  ASSERT_EQ(mkfifo(managed("pipe.codeset").c_str(), 0600), 0);
  ASSERT_EQ(symlink("/nowhere", managed("dangling.codeset").c_str()), 0);
  ASSERT_EQ(symlink("b.codeset", managed("link.codeset").c_str()), 0);
  await_start();
  check([this] {
    EXPECT_THAT(shown_rows(top_window()),
                ElementsAre(ShownRow{"100%s <b>& \u00e5"}, ShownRow{"Ceramics"},
                            ShownRow{"Ceramics"}, ShownRow{"Wood"}));
    EXPECT_FALSE(shows_notice());
    EXPECT_THAT(summarised, Not(Contains(managed("pipe.codeset"))));
  });
  close();
  run();
}

TEST_F(MainWindow, MissingFolderIsAnEmptyList) {
  await_start();
  check([] { EXPECT_THAT(shown_rows(top_window()), IsEmpty()); });
  close();
  run();
  EXPECT_FALSE(path_exists(managed()));
}

TEST_F(MainWindow, IncompatibleFilesAreRedAndFirstAndCauseANotice) {
  make_folders();
  write_file(managed("good.codeset"), "text:Ceramics");
  write_file(managed("z%s<&>.codeset"), "broken");
  await_start();
  check([] {
    EXPECT_THAT(shown_rows(top_window()),
                ElementsAre(ShownRow{"z%s<&>.codeset", true}, ShownRow{"Ceramics"}));
    EXPECT_TRUE(shows_notice());
  });
  select("z%s<&>.codeset");
  check([] { EXPECT_STREQ(gtk_entry_get_text(entry()), "z%s<&>.codeset"); });
  close();
  run();
}

TEST_F(MainWindow, TheWindowGrowsAndShrinksWithTheNotice) {
  make_folders();
  write_file(managed("good.codeset"), "text:Ceramics");
  int least_height = 0;
  await_start();
  check([this, &least_height] {
    least_height = height_of_top_window();
    write_file(managed("bad.codeset"), "broken");
  });
  script.click("Refresh list");
  script.when(
      "the window to grow", [&] { return height_of_top_window() > least_height; },
      [] { EXPECT_TRUE(shows_notice()); });
  select("bad.codeset");
  script.click("Delete");
  answer_question("Do you really want to delete \"bad.codeset\" from your workspace?", "Yes");
  script.when(
      "the window to shrink", [&] { return is_on_top() && height_of_top_window() == least_height; },
      [] { EXPECT_FALSE(shows_notice()); });
  close();
  run();
}

TEST_F(MainWindow, RefreshingShowsTheCurrentFilesAndSelectsNothing) {
  make_folders();
  write_file(managed("a.codeset"), "text:A");
  write_file(managed("b.codeset"), "text:B");
  await_start();
  select("A");
  check([this] {
    write_file(managed("c.codeset"), "text:C");
    ASSERT_EQ(unlink(managed("b.codeset").c_str()), 0);
  });
  script.click("Refresh list");
  check([] {
    EXPECT_THAT(shown_texts(top_window()), ElementsAre("A", "C"));
    EXPECT_FALSE(has_selection(top_window()));
    EXPECT_EQ(sensitive_buttons(), "");
    EXPECT_STREQ(gtk_entry_get_text(entry()), "");
  });
  close();
  run();
}

TEST_F(MainWindow, OverlongTextsDoNotMakeTheWindowOverlong) {
  make_folders();
  write_file(managed("a.codeset"), "text:" + std::string(100'000, 'x'));
  write_file(managed("b.codeset"), "text:B");
  await_start();
  check([] {
    int width = 0;
    gtk_window_get_size(top_window(), &width, nullptr);
    EXPECT_LT(width, 1280);
  });
  close();
  run();
}

TEST_F(MainWindow, ThousandFilesAreListedAtOnce) {
  make_folders();
  for (int i = 0; i < 1000; i++) {
    const std::string number = std::to_string(1000 + i);
    write_file(managed("n" + number + ".codeset"), "text:Codeset number " + number);
  }
  gint64 start = 0;
  await_start();
  check([&start] {
    EXPECT_EQ(shown_texts(top_window()).size(), 1000u);
    select_row(top_window(), "Codeset number 1999");
    start = g_get_monotonic_time();
  });
  script.click("Refresh list");
  check([&start] {
    EXPECT_LT(g_get_monotonic_time() - start, 5 * G_USEC_PER_SEC);
    EXPECT_EQ(shown_texts(top_window()).size(), 1000u);
    EXPECT_FALSE(has_selection(top_window()));
  });
  close();
  run();
}

// ---- Adding -------------------------------------------------------------------------------------

TEST_F(MainWindow, AddsAFileByteForByte) {
  make_folders();
  const std::string bytes = "text:New\r\n\xff" + std::string(1, '\0') + "end";
  write_file(elsewhere / "new 100%s <b>&.CODESET", bytes);
  await_start();
  script.click("Add from file");
  script.when(
      "the file chooser", [] { return GTK_IS_FILE_CHOOSER_DIALOG(top_window()); },
      [] {
        EXPECT_STREQ(gtk_window_get_title(top_window()), "Select a file to add");
        GSList *filters = gtk_file_chooser_list_filters(GTK_FILE_CHOOSER(top_window()));
        ASSERT_EQ(g_slist_length(filters), 2u);
        EXPECT_STREQ(gtk_file_filter_get_name(GTK_FILE_FILTER(filters->data)),
                     "Remark codeset files");
        EXPECT_STREQ(gtk_file_filter_get_name(GTK_FILE_FILTER(filters->next->data)), "All files");
        g_slist_free(filters);
      });
  script.choose(elsewhere / "new 100%s <b>&.CODESET");
  check([] { EXPECT_EQ(shown_rows(top_window()).size(), 1u); });
  close();
  run();
  EXPECT_EQ(read_file(managed("new 100%s <b>&.CODESET")), bytes);
}

TEST_F(MainWindow, CancelledAddingDoesNothing) {
  make_folders();
  write_file(delivered("a.codeset"), "text:A");
  await_start();
  script.click("Add from file");
  script.cancel_chooser();
  script.click("Add bundled");
  script.click("Cancel");
  check([this] { write_file(managed("not_listed.codeset"), "text:A"); });
  check([] { EXPECT_THAT(shown_texts(top_window()), IsEmpty()); });
  close();
  run();
  EXPECT_THAT(list_folder(managed()), ElementsAre("not_listed.codeset"));
}

TEST_F(MainWindow, AddedFileMustHaveTheExtension) {
  make_folders();
  write_file(elsewhere / "a.txt", "text:A");
  await_start();
  script.click("Add from file");
  script.choose(elsewhere / "a.txt");
  script.then([this] { write_file(managed("b.codeset"), "text:B"); });
  script.answer("Error", "The file name must end with \".codeset\".", "Close");
  check([] { EXPECT_THAT(shown_texts(top_window()), ElementsAre("B")); });
  close();
  run();
  EXPECT_THAT(list_folder(managed()), ElementsAre("b.codeset"));
}

TEST_F(MainWindow, CreatesNoFolderForAFileThatIsRefusedForItsName) {
  write_file(elsewhere / "a.txt", "text:A");
  await_start();
  script.click("Add from file");
  script.choose(elsewhere / "a.txt");
  script.answer("Error", "The file name must end with \".codeset\".", "Close");
  close();
  run();
  EXPECT_TRUE(list_folder(workspace_folder.path()).empty());
}

TEST_F(MainWindow, CreatesTheMissingFolderForTheFirstFile) {
  write_file(elsewhere / "a.codeset", "text:A");
  await_start();
  script.click("Add from file");
  script.choose(elsewhere / "a.codeset");
  check([] { EXPECT_THAT(shown_texts(top_window()), ElementsAre("A")); });
  close();
  run();
  EXPECT_EQ(read_file(managed("a.codeset")), "text:A");
  struct stat status;
  ASSERT_EQ(stat(managed().c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0700u);
}

TEST_F(MainWindow, AFileInPlaceOfTheFolderIsAnError) {
  write_file(managed(), "a file");
  write_file(elsewhere / "a.codeset", "text:A");
  await_start();
  script.click("Add from file");
  script.choose(elsewhere / "a.codeset");
  script.answer("Error", folder_message, "Close");
  close();
  run();
  EXPECT_EQ(read_file(managed()), "a file");
}

TEST_F(MainWindow, CreatesNoParentFolders) {
  workspace.folder_path = copy_text((workspace_folder / "gone").c_str());
  write_file(elsewhere / "a.codeset", "text:A");
  await_start();
  script.click("Add from file");
  script.choose(elsewhere / "a.codeset");
  script.answer("Error", folder_message, "Close");
  close();
  run();
  EXPECT_FALSE(path_exists(workspace_folder / "gone"));
}

TEST_F(MainWindow, ShowsTheReasonWhenTheFolderCannotBeExamined) {
  write_file(workspace_folder / "file", "");
  workspace.folder_path = copy_text((workspace_folder / "file").c_str());
  write_file(elsewhere / "a.codeset", "text:A");
  await_start();
  script.click("Add from file");
  script.choose(elsewhere / "a.codeset");
  script.answer("Error",
                "Can not access the workspace fonts folder.\n\nCannot get file status.\n\nError "
                "20: Not a directory",
                "Close");
  close();
  run();
}

TEST_F(MainWindow, AsksBeforeOverwritingWithBothTexts) {
  make_folders();
  write_file(managed("a.codeset"), "text:Old 100%s");
  write_file(elsewhere / "a.codeset", "text:New <b>&");
  await_start();
  for (const char *label : {"No", "Yes"}) {
    script.click("Add from file");
    script.choose(elsewhere / "a.codeset");
    script.then([this] { write_file(managed("z.codeset"), "text:Z"); });
    answer_question("Really overwrite \"Old 100%s\" with \"New <b>&\"?", label);
    check([this, label] {
      const bool is_kept = std::string(label) == "No";
      EXPECT_EQ(read_file(managed("a.codeset")), is_kept ? "text:Old 100%s" : "text:New <b>&");
      // The list is refreshed after both answers.
      EXPECT_THAT(shown_texts(top_window()), ElementsAre(is_kept ? "Old 100%s" : "New <b>&", "Z"));
    });
  }
  close();
  run();
}

TEST_F(MainWindow, AsksBeforeOverwritingWithPathsWhenThereIsNoText) {
  make_folders();
  write_file(managed("a.codeset"), "old");
  write_file(elsewhere / "a.codeset", "new");
  await_start();
  script.click("Add from file");
  script.choose(elsewhere / "a.codeset");
  script.dismiss("Question", "Really overwrite \"" + managed("a.codeset") + "\" with \"" +
                                 (elsewhere / "a.codeset") + "\"?");
  close();
  run();
  EXPECT_EQ(read_file(managed("a.codeset")), "old");
}

TEST_F(MainWindow, AddingAFileOverItselfKeepsIt) {
  make_folders();
  write_file(managed("a.codeset"), "text:A");
  await_start();
  script.click("Add from file");
  script.choose(managed("a.codeset"));
  answer_question("Really overwrite \"A\" with \"A\"?", "Yes");
  close();
  run();
  EXPECT_EQ(read_file(managed("a.codeset")), "text:A");
}

TEST_F(MainWindow, AddsADeliveredFile) {
  make_folders();
  write_file(delivered("a.codeset"), "text:A");
  write_file(delivered("b.codeset"), "text:B");
  await_start();
  script.click("Add bundled");
  script.when(
      "the window \"Select one to add\"", [] { return top_window() != nullptr && !is_on_top(); },
      [] {
        EXPECT_STREQ(gtk_window_get_title(top_window()), "Select one to add");
        select_row(top_window(), "B");
      });
  script.click("OK");
  check([] { EXPECT_THAT(shown_texts(top_window()), ElementsAre("B")); });
  close();
  run();
  EXPECT_THAT(list_folder(managed()), ElementsAre("b.codeset"));
  EXPECT_EQ(read_file(managed("b.codeset")), "text:B");
}

TEST_F(MainWindow, KeepsTheExistingFileWhenTheNewOneCannotBeOpened) {
  make_folders();
  make_folder(delivered("a.codeset"));
  add_in_vain_over_own_file();
}

TEST_F(MainWindow, KeepsTheExistingFileWhenTheNewOneCannotBeRead) {
  make_folders();
  // A regular file that opens, but whose first byte cannot be read.
  ASSERT_EQ(symlink("/proc/self/mem", delivered("a.codeset").c_str()), 0);
  add_in_vain_over_own_file();
}

// ---- New, clone, edit ---------------------------------------------------------------------------

TEST_F(MainWindow, AddNewEditsAFileThatDoesNotExistYet) {
  make_folders();
  on_edit = [](const std::string &path) {
    EXPECT_FALSE(path_exists(path));
    write_file(path, "text:Made");
  };
  await_start();
  script.click("Add new");
  enter_name("made.codeset");
  check([] { EXPECT_THAT(shown_texts(top_window()), ElementsAre("Made")); });
  close();
  run();
  EXPECT_THAT(edited, ElementsAre(managed("made.codeset")));
}

TEST_F(MainWindow, CancelledAddNewRefreshes) {
  make_folders();
  await_start();
  check([this] { write_file(managed("a.codeset"), "text:A"); });
  script.click("Add new");
  script.click("Cancel");
  check([] { EXPECT_THAT(shown_texts(top_window()), ElementsAre("A")); });
  close();
  run();
  EXPECT_THAT(edited, IsEmpty());
}

TEST_F(MainWindow, CloneCopiesByteForByteAndEditsNothing) {
  make_folders();
  const std::string bytes = "text:A\r\n\xff" + std::string(1, '\0') + "end";
  write_file(managed("a.codeset"), bytes);
  await_start();
  select("A");
  script.click("Clone");
  enter_name("b.codeset");
  check([] {
    EXPECT_EQ(shown_rows(top_window()).size(), 2u);
    EXPECT_FALSE(has_selection(top_window()));
  });
  close();
  run();
  EXPECT_EQ(read_file(managed("a.codeset")), bytes);
  EXPECT_EQ(read_file(managed("b.codeset")), bytes);
  EXPECT_THAT(edited, IsEmpty());
}

TEST_F(MainWindow, CancelledCloneRefreshes) {
  make_folders();
  write_file(managed("a.codeset"), "text:A");
  await_start();
  select("A");
  check([this] { write_file(managed("b.codeset"), "text:B"); });
  script.click("Clone");
  script.click("Cancel");
  check([] { EXPECT_THAT(shown_texts(top_window()), ElementsAre("A", "B")); });
  close();
  run();
}

TEST_F(MainWindow, CloningADeletedFileFails) {
  make_folders();
  write_file(managed("a.codeset"), "text:A");
  await_start();
  select("A");
  check([this] { ASSERT_EQ(unlink(managed("a.codeset").c_str()), 0); });
  script.click("Clone");
  enter_name("b.codeset");
  script.answer("Error", "An error occured when copying the file.", "Close");
  check([] { EXPECT_THAT(shown_texts(top_window()), IsEmpty()); });
  close();
  run();
  EXPECT_THAT(list_folder(managed()), IsEmpty());
}

TEST_F(MainWindow, EditsAnOwnFileAtOnceAndRefreshes) {
  make_folders();
  write_file(managed("own.codeset"), "text:A");            // has no namesake
  write_file(managed("changed.codeset"), "text:Changed!"); // differs in one byte
  write_file(delivered("changed.codeset"), "text:Changed.");
  write_file(delivered("other.codeset"), "text:A");
  on_edit = [](const std::string &path) { write_file(path, "text:Edited"); };
  await_start();
  select("A");
  script.click("Edit");
  check([] { EXPECT_THAT(shown_texts(top_window()), ElementsAre("Changed!", "Edited")); });
  select("Changed!");
  script.click("Edit");
  check([] {
    EXPECT_THAT(shown_texts(top_window()), ElementsAre("Edited", "Edited"));
    EXPECT_FALSE(has_selection(top_window()));
  });
  close();
  run();
  EXPECT_THAT(edited, ElementsAre(managed("own.codeset"), managed("changed.codeset")));
}

TEST_F(MainWindow, AsksBeforeEditingADeliveredFile) {
  make_folders();
  write_file(managed("a.codeset"), "text:A");
  write_file(delivered("a.codeset"), "text:A");
  await_start();
  select("A");
  script.click("Edit");
  answer_question(bundled_question, "No");
  check([this] {
    EXPECT_THAT(edited, IsEmpty());
    EXPECT_FALSE(has_selection(top_window()));
  });
  select("A");
  script.click("Edit");
  script.dismiss("Question", bundled_question);
  check([this] { EXPECT_THAT(edited, IsEmpty()); });
  select("A");
  script.click("Edit");
  answer_question(bundled_question, "Yes");
  check([this] { EXPECT_THAT(edited, ElementsAre(managed("a.codeset"))); });
  close();
  run();
}

TEST_F(MainWindow, NoFileCountsAsDeliveredWithoutInstallationFolder) {
  make_folders();
  write_file(managed("a.codeset"), "text:A");
  fake_platform.install_folder.reset();
  await_start();
  select("A");
  script.click("Edit");
  check([this] { EXPECT_THAT(edited, ElementsAre(managed("a.codeset"))); });
  script.click("Add bundled"); // shows no window
  close();
  run();
}

// ---- Saving a copy and deleting -----------------------------------------------------------------

TEST_F(MainWindow, SavesACopyByteForByte) {
  make_folders();
  const std::string bytes = "text:A\r\n\xff" + std::string(1, '\0') + "end";
  write_file(managed("a.codeset"), bytes);
  await_start();
  select("A");
  script.click("Save a copy");
  script.when(
      "the file chooser", [] { return GTK_IS_FILE_CHOOSER_DIALOG(top_window()); },
      [] {
        EXPECT_STREQ(gtk_window_get_title(top_window()), "Save As");
        const OwnedText name(gtk_file_chooser_get_current_name(GTK_FILE_CHOOSER(top_window())));
        EXPECT_STREQ(name.get(), "a.codeset");
      });
  script.save_as(elsewhere.path(), "copy 100%s.codeset");
  check([] { EXPECT_FALSE(has_selection(top_window())); });
  close();
  run();
  EXPECT_EQ(read_file(elsewhere / "copy 100%s.codeset"), bytes);
  EXPECT_EQ(read_file(managed("a.codeset")), bytes);
}

TEST_F(MainWindow, CancelledCopyRefreshes) {
  make_folders();
  write_file(managed("a.codeset"), "text:A");
  await_start();
  select("A");
  check([this] { write_file(managed("b.codeset"), "text:B"); });
  script.click("Save a copy");
  script.cancel_chooser();
  check([] { EXPECT_THAT(shown_texts(top_window()), ElementsAre("A", "B")); });
  close();
  run();
  EXPECT_THAT(list_folder(elsewhere.path()), IsEmpty());
}

TEST_F(MainWindow, CopyingADeletedFileFails) {
  make_folders();
  write_file(managed("a.codeset"), "text:A");
  await_start();
  select("A");
  check([this] { ASSERT_EQ(unlink(managed("a.codeset").c_str()), 0); });
  script.click("Save a copy");
  script.save_as(elsewhere.path(), "copy.codeset");
  script.answer("Error",
                "An error occured when saving the copy of the file.\n\n" +
                    (elsewhere / "copy.codeset"),
                "Close");
  close();
  run();
  EXPECT_THAT(list_folder(elsewhere.path()), IsEmpty());
}

TEST_F(MainWindow, AsksBeforeDeletingWithTheText) {
  make_folders();
  write_file(managed("a.codeset"), "text:Paper 100%s <b>&");
  const std::string question =
      "Do you really want to delete \"Paper 100%s <b>&\" from your workspace?";
  await_start();
  select("Paper 100%s <b>&");
  script.click("Delete");
  answer_question(question, "No");
  check([this] { EXPECT_TRUE(path_exists(managed("a.codeset"))); });
  select("Paper 100%s <b>&");
  script.click("Delete");
  script.dismiss("Question", question);
  check([this] { EXPECT_TRUE(path_exists(managed("a.codeset"))); });
  select("Paper 100%s <b>&");
  script.click("Delete");
  answer_question(question, "Yes");
  check([this] {
    EXPECT_FALSE(path_exists(managed("a.codeset")));
    EXPECT_THAT(shown_texts(top_window()), IsEmpty());
    EXPECT_EQ(sensitive_buttons(), "");
    EXPECT_STREQ(gtk_entry_get_text(entry()), "");
  });
  close();
  run();
}

TEST_F(MainWindow, DeletingOneOfSeveralSelectsNoOther) {
  make_folders();
  for (const char *name : {"a", "b", "c"}) {
    write_file(managed(std::string(name) + ".codeset"), std::string("text:") + name);
  }
  await_start();
  select("b");
  script.click("Delete");
  answer_question("Do you really want to delete \"b\" from your workspace?", "Yes");
  check([] {
    EXPECT_THAT(shown_texts(top_window()), ElementsAre("a", "c"));
    EXPECT_FALSE(has_selection(top_window()));
    EXPECT_EQ(sensitive_buttons(), "");
  });
  close();
  run();
}

TEST_F(MainWindow, DeletingADeletedFileIsNoError) {
  make_folders();
  write_file(managed("a.codeset"), "text:A");
  await_start();
  select("A");
  check([this] { ASSERT_EQ(unlink(managed("a.codeset").c_str()), 0); });
  script.click("Delete");
  answer_question("Do you really want to delete \"A\" from your workspace?", "Yes");
  check([] { EXPECT_THAT(shown_texts(top_window()), IsEmpty()); });
  close();
  run();
}

TEST_F(MainWindow, ShowsThePathWhenAFileCannotBeDeleted) {
  make_folders();
  write_file(managed("a.codeset"), "text:A");
  await_start();
  select("A");
  check([this] {
    ASSERT_EQ(unlink(managed("a.codeset").c_str()), 0);
    make_folder(managed("a.codeset"));
  });
  script.click("Delete");
  answer_question("Do you really want to delete \"A\" from your workspace?", "Yes");
  script.answer("Error", "Couldn't delete the file.\n\n" + managed("a.codeset"), "Close");
  check([] { EXPECT_THAT(shown_texts(top_window()), IsEmpty()); });
  close();
  run();
}

// ---- Destruction of the window during an action -------------------------------------------------

TEST_F(MainWindow, MayBeDestroyedWhileAQuestionIsOpen) {
  make_folders();
  write_file(managed("a.codeset"), "text:A");
  await_start();
  select("A");
  GtkWindow *main_window = nullptr;
  check([&main_window] { main_window = top_window(); });
  script.click("Delete");
  script.when(
      "the question", [] { return GTK_IS_DIALOG(top_window()); },
      [&main_window] { gtk_widget_destroy(GTK_WIDGET(main_window)); });
  run();
  EXPECT_EQ(read_file(managed("a.codeset")), "text:A");
}

TEST_F(MainWindow, MayBeDestroyedWhileANameIsEntered) {
  make_folders();
  write_file(managed("a.codeset"), "text:A");
  await_start();
  select("A");
  GtkWindow *main_window = nullptr;
  check([&main_window] { main_window = top_window(); });
  script.click("Clone");
  script.when(
      "the window \"Add new\"", [] { return top_window() != nullptr && !is_on_top(); },
      [&main_window] { gtk_widget_destroy(GTK_WIDGET(main_window)); });
  run();
  EXPECT_THAT(list_folder(managed()), ElementsAre("a.codeset"));
}

TEST_F(MainWindow, MayBeDestroyedWhileAFileIsEdited) {
  make_folders();
  write_file(managed("a.codeset"), "text:A");
  await_start();
  select("A");
  on_edit = [](const std::string &) { gtk_widget_destroy(GTK_WIDGET(top_window())); };
  script.click("Edit");
  run();
  EXPECT_THAT(edited, ElementsAre(managed("a.codeset")));
}

// ---- The place in the list ----------------------------------------------------------------------

namespace {

// The text of the row with the cursor, when no row is selected.
std::string place_in_list() {
  GtkTreeView *list = list_of(top_window());
  GtkTreePath *path = nullptr;
  gtk_tree_view_get_cursor(list, &path, nullptr);
  if (path == nullptr || has_selection(top_window())) {
    return "";
  }
  const int row = gtk_tree_path_get_indices(path)[0];
  gtk_tree_path_free(path);
  return shown_texts(top_window()).at(static_cast<std::size_t>(row));
}

bool has_focus_in_list() { return gtk_widget_has_focus(GTK_WIDGET(list_of(top_window()))); }

} // namespace

TEST_F(MainWindow, TheCursorStaysAtTheRowOfTheLastAction) {
  make_folders();
  for (const char *name : {"A", "B", "C", "D"}) {
    write_file(managed(std::string(name) + ".codeset"), std::string("text:") + name);
  }
  await_start();
  select("B");
  check([] { gtk_widget_grab_focus(GTK_WIDGET(find_button(GTK_WIDGET(top_window()), "Edit"))); });
  on_edit = [](const std::string &path) { write_file(path, "text:C2"); };
  script.click("Edit");
  check([] {
    EXPECT_EQ(place_in_list(), "C2");
    EXPECT_TRUE(has_focus_in_list());
    EXPECT_EQ(sensitive_buttons(), "");
    EXPECT_STREQ(gtk_entry_get_text(entry()), "");
  });
  select("C");
  script.click("Delete");
  answer_question("Do you really want to delete \"C\" from your workspace?", "Yes");
  check([] { EXPECT_EQ(place_in_list(), "C2"); });
  select("D");
  script.click("Delete");
  answer_question("Do you really want to delete \"D\" from your workspace?", "Yes");
  check([] { EXPECT_EQ(place_in_list(), "C2"); });
  select("A");
  script.click("Clone");
  enter_name("z.codeset");
  check([this] {
    EXPECT_EQ(place_in_list(), "A");
    write_file(managed("a0.codeset"), "text:0");
  });
  script.click("Refresh list");
  check([] { EXPECT_EQ(place_in_list(), "A"); });
  close();
  run();
}
