#include "bare_list_window.h"

namespace {

void prepare_view(GtkTreeView *view) {
  gtk_tree_view_set_headers_visible(view, FALSE);
  gtk_tree_view_set_fixed_height_mode(view, TRUE);
  GtkCellRenderer *renderer = gtk_cell_renderer_text_new();
  g_object_set(renderer, "ellipsize", PANGO_ELLIPSIZE_END, nullptr);
  GtkTreeViewColumn *column =
      gtk_tree_view_column_new_with_attributes("Remark", renderer, "text", 0, nullptr);
  gtk_tree_view_column_set_sizing(column, GTK_TREE_VIEW_COLUMN_FIXED);
  gtk_tree_view_append_column(view, column);
}

GtkTreeView *create_view() {
  GtkTreeView *view = GTK_TREE_VIEW(gtk_tree_view_new());
  prepare_view(view);
  return view;
}

void pack_scrolled(GtkBox *box, GtkWidget *view) {
  GtkWidget *scroller = gtk_scrolled_window_new(nullptr, nullptr);
  gtk_container_add(GTK_CONTAINER(scroller), view);
  gtk_box_pack_start(box, scroller, TRUE, TRUE, 0);
  gtk_widget_show_all(scroller);
}

} // namespace

BareListWindow::BareListWindow(const std::vector<std::string> &rows)
    : window(gtk_window_new(GTK_WINDOW_TOPLEVEL)),
      views(gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 8)), tree_view(create_view()) {
  pack_scrolled(GTK_BOX(views), GTK_WIDGET(tree_view));
  gtk_container_add(GTK_CONTAINER(window), views);
  gtk_widget_show(views);
  show(rows);
}

BareListWindow::BareListWindow(const std::vector<std::string> &rows, GtkTreeView *list)
    : window(gtk_widget_get_toplevel(GTK_WIDGET(list))), tree_view(list) {
  prepare_view(tree_view);
  show(rows);
}

void BareListWindow::show(const std::vector<std::string> &rows) {
  GtkListStore *store = gtk_list_store_new(1, G_TYPE_STRING);
  gtk_tree_view_set_model(tree_view, GTK_TREE_MODEL(store));
  g_object_unref(store);
  refill(rows);
  gtk_window_set_default_size(GTK_WINDOW(window), 800, 600);
  gtk_window_maximize(GTK_WINDOW(window));
  gtk_widget_show(window);
}

BareListWindow::~BareListWindow() { gtk_widget_destroy(window); }

void BareListWindow::refill(const std::vector<std::string> &rows) {
  GtkTreeModel *model = gtk_tree_view_get_model(tree_view);
  g_object_ref(model);
  gtk_tree_view_set_model(tree_view, nullptr);
  GtkListStore *store = GTK_LIST_STORE(model);
  gtk_list_store_clear(store);
  for (const std::string &row : rows) {
    gtk_list_store_insert_with_values(store, nullptr, -1, 0, row.c_str(), -1);
  }
  gtk_tree_view_set_model(tree_view, model);
  g_object_unref(model);
}

void BareListWindow::replace_row(int place, const std::string &row) {
  GtkTreeModel *model = gtk_tree_view_get_model(tree_view);
  GtkTreeIter iter;
  gtk_tree_model_iter_nth_child(model, &iter, nullptr, place);
  gtk_list_store_remove(GTK_LIST_STORE(model), &iter);
  gtk_list_store_insert_with_values(GTK_LIST_STORE(model), nullptr, place, 0, row.c_str(), -1);
}

void BareListWindow::show_descriptions(const std::vector<std::string> &texts) {
  descriptions = &texts;
  GtkTextView *view = GTK_TEXT_VIEW(gtk_text_view_new());
  gtk_text_view_set_editable(view, FALSE);
  gtk_text_view_set_wrap_mode(view, GTK_WRAP_WORD);
  description_buffer = gtk_text_view_get_buffer(view);
  pack_scrolled(GTK_BOX(views), GTK_WIDGET(view));
  g_signal_connect(gtk_tree_view_get_selection(tree_view), "changed",
                   G_CALLBACK(selection_change_callback), this);
}

void BareListWindow::selection_change_callback(GtkTreeSelection *selection, BareListWindow *self) {
  GtkTreeModel *model = nullptr;
  GtkTreeIter iter;
  if (gtk_tree_selection_get_selected(selection, &model, &iter)) {
    GtkTreePath *path = gtk_tree_model_get_path(model, &iter);
    const int place = *gtk_tree_path_get_indices(path);
    gtk_tree_path_free(path);
    gtk_text_buffer_set_text(self->description_buffer, self->descriptions->at(place).c_str(), -1);
  }
}
