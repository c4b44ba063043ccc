#include "editing_window_fixture.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::IsEmpty;

// ---- The list of codes --------------------------------------------------------------------------

TEST_F(EditingWindow, SelectionSetsButtonsAndDescription) {
  select(1);
  check([] {
    EXPECT_TRUE(is_sensitive("Edit"));
    EXPECT_TRUE(is_sensitive("Delete"));
    EXPECT_EQ(shown_description(), "English/United Kingdom [en-uk]\n\nLoss");
  });
  select(2);
  check([] {
    EXPECT_EQ(shown_description(), "English/United Kingdom [en-uk]\n\nStain");
    gtk_tree_selection_unselect_all(selection());
    expect_no_selection();
  });
  run_until_closed();
}

TEST_F(EditingWindow, ADoubleClickDoesNothing) {
  select(0);
  check([] {
    const Owned<GtkTreePath, gtk_tree_path_free> path(gtk_tree_path_new_first());
    gtk_tree_view_row_activated(codes(), path.get(), gtk_tree_view_get_column(codes(), 0));
    EXPECT_EQ(shown_windows().size(), 1U);
  });
  run_until_closed();
}

TEST_F(EditingWindow, AnAddedCodeIsInItsPlaceAndNothingIsSelected) {
  select(2);
  add_code("3", "Fold");
  check([] {
    EXPECT_THAT(code_rows(), ElementsAre("1. Tear", "2. Loss", "3. Fold", "10. Stain"));
    expect_no_selection();
  });
  run_until_closed();
}

TEST_F(EditingWindow, ACancelledAdditionAddsNothing) {
  select(1);
  script.click("Add new");
  script.on(dialog_title,
            [] { EXPECT_EQ(shown_rows(window()), "English/United Kingdom [en-uk]=\n"); });
  script.click("Cancel");
  check([] {
    EXPECT_THAT(code_rows(), ElementsAre("1. Tear", "2. Loss", "10. Stain"));
    EXPECT_EQ(shown_description(), "English/United Kingdom [en-uk]\n\nLoss");
  });
  run_until_closed();
}

TEST_F(EditingWindow, ATakenCodeIsRefused) {
  add_code("10", "Another");
  script.answer("Error", "That code is already taken.", "Close");
  enter_remark("11", "Another");
  expect_codes({"1. Tear", "2. Loss", "10. Stain", "11. Another"});
  run_until_closed();
}

TEST_F(EditingWindow, AnEditedCodeMovesAndNothingIsSelected) {
  edit_code(0);
  enter_remark("3", "Torn");
  check([] {
    EXPECT_THAT(code_rows(), ElementsAre("2. Loss", "3. Torn", "10. Stain"));
    expect_no_selection();
  });
  run_until_saved();
  EXPECT_EQ(read_file(path()),
            codeset_file(paper_head, {{"2", "Loss"}, {"3", "Torn"}, {"10", "Stain"}}));
}

TEST_F(EditingWindow, ACancelledEditChangesNothing) {
  edit_code(1);
  script.on(dialog_title, [] {
    EXPECT_EQ(shown_rows(window()), "English/United Kingdom [en-uk]=Loss\n");
    enter(window(), 0, "Lost");
  });
  script.click("Cancel");
  check([] {
    EXPECT_THAT(code_rows(), ElementsAre("1. Tear", "2. Loss", "10. Stain"));
    EXPECT_EQ(shown_description(), "English/United Kingdom [en-uk]\n\nLoss");
    EXPECT_TRUE(is_sensitive("Edit"));
  });
  run_until_closed();
}

// Deletes at once, without a question.
TEST_F(EditingWindow, DeletesCodes) {
  for (const int row : {1, 1, 0}) {
    delete_code(row);
    check([] {});
  }
  check([] {
    EXPECT_THAT(code_rows(), IsEmpty());
    expect_no_selection();
  });
  expect_refused_save("There must be at least one remark code in the codeset.");
  run_until_closed();
  EXPECT_EQ(read_file(path()), paper_file);
}

TEST_F(EditingWindow, TheCursorIsOnTheRowThatReplacesADeletedOne) {
  delete_code(0);
  check([] { EXPECT_EQ(cursor_row(), 0); });
  run_until_closed();
}

TEST_F(EditingWindow, ADeletedCodeCanBeUsedAgainAndIsNotSaved) {
  delete_code(1);
  expect_codes({"1. Tear", "10. Stain"});
  add_code("2", "Hole");
  run_until_saved();
  EXPECT_EQ(read_file(path()),
            codeset_file(paper_head, {{"1", "Tear"}, {"2", "Hole"}, {"10", "Stain"}}));
}

// Buttons and description match the selection after the deletion, whatever the toolkit selects.
TEST_F(EditingWindow, DeletingUpdatesButtonsAndDescription) {
  delete_code(0);
  check([] {
    GtkTreeModel *model = nullptr;
    GtkTreeIter row;
    const bool is_selected = gtk_tree_selection_get_selected(selection(), &model, &row);
    EXPECT_EQ(is_sensitive("Edit"), is_selected);
    EXPECT_EQ(is_sensitive("Delete"), is_selected);
    EXPECT_EQ(shown_description(), is_selected ? "English/United Kingdom [en-uk]\n\nLoss" : "");
  });
  run_until_closed();
}

// ---- Undo and redo ------------------------------------------------------------------------------

constexpr int ctrl_shift = GDK_CONTROL_MASK | GDK_SHIFT_MASK;

TEST_F(EditingWindow, UndoesAndRedoesEachChangeOfTheCodes) {
  add_code("3", "Fold");
  edit_code(0);
  enter_remark("7", "Torn");
  delete_code(0);
  check([] {
    const auto after = ElementsAre("3. Fold", "7. Torn", "10. Stain");
    EXPECT_THAT(code_rows(), after);
    press_key(GDK_KEY_z, GDK_CONTROL_MASK);
    EXPECT_THAT(code_rows(), ElementsAre("2. Loss", "3. Fold", "7. Torn", "10. Stain"));
    EXPECT_EQ(cursor_row(), 0);
    expect_no_selection();
    press_key(GDK_KEY_z, GDK_CONTROL_MASK);
    EXPECT_THAT(code_rows(), ElementsAre("1. Tear", "2. Loss", "3. Fold", "10. Stain"));
    EXPECT_EQ(cursor_row(), 0);
    press_key(GDK_KEY_z, GDK_CONTROL_MASK);
    EXPECT_THAT(code_rows(), ElementsAre("1. Tear", "2. Loss", "10. Stain"));
    EXPECT_EQ(cursor_row(), 2);
    // Nothing is left to undo.
    press_key(GDK_KEY_z, GDK_CONTROL_MASK);
    EXPECT_THAT(code_rows(), ElementsAre("1. Tear", "2. Loss", "10. Stain"));
    for (int i = 0; i < 4; i++) {
      press_key(GDK_KEY_Z, ctrl_shift);
    }
    EXPECT_THAT(code_rows(), after);
    expect_no_selection();
  });
  run_until_saved();
  EXPECT_EQ(read_file(path()),
            codeset_file(paper_head, {{"3", "Fold"}, {"7", "Torn"}, {"10", "Stain"}}));
}

TEST_F(EditingWindow, SavesTheShownCodesAfterUndo) {
  delete_code(1);
  check([] { press_key(GDK_KEY_z, GDK_CONTROL_MASK); });
  run_until_saved();
  EXPECT_EQ(read_file(path()), paper_file);
}

TEST_F(EditingWindow, UndoSkipsAnEditThatChangedNothing) {
  delete_code(1);
  edit_code(0);
  script.on(dialog_title, [] {});
  script.click("OK");
  check([] {
    EXPECT_EQ(cursor_row(), 0);
    expect_no_selection();
    press_key(GDK_KEY_z, GDK_CONTROL_MASK);
    EXPECT_THAT(code_rows(), ElementsAre("1. Tear", "2. Loss", "10. Stain"));
  });
  run_until_closed();
}

TEST_F(EditingWindow, ACoveredWindowIgnoresItsKeys) {
  delete_code(1);
  check([] {});
  script.click("Add new");
  script.on(dialog_title, [] {
    press_key(GDK_KEY_z, GDK_CONTROL_MASK);
    press_key(GDK_KEY_s, GDK_CONTROL_MASK);
    press_key(GDK_KEY_n, GDK_CONTROL_MASK);
    EXPECT_EQ(shown_windows().size(), 2U);
  });
  script.click("Cancel");
  expect_codes({"1. Tear", "10. Stain"});
  run_until_closed();
}

// ---- Keys ---------------------------------------------------------------------------------------

TEST_F(EditingWindow, MovesThroughTheCodesInsideTheRemarkDialog) {
  edit_code(1);
  script.on(dialog_title, [] {
    gtk_widget_grab_focus(GTK_WIDGET(rows_of(window()).at(0)));
    enter(window(), 0, "Lost");
    press_key(GDK_KEY_Down, GDK_CONTROL_MASK);
  });
  script.on(dialog_title, [] {
    EXPECT_EQ(shown_rows(window()), "English/United Kingdom [en-uk]=Stain\n");
    EXPECT_TRUE(gtk_widget_is_focus(GTK_WIDGET(rows_of(window()).at(0))));
    press_key(GDK_KEY_Up, GDK_CONTROL_MASK);
  });
  script.on(dialog_title, [] {
    EXPECT_EQ(shown_rows(window()), "English/United Kingdom [en-uk]=Lost\n");
    press_key(GDK_KEY_Up, GDK_CONTROL_MASK);
  });
  script.on(dialog_title, [] {
    EXPECT_EQ(shown_rows(window()), "English/United Kingdom [en-uk]=Tear\n");
    press_key(GDK_KEY_Up, GDK_CONTROL_MASK);
  });
  // Moving up from the first code closes the dialog.
  check([] {
    EXPECT_THAT(code_rows(), ElementsAre("1. Tear", "2. Lost", "10. Stain"));
    EXPECT_EQ(cursor_row(), 0);
    expect_no_selection();
  });
  run_until_closed();
}

TEST_F(EditingWindow, MovesThroughTheCodesWithTheKeypadToo) {
  edit_code(1);
  script.on(dialog_title, [] { press_key(GDK_KEY_KP_Down, GDK_CONTROL_MASK); });
  script.on(dialog_title, [] {
    EXPECT_EQ(shown_rows(window()), "English/United Kingdom [en-uk]=Stain\n");
    press_key(GDK_KEY_KP_Up, GDK_CONTROL_MASK);
  });
  script.on(dialog_title,
            [] { EXPECT_EQ(shown_rows(window()), "English/United Kingdom [en-uk]=Loss\n"); });
  script.click("Cancel");
  run_until_closed();
}

TEST_F(EditingWindow, MovingOnKeepsTheDialogWhenTheRemarkIsRefused) {
  edit_code(0);
  script.on(dialog_title, [] {
    enter(window(), 0, "");
    press_key(GDK_KEY_Down, GDK_CONTROL_MASK);
  });
  script.answer("Error", "Missing a description.", "Close");
  script.on(dialog_title, [] {});
  script.click("Cancel");
  expect_codes({"1. Tear", "2. Loss", "10. Stain"});
  run_until_closed();
}

TEST_F(EditingWindow, KeysAddACodeAndSave) {
  check([] {
    EXPECT_EQ(tooltip_of(GTK_WIDGET(find_button(window(), "Add new"))), "Key: Ctrl+N");
    EXPECT_EQ(tooltip_of(GTK_WIDGET(find_button(window(), "Save codeset"))), "Key: Ctrl+S");
    press_key(GDK_KEY_n, GDK_CONTROL_MASK);
  });
  enter_remark("3", "Fold");
  check([] { press_key(GDK_KEY_s, GDK_CONTROL_MASK); });
  EXPECT_EQ(run(), 1);
  EXPECT_EQ(
      read_file(path()),
      codeset_file(paper_head, {{"1", "Tear"}, {"2", "Loss"}, {"3", "Fold"}, {"10", "Stain"}}));
}

TEST_F(EditingWindow, CtrlReturnAddsATranslationAndFocusesIt) {
  check([] {
    GtkWidget *editor = author_editor();
    gtk_widget_grab_focus(GTK_WIDGET(rows_of(editor).at(0)));
    press_key(GDK_KEY_Return, GDK_CONTROL_MASK);
    ASSERT_EQ(rows_of(editor).size(), 2U);
    EXPECT_TRUE(gtk_widget_is_focus(GTK_WIDGET(rows_of(editor).at(1))));
    EXPECT_EQ(rows_of(name_editor()).size(), 2U);
  });
  run_until_closed();
}
