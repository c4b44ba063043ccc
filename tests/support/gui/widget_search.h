#pragma once
// Finds windows and widgets by walking the widget tree. Labels of buttons are compared without the
// underscore of their mnemonic.

#include <string>
#include <vector>

#include <gtk/gtk.h>

// The window with no other window over it; null when none is shown.
GtkWindow *top_window();
bool is_on_top(const std::string &title);
// All windows that are shown.
std::vector<GtkWindow *> shown_windows();
// Titles and beginnings of the first labels of all shown windows, for a message on failure.
std::string describe_windows();

// All widgets of the type at or below the root, internal ones included, parents before children,
// whether or not they are shown.
std::vector<GtkWidget *> find_widgets(GtkWidget *root, GType type);
// The first of them, null when there is none: find_widget<GtkEntry>(window, GTK_TYPE_ENTRY).
template <typename T>
T *find_widget(GtkWidget *root, GType type) {
  const std::vector<GtkWidget *> found = find_widgets(root, type);
  return found.empty() ? nullptr : reinterpret_cast<T *>(found.front());
}
// The shown button with the label; null when there is none.
GtkButton *find_button(GtkWidget *root, const std::string &label);
// The labels of all shown buttons that have one, in the order of their boxes: left to right, top to
// bottom.
std::vector<std::string> button_labels(GtkWidget *root);
// The shown label with the text that is not part of a button; null when there is none.
GtkLabel *find_label(GtkWidget *root, const std::string &text);
// The text of the first shown label that is not part of a button; "" when there is none.
std::string message_of(GtkWindow *dialog);
// "" when it has none.
std::string tooltip_of(GtkWidget *widget);
// The label whose mnemonic widget it is; null when there is none.
GtkLabel *label_of(GtkWidget *widget);
