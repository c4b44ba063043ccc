// The smallest program of this kind: one window with a list and eight buttons.

#include <gtk/gtk.h>

namespace {

constexpr const char *texts[] = {"One", "Two", "Three", "Four", "Five", "Six", "Seven", "Eight"};

GtkWidget *create_list() {
  GtkListStore *store = gtk_list_store_new(1, G_TYPE_STRING);
  for (const char *text : texts) {
    gtk_list_store_insert_with_values(store, nullptr, -1, 0, text, -1);
  }
  GtkWidget *view = gtk_tree_view_new_with_model(GTK_TREE_MODEL(store));
  g_object_unref(store);
  gtk_tree_view_set_headers_visible(GTK_TREE_VIEW(view), FALSE);
  gtk_tree_view_insert_column_with_attributes(GTK_TREE_VIEW(view), -1, "Item",
                                              gtk_cell_renderer_text_new(), "text", 0, nullptr);
  GtkWidget *scroller = gtk_scrolled_window_new(nullptr, nullptr);
  gtk_widget_set_size_request(scroller, 300, 250);
  gtk_container_add(GTK_CONTAINER(scroller), view);
  return scroller;
}

GtkWidget *create_buttons() {
  GtkWidget *column = gtk_box_new(GTK_ORIENTATION_VERTICAL, 8);
  for (const char *text : texts) {
    gtk_box_pack_start(GTK_BOX(column), gtk_button_new_with_label(text), FALSE, FALSE, 0);
  }
  return column;
}

void activate_callback(GtkApplication *application, void *) {
  GtkWidget *window = gtk_application_window_new(application);
  GtkWidget *row = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 8);
  gtk_box_pack_start(GTK_BOX(row), create_list(), TRUE, TRUE, 0);
  gtk_box_pack_start(GTK_BOX(row), create_buttons(), FALSE, FALSE, 0);
  gtk_container_add(GTK_CONTAINER(window), row);
  gtk_widget_show_all(window);
}

} // namespace

int main() {
  GtkApplication *application =
      gtk_application_new("org.vantorelle.MinimalWindow", G_APPLICATION_NON_UNIQUE);
  g_signal_connect(application, "activate", G_CALLBACK(activate_callback), nullptr);
  const int status = g_application_run(G_APPLICATION(application), 0, nullptr);
  g_object_unref(application);
  return status;
}
