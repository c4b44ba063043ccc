#include "window_fixture.h"

#include <algorithm>

namespace {

guint top_attach(GtkWidget *widget) {
  guint top = 0;
  gtk_container_child_get(GTK_CONTAINER(gtk_widget_get_parent(widget)), widget, "top-attach", &top,
                          nullptr);
  return top;
}

// The widgets of the type in the editor's table, from top to bottom.
template <typename T>
std::vector<T *> table_column(GtkWidget *root, GType type) {
  std::vector<GtkWidget *> found =
      find_widgets(find_widget<GtkWidget>(root, V_TYPE_LANGSTR_EDITOR), type);
  std::sort(found.begin(), found.end(),
            [](GtkWidget *a, GtkWidget *b) { return top_attach(a) < top_attach(b); });
  std::vector<T *> column;
  for (GtkWidget *widget : found) {
    column.push_back(reinterpret_cast<T *>(widget));
  }
  return column;
}

} // namespace

std::unique_ptr<VSpellCheckerCacheOwner> WindowFixture::checkers;

WindowFixture::WindowFixture() {
  workspace.folder_path = copy_text(folder.path());
  workspace.settings = v_settings_new(folder.path());
  settings()->preferred_languages = {"en-uk", "sv"};
}

bool is_sensitive(const std::string &button_label) {
  return gtk_widget_is_sensitive(GTK_WIDGET(find_button(GTK_WIDGET(top_window()), button_label)));
}

std::vector<GtkEntry *> rows_of(GtkWidget *root) {
  return table_column<GtkEntry>(root, V_TYPE_SPACIFYING_ENTRY);
}

std::vector<GtkComboBox *> languages_of(GtkWidget *root) {
  return table_column<GtkComboBox>(root, GTK_TYPE_COMBO_BOX);
}

void enter(GtkWidget *root, std::size_t row, const char *text) {
  gtk_entry_set_text(rows_of(root).at(row), text);
}

void add_row(GtkWidget *root) { gtk_button_clicked(find_button(root, " + ")); }

std::string shown_rows(GtkWidget *root) {
  const std::vector<GtkEntry *> rows = rows_of(root);
  const std::vector<GtkComboBox *> languages = languages_of(root);
  std::string text;
  for (std::size_t i = 0; i < rows.size(); i++) {
    const OwnedText language(gtk_combo_box_text_get_active_text(GTK_COMBO_BOX_TEXT(languages[i])));
    text += std::string(language.get()) + "=" + gtk_entry_get_text(rows[i]) + "\n";
  }
  return text;
}
