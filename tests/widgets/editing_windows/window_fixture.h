#pragma once
// The objects that the editing windows borrow, and the rows of their language-string editors.

#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "gui/editing/editing_widgets.h"
#include "gui/editing/langstr_editor.h"
#include "gui/editing/spell_checker_cache.h"
#include "gui/window_stack.h"
#include "support/files.h"
#include "support/gui_driver.h"
#include "workspace/workspace.h"

class WindowFixture : public testing::Test {
protected:
  // The dictionaries are loaded once for all tests of a suite.
  static void SetUpTestSuite() { checkers = std::make_unique<VSpellCheckerCacheOwner>(); }
  static void TearDownTestSuite() { checkers.reset(); }

  WindowFixture();

  VSettings *settings() { return workspace.settings.get(); }

  TemporaryFolder folder;
  VWorkspace workspace; // preferred languages: English, Swedish
  OwnedWindowStack window_stack = v_window_stack_new();
  GuiScript script;

private:
  static std::unique_ptr<VSpellCheckerCacheOwner> checkers;
};

bool is_sensitive(const std::string &button_label);

// The fields and language choices of the editor at or below the widget, from top to bottom.
std::vector<GtkEntry *> rows_of(GtkWidget *root);
std::vector<GtkComboBox *> languages_of(GtkWidget *root);
// Enters the text (UTF-8) in the row.
void enter(GtkWidget *root, std::size_t row, const char *text);
// Adds a row with the plus button, as a user does.
void add_row(GtkWidget *root);
// One line per row: language, equals sign, text.
std::string shown_rows(GtkWidget *root);
