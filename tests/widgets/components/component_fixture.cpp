#include "component_fixture.h"

#include <cstring>
#include <ostream>

#include <sanitizer/lsan_interface.h>

namespace {

// Reads the row from the view's own renderer.
ShownRow shown_row(GtkTreeView *view, GtkTreeIter *row) {
  GtkTreeViewColumn *column = gtk_tree_view_get_column(view, 0);
  gtk_tree_view_column_cell_set_cell_data(column, gtk_tree_view_get_model(view), row, FALSE, FALSE);
  GList *cells = gtk_cell_layout_get_cells(GTK_CELL_LAYOUT(column));
  OwnedText text;
  GdkRGBA *colour = nullptr;
  gboolean is_coloured = FALSE;
  g_object_get(cells->data, "text", static_cast<char **>(receive(text)), "foreground-rgba", &colour,
               "foreground-set", &is_coloured, nullptr);
  g_list_free(cells);
  const GdkRGBA red = {1.0, 0.0, 0.0, 1.0};
  EXPECT_TRUE(!is_coloured || gdk_rgba_equal(colour, &red));
  gdk_rgba_free(colour);
  return {text ? text.get() : "", is_coloured != FALSE};
}

} // namespace

// Called by the leak checker. The library leaks a part of its file type database when it reloads
// it.
const char *__lsan_default_suppressions() { return "leak:libgio-2.0.so"; }

ComponentFixture::ComponentFixture() {
  workspace.folder_path = copy_text(workspace_folder.path());
  fake_platform.install_folder = install_folder.path();
}

std::string ComponentFixture::managed(const std::string &name) const {
  return workspace_folder / (name.empty() ? "codesets" : "codesets/" + name);
}

std::string ComponentFixture::delivered(const std::string &name) const {
  return install_folder / (name.empty() ? "codesets" : "codesets/" + name);
}

void ComponentFixture::make_folders() {
  make_folder(managed());
  make_folder(delivered());
}

void ComponentFixture::await_focus_in_list(const std::string &title) {
  script.when(
      "the focus in the list of the window \"" + title + "\"",
      [title] {
        return is_on_top(title) && gtk_widget_has_focus(GTK_WIDGET(list_of(top_window())));
      },
      [] {});
}

void ComponentFixture::enter_name(const std::string &name) {
  script.on("Add new", [name] { gtk_entry_set_text(entry(), name.c_str()); });
  script.click("OK");
}

OwnedText ComponentFixture::text_callback(const char *path, void *fixture) {
  static_cast<ComponentFixture *>(fixture)->summarised.emplace_back(path);
  char *contents = nullptr;
  g_file_get_contents(path, &contents, nullptr, nullptr);
  const OwnedText owned(contents);
  if (contents == nullptr || !g_str_has_prefix(contents, "text:")) {
    return nullptr;
  }
  return OwnedText(g_strndup(contents + 5, std::strcspn(contents + 5, "\r\n")));
}

GtkEntry *entry() { return find_widget<GtkEntry>(GTK_WIDGET(top_window()), GTK_TYPE_ENTRY); }

void PrintTo(const ShownRow &row, std::ostream *stream) {
  *stream << '"' << row.text << '"' << (row.is_red ? " in red" : "");
}

GtkTreeView *list_of(GtkWindow *window) {
  return find_widget<GtkTreeView>(GTK_WIDGET(window), GTK_TYPE_TREE_VIEW);
}

std::vector<ShownRow> shown_rows(GtkWindow *window) {
  std::vector<ShownRow> rows;
  GtkTreeView *view = list_of(window);
  GtkTreeModel *model = gtk_tree_view_get_model(view);
  GtkTreeIter row;
  for (gboolean more = gtk_tree_model_get_iter_first(model, &row); more;
       more = gtk_tree_model_iter_next(model, &row)) {
    rows.push_back(shown_row(view, &row));
  }
  return rows;
}

std::vector<std::string> shown_texts(GtkWindow *window) {
  std::vector<std::string> texts;
  for (const ShownRow &row : shown_rows(window)) {
    texts.push_back(row.text);
  }
  return texts;
}

void select_row(GtkWindow *window, const std::string &text) {
  GtkTreeView *view = list_of(window);
  const std::vector<std::string> texts = shown_texts(window);
  for (std::size_t i = 0; i < texts.size(); i++) {
    if (texts[i] == text) {
      GtkTreePath *path = gtk_tree_path_new_from_indices(static_cast<int>(i), -1);
      gtk_tree_view_set_cursor(view, path, nullptr, FALSE);
      gtk_tree_path_free(path);
      return;
    }
  }
  ADD_FAILURE() << "There is no row \"" << text << "\".";
}

bool has_selection(GtkWindow *window) {
  return gtk_tree_selection_count_selected_rows(gtk_tree_view_get_selection(list_of(window))) > 0;
}
