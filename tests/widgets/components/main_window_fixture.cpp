#include "main_window_fixture.h"

#include "gui/file_dialogs.h"

bool is_sensitive(const char *button_label) {
  return gtk_widget_is_sensitive(GTK_WIDGET(find_button(GTK_WIDGET(top_window()), button_label)));
}

std::string sensitive_buttons() {
  std::string text;
  for (const char *label : {"Clone", "Edit", "Save a copy", "Delete"}) {
    if (find_button(GTK_WIDGET(top_window()), label) != nullptr && is_sensitive(label)) {
      text += std::string(text.empty() ? "" : ", ") + label;
    }
  }
  return text;
}

bool shows_notice() {
  for (GtkWidget *label : find_widgets(GTK_WIDGET(top_window()), GTK_TYPE_LABEL)) {
    if (std::string(gtk_label_get_text(GTK_LABEL(label))) == notice_text) {
      return gtk_widget_get_mapped(label);
    }
  }
  ADD_FAILURE() << "There is no notice.";
  return false;
}

std::string deletion_question(const std::string &text) {
  return "Do you really want to delete \"" + text + "\" from your workspace?";
}

MainWindow::MainWindow() { await_focus_in_list(main_title); }

MainWindow::~MainWindow() { v_file_dialog_clean_up(); }

void MainWindow::make_own(const std::vector<std::string> &texts) {
  make_folders();
  for (const std::string &text : texts) {
    const OwnedText name(g_ascii_strdown(text.c_str(), -1));
    write_file(managed(std::string(name.get()) + ".codeset"), "text:" + text);
  }
}

void MainWindow::run() {
  v_components_gui_main_window_run(window_stack.get(), &workspace, main_title, kind.folder_name,
                                   kind.file_type, offer_bundled, text_callback,
                                   has_edit_callback ? edit_callback : nullptr,
                                   cannot_edit ? can_edit_callback : nullptr, this);
  EXPECT_EQ(top_window(), nullptr);
}

void MainWindow::run_until_closed() {
  script.close(main_title);
  run();
}

void MainWindow::expect_texts(const std::vector<std::string> &texts) {
  check([texts] { EXPECT_EQ(shown_texts(top_window()), texts); });
}

void MainWindow::select(const std::string &text) {
  check([text] { select_row(top_window(), text); });
}

void MainWindow::act_on(const std::string &text, const std::string &button_label) {
  select(text);
  script.click(button_label);
}

void MainWindow::answer_question(const std::string &message, const char *label) {
  script.when(
      "the question \"" + message + "\"",
      [message] { return top_window() != nullptr && message_of(top_window()) == message; },
      [] {
        const char *icon_name = nullptr;
        auto *image = find_widget<GtkImage>(GTK_WIDGET(top_window()), GTK_TYPE_IMAGE);
        ASSERT_NE(image, nullptr);
        gtk_image_get_icon_name(image, &icon_name, nullptr);
        EXPECT_STREQ(icon_name, "dialog-warning");
      });
  script.answer("Question", message, label);
}

void MainWindow::add_from_file(const std::string &path) {
  script.click("Add from file");
  script.choose(path);
}

void MainWindow::add_in_vain_over_own_file() {
  write_file(managed("a.codeset"), "text:Mine");
  script.click("Add bundled");
  script.on(selector_title, [] { select_row(top_window(), "a.codeset"); });
  script.click("OK");
  answer_question("Really overwrite \"Mine\" with \"" + delivered("a.codeset") + "\"?", "Yes");
  script.answer("Error", "An error occured when writing file.\n\n" + managed("a.codeset"), "Close");
  run_until_closed();
  EXPECT_EQ(read_file(managed("a.codeset")), "text:Mine");
}

int MainWindow::edit_callback(const char *path, void *fixture) {
  auto *self = static_cast<MainWindow *>(static_cast<ComponentFixture *>(fixture));
  self->edited.emplace_back(path);
  if (self->on_edit) {
    self->on_edit(path);
  }
  return 1;
}

bool MainWindow::can_edit_callback(const char *path, void *fixture) {
  auto *self = static_cast<MainWindow *>(static_cast<ComponentFixture *>(fixture));
  return path != *self->cannot_edit;
}
