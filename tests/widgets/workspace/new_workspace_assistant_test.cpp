#include "workspace/assistant/new_workspace_assistant.h"

#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/fake_platform.h"
#include "support/files.h"
#include "support/gui/layout.h"
#include "support/gui_driver.h"
#include "workspace/workspace_location.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

// Takes the place of the home folder; null for the user's own.
const char *other_home_folder = nullptr;

} // namespace

// The linker option --wrap redirects the program's own calls to this function.
extern "C" {

const char *__real_g_get_home_dir();

const char *__wrap_g_get_home_dir() {
  return other_home_folder == nullptr ? __real_g_get_home_dir() : other_home_folder;
}
}

namespace {

constexpr const char *exists_message =
    "There is already a folder or a file with that name.\n\nPlease choose a new location.";

GtkAssistant *assistant() {
  GtkWindow *window = top_window();
  return GTK_IS_ASSISTANT(window) ? GTK_ASSISTANT(window) : nullptr;
}

GtkEntry *entry() { return find_widget<GtkEntry>(GTK_WIDGET(assistant()), GTK_TYPE_ENTRY); }

GtkWidget *page() {
  return gtk_assistant_get_nth_page(assistant(), gtk_assistant_get_current_page(assistant()));
}

std::vector<GtkWidget *> labels_of_page() {
  std::vector<GtkWidget *> labels = find_widgets(page(), GTK_TYPE_LABEL);
  std::erase_if(labels, [](GtkWidget *label) {
    return gtk_widget_get_ancestor(label, GTK_TYPE_BUTTON) != nullptr;
  });
  return labels;
}

std::string text_of_page() {
  const std::vector<GtkWidget *> labels = labels_of_page();
  return labels.empty() ? "" : gtk_label_get_text(GTK_LABEL(labels.back()));
}

// Expects a page with a single text.
void expect_text_in_the_corner() {
  EXPECT_FALSE(gtk_window_is_maximized(top_window()));
  EXPECT_EQ(gtk_container_get_border_width(GTK_CONTAINER(page())), 8U);
  ASSERT_EQ(labels_of_page().size(), 1U);
  expect_layout(page(), {{"text", labels_of_page()[0], corner(), stays, stays, {{0.0f, 0.0f}}}});
}

class NewWorkspaceAssistant : public testing::Test {
protected:
  NewWorkspaceAssistant() {
    fake_platform.install_folder = install_folder.path();
    make_folder(install_folder / "codesets");
    write_file(install_folder / "codesets/a.codeset", "bytes");
  }
  ~NewWorkspaceAssistant() override { v_workspace_save_folder_path(nullptr); }

  bool run() { return v_workspace_gui_create_workspace(window_stack.get()); }

  void await_page(int page) {
    script.when(
        "page " + std::to_string(page),
        [page] {
          return assistant() != nullptr && gtk_assistant_get_current_page(assistant()) == page;
        },
        [] {});
  }

  // Moves from the first page to the location page and enters the location there.
  void enter(const std::string &location) {
    await_page(0);
    script.click("Next");
    await_page(1);
    script.then([location] { gtk_entry_set_text(entry(), location.c_str()); });
  }

  // Cancels the assistant, which must be on its first page and still have the location.
  void cancel_on_first_page(const std::string &location) {
    await_page(0);
    script.then([location] { EXPECT_EQ(gtk_entry_get_text(entry()), location); });
    script.click("Cancel");
  }

  FakePlatformReset reset_platform;
  TemporaryFolder install_folder;
  TemporaryFolder folder;
  OwnedWindowStack window_stack = v_window_stack_new();
  GuiScript script;
};

} // namespace

TEST_F(NewWorkspaceAssistant, LeadsThroughThreePages) {
  await_page(0);
  script.then([] {
    EXPECT_EQ(gtk_assistant_get_n_pages(assistant()), 3);
    for (int page = 0; page < 3; page++) {
      GtkWidget *widget = gtk_assistant_get_nth_page(assistant(), page);
      EXPECT_STREQ(gtk_assistant_get_page_title(assistant(), widget), "Vantorelle Workspace Setup");
      EXPECT_TRUE(gtk_assistant_get_page_complete(assistant(), widget));
    }
    EXPECT_EQ(
        text_of_page(),
        "Before you can start using Vantorelle we need to create a workspace for you. This is a "
        "personal\nfolder on the computer where the following things are stored:\n\n- The object "
        "files you are working with\n- Your remark codesets\n- Your object file templates\n- Your "
        "print layouts\n- Your personal program settings\n\nThe typical place for the workspace "
        "is in a folder named \"Vantorelle Workspace\" in \"My Documents\",\nbut this guide will "
        "let you choose a different location should you want to.\n\nClick [Next] to continue.");
  });
  script.click("Next");
  await_page(1);
  script.then([this] {
    EXPECT_EQ(gtk_entry_get_text(entry()), std::string(g_get_home_dir()) + "/Vantorelle Workspace");
    EXPECT_STREQ(gtk_label_get_text(label_of(GTK_WIDGET(entry()))), "Workspace location:");
    EXPECT_EQ(text_of_page(),
              "Please make sure that the workspace is located in a folder which can always be "
              "reached from\nthis computer. For instance, if this is a portable computer then you "
              "should not put it on a server on\nthe network. This is because when you bring your "
              "computer with you into the field, you will want\nto also bring the material you "
              "are working with.\n\nClick [Apply] to create your workspace.");
    gtk_entry_set_text(entry(), (folder / "workspace").c_str());
  });
  script.click("Apply");
  await_page(2);
  script.then([] {
    EXPECT_EQ(text_of_page(), "Your workspace was successfully created, and you can now start "
                              "using Vantorelle.\n\nClick [Close] to continue.");
  });
  script.click("Close");
  EXPECT_TRUE(run());
  EXPECT_THAT(list_folder(folder.path()), ElementsAre("workspace"));
  EXPECT_EQ(read_file(folder / "workspace/codesets/a.codeset"), "bytes");
  OwnedText saved;
  ASSERT_TRUE(v_workspace_get_saved_folder_path(saved));
  EXPECT_EQ(saved.get(), folder / "workspace");
}

TEST_F(NewWorkspaceAssistant, LocationTakesTheWidthAndTextsAreInTheCorner) {
  script.when_active("Vantorelle Workspace Setup", expect_text_in_the_corner);
  enter(folder / "workspace");
  script.then([] {
    EXPECT_EQ(gtk_container_get_border_width(GTK_CONTAINER(page())), 8U);
    ASSERT_EQ(labels_of_page().size(), 2U);
    expect_layout(page(),
                  {{"label", labels_of_page()[0], corner(), stays, stays, {{0.0f, 0.0f}}},
                   {"entry", GTK_WIDGET(entry()), below("label", 8), grows, stays},
                   {"Browse...", GTK_WIDGET(find_button(page(), "Browse...")), beside("entry", 8),
                    moves, stays},
                   {"text", labels_of_page()[1], below("entry", 8), stays, stays, {{0.0f, 0.0f}}}});
  });
  script.click("Apply");
  await_page(2);
  script.then(expect_text_in_the_corner);
  script.click("Close");
  EXPECT_TRUE(run());
}

TEST_F(NewWorkspaceAssistant, ReturnsToTheFirstPageWhenTheProposedPlaceIsTaken) {
  const std::string proposed = std::string(g_get_home_dir()) + "/Vantorelle Workspace";
  make_folder(proposed);
  write_file(proposed + "/mine", "mine");
  await_page(0);
  script.click("Next");
  await_page(1);
  script.click("Apply");
  script.answer("Error", exists_message, "Close");
  cancel_on_first_page(proposed);
  EXPECT_FALSE(run());
  EXPECT_THAT(list_folder(proposed), ElementsAre("mine"));
  EXPECT_EQ(remove((proposed + "/mine").c_str()), 0);
  EXPECT_EQ(remove(proposed.c_str()), 0);
}

TEST_F(NewWorkspaceAssistant, ReturnInTheLocationApplies) {
  enter(folder / "workspace");
  script.then([] { gtk_widget_activate(GTK_WIDGET(entry())); });
  await_page(2);
  script.click("Close");
  EXPECT_TRUE(run());
  EXPECT_THAT(list_folder(folder.path()), ElementsAre("workspace"));
}

TEST_F(NewWorkspaceAssistant, ReturnInATakenLocationShowsOneError) {
  make_folder(folder / "taken");
  enter(folder / "taken");
  script.then([] { gtk_widget_activate(GTK_WIDGET(entry())); });
  script.answer("Error", exists_message, "Close");
  cancel_on_first_page(folder / "taken");
  EXPECT_FALSE(run());
}

TEST_F(NewWorkspaceAssistant, KeepsAFileAtThePlace) {
  write_file(folder / "file", "mine");
  enter(folder / "file");
  script.click("Apply");
  script.answer("Error", exists_message, "Close");
  cancel_on_first_page(folder / "file");
  EXPECT_FALSE(run());
  EXPECT_EQ(read_file(folder / "file"), "mine");
}

TEST_F(NewWorkspaceAssistant, DropsBlanksAroundAndTrailingDelimiters) {
  enter(" \t\u00a0\u2003" + (folder / "my \u00a0 workspace//") + " \u3000 ");
  script.click("Apply");
  await_page(2);
  script.click("Close");
  EXPECT_TRUE(run());
  EXPECT_THAT(list_folder(folder.path()), ElementsAre("my \u00a0 workspace"));
}

TEST_F(NewWorkspaceAssistant, FailsForAPlaceInAMissingFolder) {
  enter(folder / "missing/workspace");
  script.click("Apply");
  script.answer("Error", "Creating a workspace at the chosen location failed.", "Close");
  cancel_on_first_page(folder / "missing/workspace");
  EXPECT_FALSE(run());
  EXPECT_TRUE(list_folder(folder.path()).empty());
}

// Other tools of the suite may run in other working folders.
TEST_F(NewWorkspaceAssistant, ARelativePlaceIsInTheHomeFolderAndSavedAsAnAbsolutePath) {
  const std::pair<const char *, std::string> places[] = {{" work/shop/ ", "work/shop"},
                                                         {"~/other shop", "other shop"}};
  const std::string home = g_get_home_dir();
  make_folder(home + "/work");
  for (const auto &[typed, place] : places) {
    enter(typed);
    script.click("Apply");
    await_page(2);
    script.then([typed] { EXPECT_STREQ(gtk_entry_get_text(entry()), typed); });
    script.click("Close");
    EXPECT_TRUE(run());
    OwnedText saved;
    EXPECT_TRUE(v_workspace_get_saved_folder_path(saved));
    EXPECT_EQ(saved.get(), home + "/" + place);
    EXPECT_EQ(read_file(home + "/" + place + "/codesets/a.codeset"), "bytes");
    std::filesystem::remove_all(home + "/" + place);
  }
  std::filesystem::remove_all(home + "/work");
}

TEST_F(NewWorkspaceAssistant, KeepsAFileAtARelativePlace) {
  const std::string taken = std::string(g_get_home_dir()) + "/taken";
  write_file(taken, "mine");
  enter("taken");
  script.click("Apply");
  script.answer("Error", exists_message, "Close");
  cancel_on_first_page("taken");
  EXPECT_FALSE(run());
  EXPECT_EQ(read_file(taken), "mine");
  std::filesystem::remove(taken);
}

TEST_F(NewWorkspaceAssistant, FailsForAnEmptyPlace) {
  for (const char *location : {"", "   ", "/", " // "}) {
    enter(location);
    script.click("Apply");
    script.answer("Error", "Creating a workspace at the chosen location failed.", "Close");
    cancel_on_first_page(location);
    EXPECT_FALSE(run()) << location;
  }
}

TEST_F(NewWorkspaceAssistant, ShowsTheReasonWhenThePlaceCannotBeExamined) {
  write_file(folder / "file", "");
  enter(folder / "file/workspace");
  script.click("Apply");
  script.answer("Error",
                "Cannot access the specified location.\n\nCannot get file status.\n\nError 20: Not "
                "a directory",
                "Close");
  cancel_on_first_page(folder / "file/workspace");
  EXPECT_FALSE(run());
}

TEST_F(NewWorkspaceAssistant, FailsForARelativePlaceInAHomeFolderThatIsNotUtf8) {
  enter("workspace");
  script.then([] { other_home_folder = "/home/\xe5sa"; });
  script.click("Apply");
  script.on("Error", [] {
    other_home_folder = nullptr;
    EXPECT_THAT(message_of(top_window()),
                StartsWith("Cannot access the specified location.\n\n"
                           "Could not convert filename to unicode.\n\nGError 1: "));
  });
  script.click("Close");
  cancel_on_first_page("workspace");
  EXPECT_FALSE(run());
}

TEST_F(NewWorkspaceAssistant, AfterAnErrorTheNextApplyCreates) {
  make_folder(folder / "taken");
  enter(folder / "taken");
  script.click("Apply");
  script.dismiss("Error", exists_message);
  enter(folder / "free");
  script.click("Apply");
  await_page(2);
  script.click("Close");
  EXPECT_TRUE(run());
  EXPECT_THAT(list_folder(folder.path()), ElementsAre("free", "taken"));
}

TEST_F(NewWorkspaceAssistant, CancellingCreatesNothing) {
  for (const int page : {0, 1}) {
    await_page(0);
    if (page == 1) {
      enter(folder / "workspace");
    }
    script.click("Cancel");
    EXPECT_FALSE(run());
  }
  for (const int page : {0, 1}) {
    await_page(0);
    if (page == 1) {
      enter(folder / "workspace");
    }
    script.close("Vantorelle Workspace Setup"); // the toolkit shows the page's title
    EXPECT_FALSE(run());
  }
  EXPECT_TRUE(list_folder(folder.path()).empty());
}

TEST_F(NewWorkspaceAssistant, ClosingTheWindowOfTheLastPageKeepsTheWorkspace) {
  enter(folder / "workspace");
  script.click("Apply");
  await_page(2);
  script.close("Vantorelle Workspace Setup"); // the toolkit shows the page's title
  EXPECT_TRUE(run());
  EXPECT_THAT(list_folder(folder.path()), ElementsAre("workspace"));
}

// The click handler returns before the error is shown.
TEST_F(NewWorkspaceAssistant, ApplyReturnsBeforeItsErrorIsShown) {
  make_folder(folder / "taken");
  bool is_answered = false;
  enter(folder / "taken");
  script.when(
      "the button \"Apply\"",
      [] { return find_button(GTK_WIDGET(assistant()), "Apply") != nullptr; },
      [&is_answered] {
        gtk_button_clicked(find_button(GTK_WIDGET(assistant()), "Apply"));
        is_answered = true;
      });
  script.when(
      "the error", [] { return top_window() != nullptr && assistant() == nullptr; },
      [&is_answered] { EXPECT_TRUE(is_answered); });
  script.dismiss("Error", exists_message);
  cancel_on_first_page(folder / "taken");
  EXPECT_FALSE(run());
}

TEST_F(NewWorkspaceAssistant, ShowsNoErrorAfterTheAssistantIsDestroyed) {
  make_folder(folder / "taken");
  enter(folder / "taken");
  script.when(
      "the button \"Apply\"",
      [] { return find_button(GTK_WIDGET(assistant()), "Apply") != nullptr; },
      [] {
        GtkAssistant *leaving = assistant();
        gtk_button_clicked(find_button(GTK_WIDGET(leaving), "Apply"));
        gtk_widget_destroy(GTK_WIDGET(leaving));
      });
  EXPECT_FALSE(run());
  EXPECT_EQ(top_window(), nullptr);
}

TEST_F(NewWorkspaceAssistant, OnlyApplyCreates) {
  enter(folder / "workspace");
  script.then([] {
    gtk_assistant_update_buttons_state(assistant());
    gtk_assistant_next_page(assistant()); // calls the page function without Apply
  });
  await_page(0);
  script.then([this] { EXPECT_TRUE(list_folder(folder.path()).empty()); });
  script.click("Cancel");
  EXPECT_FALSE(run());
}

TEST_F(NewWorkspaceAssistant, BrowsingProposesAFolderInTheChosenOne) {
  make_folder(folder / "100% <caf\u00e9> & co");
  await_page(0);
  script.click("Next");
  script.click("Browse...");
  script.when(
      "the folder chooser", [] { return GTK_IS_FILE_CHOOSER_DIALOG(top_window()); },
      [] {
        EXPECT_STREQ(gtk_window_get_title(top_window()),
                     "Select a parent folder for your workspace");
      });
  script.choose(folder / "100% <caf\u00e9> & co");
  await_page(1);
  script.then([this] {
    EXPECT_EQ(gtk_entry_get_text(entry()), folder / "100% <caf\u00e9> & co/Vantorelle Workspace");
  });
  script.click("Apply");
  await_page(2);
  script.click("Close");
  EXPECT_TRUE(run());
  EXPECT_THAT(list_folder(folder / "100% <caf\u00e9> & co"), ElementsAre("Vantorelle Workspace"));
}

TEST_F(NewWorkspaceAssistant, BrowsingTheRootFolderProposesAFolderInIt) {
  await_page(0);
  script.click("Next");
  script.click("Browse...");
  script.choose("/");
  await_page(1);
  script.then([] { EXPECT_STREQ(gtk_entry_get_text(entry()), "/Vantorelle Workspace"); });
  script.click("Cancel");
  EXPECT_FALSE(run());
}

TEST_F(NewWorkspaceAssistant, CancelledBrowsingLeavesTheEntry) {
  enter("/some where");
  script.click("Browse...");
  script.cancel_chooser();
  await_page(1);
  script.then([] { EXPECT_STREQ(gtk_entry_get_text(entry()), "/some where"); });
  script.click("Cancel");
  EXPECT_FALSE(run());
}
