#include "support/gui_driver.h"

#include <algorithm>
#include <memory>

#include <gtest/gtest.h>

namespace {

constexpr gint64 patience = 10 * G_USEC_PER_SEC;
constexpr unsigned turn_milliseconds = 10;

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

// Those that are not part of a button.
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

std::string describe_windows() {
  std::string text;
  for (GtkWindow *window : shown_windows()) {
    const char *title = gtk_window_get_title(window);
    text += std::string("\n  \"") + (title == nullptr ? "" : title) + "\": " + message_of(window);
  }
  return text;
}

bool top_window_has_title(const std::string &title) {
  GtkWindow *window = top_window();
  return window != nullptr && gtk_window_get_title(window) != nullptr &&
         gtk_window_get_title(window) == title;
}

GtkFileChooser *top_chooser() {
  GtkWindow *window = top_window();
  return GTK_IS_FILE_CHOOSER_DIALOG(window) ? GTK_FILE_CHOOSER(window) : nullptr;
}

bool is_message_dialog(const std::string &title) {
  return GTK_IS_DIALOG(top_window()) && top_window_has_title(title);
}

bool has_chosen(const std::string &path) {
  GtkFileChooser *chooser = top_chooser();
  const OwnedText chosen(chooser == nullptr ? nullptr : gtk_file_chooser_get_filename(chooser));
  return chosen && chosen.get() == path;
}

bool is_in_folder(const std::string &folder) {
  GtkFileChooser *chooser = top_chooser();
  const OwnedText current(chooser == nullptr ? nullptr
                                             : gtk_file_chooser_get_current_folder(chooser));
  return current && current.get() == folder;
}

void accept_chooser() { gtk_dialog_response(GTK_DIALOG(top_window()), GTK_RESPONSE_ACCEPT); }

gboolean run_action(void *action) {
  (*static_cast<std::function<void()> *>(action))();
  return G_SOURCE_REMOVE;
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

GtkLabel *label_of(GtkWidget *widget) {
  GList *labels = gtk_widget_list_mnemonic_labels(widget);
  GtkLabel *label = labels == nullptr ? nullptr : GTK_LABEL(labels->data);
  g_list_free(labels);
  return label;
}

void expect_scrolls_downwards(GtkScrolledWindow *scroller, int width, int height) {
  int asked_width = 0;
  int asked_height = 0;
  gtk_widget_get_size_request(GTK_WIDGET(scroller), &asked_width, &asked_height);
  EXPECT_EQ(asked_width, width);
  EXPECT_EQ(asked_height, height);
  GtkPolicyType horizontal = GTK_POLICY_ALWAYS;
  GtkPolicyType vertical = GTK_POLICY_ALWAYS;
  gtk_scrolled_window_get_policy(scroller, &horizontal, &vertical);
  EXPECT_EQ(horizontal, GTK_POLICY_NEVER);
  EXPECT_EQ(vertical, GTK_POLICY_AUTOMATIC);
  EXPECT_EQ(gtk_scrolled_window_get_shadow_type(scroller), GTK_SHADOW_IN);
  EXPECT_FALSE(gtk_scrolled_window_get_overlay_scrolling(scroller));
}

void after(unsigned milliseconds, std::function<void()> action) {
  auto *kept = new std::function<void()>(std::move(action));
  g_timeout_add_full(G_PRIORITY_DEFAULT, milliseconds, run_action, kept,
                     [](void *data) { delete static_cast<std::function<void()> *>(data); });
}

bool wait_until(const std::function<bool()> &condition) {
  const gint64 end = g_get_monotonic_time() + patience;
  while (!condition()) {
    if (g_get_monotonic_time() > end) {
      return false;
    }
    if (!g_main_context_iteration(nullptr, FALSE)) {
      g_usleep(1000);
    }
  }
  return true;
}

void settle() {
  while (gtk_events_pending()) {
    gtk_main_iteration();
  }
}

GuiScript::GuiScript() { schedule(); }

GuiScript::~GuiScript() {
  if (source != 0) {
    g_source_remove(source);
  }
  if (!steps.empty() && !gave_up) {
    ADD_FAILURE() << "The test came back before there was " << steps.front().what << ".";
  }
}

GuiScript &GuiScript::when(std::string what, std::function<bool()> ready,
                           std::function<void()> act) {
  steps.push_back({std::move(what), std::move(ready), std::move(act)});
  return *this;
}

GuiScript &GuiScript::then(std::function<void()> act) {
  return when(
      "a turn for the next step", [] { return true; }, std::move(act));
}

GuiScript &GuiScript::when_active(const std::string &title, std::function<void()> act) {
  return when(
      "the active window \"" + title + "\"",
      [title] { return top_window_has_title(title) && gtk_window_is_active(top_window()); },
      std::move(act));
}

GuiScript &GuiScript::click(const std::string &label) {
  const auto find = [label]() -> GtkButton * {
    GtkWindow *window = top_window();
    GtkButton *button = window == nullptr ? nullptr : find_button(GTK_WIDGET(window), label);
    return button != nullptr && gtk_widget_is_sensitive(GTK_WIDGET(button)) ? button : nullptr;
  };
  return when(
      "a button \"" + label + "\" to click", [find] { return find() != nullptr; },
      [find] { gtk_button_clicked(find()); });
}

GuiScript &GuiScript::answer(const std::string &title, const std::string &message,
                             const std::string &label) {
  when(
      "a dialog \"" + title + "\" that says: " + message,
      [title] { return is_message_dialog(title); },
      [message] { EXPECT_EQ(message_of(top_window()), message); });
  return click(label);
}

GuiScript &GuiScript::dismiss(const std::string &title, const std::string &message) {
  when(
      "a dialog \"" + title + "\" that says: " + message,
      [title] { return is_message_dialog(title); },
      [message] { EXPECT_EQ(message_of(top_window()), message); });
  return close(title);
}

GuiScript &GuiScript::close(const std::string &title) {
  return when(
      "a window \"" + title + "\" to close", [title] { return top_window_has_title(title); },
      [] { gtk_window_close(top_window()); });
}

GuiScript &GuiScript::choose(const std::string &path) {
  when(
      "a file chooser", [] { return top_chooser() != nullptr; },
      [path] { gtk_file_chooser_set_filename(top_chooser(), path.c_str()); });
  return when(
      path + " in a file chooser", [path] { return has_chosen(path); }, accept_chooser);
}

GuiScript &GuiScript::save_as(const std::string &folder, const std::string &name) {
  when(
      "a file chooser", [] { return top_chooser() != nullptr; },
      [folder] { gtk_file_chooser_set_current_folder(top_chooser(), folder.c_str()); });
  when(
      folder + " in a file chooser", [folder] { return is_in_folder(folder); },
      [name] { gtk_file_chooser_set_current_name(top_chooser(), name.c_str()); });
  return when(
      folder + "/" + name + " in a file chooser",
      [folder, name] { return has_chosen(folder + "/" + name); }, accept_chooser);
}

GuiScript &GuiScript::cancel_chooser() {
  return when(
      "a file chooser", [] { return top_chooser() != nullptr; },
      [] { gtk_dialog_response(GTK_DIALOG(top_window()), GTK_RESPONSE_CANCEL); });
}

void GuiScript::schedule() { source = g_timeout_add(turn_milliseconds, turn_callback, this); }

gboolean GuiScript::turn_callback(void *script) {
  static_cast<GuiScript *>(script)->take_turn();
  return G_SOURCE_REMOVE;
}

// The next turn has a source of its own, because the action of this one may wait in a nested loop.
void GuiScript::take_turn() {
  if (deadline == 0) {
    deadline = g_get_monotonic_time() + patience;
  }
  schedule();
  if (gave_up) {
    give_up("");
  } else if (!steps.empty() && !gtk_events_pending() && steps.front().ready()) {
    const std::function<void()> act = std::move(steps.front().act);
    steps.pop_front();
    deadline = g_get_monotonic_time() + patience;
    act();
  } else if (g_get_monotonic_time() > deadline) {
    give_up(steps.empty() ? "an end of the test" : steps.front().what);
  }
}

// Closes one window at a time, so that the nested loops end from the innermost one outwards.
void GuiScript::give_up(const std::string &what) {
  if (!gave_up) {
    ADD_FAILURE() << "Waited in vain for " << what << ". Windows:" << describe_windows();
    gave_up = true;
  }
  GtkWindow *window = top_window();
  if (GTK_IS_DIALOG(window)) {
    gtk_dialog_response(GTK_DIALOG(window), GTK_RESPONSE_DELETE_EVENT);
  } else if (window != nullptr) {
    gtk_widget_destroy(GTK_WIDGET(window));
  }
}
