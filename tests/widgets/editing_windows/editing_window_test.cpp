#include "gui/editing/editing_window.h"

#include <cstdio>
#include <ctime>
#include <memory>
#include <optional>

#include <fcntl.h>
#include <sys/stat.h>

#include <gmock/gmock.h>

#include "base/error.h"
#include "codeset/codeset_io.h"
#include "support/editing_faults.h"
#include "support/gui/layout.h"
#include "window_fixture.h"
#include "workspace/drafts.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr const char *dialog_title = "Edit remark code";
constexpr const char *question = "Are you sure you want to close the codeset without saving?";

// A codeset file as the program writes it. Each line of the head is a whole element.
std::string codeset_file(const std::vector<std::string> &head,
                         const std::vector<std::pair<std::string, std::string>> &codes) {
  std::string text = "<?xml version=\"1.0\" encoding=\"iso-8859-1\"?>\n\n<codeset>\n\n";
  for (const std::string &element : head) {
    text += "\t" + element + "\n";
  }
  for (const auto &[code, description] : codes) {
    text += "\n\t<remark>\n\t\t<code>" + code + "</code>\n\t\t<description lang=\"en-uk\">" +
            description + "</description>\n\t</remark>\n";
  }
  return text + "\n</codeset>\n";
}

const std::vector<std::string> paper_head = {
    "<name lang=\"en-uk\">Paper</name>",
    "<name lang=\"sv\">Papper</name>",
    "<author lang=\"sv\">\xc5sa</author>",
    "<version>1.2</version>",
};

GtkWidget *window() { return GTK_WIDGET(top_window()); }

GtkFrame *frame(const std::string &label) {
  for (GtkWidget *found : find_widgets(window(), GTK_TYPE_FRAME)) {
    GtkWidget *label_widget = gtk_frame_get_label_widget(GTK_FRAME(found));
    if (GTK_IS_LABEL(label_widget) && gtk_label_get_text(GTK_LABEL(label_widget)) == label) {
      return GTK_FRAME(found);
    }
  }
  ADD_FAILURE() << "There is no frame \"" << label << "\".";
  return nullptr;
}

GtkWidget *name_editor() { return GTK_WIDGET(frame("Codeset name: (Required)")); }
GtkWidget *author_editor() { return GTK_WIDGET(frame("Author:")); }
GtkEntry *version_entry() {
  return find_widget<GtkEntry>(GTK_WIDGET(frame("Version:")), V_TYPE_SPACIFYING_ENTRY);
}

GtkTreeView *codes() { return find_widget<GtkTreeView>(window(), GTK_TYPE_TREE_VIEW); }
GtkTreeSelection *selection() { return gtk_tree_view_get_selection(codes()); }

std::vector<std::string> code_rows() {
  std::vector<std::string> texts;
  GtkTreeModel *model = gtk_tree_view_get_model(codes());
  GtkTreeIter row;
  for (gboolean more = gtk_tree_model_get_iter_first(model, &row); more;
       more = gtk_tree_model_iter_next(model, &row)) {
    OwnedText text;
    gtk_tree_model_get(model, &row, 0, static_cast<char **>(receive(text)), -1);
    texts.emplace_back(text.get());
  }
  return texts;
}

void select_code(int row) {
  const Owned<GtkTreePath, gtk_tree_path_free> path(gtk_tree_path_new_from_indices(row, -1));
  gtk_tree_view_set_cursor(codes(), path.get(), nullptr, FALSE);
}

std::string shown_description() {
  GtkTextView *view = find_widget<GtkTextView>(
      find_widget<GtkWidget>(window(), V_TYPE_LANGSTR_DISPLAY), GTK_TYPE_TEXT_VIEW);
  char *text = nullptr;
  g_object_get(gtk_text_view_get_buffer(view), "text", &text, nullptr);
  return OwnedText(text).get();
}

// Expects that no row is selected, and that buttons and description match.
void expect_no_selection() {
  EXPECT_EQ(gtk_tree_selection_count_selected_rows(selection()), 0);
  EXPECT_FALSE(is_sensitive("Edit"));
  EXPECT_FALSE(is_sensitive("Delete"));
  for (const char *label : {"Add new", "Save codeset", "Close"}) {
    EXPECT_TRUE(is_sensitive(label)) << label;
  }
  EXPECT_EQ(shown_description(), "");
}

void expect_layout_of_window() {
  GtkWidget *version_frame = GTK_WIDGET(frame("Version:"));
  GtkWidget *codes_frame = GTK_WIDGET(frame("Remark codes: (Required)"));
  GtkWidget *list = gtk_widget_get_parent(GTK_WIDGET(codes()));
  GtkWidget *display = find_widget<GtkWidget>(window(), V_TYPE_LANGSTR_DISPLAY);
  const auto button = [](const char *label) { return GTK_WIDGET(find_button(window(), label)); };
  std::vector<LayoutRow> rows = {
      {"name", name_editor(), corner(), grows, stays},
      {"name field", GTK_WIDGET(rows_of(name_editor())[0]), anywhere(), grows, stays},
      {"author", author_editor(), below("name", 8), grows, stays},
      {"author field", GTK_WIDGET(rows_of(author_editor())[0]), anywhere(), grows, stays},
      {"version", version_frame, below("author", 8), grows, stays},
      {"version field", GTK_WIDGET(version_entry()), anywhere(), grows, stays}};
  expect_layout(gtk_widget_get_parent(version_frame), rows);
  rows.insert(rows.end(),
              {{"codes", codes_frame, below("version", 8), grows, grows},
               {"list", list, anywhere(), grows_by_half, grows},
               {"description", display, beside("list", 8), moves_and_grows_by_half, grows},
               {"Add new", button("Add new"), below("list", 8), stays, moves},
               {"Edit", button("Edit"), beside("Add new", 8), stays, moves},
               {"Delete", button("Delete"), beside("Edit", 8), stays, moves},
               {"Save codeset", button("Save codeset"), below("codes", 8), stays, moves},
               {"Close", button("Close"), end_of_row("Save codeset"), moves, moves}});
  expect_window_layout(top_window(), WindowState::maximized, rows);
  expect_buttons_at_both_ends(find_button(window(), "Save codeset"),
                              find_button(window(), "Close"));
  for (GtkWidget *framed : {name_editor(), author_editor(), version_frame, codes_frame}) {
    GtkWidget *box = gtk_bin_get_child(GTK_BIN(framed));
    EXPECT_EQ(gtk_container_get_border_width(GTK_CONTAINER(box)), 8U);
    EXPECT_EQ(gtk_box_get_spacing(GTK_BOX(box)), 8);
  }
}

class EditingWindow : public WindowFixture {
protected:
  std::string path() const { return folder / name; }
  std::string title() const { return "Edit remark codeset - " + name; }

  void write_paper() {
    write_file(path(), codeset_file(paper_head, {{"1", "Tear"}, {"2", "Loss"}, {"10", "Stain"}}));
  }

  int run() {
    const RunContext context = {window_stack.get(), &workspace};
    const int saved = run_editing_window(&context, path().c_str());
    EXPECT_EQ(top_window(), nullptr);
    return saved;
  }

  void check(std::function<void()> act) { on(title(), std::move(act)); }
  void select(int row) {
    check([row] { select_code(row); });
  }
  void answer_question(const char *label) { script.answer("Really close?", question, label); }
  void close_without_saving() {
    check([] {});
    script.click("Close");
    answer_question("gtk-close");
  }
  void expect_refused_save(const std::string &message) {
    check([] {});
    script.click("Save codeset").answer("Error", message, "Close");
  }
  // Fills in and confirms the remark dialog, which is open or about to open.
  void enter_remark(const char *code, const char *description) {
    on(dialog_title, [code, description] {
      for (GtkWidget *entry : find_widgets(window(), V_TYPE_SPACIFYING_ENTRY)) {
        const bool in_editor = gtk_widget_get_ancestor(entry, V_TYPE_LANGSTR_EDITOR) != nullptr;
        gtk_entry_set_text(GTK_ENTRY(entry), in_editor ? description : code);
      }
    });
    script.click("OK");
  }
  void add_code(const char *code, const char *description) {
    check([] {});
    script.click("Add new");
    enter_remark(code, description);
  }
  void delete_code(int row) {
    select(row);
    script.click("Delete");
  }

  std::string name = "paper.codeset";
};

} // namespace

// ---- Opening ------------------------------------------------------------------------------------

TEST_F(EditingWindow, ShowsTheCodeset) {
  write_paper();
  check([] {
    EXPECT_EQ(shown_rows(name_editor()),
              "English/United Kingdom [en-uk]=Paper\nSwedish [sv]=Papper\n");
    EXPECT_EQ(shown_rows(author_editor()), "Swedish [sv]=\u00c5sa\n");
    EXPECT_STREQ(gtk_entry_get_text(version_entry()), "1.2");
    EXPECT_THAT(code_rows(), ElementsAre("1. Tear", "2. Loss", "10. Stain"));
    EXPECT_EQ(
        find_widget<GtkTreeView>(GTK_WIDGET(frame("Remark codes: (Required)")), GTK_TYPE_TREE_VIEW),
        codes());
    expect_no_selection();
  });
  close_without_saving();
  EXPECT_EQ(run(), 0);
  EXPECT_EQ(read_file(path()),
            codeset_file(paper_head, {{"1", "Tear"}, {"2", "Loss"}, {"10", "Stain"}}));
}

TEST_F(EditingWindow, IsMaximisedWithTheFocusInTheFirstNameField) {
  write_paper();
  script.when(
      "a maximised window",
      [] { return window() != nullptr && gtk_window_is_maximized(top_window()); }, [] {});
  script.when(
      "the focus in the name",
      [] { return gtk_widget_has_focus(GTK_WIDGET(rows_of(name_editor())[0])); }, [] {});
  close_without_saving();
  run();
}

TEST_F(EditingWindow, SavesByDefaultButNotFromAField) {
  write_paper();
  check([] {
    EXPECT_EQ(gtk_window_get_default_widget(top_window()),
              GTK_WIDGET(find_button(window(), "Save codeset")));
    EXPECT_FALSE(gtk_widget_get_can_default(GTK_WIDGET(find_button(window(), "Close"))));
    for (GtkEntry *entry :
         {rows_of(name_editor())[0], rows_of(author_editor())[0], version_entry()}) {
      EXPECT_FALSE(gtk_entry_get_activates_default(entry));
    }
  });
  close_without_saving();
  run();
}

TEST_F(EditingWindow, HasTheListBesideTheDescription) {
  write_paper();
  check([] {
    expect_scrolls_downwards(reinterpret_cast<GtkScrolledWindow *>(gtk_widget_get_ancestor(
                                 GTK_WIDGET(codes()), GTK_TYPE_SCROLLED_WINDOW)),
                             200, 150);
    expect_scrolls_downwards(find_widget<GtkScrolledWindow>(window(), V_TYPE_LANGSTR_DISPLAY), 300,
                             150);
    EXPECT_FALSE(gtk_tree_view_get_headers_visible(codes()));
    EXPECT_EQ(gtk_tree_view_get_n_columns(codes()), 1U);
    EXPECT_STREQ(gtk_tree_view_column_get_title(gtk_tree_view_get_column(codes(), 0)), "Remark");
    EXPECT_EQ(gtk_tree_selection_get_mode(selection()), GTK_SELECTION_SINGLE);
    EXPECT_STREQ(atk_object_get_name(gtk_widget_get_accessible(GTK_WIDGET(codes()))),
                 "Remark codes");
    EXPECT_STREQ(atk_object_get_name(gtk_widget_get_accessible(GTK_WIDGET(version_entry()))),
                 "Version");
  });
  close_without_saving();
  run();
}

TEST_F(EditingWindow, ListAndDescriptionFillTheRemainingRoom) {
  write_paper();
  script.when(
      "the maximized window",
      [] { return window() != nullptr && gtk_window_is_maximized(top_window()); },
      expect_layout_of_window);
  close_without_saving();
  run();
}

TEST_F(EditingWindow, ButtonsAreInTheirOrder) {
  write_paper();
  check([] {
    std::vector<std::string> labels = button_labels(window());
    std::erase_if(labels, [](const std::string &label) { return label[0] == ' '; });
    EXPECT_THAT(labels, ElementsAre("Add new", "Edit", "Delete", "Save codeset", "Close"));
    GtkAllocation close_button;
    GtkAllocation whole;
    gtk_widget_get_allocation(GTK_WIDGET(find_button(window(), "Close")), &close_button);
    gtk_widget_get_allocation(gtk_bin_get_child(GTK_BIN(window())), &whole);
    EXPECT_EQ(close_button.x + close_button.width, whole.x + whole.width);
  });
  close_without_saving();
  run();
}

TEST_F(EditingWindow, AMissingFileIsANewCodeset) {
  name = "new.codeset";
  check([] {
    EXPECT_EQ(shown_rows(name_editor()), "English/United Kingdom [en-uk]=\n");
    EXPECT_EQ(shown_rows(author_editor()), "English/United Kingdom [en-uk]=\n");
    EXPECT_STREQ(gtk_entry_get_text(version_entry()), "");
    EXPECT_THAT(code_rows(), IsEmpty());
    expect_no_selection();
  });
  close_without_saving();
  EXPECT_EQ(run(), 0);
  EXPECT_FALSE(path_exists(path()));
}

TEST_F(EditingWindow, ANewCodesetIsSavedToItsPath) {
  name = "new.codeset";
  check([] {
    enter(name_editor(), 0, "  New  \u00e5 <&> %s ");
    add_row(name_editor());
    enter(name_editor(), 1, "Ny");
  });
  add_code("b", "B & co");
  add_code("a10", "A10");
  add_code("a9", "A9");
  check([] { EXPECT_THAT(code_rows(), ElementsAre("a9. A9", "a10. A10", "b. B & co")); });
  script.click("Save codeset");
  EXPECT_EQ(run(), 1);
  EXPECT_EQ(read_file(path()),
            codeset_file({"<name lang=\"en-uk\">New \xe5 &lt;&amp;&gt; %s</name>",
                          "<name lang=\"sv\">Ny</name>"},
                         {{"a9", "A9"}, {"a10", "A10"}, {"b", "B &amp; co"}}));
}

TEST_F(EditingWindow, ShowsAllTextsLiterally) {
  name = "100%s <b>&amp; \u00e5.codeset";
  write_file(path(), codeset_file({"<name lang=\"en-uk\">%s &lt;b&gt; &amp;amp; \xe5</name>"},
                                  {{"%s%n", "%d &lt;b&gt; &amp;amp; \xe5"}}));
  check([] {
    EXPECT_EQ(shown_rows(name_editor()), "English/United Kingdom [en-uk]=%s <b> &amp; \u00e5\n");
    EXPECT_THAT(code_rows(), ElementsAre("%s%n. %d <b> &amp; \u00e5"));
  });
  select(0);
  check([] {
    EXPECT_EQ(shown_description(), "English/United Kingdom [en-uk]\n\n%d <b> &amp; \u00e5");
    GtkTreeModel *model = gtk_tree_view_get_model(codes());
    GtkTreeIter row;
    gtk_tree_model_get_iter_first(model, &row);
    GtkTreeViewColumn *column = gtk_tree_view_get_column(codes(), 0);
    gtk_tree_view_column_cell_set_cell_data(column, model, &row, FALSE, FALSE);
    GList *cells = gtk_cell_layout_get_cells(GTK_CELL_LAYOUT(column));
    OwnedText text;
    g_object_get(cells->data, "text", static_cast<char **>(receive(text)), nullptr);
    g_list_free(cells);
    EXPECT_STREQ(text.get(), "%s%n. %d <b> &amp; \u00e5");
  });
  close_without_saving();
  EXPECT_EQ(run(), 0);
}

TEST_F(EditingWindow, RowsAreInThePreferredLanguage) {
  settings()->preferred_languages = {"sv", "en-uk"};
  write_file(path(), "<codeset><name lang='sv'>P</name>"
                     "<remark><code>1</code><description lang='en-uk'>Tear</description>"
                     "<description lang='sv'>Reva</description></remark>"
                     "<remark><code>2</code><description lang='de'>Verlust</description></remark>"
                     "</codeset>");
  check([] { EXPECT_THAT(code_rows(), ElementsAre("1. Reva", "2. Verlust")); });
  select(0);
  check([] {
    EXPECT_EQ(shown_description(),
              "English/United Kingdom [en-uk]\n\nTear\n\nSwedish [sv]\n\nReva");
  });
  close_without_saving();
  run();
}

TEST_F(EditingWindow, ShowsAnErrorWhenThePathCannotBeExamined) {
  write_file(folder / "100%s <b> \u00e5", "");
  name = "100%s <b> \u00e5/x.codeset";
  script.answer("Error", "Something went wrong when accessing the codeset file:\n\n" + path(),
                "Close");
  EXPECT_EQ(run(), 0);
}

TEST_F(EditingWindow, ShowsAnErrorWhenTheFileCannotBeRead) {
  name = "100%s <b> \u00e5.codeset";
  write_file(path(), "<codesets/>");
  script.answer("Error",
                "Error when loading the codeset file:\n\n" + path() + "\n\nNot a codeset file.",
                "Close");
  EXPECT_EQ(run(), 0);
  EXPECT_EQ(read_file(path()), "<codesets/>");
}

TEST_F(EditingWindow, ShowsTheReadersMessageAfterThePath) {
  write_file(path(), "<codeset><name lang='sv'>P</name></codeset>");
  script.answer("Error",
                "Error when loading the codeset file:\n\n" + path() +
                    "\n\nError parsing codeset file.\n\nMissing remarks.",
                "Close");
  EXPECT_EQ(run(), 0);
}

TEST_F(EditingWindow, ShowsAnErrorWhenThePathIsAFolder) {
  make_folder(path());
  script.when(
      "the message", [] { return is_on_top("Error"); },
      [this] {
        EXPECT_THAT(message_of(top_window()),
                    testing::StartsWith("Error when loading the codeset file:\n\n" + path() +
                                        "\n\nError loading codeset file.\n\n"));
      });
  script.click("Close");
  EXPECT_EQ(run(), 0);
}

// ---- The list of codes --------------------------------------------------------------------------

TEST_F(EditingWindow, SelectionSetsButtonsAndDescription) {
  write_paper();
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
  close_without_saving();
  run();
}

TEST_F(EditingWindow, ADoubleClickDoesNothing) {
  write_paper();
  select(0);
  check([] {
    const Owned<GtkTreePath, gtk_tree_path_free> path(gtk_tree_path_new_first());
    gtk_tree_view_row_activated(codes(), path.get(), gtk_tree_view_get_column(codes(), 0));
    EXPECT_EQ(shown_windows().size(), 1U);
  });
  close_without_saving();
  run();
}

TEST_F(EditingWindow, AnAddedCodeIsInItsPlaceAndNothingIsSelected) {
  write_paper();
  select(2);
  add_code("3", "Fold");
  check([] {
    EXPECT_THAT(code_rows(), ElementsAre("1. Tear", "2. Loss", "3. Fold", "10. Stain"));
    expect_no_selection();
  });
  close_without_saving();
  run();
}

TEST_F(EditingWindow, ACancelledAdditionAddsNothing) {
  write_paper();
  select(1);
  script.click("Add new");
  on(dialog_title, [] { EXPECT_EQ(shown_rows(window()), "English/United Kingdom [en-uk]=\n"); });
  script.click("Cancel");
  check([] {
    EXPECT_THAT(code_rows(), ElementsAre("1. Tear", "2. Loss", "10. Stain"));
    EXPECT_EQ(shown_description(), "English/United Kingdom [en-uk]\n\nLoss");
  });
  close_without_saving();
  run();
}

TEST_F(EditingWindow, ATakenCodeIsRefused) {
  write_paper();
  add_code("10", "Another");
  script.answer("Error", "That code is already taken.", "Close");
  enter_remark("11", "Another");
  check([] {
    EXPECT_THAT(code_rows(), ElementsAre("1. Tear", "2. Loss", "10. Stain", "11. Another"));
  });
  close_without_saving();
  run();
}

TEST_F(EditingWindow, AnEditedCodeMovesAndNothingIsSelected) {
  write_paper();
  select(0);
  script.click("Edit");
  enter_remark("3", "Torn");
  check([] {
    EXPECT_THAT(code_rows(), ElementsAre("2. Loss", "3. Torn", "10. Stain"));
    expect_no_selection();
  });
  script.click("Save codeset");
  EXPECT_EQ(run(), 1);
  EXPECT_EQ(read_file(path()),
            codeset_file(paper_head, {{"2", "Loss"}, {"3", "Torn"}, {"10", "Stain"}}));
}

TEST_F(EditingWindow, ACancelledEditChangesNothing) {
  write_paper();
  select(1);
  script.click("Edit");
  on(dialog_title, [] {
    EXPECT_EQ(shown_rows(window()), "English/United Kingdom [en-uk]=Loss\n");
    enter(window(), 0, "Lost");
  });
  script.click("Cancel");
  check([] {
    EXPECT_THAT(code_rows(), ElementsAre("1. Tear", "2. Loss", "10. Stain"));
    EXPECT_EQ(shown_description(), "English/United Kingdom [en-uk]\n\nLoss");
    EXPECT_TRUE(is_sensitive("Edit"));
  });
  close_without_saving();
  run();
}

// Deletes at once, without a question.
TEST_F(EditingWindow, DeletesCodes) {
  write_paper();
  for (const int row : {1, 1, 0}) {
    delete_code(row);
    check([] {});
  }
  check([] {
    EXPECT_THAT(code_rows(), IsEmpty());
    expect_no_selection();
  });
  expect_refused_save("There must be at least one remark code in the codeset.");
  close_without_saving();
  EXPECT_EQ(run(), 0);
  EXPECT_EQ(read_file(path()),
            codeset_file(paper_head, {{"1", "Tear"}, {"2", "Loss"}, {"10", "Stain"}}));
}

TEST_F(EditingWindow, ADeletedCodeCanBeUsedAgainAndIsNotSaved) {
  write_paper();
  delete_code(1);
  check([] { EXPECT_THAT(code_rows(), ElementsAre("1. Tear", "10. Stain")); });
  add_code("2", "Hole");
  script.click("Save codeset");
  EXPECT_EQ(run(), 1);
  EXPECT_EQ(read_file(path()),
            codeset_file(paper_head, {{"1", "Tear"}, {"2", "Hole"}, {"10", "Stain"}}));
}

// Buttons and description match the selection after the deletion, whatever the toolkit selects.
TEST_F(EditingWindow, DeletingUpdatesButtonsAndDescription) {
  write_paper();
  delete_code(0);
  check([] {
    GtkTreeModel *model = nullptr;
    GtkTreeIter row;
    const bool is_selected = gtk_tree_selection_get_selected(selection(), &model, &row);
    EXPECT_EQ(is_sensitive("Edit"), is_selected);
    EXPECT_EQ(is_sensitive("Delete"), is_selected);
    EXPECT_EQ(shown_description(), is_selected ? "English/United Kingdom [en-uk]\n\nLoss" : "");
  });
  close_without_saving();
  run();
}

// ---- Undo and redo ------------------------------------------------------------------------------

constexpr int ctrl_shift = GDK_CONTROL_MASK | GDK_SHIFT_MASK;

// The row with the keyboard cursor, from 0.
int cursor_row() {
  Owned<GtkTreePath, gtk_tree_path_free> path;
  gtk_tree_view_get_cursor(codes(), receive(path), nullptr);
  return path ? gtk_tree_path_get_indices(path.get())[0] : -1;
}

TEST_F(EditingWindow, UndoesAndRedoesEachChangeOfTheCodes) {
  write_paper();
  add_code("3", "Fold");
  select(0);
  script.click("Edit");
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
  script.click("Save codeset");
  EXPECT_EQ(run(), 1);
  EXPECT_EQ(read_file(path()),
            codeset_file(paper_head, {{"3", "Fold"}, {"7", "Torn"}, {"10", "Stain"}}));
}

TEST_F(EditingWindow, SavesTheShownCodesAfterUndo) {
  write_paper();
  delete_code(1);
  check([] { press_key(GDK_KEY_z, GDK_CONTROL_MASK); });
  script.click("Save codeset");
  EXPECT_EQ(run(), 1);
  EXPECT_EQ(read_file(path()),
            codeset_file(paper_head, {{"1", "Tear"}, {"2", "Loss"}, {"10", "Stain"}}));
}

TEST_F(EditingWindow, UndoSkipsAnEditThatChangedNothing) {
  write_paper();
  delete_code(1);
  select(0);
  script.click("Edit");
  on(dialog_title, [] {});
  script.click("OK");
  check([] {
    EXPECT_EQ(cursor_row(), 0);
    expect_no_selection();
    press_key(GDK_KEY_z, GDK_CONTROL_MASK);
    EXPECT_THAT(code_rows(), ElementsAre("1. Tear", "2. Loss", "10. Stain"));
  });
  close_without_saving();
  run();
}

TEST_F(EditingWindow, ACoveredWindowIgnoresItsKeys) {
  write_paper();
  delete_code(1);
  check([] {});
  script.click("Add new");
  on(dialog_title, [] {
    press_key(GDK_KEY_z, GDK_CONTROL_MASK);
    press_key(GDK_KEY_s, GDK_CONTROL_MASK);
    press_key(GDK_KEY_n, GDK_CONTROL_MASK);
    EXPECT_EQ(shown_windows().size(), 2U);
  });
  script.click("Cancel");
  check([] { EXPECT_THAT(code_rows(), ElementsAre("1. Tear", "10. Stain")); });
  close_without_saving();
  run();
}

// ---- Keys ---------------------------------------------------------------------------------------

TEST_F(EditingWindow, MovesThroughTheCodesInsideTheRemarkDialog) {
  write_paper();
  select(1);
  script.click("Edit");
  on(dialog_title, [] {
    gtk_widget_grab_focus(GTK_WIDGET(rows_of(window()).at(0)));
    enter(window(), 0, "Lost");
    press_key(GDK_KEY_Down, GDK_CONTROL_MASK);
  });
  on(dialog_title, [] {
    EXPECT_EQ(shown_rows(window()), "English/United Kingdom [en-uk]=Stain\n");
    EXPECT_TRUE(gtk_widget_is_focus(GTK_WIDGET(rows_of(window()).at(0))));
    press_key(GDK_KEY_Up, GDK_CONTROL_MASK);
  });
  on(dialog_title, [] {
    EXPECT_EQ(shown_rows(window()), "English/United Kingdom [en-uk]=Lost\n");
    press_key(GDK_KEY_Up, GDK_CONTROL_MASK);
  });
  on(dialog_title, [] {
    EXPECT_EQ(shown_rows(window()), "English/United Kingdom [en-uk]=Tear\n");
    press_key(GDK_KEY_Up, GDK_CONTROL_MASK);
  });
  // Moving up from the first code closes the dialog.
  check([] {
    EXPECT_THAT(code_rows(), ElementsAre("1. Tear", "2. Lost", "10. Stain"));
    EXPECT_EQ(cursor_row(), 0);
    expect_no_selection();
  });
  close_without_saving();
  run();
}

TEST_F(EditingWindow, MovingOnKeepsTheDialogWhenTheRemarkIsRefused) {
  write_paper();
  select(0);
  script.click("Edit");
  on(dialog_title, [] {
    enter(window(), 0, "");
    press_key(GDK_KEY_Down, GDK_CONTROL_MASK);
  });
  script.answer("Error", "Missing a description.", "Close");
  on(dialog_title, [] {});
  script.click("Cancel");
  check([] { EXPECT_THAT(code_rows(), ElementsAre("1. Tear", "2. Loss", "10. Stain")); });
  close_without_saving();
  run();
}

TEST_F(EditingWindow, KeysAddACodeAndSave) {
  write_paper();
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
  write_paper();
  check([] {
    GtkWidget *editor = author_editor();
    gtk_widget_grab_focus(GTK_WIDGET(rows_of(editor).at(0)));
    press_key(GDK_KEY_Return, GDK_CONTROL_MASK);
    ASSERT_EQ(rows_of(editor).size(), 2U);
    EXPECT_TRUE(gtk_widget_is_focus(GTK_WIDGET(rows_of(editor).at(1))));
    EXPECT_EQ(rows_of(name_editor()).size(), 2U);
  });
  close_without_saving();
  run();
}

// ---- Saving -------------------------------------------------------------------------------------

TEST_F(EditingWindow, AnUnchangedCodesetIsSavedAsItWas) {
  write_paper();
  const std::string bytes = read_file(path());
  check([] {});
  script.click("Save codeset");
  EXPECT_EQ(run(), 1);
  EXPECT_EQ(read_file(path()), bytes);
}

TEST_F(EditingWindow, SavingReportsOneErrorAtATime) {
  name = "new.codeset";
  check([] {
    add_row(author_editor());
    enter(author_editor(), 0, "One");
    enter(author_editor(), 1, "Two");
    gtk_combo_box_set_active(languages_of(author_editor())[1], 0);
  });
  expect_refused_save("There must be at least one remark code in the codeset.");
  add_code("1", "Tear");
  expect_refused_save("The codeset must have a name.");
  check([] { enter(name_editor(), 0, " \u00a0 "); });
  expect_refused_save("The codeset must have a name.");
  check([] {
    add_row(name_editor());
    enter(name_editor(), 0, "N");
    enter(name_editor(), 1, "M");
    gtk_combo_box_set_active(languages_of(name_editor())[0], 1);
  });
  expect_refused_save("Each language may only appear once. Language \"sv\" appears several times.");
  check([] { gtk_combo_box_set_active(languages_of(name_editor())[0], 0); });
  expect_refused_save(
      "Each language may only appear once. Language \"en-uk\" appears several times.");
  check([this] {
    EXPECT_FALSE(path_exists(path()));
    EXPECT_EQ(shown_rows(name_editor()), "English/United Kingdom [en-uk]=N\nSwedish [sv]=M\n");
    EXPECT_EQ(shown_rows(author_editor()),
              "English/United Kingdom [en-uk]=One\nEnglish/United Kingdom [en-uk]=Two\n");
    enter(author_editor(), 1, "");
  });
  script.click("Save codeset");
  EXPECT_EQ(run(), 1);
  EXPECT_EQ(read_file(path()),
            codeset_file({"<name lang=\"en-uk\">N</name>", "<name lang=\"sv\">M</name>",
                          "<author lang=\"en-uk\">One</author>"},
                         {{"1", "Tear"}}));
}

TEST_F(EditingWindow, ALanguageOutsideTheTableCannotBeSaved) {
  write_file(path(), codeset_file({"<name lang=\"pl\">Papier</name>"}, {{"1", "Tear"}}));
  check([] { EXPECT_EQ(shown_rows(name_editor()), "Unknown language [pl]=Papier\n"); });
  expect_refused_save(v_error_message_unknown);
  check([] { gtk_combo_box_set_active(languages_of(name_editor())[0], 1); });
  script.click("Save codeset");
  EXPECT_EQ(run(), 1);
  EXPECT_EQ(read_file(path()), codeset_file({"<name lang=\"sv\">Papier</name>"}, {{"1", "Tear"}}));
}

// The fields are two translations of the name, the author and the version, in this order.
TEST_F(EditingWindow, ReportsAnUnknownErrorWhenAFieldCannotBeRead) {
  for (const int field : {1, 2, 3, 4}) {
    SCOPED_TRACE(field);
    write_paper();
    check([field] {
      v_error_set("Something else.");
      fail_reading_entries_from(field);
    });
    expect_refused_save(v_error_message_unknown);
    check([] { fail_reading_entries_from(0); });
    close_without_saving();
    EXPECT_EQ(run(), 0);
  }
}

TEST_F(EditingWindow, AuthorAndVersionMayBeEmpty) {
  struct {
    const char *typed;
    const char *saved; // null: no version
  } const cases[] = {
      {"", nullptr},       {" ", nullptr},          {" \u00a0 ", nullptr},
      {"  2   b ", "2 b"}, {"%s<&", "%s&lt;&amp;"},
  };
  for (const auto &[typed, saved] : cases) {
    write_paper();
    check([typed = typed] {
      gtk_entry_set_text(version_entry(), typed);
      enter(author_editor(), 0, " ");
    });
    script.click("Save codeset");
    EXPECT_EQ(run(), 1);
    std::vector<std::string> head(paper_head.begin(), paper_head.begin() + 2);
    if (saved != nullptr) {
      head.push_back(std::string("<version>") + saved + "</version>");
    }
    EXPECT_EQ(read_file(path()),
              codeset_file(head, {{"1", "Tear"}, {"2", "Loss"}, {"10", "Stain"}}));
  }
}

// The second save reads all fields again, also those that the failed one has read.
TEST_F(EditingWindow, AFailedSaveCanBeTriedAgain) {
  name = "sub/paper.codeset";
  const std::string sub = folder / "sub";
  make_folder(sub);
  write_paper();
  // The title shows only the last entry of the path.
  name = "paper.codeset";
  const std::string file = sub + "/paper.codeset";
  check([sub, file] {
    enter(name_editor(), 0, "Papers");
    gtk_entry_set_text(version_entry(), "2");
    enter(author_editor(), 0, "");
    std::remove(file.c_str());
    std::rename(sub.c_str(), (sub + "-away").c_str());
  });
  expect_refused_save("Cannot create file.\n\nCannot open file.\n\nError 2: No such file or "
                      "directory");
  check([sub] {
    EXPECT_EQ(shown_rows(name_editor()),
              "English/United Kingdom [en-uk]=Papers\nSwedish [sv]=Papper\n");
    EXPECT_THAT(code_rows(), ElementsAre("1. Tear", "2. Loss", "10. Stain"));
    enter(name_editor(), 1, "");
    std::rename((sub + "-away").c_str(), sub.c_str());
  });
  script.click("Save codeset");
  const RunContext context = {window_stack.get(), &workspace};
  EXPECT_EQ(run_editing_window(&context, file.c_str()), 1);
  EXPECT_EQ(read_file(file),
            codeset_file({"<name lang=\"en-uk\">Papers</name>", "<version>2</version>"},
                         {{"1", "Tear"}, {"2", "Loss"}, {"10", "Stain"}}));
}

TEST_F(EditingWindow, KeepsAFolderThatHasReplacedTheFile) {
  write_paper();
  check([this] {
    std::remove(path().c_str());
    make_folder(path());
  });
  expect_refused_save("Cannot access file.\n\nCannot unlink file.\n\nError 21: Is a directory");
  close_without_saving();
  EXPECT_EQ(run(), 0);
  EXPECT_TRUE(path_exists(path()));
}

// ---- Closing ------------------------------------------------------------------------------------

TEST_F(EditingWindow, AsksBeforeClosingInEveryWay) {
  const std::function<void()> ways[] = {
      [] { gtk_button_clicked(find_button(window(), "Close")); },
      [] { gtk_window_close(top_window()); },
      [] { press_key(GDK_KEY_Escape); },
  };
  for (const std::function<void()> &way : ways) {
    write_paper();
    check(way);
    answer_question("gtk-cancel");
    check(way);
    script.dismiss("Really close?", question);
    check([] { enter(name_editor(), 0, "Changed"); });
    check(way);
    answer_question("gtk-close");
    EXPECT_EQ(run(), 0);
    EXPECT_EQ(read_file(path()),
              codeset_file(paper_head, {{"1", "Tear"}, {"2", "Loss"}, {"10", "Stain"}}));
  }
}

TEST_F(EditingWindow, TheQuestionFocusesTheAnswerThatKeepsTheWork) {
  write_paper();
  check([] { enter(name_editor(), 0, "Changed"); });
  check([] { press_key(GDK_KEY_Escape); });
  on("Really close?", [] { gtk_window_activate_focus(top_window()); });
  check([] { EXPECT_EQ(gtk_entry_get_text(rows_of(name_editor())[0]), std::string("Changed")); });
  close_without_saving();
  EXPECT_EQ(run(), 0);
}

// The rows are destroyed while one of them is selected.
TEST_F(EditingWindow, ClosesWithASelectedRow) {
  write_paper();
  select(1);
  close_without_saving();
  EXPECT_EQ(run(), 0);
}

TEST_F(EditingWindow, SavesWithASelectedRow) {
  write_paper();
  select(1);
  script.click("Save codeset");
  EXPECT_EQ(run(), 1);
}

// Something other than the user destroys the window, and its dialog with it.
TEST_F(EditingWindow, MayBeDestroyedTogetherWithItsDialog) {
  const auto destroy_below = [] {
    gtk_widget_destroy(GTK_WIDGET(gtk_window_get_transient_for(top_window())));
  };
  const struct {
    const char *button;
    const char *title;
  } cases[] = {{"Add new", dialog_title}, {"Edit", dialog_title}, {"Close", "Really close?"}};
  for (const auto &[button, over] : cases) {
    write_paper();
    select(0);
    script.click(button);
    on(over, destroy_below);
    EXPECT_EQ(run(), 0);
  }
}

// ---- Drafts -------------------------------------------------------------------------------------

namespace {

const std::vector<std::pair<std::string, std::string>> paper_codes = {
    {"1", "Tear"}, {"2", "Loss"}, {"10", "Stain"}};

class EditingWindowDrafts : public EditingWindow {
protected:
  EditingWindowDrafts() { write_paper(); }

  static std::string drafts_folder() {
    return std::string(g_get_user_state_dir()) + "/vantorelle/drafts";
  }
  // The paths of the codeset's drafts; the folder may also have drafts of other tests.
  std::vector<std::string> drafts() const {
    std::vector<std::string> paths;
    const OwnedText digest(g_compute_checksum_for_string(G_CHECKSUM_SHA256, path().c_str(), -1));
    if (path_exists(drafts_folder())) {
      for (const std::string &entry : list_folder(drafts_folder())) {
        if (entry.starts_with(digest.get())) {
          paths.push_back(drafts_folder() + "/" + entry);
        }
      }
    }
    return paths;
  }
  // Contents of the only draft; "" when there is none.
  std::string draft() const {
    const std::vector<std::string> all = drafts();
    EXPECT_LE(all.size(), 1U);
    return all.empty() ? "" : read_file(all.front());
  }
  // Waits for a draft with this content, which must exist two seconds after the previous step.
  void expect_draft(const std::string &content) {
    auto started = std::make_shared<gint64>(0);
    script.then([started] { *started = g_get_monotonic_time(); });
    script.when(
        "the draft", [this, content] { return draft() == content; },
        [started] { EXPECT_LT(g_get_monotonic_time() - *started, 2 * G_USEC_PER_SEC); });
  }
  // Leaves a draft of this time, as a program that has ended does.
  void leave_draft(const std::string &content, std::time_t seconds = 1'700'000'000) const {
    const TemporaryFolder elsewhere;
    write_file(elsewhere / "codeset", content);
    const OwnedCodeset codeset = v_codeset_io_read_from_file((elsewhere / "codeset").c_str());
    const OwnedDraft left = v_draft_open(path().c_str());
    v_draft_write(left.get(), codeset.get());
    const timespec times[] = {{seconds, 0}, {seconds, 0}};
    ASSERT_EQ(utimensat(AT_FDCWD, left->path.get(), times, 0), 0);
  }
  static std::string restore_question(std::time_t seconds = 1'700'000'000) {
    char time[100];
    std::tm local;
    EXPECT_GT(std::strftime(time, sizeof time, "%c", localtime_r(&seconds, &local)), 0U);
    return std::string("Unsaved changes to this codeset were found, from ") + time +
           ". Restore them?";
  }

  const std::string newer = codeset_file({"<name lang=\"sv\">Nyare</name>"}, {{"7", "Fold"}});
};

void delete_first_name() {
  for (GtkWidget *button : find_widgets(name_editor(), GTK_TYPE_BUTTON)) {
    GtkWidget *table = gtk_widget_get_parent(button);
    guint top = 0;
    if (GTK_IS_TABLE(table)) {
      gtk_container_child_get(GTK_CONTAINER(table), button, "top-attach", &top, nullptr);
      if (top == 0) {
        gtk_button_clicked(GTK_BUTTON(button));
        return;
      }
    }
  }
}

struct Change {
  const char *what;
  std::function<void()> act;
  std::vector<std::string> head;
};

} // namespace

TEST_F(EditingWindowDrafts, AreNotWrittenWithoutAChange) {
  select(1);
  script.click("Edit");
  on(dialog_title, [] { gtk_window_close(top_window()); });
  auto waited = std::make_shared<bool>(false);
  check([waited] { after(2500, [waited] { *waited = true; }); });
  script.when(
      "the time of a draft", [waited] { return *waited; },
      [this] { EXPECT_THAT(drafts(), IsEmpty()); });
  close_without_saving();
  run();
}

TEST_F(EditingWindowDrafts, ContainEachChangeOfAFieldWithinTwoSeconds) {
  const std::string name_sv = "<name lang=\"sv\">Papper</name>";
  const std::string name_en = "<name lang=\"en-uk\">Paper</name>";
  const std::string author = "<author lang=\"sv\">\xc5sa</author>";
  const std::string version = "<version>1.2</version>";
  const Change changes[] = {
      {"a name",
       [] { enter(name_editor(), 0, "Card"); },
       {"<name lang=\"en-uk\">Card</name>", name_sv, author, version}},
      {"a deleted name", [] { delete_first_name(); }, {name_sv, author, version}},
      {"a language",
       [] { gtk_combo_box_set_active(languages_of(author_editor())[0], 0); },
       {name_en, name_sv, "<author lang=\"en-uk\">\xc5sa</author>", version}},
      {"an added author",
       [] {
         add_row(author_editor());
         enter(author_editor(), 1, "Anna");
       },
       {name_en, name_sv, author, "<author lang=\"en-uk\">Anna</author>", version}},
      {"a version",
       [] { gtk_entry_set_text(version_entry(), "2"); },
       {name_en, name_sv, author, "<version>2</version>"}},
      {"no version", [] { gtk_entry_set_text(version_entry(), ""); }, {name_en, name_sv, author}},
      {"no name",
       [] {
         enter(name_editor(), 0, "");
         enter(name_editor(), 1, " ");
       },
       {"<name lang=\"\">paper.codeset</name>", author, version}},
  };
  for (const Change &change : changes) {
    SCOPED_TRACE(change.what);
    check(change.act);
    expect_draft(codeset_file(change.head, paper_codes));
    close_without_saving();
    EXPECT_EQ(run(), 0);
    EXPECT_THAT(drafts(), IsEmpty());
    EXPECT_EQ(read_file(path()), codeset_file(paper_head, paper_codes));
  }
}

TEST_F(EditingWindowDrafts, ContainEachChangeOfTheCodes) {
  add_code("3", "Fold");
  check([] {});
  expect_draft(
      codeset_file(paper_head, {{"1", "Tear"}, {"2", "Loss"}, {"3", "Fold"}, {"10", "Stain"}}));
  select(0);
  script.click("Edit");
  enter_remark("4", "Torn");
  check([] {});
  expect_draft(
      codeset_file(paper_head, {{"2", "Loss"}, {"3", "Fold"}, {"4", "Torn"}, {"10", "Stain"}}));
  delete_code(0);
  check([] {});
  expect_draft(codeset_file(paper_head, {{"3", "Fold"}, {"4", "Torn"}, {"10", "Stain"}}));
  script.click("Save codeset");
  EXPECT_EQ(run(), 1);
  EXPECT_THAT(drafts(), IsEmpty());
}

TEST_F(EditingWindowDrafts, AreWrittenDuringTypingAndUnderOtherWindows) {
  // A key every 100 milliseconds for three seconds.
  auto keys = std::make_shared<int>(0);
  auto drafts_seen = std::make_shared<std::vector<std::string>>();
  check([this, keys, drafts_seen] {
    for (unsigned i = 1; i <= 30; i++) {
      after(100 * i, [this, keys, drafts_seen] {
        ++*keys;
        gtk_entry_set_text(version_entry(), std::to_string(*keys).c_str());
        if (const std::string seen = draft(); drafts_seen->empty() || drafts_seen->back() != seen) {
          drafts_seen->push_back(seen);
        }
      });
    }
  });
  script.when(
      "the last key", [keys] { return *keys == 30; },
      [drafts_seen] { EXPECT_GE(drafts_seen->size(), 3U); });
  script.click("Add new");
  std::vector<std::string> head(paper_head.begin(), paper_head.end() - 1);
  head.push_back("<version>30</version>");
  on(dialog_title, [] {});
  expect_draft(codeset_file(head, paper_codes));
  script.click("Cancel");
  close_without_saving();
  run();
}

TEST_F(EditingWindowDrafts, KeepTheLastValidValueOfAField) {
  std::vector<std::string> head = paper_head;
  check([] { enter(name_editor(), 0, "Card"); });
  head[0] = "<name lang=\"en-uk\">Card</name>";
  expect_draft(codeset_file(head, paper_codes));
  // Both names are Swedish now.
  check([] { gtk_combo_box_set_active(languages_of(name_editor())[0], 1); });
  expect_refused_save("Each language may only appear once. Language \"sv\" appears several times.");
  check([] { gtk_entry_set_text(version_entry(), "3"); });
  head[3] = "<version>3</version>";
  expect_draft(codeset_file(head, paper_codes));
  close_without_saving();
  run();
}

TEST_F(EditingWindowDrafts, KeepTheLastCodesWhenAllAreDeleted) {
  for (int i = 0; i < 2; i++) {
    delete_code(0);
    check([] {});
  }
  const std::string last = codeset_file(paper_head, {{"10", "Stain"}});
  expect_draft(last);
  delete_code(0);
  auto waited = std::make_shared<bool>(false);
  check([waited] { after(1500, [waited] { *waited = true; }); });
  script.when(
      "the time of a draft", [waited] { return *waited; },
      [this, last] { EXPECT_EQ(draft(), last); });
  close_without_saving();
  run();
  EXPECT_THAT(drafts(), IsEmpty());
}

TEST_F(EditingWindowDrafts, StayUntilClosingIsConfirmed) {
  check([] { gtk_entry_set_text(version_entry(), "2"); });
  script.when(
      "the draft", [this] { return !drafts().empty(); }, [] {});
  script.click("Close");
  answer_question("gtk-cancel");
  check([this] { EXPECT_THAT(drafts(), testing::SizeIs(1)); });
  close_without_saving();
  EXPECT_EQ(run(), 0);
  EXPECT_THAT(drafts(), IsEmpty());
}

// The change is made just before the window closes.
TEST_F(EditingWindowDrafts, AreRemovedWhenTheWindowIsClosedOrSaved) {
  for (const bool is_saved : {false, true}) {
    check([] { gtk_entry_set_text(version_entry(), "2"); });
    if (is_saved) {
      script.click("Save codeset");
    } else {
      close_without_saving();
    }
    EXPECT_EQ(run(), is_saved ? 1 : 0);
    bool is_over = false;
    after(1500, [&is_over] { is_over = true; });
    EXPECT_TRUE(wait_until([&is_over] { return is_over; }));
    EXPECT_THAT(drafts(), IsEmpty());
  }
}

TEST_F(EditingWindowDrafts, ContainTheLastChangeOfADestroyedWindow) {
  check([] {
    enter(name_editor(), 0, "Card");
    gtk_widget_destroy(window());
  });
  EXPECT_EQ(run(), 0);
  std::vector<std::string> head = paper_head;
  head[0] = "<name lang=\"en-uk\">Card</name>";
  EXPECT_EQ(draft(), codeset_file(head, paper_codes));
}

TEST_F(EditingWindowDrafts, StayWhenASaveFails) {
  check([this] {
    gtk_entry_set_text(version_entry(), "2");
    std::remove(path().c_str());
    make_folder(path());
  });
  expect_refused_save("Cannot access file.\n\nCannot unlink file.\n\nError 21: Is a directory");
  std::vector<std::string> head = paper_head;
  head[3] = "<version>2</version>";
  check([this, head] {
    EXPECT_EQ(draft(), codeset_file(head, paper_codes));
    std::remove(path().c_str());
  });
  script.click("Save codeset");
  EXPECT_EQ(run(), 1);
  EXPECT_EQ(read_file(path()), codeset_file(head, paper_codes));
  EXPECT_THAT(drafts(), IsEmpty());
}

TEST_F(EditingWindowDrafts, ShowNoErrorWhenTheyCannotBeWritten) {
  const std::string state = g_get_user_state_dir();
  std::rename(state.c_str(), (state + "-away").c_str());
  write_file(state, "a file");
  check([] { gtk_entry_set_text(version_entry(), "2"); });
  auto waited = std::make_shared<bool>(false);
  check([waited] { after(1500, [waited] { *waited = true; }); });
  script.when(
      "the time of a draft", [waited] { return *waited; },
      [this] { EXPECT_TRUE(is_on_top(title())); });
  script.click("Save codeset");
  EXPECT_EQ(run(), 1);
  std::remove(state.c_str());
  std::rename((state + "-away").c_str(), state.c_str());
}

TEST_F(EditingWindowDrafts, AreWrittenAsSoonAsTheyCanBe) {
  const std::string state = g_get_user_state_dir();
  std::rename(state.c_str(), (state + "-away").c_str());
  write_file(state, "a file");
  check([] { gtk_entry_set_text(version_entry(), "2"); });
  auto waited = std::make_shared<bool>(false);
  check([waited] { after(1500, [waited] { *waited = true; }); });
  script.when(
      "the time of a draft", [waited] { return *waited; },
      [state] {
        std::remove(state.c_str());
        std::rename((state + "-away").c_str(), state.c_str());
      });
  std::vector<std::string> head = paper_head;
  head[3] = "<version>2</version>";
  script.when(
      "the draft", [this, head] { return draft() == codeset_file(head, paper_codes); }, [] {});
  close_without_saving();
  EXPECT_EQ(run(), 0);
}

TEST_F(EditingWindowDrafts, AreRestoredAndSaved) {
  leave_draft(newer);
  script.answer("Question", restore_question(), "Yes");
  check([] {
    EXPECT_EQ(shown_rows(name_editor()), "Swedish [sv]=Nyare\n");
    EXPECT_EQ(shown_rows(author_editor()), "English/United Kingdom [en-uk]=\n");
    EXPECT_STREQ(gtk_entry_get_text(version_entry()), "");
    EXPECT_THAT(code_rows(), ElementsAre("7. Fold"));
  });
  check([this] {
    EXPECT_EQ(read_file(path()), codeset_file(paper_head, paper_codes));
    EXPECT_EQ(draft(), newer);
  });
  script.click("Save codeset");
  EXPECT_EQ(run(), 1);
  EXPECT_EQ(read_file(path()), newer);
  EXPECT_THAT(drafts(), IsEmpty());
}

TEST_F(EditingWindowDrafts, AreRestoredByDefault) {
  leave_draft(newer);
  script.dismiss("Question", restore_question());
  check([] { EXPECT_THAT(code_rows(), ElementsAre("7. Fold")); });
  close_without_saving();
  EXPECT_EQ(run(), 0);
  EXPECT_THAT(drafts(), IsEmpty());
}

TEST_F(EditingWindowDrafts, AreRemovedWhenTheyAreNotWanted) {
  leave_draft(newer);
  script.answer("Question", restore_question(), "No");
  check([this] {
    EXPECT_THAT(code_rows(), ElementsAre("1. Tear", "2. Loss", "10. Stain"));
    EXPECT_THAT(drafts(), IsEmpty());
  });
  close_without_saving();
  EXPECT_EQ(run(), 0);
}

TEST_F(EditingWindowDrafts, AreKeptWhenARestoredSessionEndsAgain) {
  leave_draft(newer);
  script.answer("Question", restore_question(), "Yes");
  check([] { gtk_widget_destroy(window()); });
  EXPECT_EQ(run(), 0);
  EXPECT_EQ(draft(), newer);
  script.answer("Question", restore_question(), "Yes");
  check([] { gtk_entry_set_text(version_entry(), "9"); });
  const std::string newest =
      codeset_file({"<name lang=\"sv\">Nyare</name>", "<version>9</version>"}, {{"7", "Fold"}});
  expect_draft(newest);
  check([] { gtk_widget_destroy(window()); });
  run();
  EXPECT_EQ(draft(), newest);
}

TEST_F(EditingWindowDrafts, AreOfferedForAMissingOrBrokenFile) {
  for (const char *content : {"", "<codeset><name lang='sv'>Cut o"}) {
    std::remove(path().c_str());
    if (*content != '\0') {
      write_file(path(), content);
    }
    leave_draft(newer);
    script.answer("Question", restore_question(), "Yes");
    check([] { EXPECT_THAT(code_rows(), ElementsAre("7. Fold")); });
    script.click("Save codeset");
    EXPECT_EQ(run(), 1);
    EXPECT_EQ(read_file(path()), newer);
  }
}

TEST_F(EditingWindowDrafts, ThatAreDeclinedLetABrokenFileShowItsError) {
  write_file(path(), "<codesets/>");
  leave_draft(newer);
  script.answer("Question", restore_question(), "No");
  script.answer("Error",
                "Error when loading the codeset file:\n\n" + path() + "\n\nNot a codeset file.",
                "Close");
  EXPECT_EQ(run(), 0);
  EXPECT_THAT(drafts(), IsEmpty());
}

TEST_F(EditingWindowDrafts, ThatCannotBeReadAreSetAsideWithoutAQuestion) {
  leave_draft(newer);
  write_file(drafts().at(0), "broken");
  check([] { EXPECT_THAT(code_rows(), ElementsAre("1. Tear", "2. Loss", "10. Stain")); });
  close_without_saving();
  EXPECT_EQ(run(), 0);
  EXPECT_THAT(drafts(), ElementsAre(testing::EndsWith(".unreadable")));
  EXPECT_EQ(draft(), "broken");
}

TEST_F(EditingWindowDrafts, StayWhenTheFileCannotBeExamined) {
  std::remove(path().c_str());
  const std::string blocked = folder / "file";
  write_file(blocked, "");
  name = "file/paper.codeset";
  leave_draft(newer);
  script.answer("Error", "Something went wrong when accessing the codeset file:\n\n" + path(),
                "Close");
  EXPECT_EQ(run(), 0);
  EXPECT_EQ(draft(), newer);
}

TEST_F(EditingWindowDrafts, OfARunningProgramAreNotOffered) {
  const OwnedDraft running = v_draft_open(path().c_str());
  const OwnedCodeset codeset = v_codeset_io_read_from_file(path().c_str());
  v_draft_write(running.get(), codeset.get());
  check([this] {
    EXPECT_THAT(code_rows(), ElementsAre("1. Tear", "2. Loss", "10. Stain"));
    gtk_entry_set_text(version_entry(), "2");
  });
  script.when(
      "a draft of its own", [this] { return drafts().size() == 2; }, [] {});
  close_without_saving();
  EXPECT_EQ(run(), 0);
  EXPECT_THAT(drafts(), ElementsAre(running->path.get()));
  v_draft_remove(running.get());
}

// ---- Size ---------------------------------------------------------------------------------------

TEST_F(EditingWindow, AHundredThousandCodesOpenFast) {
  std::vector<std::pair<std::string, std::string>> many;
  for (int i = 1; i <= 100000; i++) {
    many.emplace_back(std::to_string(i), "Remark " + std::to_string(i));
  }
  write_file(path(), codeset_file(paper_head, many));
  double used = 0;
  check([&used] {
    used = static_cast<double>(std::clock()) / CLOCKS_PER_SEC - used;
    EXPECT_EQ(gtk_tree_model_iter_n_children(gtk_tree_view_get_model(codes()), nullptr), 100000);
  });
  add_code("100001", "Last");
  delete_code(0);
  check([] {
    EXPECT_EQ(gtk_tree_model_iter_n_children(gtk_tree_view_get_model(codes()), nullptr), 100000);
  });
  close_without_saving();
  used = static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
  run();
  // Processor time, not wall time. Builds with checks are slower, but only a quadratic walk over
  // the rows would exceed the limit.
  EXPECT_LT(used, 8.0);
  RecordProperty("seconds", std::to_string(used));
}
