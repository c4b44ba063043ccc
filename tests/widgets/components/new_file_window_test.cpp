#include "gui/components/new_file_window.h"

#include <gmock/gmock.h>

#include "component_fixture.h"
#include "support/gui/layout.h"

using testing::ElementsAre;

namespace {

constexpr const char *form_message =
    "The file name must contain at least one character and then end with \".codeset\"";

class NewFileWindow : public ComponentFixture {
protected:
  NewFileWindow() { make_folders(); }

  std::string run() {
    const OwnedText path = v_components_gui_get_new_file_path(window_stack.get(), &workspace, kind);
    return path ? path.get() : "none";
  }
};

} // namespace

TEST_F(NewFileWindow, AsksForANameThatEndsWithTheExtension) {
  script.when(
      "the focus in the entry",
      [] { return top_window() != nullptr && gtk_widget_has_focus(GTK_WIDGET(entry())); },
      [] {
        EXPECT_STREQ(gtk_window_get_title(top_window()), "Add new");
        EXPECT_STREQ(gtk_entry_get_text(entry()), ".codeset");
        EXPECT_STREQ(gtk_label_get_text(label_of(GTK_WIDGET(entry()))), "Enter new file name:");
        EXPECT_THAT(button_labels(GTK_WIDGET(top_window())), ElementsAre("OK", "Cancel"));
      });
  script.click("Cancel");
  EXPECT_EQ(run(), "none");
}

TEST_F(NewFileWindow, ExtensionIsNotSelectedAndTheCursorIsBeforeIt) {
  script.when(
      "the focus in the entry",
      [] { return top_window() != nullptr && gtk_widget_has_focus(GTK_WIDGET(entry())); },
      [] {
        EXPECT_FALSE(gtk_editable_get_selection_bounds(GTK_EDITABLE(entry()), nullptr, nullptr));
        EXPECT_EQ(gtk_editable_get_position(GTK_EDITABLE(entry())), 0);
      });
  script.close("Add new");
  EXPECT_EQ(run(), "none");
}

TEST_F(NewFileWindow, ButtonsAreAtTheBottomOverTheFullWidth) {
  script.when_active("Add new", [] {
    GtkWidget *window = GTK_WIDGET(top_window());
    const auto label = [&](const char *text) { return GTK_WIDGET(find_label(window, text)); };
    GtkWidget *permitted =
        label("Permitted characters: Lowercase letters, digits and underscores.");
    expect_window_layout(
        top_window(), WindowState::not_maximized,
        {{"label", label("Enter new file name:"), corner(), stays, stays, {{0.0f, 0.0f}}},
         {"entry", GTK_WIDGET(entry()), below("label", 8), grows, stays},
         {"permitted", permitted, below("entry", 8), stays, stays, {{0.0f, 0.0f}}},
         {"OK", GTK_WIDGET(find_button(window, "OK")), below("permitted", 8), stays, moves},
         {"Cancel", GTK_WIDGET(find_button(window, "Cancel")), end_of_row("OK"), moves, moves}});
    expect_buttons_at_both_ends(find_button(window, "OK"), find_button(window, "Cancel"));
    EXPECT_EQ(gtk_window_get_default_widget(top_window()), GTK_WIDGET(find_button(window, "OK")));
  });
  script.close("Add new");
  EXPECT_EQ(run(), "none");
}

TEST_F(NewFileWindow, ClosingYieldsNoPath) {
  script.close("Add new");
  EXPECT_EQ(run(), "none");
}

TEST_F(NewFileWindow, EnterInTheEntryIsOk) {
  script.when(
      "the entry", [] { return top_window() != nullptr; },
      [] {
        gtk_entry_set_text(entry(), "abc.codeset");
        gtk_widget_activate(GTK_WIDGET(entry()));
      });
  EXPECT_EQ(run(), managed("abc.codeset"));
}

TEST_F(NewFileWindow, AcceptsAndCreatesNothing) {
  for (const auto &[typed, name] :
       {std::pair("abc.codeset", "abc.codeset"), std::pair(" \t abc.codeset  ", "abc.codeset"),
        std::pair("\u00a0abc.codeset\u2003\u3000", "abc.codeset"),
        std::pair("abc.CODESET", "abc.CODESET"), std::pair("a_1.Codeset", "a_1.Codeset"),
        std::pair("0.codeset", "0.codeset"), std::pair("_.codeset", "_.codeset")}) {
    enter_name(typed);
    EXPECT_EQ(run(), managed(name)) << typed;
  }
  EXPECT_TRUE(list_folder(managed()).empty());
}

TEST_F(NewFileWindow, RefusesATextThatIsNotANameWithTheExtension) {
  for (const char *typed : {".codeset", ".CODESET", "", "   ", "abc", "abc.txt", "abc.codeset.txt",
                            "abccodeset", "\u00e5codeset", " .codeset ", "\u00a0.codeset\u00a0"}) {
    enter_name(typed);
    script.answer("Error", form_message, "Close");
    script.then([typed = typed] { EXPECT_STREQ(gtk_entry_get_text(entry()), typed); });
    script.close("Add new");
    EXPECT_EQ(run(), "none") << typed;
  }
}

TEST_F(NewFileWindow, RefusesTheFirstCharacterThatIsNotPermitted) {
  for (const auto &[typed, character] :
       {std::pair("Abc.codeset", "A"), std::pair("\u00e5bc.codeset", "\u00e5"),
        std::pair("abc-1.codeset", "-"), std::pair("a b.codeset", " "),
        std::pair("a\u00a0b.codeset", "\u00a0"), std::pair("a/b.codeset", "/"),
        std::pair("a.b.codeset", "."), std::pair("a%s<&.codeset", "%"),
        std::pair("ab<.codeset", "<"), std::pair("ab\u20ac\u00e5.codeset", "\u20ac"),
        std::pair("a\U0001f600.codeset", "\U0001f600"), std::pair("..codeset", ".")}) {
    enter_name(typed);
    script.answer("Error", "The character \"" + std::string(character) + "\" is not permitted.",
                  "Close");
    script.then([typed = typed] { EXPECT_STREQ(gtk_entry_get_text(entry()), typed); });
    script.click("Cancel");
    EXPECT_EQ(run(), "none") << typed;
  }
}

TEST_F(NewFileWindow, RefusesATakenNameWithTheTextOfItsFile) {
  write_file(managed("abc.codeset"), "text:Paper <b>& 100%s");
  enter_name("abc.codeset");
  script.answer("Error", "That file name is already taken for \"Paper <b>& 100%s\"", "Close");
  script.click("Cancel");
  EXPECT_EQ(run(), "none");
  EXPECT_THAT(summarised, ElementsAre(managed("abc.codeset")));
}

TEST_F(NewFileWindow, RefusesATakenNameWithoutAText) {
  write_file(managed("abc.codeset"), "something else");
  make_folder(managed("folder.codeset"));
  for (const char *name : {"abc.codeset", "folder.codeset"}) {
    enter_name(name);
    script.answer("Error", "That file name is already taken.", "Close");
    script.click("Cancel");
    EXPECT_EQ(run(), "none");
  }
}

TEST_F(NewFileWindow, ANameThatCannotBeExaminedCountsAsTaken) {
  workspace.folder_path = copy_text((workspace_folder / "file").c_str());
  write_file(workspace_folder / "file", "");
  enter_name("abc.codeset");
  script.answer("Error", "That file name is already taken.", "Close");
  script.click("Cancel");
  EXPECT_EQ(run(), "none");
}

TEST_F(NewFileWindow, AfterARefusalAnotherNameIsAccepted) {
  enter_name("Abc.codeset");
  script.dismiss("Error", "The character \"A\" is not permitted.");
  enter_name("abc.codeset");
  EXPECT_EQ(run(), managed("abc.codeset"));
}

TEST_F(NewFileWindow, AcceptsANameInAMissingFolder) {
  workspace.folder_path = copy_text((workspace_folder / "nowhere").c_str());
  enter_name("abc.codeset");
  EXPECT_EQ(run(), workspace_folder / "nowhere/codesets/abc.codeset");
}
