#include "editing_window_fixture.h"

#include <ctime>

#include <gmock/gmock.h>

#include "support/gui/layout.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

void expect_layout_of_window() {
  GtkWidget *version_frame = GTK_WIDGET(frame("Version:"));
  GtkWidget *codes_frame = GTK_WIDGET(frame("Remark codes: (Required)"));
  GtkWidget *list = gtk_widget_get_parent(GTK_WIDGET(codes()));
  GtkWidget *display = find_widget<GtkWidget>(window(), V_TYPE_LANGSTR_DISPLAY);
  GtkWidget *text = gtk_bin_get_child(GTK_BIN(display));
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
               {"rows", GTK_WIDGET(codes()), anywhere(), grows_by_half, grows},
               {"description", display, beside("list", 8), moves_and_grows_by_half, grows},
               {"text", text, anywhere(), moves_and_grows_by_half, grows},
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

} // namespace

// ---- The window ---------------------------------------------------------------------------------

TEST_F(EditingWindow, ShowsTheCodeset) {
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
  run_until_closed();
  EXPECT_EQ(read_file(path()), paper_file);
}

TEST_F(EditingWindow, IsMaximisedWithTheFocusInTheFirstNameField) {
  script.when(
      "a maximised window",
      [] { return window() != nullptr && gtk_window_is_maximized(top_window()); }, [] {});
  script.when(
      "the focus in the name",
      [] { return gtk_widget_has_focus(GTK_WIDGET(rows_of(name_editor())[0])); }, [] {});
  run_until_closed();
}

TEST_F(EditingWindow, SavesByDefaultButNotFromAField) {
  check([] {
    EXPECT_EQ(gtk_window_get_default_widget(top_window()),
              GTK_WIDGET(find_button(window(), "Save codeset")));
    EXPECT_FALSE(gtk_widget_get_can_default(GTK_WIDGET(find_button(window(), "Close"))));
    for (GtkEntry *entry :
         {rows_of(name_editor())[0], rows_of(author_editor())[0], version_entry()}) {
      EXPECT_FALSE(gtk_entry_get_activates_default(entry));
    }
  });
  run_until_closed();
}

TEST_F(EditingWindow, HasTheListBesideTheDescription) {
  check([] {
    expect_scrolls_downwards(reinterpret_cast<GtkScrolledWindow *>(gtk_widget_get_ancestor(
                                 GTK_WIDGET(codes()), GTK_TYPE_SCROLLED_WINDOW)),
                             200, 150);
    auto *description = find_widget<GtkScrolledWindow>(window(), V_TYPE_LANGSTR_DISPLAY);
    expect_scrolls_downwards(description, 300, 150);
    EXPECT_STREQ(
        atk_object_get_name(gtk_widget_get_accessible(gtk_bin_get_child(GTK_BIN(description)))),
        "Description of the selected remark code");
    EXPECT_FALSE(gtk_tree_view_get_headers_visible(codes()));
    EXPECT_EQ(gtk_tree_view_get_n_columns(codes()), 1U);
    EXPECT_STREQ(gtk_tree_view_column_get_title(gtk_tree_view_get_column(codes(), 0)), "Remark");
    EXPECT_EQ(gtk_tree_selection_get_mode(selection()), GTK_SELECTION_SINGLE);
    EXPECT_STREQ(atk_object_get_name(gtk_widget_get_accessible(GTK_WIDGET(codes()))),
                 "Remark codes");
    EXPECT_STREQ(atk_object_get_name(gtk_widget_get_accessible(GTK_WIDGET(version_entry()))),
                 "Version");
  });
  run_until_closed();
}

TEST_F(EditingWindow, ListAndDescriptionFillTheRemainingRoom) {
  script.when(
      "the maximized window",
      [] { return window() != nullptr && gtk_window_is_maximized(top_window()); },
      expect_layout_of_window);
  run_until_closed();
}

TEST_F(EditingWindow, ButtonsAreInTheirOrder) {
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
  run_until_closed();
}

TEST_F(EditingWindow, ACodeThatIsTooWideEndsInAnEllipsis) {
  check([] {
    GtkTreeViewColumn *column = gtk_tree_view_get_column(codes(), 0);
    const Owned<GList, g_list_free> cells(gtk_cell_layout_get_cells(GTK_CELL_LAYOUT(column)));
    PangoEllipsizeMode ellipsis = PANGO_ELLIPSIZE_NONE;
    g_object_get(cells->data, "ellipsize", &ellipsis, nullptr);
    EXPECT_EQ(ellipsis, PANGO_ELLIPSIZE_END);
  });
  run_until_closed();
}

// ---- Opening ------------------------------------------------------------------------------------

TEST_F(EditingWindow, AMissingFileIsANewCodeset) {
  name = "new.codeset";
  check([] {
    EXPECT_EQ(shown_rows(name_editor()), "English/United Kingdom [en-uk]=\n");
    EXPECT_EQ(shown_rows(author_editor()), "English/United Kingdom [en-uk]=\n");
    EXPECT_STREQ(gtk_entry_get_text(version_entry()), "");
    EXPECT_THAT(code_rows(), IsEmpty());
    expect_no_selection();
  });
  run_until_closed();
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
  expect_codes({"a9. A9", "a10. A10", "b. B & co"});
  run_until_saved();
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
  run_until_closed();
}

TEST_F(EditingWindow, RowsAreInThePreferredLanguage) {
  settings()->preferred_languages = {"sv", "en-uk"};
  write_file(path(), "<codeset><name lang='sv'>P</name>"
                     "<remark><code>1</code><description lang='en-uk'>Tear</description>"
                     "<description lang='sv'>Reva</description></remark>"
                     "<remark><code>2</code><description lang='de'>Verlust</description></remark>"
                     "</codeset>");
  expect_codes({"1. Reva", "2. Verlust"});
  select(0);
  check([] {
    EXPECT_EQ(shown_description(),
              "English/United Kingdom [en-uk]\n\nTear\n\nSwedish [sv]\n\nReva");
  });
  run_until_closed();
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
  name = "folder.codeset";
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
