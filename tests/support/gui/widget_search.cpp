#include "support/gui/widget_search.h"

#include <algorithm>

#include "base/owned.h"

namespace {

std::string without_mnemonic(const char *label) {
  std::string text = label == nullptr ? "" : label;
  std::erase(text, '_');
  return text;
}

bool is_covered(GtkWindow *window) {
  const std::vector<GtkWindow *> windows = shown_windows();
  return std::any_of(windows.begin(), windows.end(), [window](GtkWindow *other) {
    return gtk_window_get_transient_for(other) == window;
  });
}

bool is_menu(GtkWindow *window) { return gtk_window_get_window_type(window) == GTK_WINDOW_POPUP; }

struct Search {
  GType type;
  std::vector<GtkWidget *> found;
};

void search(GtkWidget *widget, void *data) {
  auto *search_data = static_cast<Search *>(data);
  if (g_type_is_a(G_OBJECT_TYPE(widget), search_data->type)) {
    search_data->found.push_back(widget);
  }
  if (GTK_IS_CONTAINER(widget)) {
    gtk_container_forall(GTK_CONTAINER(widget), search, data);
  }
}

// Without the labels of buttons.
std::vector<GtkLabel *> shown_labels(GtkWidget *root) {
  std::vector<GtkLabel *> labels;
  for (GtkWidget *label : find_widgets(root, GTK_TYPE_LABEL)) {
    if (gtk_widget_get_mapped(label) &&
        gtk_widget_get_ancestor(label, GTK_TYPE_BUTTON) == nullptr) {
      labels.push_back(GTK_LABEL(label));
    }
  }
  return labels;
}

} // namespace

std::vector<GtkWindow *> shown_windows() {
  std::vector<GtkWindow *> windows;
  GList *all = gtk_window_list_toplevels();
  for (GList *node = all; node != nullptr; node = node->next) {
    auto *window = static_cast<GtkWindow *>(node->data);
    if (gtk_widget_get_mapped(GTK_WIDGET(window)) && !is_menu(window)) {
      windows.push_back(window);
    }
  }
  g_list_free(all);
  return windows;
}

GtkWindow *top_window() {
  for (GtkWindow *window : shown_windows()) {
    if (!is_covered(window)) {
      return window;
    }
  }
  return nullptr;
}

bool is_on_top(const std::string &title) {
  GtkWindow *window = top_window();
  return window != nullptr && g_strcmp0(gtk_window_get_title(window), title.c_str()) == 0;
}

std::string describe_windows() {
  std::string text;
  for (GtkWindow *window : shown_windows()) {
    const char *title = gtk_window_get_title(window);
    text += std::string("\n  \"") + (title == nullptr ? "" : title) + "\": ";
    text += message_of(window).substr(0, 200);
  }
  return text;
}

std::vector<GtkWidget *> find_widgets(GtkWidget *root, GType type) {
  Search data = {type, {}};
  search(root, &data);
  return data.found;
}

GtkButton *find_button(GtkWidget *root, const std::string &label) {
  for (GtkWidget *button : find_widgets(root, GTK_TYPE_BUTTON)) {
    if (gtk_widget_get_mapped(button) &&
        without_mnemonic(gtk_button_get_label(GTK_BUTTON(button))) == label) {
      return GTK_BUTTON(button);
    }
  }
  return nullptr;
}

std::vector<std::string> button_labels(GtkWidget *root) {
  std::vector<std::string> labels;
  for (GtkWidget *button : find_widgets(root, GTK_TYPE_BUTTON)) {
    if (gtk_widget_get_mapped(button) && gtk_button_get_label(GTK_BUTTON(button)) != nullptr) {
      labels.push_back(without_mnemonic(gtk_button_get_label(GTK_BUTTON(button))));
    }
  }
  return labels;
}

GtkLabel *find_label(GtkWidget *root, const std::string &text) {
  for (GtkLabel *label : shown_labels(root)) {
    if (gtk_label_get_text(label) == text) {
      return label;
    }
  }
  return nullptr;
}

std::string message_of(GtkWindow *dialog) {
  const std::vector<GtkLabel *> labels = shown_labels(GTK_WIDGET(dialog));
  return labels.empty() ? "" : gtk_label_get_text(labels.front());
}

std::string tooltip_of(GtkWidget *widget) {
  const OwnedText text(gtk_widget_get_tooltip_text(widget));
  return text ? text.get() : "";
}

GtkLabel *label_of(GtkWidget *widget) {
  GList *labels = gtk_widget_list_mnemonic_labels(widget);
  GtkLabel *label = labels == nullptr ? nullptr : GTK_LABEL(labels->data);
  g_list_free(labels);
  return label;
}
