#include "support/gui/script.h"

#include <memory>

#include "base/owned.h"
#include "support/gui/file_choosers.h"
#include "support/gui/widget_search.h"

namespace {

constexpr unsigned turn_milliseconds = 10;

bool is_message_dialog(const std::string &title) {
  return GTK_IS_DIALOG(top_window()) && is_on_top(title);
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

} // namespace

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

GuiScript &GuiScript::holds_for(unsigned milliseconds, std::string what,
                                std::function<bool()> condition) {
  const auto hold = std::make_shared<Hold>(milliseconds);
  then([hold, milliseconds] { *hold = Hold(milliseconds); });
  return when(
      "the end of " + std::to_string(milliseconds) + " ms with " + what,
      [hold, condition = std::move(condition)] { return hold->is_over(condition); },
      [hold, what] { EXPECT_TRUE(hold->result(what)); });
}

GuiScript &GuiScript::on(const std::string &title, std::function<void()> act) {
  return when(
      "the window \"" + title + "\"", [title] { return is_on_top(title); }, std::move(act));
}

GuiScript &GuiScript::when_active(const std::string &title, std::function<void()> act) {
  return when(
      "the active window \"" + title + "\"",
      [title] { return is_on_top(title) && gtk_window_is_active(top_window()); }, std::move(act));
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
  return on(title, [] { gtk_window_close(top_window()); });
}

GuiScript &GuiScript::choose(const std::string &path) {
  when("a loaded file chooser", chooser_to_be_loaded(),
       [path] { gtk_file_chooser_set_filename(top_chooser(), path.c_str()); });
  return accept_chooser(path);
}

GuiScript &GuiScript::save_as(const std::string &folder, const std::string &name) {
  when("a loaded file chooser", chooser_to_be_loaded(),
       [folder] { gtk_file_chooser_set_current_folder(top_chooser(), folder.c_str()); });
  when(
      folder + " in a file chooser", [folder] { return is_in_folder(folder); },
      [name] { gtk_file_chooser_set_current_name(top_chooser(), name.c_str()); });
  return accept_chooser(folder + "/" + name);
}

GuiScript &GuiScript::accept_chooser(const std::string &path) {
  return when(
      path + " in a file chooser",
      [path, is_loaded = chooser_to_be_loaded()] { return is_loaded() && has_chosen(path); },
      [] { gtk_dialog_response(GTK_DIALOG(top_window()), GTK_RESPONSE_ACCEPT); });
}

GuiScript &GuiScript::cancel_chooser() {
  return when("a loaded file chooser", chooser_to_be_loaded(),
              [] { gtk_dialog_response(GTK_DIALOG(top_window()), GTK_RESPONSE_CANCEL); });
}

void GuiScript::schedule() { source = g_timeout_add(turn_milliseconds, turn_callback, this); }

gboolean GuiScript::turn_callback(void *script) {
  static_cast<GuiScript *>(script)->take_turn();
  return G_SOURCE_REMOVE;
}

// The next turn has a source of its own, because the action of this one may wait in a nested loop.
void GuiScript::take_turn() {
  if (!wait) {
    wait.emplace();
  }
  schedule();
  if (gave_up) {
    give_up("");
  } else if (!steps.empty() && !gtk_events_pending() && steps.front().ready()) {
    const std::function<void()> act = std::move(steps.front().act);
    steps.pop_front();
    wait.emplace();
    act();
  } else if (wait->is_too_long()) {
    give_up(steps.empty() ? "an end of the test" : steps.front().what);
  }
}

// Closes one window at a time, so that the nested loops end from the innermost one outwards.
void GuiScript::give_up(const std::string &what) {
  if (!gave_up) {
    ADD_FAILURE() << describe_failure(*wait, what);
    gave_up = true;
  }
  GtkWindow *window = top_window();
  if (GTK_IS_DIALOG(window)) {
    gtk_dialog_response(GTK_DIALOG(window), GTK_RESPONSE_DELETE_EVENT);
  } else if (window != nullptr) {
    gtk_widget_destroy(GTK_WIDGET(window));
  }
}
