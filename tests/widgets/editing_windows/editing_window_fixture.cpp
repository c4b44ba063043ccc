#include "editing_window_fixture.h"

#include "gui/editing/editing_window.h"

namespace {

constexpr const char *question = "Are you sure you want to close the codeset without saving?";

} // namespace

std::string codeset_file(const std::vector<std::string> &head, const Codes &codes) {
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

void expect_no_selection() {
  EXPECT_EQ(gtk_tree_selection_count_selected_rows(selection()), 0);
  EXPECT_FALSE(is_sensitive("Edit"));
  EXPECT_FALSE(is_sensitive("Delete"));
  for (const char *label : {"Add new", "Save codeset", "Close"}) {
    EXPECT_TRUE(is_sensitive(label)) << label;
  }
  EXPECT_EQ(shown_description(), "");
}

int cursor_row() {
  Owned<GtkTreePath, gtk_tree_path_free> path;
  gtk_tree_view_get_cursor(codes(), receive(path), nullptr);
  return path ? gtk_tree_path_get_indices(path.get())[0] : -1;
}

int EditingWindow::run() {
  const RunContext context = {window_stack.get(), &workspace};
  const int saved = run_editing_window(&context, path().c_str());
  EXPECT_EQ(top_window(), nullptr);
  return saved;
}

void EditingWindow::run_until_closed() {
  close_without_saving();
  EXPECT_EQ(run(), 0);
}

void EditingWindow::run_until_saved() {
  script.click("Save codeset");
  EXPECT_EQ(run(), 1);
}

void EditingWindow::expect_codes(const std::vector<std::string> &rows) {
  check([rows] { EXPECT_EQ(code_rows(), rows); });
}

void EditingWindow::select(int row) {
  check([row] { select_code(row); });
}

void EditingWindow::answer_question(const char *label) {
  script.answer("Really close?", question, label);
}

void EditingWindow::dismiss_question() { script.dismiss("Really close?", question); }

void EditingWindow::close_without_saving() {
  check([] {});
  script.click("Close");
  answer_question("gtk-close");
}

void EditingWindow::expect_refused_save(const std::string &message) {
  check([] {});
  script.click("Save codeset").answer("Error", message, "Close");
}

void EditingWindow::type_remark(const char *code, const char *description) {
  script.on(dialog_title, [code, description] {
    for (GtkWidget *entry : find_widgets(window(), V_TYPE_SPACIFYING_ENTRY)) {
      const bool in_editor = gtk_widget_get_ancestor(entry, V_TYPE_LANGSTR_EDITOR) != nullptr;
      gtk_entry_set_text(GTK_ENTRY(entry), in_editor ? description : code);
    }
  });
}

void EditingWindow::enter_remark(const char *code, const char *description) {
  type_remark(code, description);
  script.click("OK");
}

void EditingWindow::add_code(const char *code, const char *description) {
  check([] {});
  script.click("Add new");
  enter_remark(code, description);
}

void EditingWindow::edit_code(int row) {
  select(row);
  script.click("Edit");
}

void EditingWindow::delete_code(int row) {
  select(row);
  script.click("Delete");
}
