// Each window of the tool is modal, also while and after other windows are over it.

#include <algorithm>
#include <ostream>

#include <gtest/gtest.h>
#include <gtk/gtk-a11y.h>

#include "app/codesets_manager.h"
#include "gui/editing/editing_window.h"
#include "gui/file_dialogs.h"
#include "gui/labels.h"
#include "gui/message_dialogs.h"
#include "gui/owned_objects.h"
#include "gui/widgets.h"
#include "session_fixture.h"
#include "workspace/assistant/new_workspace_assistant.h"

namespace {

constexpr const char *main_title = "Vantorelle Remark Codesets Manager 3.2.3";
constexpr const char *editing_title = "Edit remark codeset - paper.codeset";

// ---- Acting on a window -------------------------------------------------------------------------

void ask_to_close(GtkWindow *window) {
  gtk_window_close(window);
  const Owned<GdkEvent, gdk_event_free> event(gdk_event_new(GDK_DELETE));
  event->any.window = share(gtk_widget_get_window(GTK_WIDGET(window))).release();
  event->any.send_event = TRUE;
  if (!gtk_widget_event(GTK_WIDGET(window), event.get())) {
    gtk_widget_destroy(GTK_WIDGET(window));
  }
}

// Performs every action of every widget except lists and combo boxes, whose accessible actions the
// toolkit performs even when they are insensitive.
void act_on_all(AtkObject *accessible) {
  if (GTK_IS_TREE_VIEW_ACCESSIBLE(accessible) || GTK_IS_COMBO_BOX_ACCESSIBLE(accessible)) {
    return;
  }
  if (ATK_IS_ACTION(accessible)) {
    for (int action = 0; action < atk_action_get_n_actions(ATK_ACTION(accessible)); action++) {
      atk_action_do_action(ATK_ACTION(accessible), action);
    }
  }
  for (int child = 0; child < atk_object_get_n_accessible_children(accessible); child++) {
    act_on_all(take(atk_object_ref_accessible_child(accessible, child)).get());
  }
}

// A tooltip appears by itself, half a second after a widget has appeared under the pointer.
bool is_tooltip(GtkWindow *window) {
  return gtk_window_get_type_hint(window) == GDK_WINDOW_TYPE_HINT_TOOLTIP;
}

// Includes menus.
std::vector<GtkWidget *> mapped_windows() {
  std::vector<GtkWidget *> windows;
  GList *all = gtk_window_list_toplevels();
  for (GList *node = all; node != nullptr; node = node->next) {
    auto *window = static_cast<GtkWindow *>(node->data);
    if (gtk_widget_get_mapped(GTK_WIDGET(window)) && !is_tooltip(window)) {
      windows.push_back(GTK_WIDGET(window));
    }
  }
  g_list_free(all);
  std::sort(windows.begin(), windows.end());
  return windows;
}

// Lists the widgets of a window, with their contents and choices.
std::string describe(GtkWindow *window) {
  std::string text;
  for (GtkWidget *widget : find_widgets(GTK_WIDGET(window), GTK_TYPE_WIDGET)) {
    text += G_OBJECT_TYPE_NAME(widget);
    if (GTK_IS_ENTRY(widget)) {
      text += std::string(" ") + gtk_entry_get_text(GTK_ENTRY(widget));
    } else if (GTK_IS_COMBO_BOX(widget)) {
      text += " " + std::to_string(gtk_combo_box_get_active(GTK_COMBO_BOX(widget)));
    } else if (GTK_IS_TREE_VIEW(widget)) {
      text += " " + std::to_string(gtk_tree_selection_count_selected_rows(
                        gtk_tree_view_get_selection(GTK_TREE_VIEW(widget))));
    }
    text += "\n";
  }
  return text;
}

// ---- The windows --------------------------------------------------------------------------------

struct Row {
  const char *name;
  const char *title;
  // Buttons that open the window from the main window, whose only row is selected.
  std::vector<const char *> clicks;
};

void PrintTo(const Row &row, std::ostream *stream) { *stream << row.name; }

const Row rows[] = {
    {"MainWindow", main_title, {}},
    {"NewFileName", "Add new", {"Add new"}},
    {"BundledSelector", "Select one to add", {"Add bundled"}},
    {"FileChooser", "Select a file to add", {"Add from file"}},
    {"YesNoQuestion", "Question", {"Delete"}},
    {"ErrorMessage", "Error", {"Add new", "OK"}},
    {"Editing", editing_title, {"Edit"}},
    {"RemarkCode", "Edit remark code", {"Edit", "Add new"}},
    {"ErrorOverRemarkCode", "Error", {"Edit", "Add new", "OK"}},
    {"ReallyClose", "Really close?", {"Edit", "Close"}},
};

class WindowModality : public SessionFixture {
protected:
  // Acts on the windows below the top one and expects no effect.
  void expect_only_the_top_window_reacts(const std::string &title) {
    script.on(title, [this] {
      shown = mapped_windows();
      covered.clear();
      for (GtkWindow *window : shown_windows()) {
        if (window != top_window()) {
          EXPECT_FALSE(gtk_widget_get_sensitive(GTK_WIDGET(window)));
          covered.emplace_back(window, describe(window));
          act_on_all(gtk_widget_get_accessible(GTK_WIDGET(window)));
          ask_to_close(window);
        }
      }
    });
    script.then([this, title] {
      ASSERT_EQ(mapped_windows(), shown);
      for (const auto &[window, description] : covered) {
        EXPECT_EQ(describe(window), description) << gtk_window_get_title(window);
      }
      EXPECT_TRUE(is_on_top(title));
      EXPECT_TRUE(gtk_widget_get_sensitive(GTK_WIDGET(top_window())));
      if (gtk_window_get_transient_for(top_window()) != nullptr) {
        EXPECT_EQ(gtk_grab_get_current(), GTK_WIDGET(top_window()));
      }
    });
  }

  void cover_with_message(const std::string &title) {
    script.on(title, [this] { v_message_show_warning(stack.get(), "over it"); });
    expect_only_the_top_window_reacts("Warning");
    script.answer("Warning", "over it", "Close");
  }

  void cover_with_question(const std::string &title) {
    script.on(title, [this] {
      EXPECT_EQ(v_message_ask_yes_no_question(stack.get(), 1, WarningIcon::no, "over it"), 1);
    });
    expect_only_the_top_window_reacts("Question");
    script.dismiss("Question", "over it");
  }

  void cover_with_file_chooser(const std::string &title) {
    script.on(title, [this] { v_file_dialog_get_folder_path(stack.get(), "Folder"); });
    expect_only_the_top_window_reacts("Folder");
    script.cancel_chooser();
  }

  void cover_with_window(const std::string &title) {
    script.on(title, [this] {
      GtkWindow *window = v_gui_create_window("Another");
      v_gui_pack_label(v_gui_add_vbox(GTK_CONTAINER(window), Spacing::none), "text", 0, 0);
      v_window_stack_run_window(stack.get(), window, Maximize::no);
    });
    expect_only_the_top_window_reacts("Another");
    cover_with_message("Another");
    expect_only_the_top_window_reacts("Another");
    script.close("Another");
  }

  void cover_with_busy_window(const std::string &title) {
    script.on(title, [this] {
      v_window_stack_busy_begin(stack.get(), ShowBusyWindow::yes);
      is_busy = true;
    });
    script.when(
        "a busy window", [this] { return is_busy; }, [] {});
    expect_only_the_top_window_reacts("Please wait");
    script.on("Please wait", [this] { v_window_stack_busy_end(stack.get()); });
  }

  void expect_that_nothing_gets_past(const std::string &title) {
    script.on(title, [this] { focus = gtk_window_get_focus(top_window()); });
    expect_only_the_top_window_reacts(title);
    cover_with_message(title);
    expect_only_the_top_window_reacts(title);
    cover_with_question(title);
    expect_only_the_top_window_reacts(title);
    cover_with_file_chooser(title);
    expect_only_the_top_window_reacts(title);
    cover_with_window(title);
    expect_only_the_top_window_reacts(title);
    cover_with_busy_window(title);
    expect_only_the_top_window_reacts(title);
    script.on(title, [this] { EXPECT_EQ(gtk_window_get_focus(top_window()), focus); });
  }

  // Expects that the window reacts to a close request. Closes all windows at the end.
  void expect_that_it_can_be_closed(const std::string &title) {
    script.on(title, [this] {
      shown = mapped_windows();
      gtk_window_close(top_window());
    });
    if (title == main_title) {
      return;
    }
    script.then([this] {
      EXPECT_NE(mapped_windows(), shown);
      for (GtkWindow *window : shown_windows()) {
        if (std::string(gtk_window_get_title(window)) == main_title) {
          gtk_widget_destroy(GTK_WIDGET(window));
        }
      }
    });
  }

  void make_workspace() {
    use_workspace();
    ASSERT_FALSE(HasFatalFailure());
    workspace.folder_path = copy_text(workspace_path().c_str());
    workspace.settings = v_settings_new(folder.path());
    make_folder(workspace_path() + "/codesets");
    write_file(workspace_path() + "/codesets/paper.codeset", paper);
  }

  static constexpr const char *paper =
      "<codeset><name lang='en-uk'>Paper</name><author lang='sv'>Anna</author>"
      "<remark><code>1</code><description lang='en-uk'>Tear</description></remark></codeset>";

  OwnedWindowStack stack = v_window_stack_new();
  VWorkspace workspace;
  std::vector<GtkWidget *> shown;
  std::vector<std::pair<GtkWindow *, std::string>> covered;
  GtkWidget *focus = nullptr;
  bool is_busy = false;
};

class EveryWindow : public WindowModality, public testing::WithParamInterface<Row> {};

void select_first_row() {
  const Owned<GtkTreePath, gtk_tree_path_free> path(gtk_tree_path_new_first());
  gtk_tree_view_set_cursor(find_widget<GtkTreeView>(GTK_WIDGET(top_window()), GTK_TYPE_TREE_VIEW),
                           path.get(), nullptr, FALSE);
}

} // namespace

TEST_P(EveryWindow, IsModalUnderAndAfterAnyOtherWindow) {
  const Row &row = GetParam();
  make_workspace();
  script.on(main_title, select_first_row);
  for (const char *label : row.clicks) {
    script.click(label);
  }
  if (std::string(row.name) == "FileChooser") {
    // The tool opens no window of its own over a file chooser.
    expect_only_the_top_window_reacts(row.title);
  } else {
    expect_that_nothing_gets_past(row.title);
  }
  expect_that_it_can_be_closed(row.title);
  RunContext context = {stack.get(), &workspace};
  run_main_window(&context);
  EXPECT_EQ(mapped_windows(), std::vector<GtkWidget *>());
  EXPECT_EQ(gtk_grab_get_current(), nullptr);
  EXPECT_EQ(read_file(workspace_path() + "/codesets/paper.codeset"), paper);
}

INSTANTIATE_TEST_SUITE_P(Windows, EveryWindow, testing::ValuesIn(rows),
                         [](const auto &row) { return row.param.name; });

TEST_F(WindowModality, TheAssistantIsModalUnderAndAfterAnyOtherWindow) {
  on_page(0, [] {});
  expect_that_nothing_gets_past("Vantorelle Workspace Setup");
  script.click("Next");
  on_page(1, [] {});
  script.click("Browse...");
  expect_only_the_top_window_reacts("Select a parent folder for your workspace");
  script.cancel_chooser();
  expect_that_nothing_gets_past("Vantorelle Workspace Setup");
  script.close("Vantorelle Workspace Setup");
  EXPECT_FALSE(v_workspace_gui_create_workspace(stack.get()));
  EXPECT_EQ(mapped_windows(), std::vector<GtkWidget *>());
}
