// The main window's buttons while system calls fail: no file is left half written, no other file is
// touched, and the user sees a message when the action was not done.

#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/fs_utils.h"
#include "base/streams.h"
#include "faults/injector.h"
#include "gui/components/main_window.h"
#include "model/workspace/workspace_parts.h"
#include "support/gui_driver.h"

using testing::IsEmpty;

namespace {

constexpr const char *title = "Manager";
constexpr const char *mine = "workspace/codesets/mine.codeset";
constexpr const char *named = "workspace/codesets/named.codeset";
constexpr const char *same = "workspace/codesets/same.codeset";
constexpr const char *delivered = "install/codesets/same.codeset";

// Longer than one buffer.
const std::string long_text(20'000, 'm');

const Contents ground = {
    {mine, "Mine\n" + long_text}, {same, "Own"}, {delivered, "Delivered\n" + long_text}};

OwnedText text_callback(const char *path, void *) {
  const OwnedInputStream stream = v_input_stream_new_for_file_path(path);
  std::size_t length = 0;
  OwnedText text = v_stream_copy_to_memory(stream.get(), length);
  return text ? OwnedText(g_strndup(text.get(), std::strcspn(text.get(), "\n"))) : nullptr;
}

int edit_callback(const char *, void *) { return 1; }

// A user who performs one action in the main window, answers its questions, and cancels what is
// refused.
class User {
public:
  User(const char *row_text, const char *button_label) : row(row_text), button(button_label) {}

  // Called when the user has pressed the button.
  std::function<void()> begin = [] {};
  std::function<void()> end = [] {};
  std::vector<std::string> told; // the messages of errors
  bool has_acted = false;

  // Returns when the window is closed.
  void use(const VWorkspace *workspace) {
    const OwnedWindowStack stack = v_window_stack_new();
    schedule();
    v_components_gui_main_window_run(stack.get(), workspace, title, "codesets",
                                     VFileType::remark_codeset, OfferBundled::yes, text_callback,
                                     edit_callback, nullptr, nullptr);
    g_source_remove(source);
  }

private:
  // Schedules a look at the top window for when the program is idle. Each look has a source of its
  // own: an action may wait for another window, at which the user must look as well.
  void schedule() {
    source = g_timeout_add_full(
        G_PRIORITY_LOW, 1,
        +[](void *user) -> gboolean {
          static_cast<User *>(user)->schedule();
          static_cast<User *>(user)->look();
          end_if_too_long(static_cast<User *>(user)->wait, "the main window to close");
          return G_SOURCE_REMOVE;
        },
        this, nullptr);
  }

  void look() {
    GtkWindow *window = top_window();
    if (window == nullptr) {
      return;
    }
    const std::string name = gtk_window_get_title(window);
    if (name == title) {
      use_main_window(window);
    } else if (name == "Error") {
      told.push_back(message_of(window));
      press(window, "Close");
    } else if (name == "Question") {
      press(window, "Yes");
    } else if (has_answered) {
      press(window, "Cancel");
    } else {
      has_answered = true;
      answer(window);
    }
  }

  void use_main_window(GtkWindow *window) {
    if (has_acted || !select(window, row)) {
      end();
      gtk_window_close(window);
      return;
    }
    has_acted = true;
    begin();
    press(window, button);
  }

  // A name for a new file, or the delivered one.
  void answer(GtkWindow *window) {
    if (auto *entry = find_widget<GtkEntry>(GTK_WIDGET(window), GTK_TYPE_ENTRY)) {
      gtk_entry_set_text(entry, "named.codeset");
    } else {
      select(window, "Delivered");
    }
    press(window, "OK");
  }

  static void press(GtkWindow *window, const char *label) {
    gtk_button_clicked(find_button(GTK_WIDGET(window), label));
  }

  // False when no row shows the text.
  static bool select(GtkWindow *window, const char *text) {
    auto *view = find_widget<GtkTreeView>(GTK_WIDGET(window), GTK_TYPE_TREE_VIEW);
    GtkTreeModel *model = gtk_tree_view_get_model(view);
    GtkTreeIter at;
    for (gboolean more = gtk_tree_model_get_iter_first(model, &at); more;
         more = gtk_tree_model_iter_next(model, &at)) {
      OwnedText shown;
      gtk_tree_model_get(model, &at, 0, static_cast<char **>(receive(shown)), -1);
      if (g_strcmp0(shown.get(), text) == 0) {
        gtk_tree_selection_select_iter(gtk_tree_view_get_selection(view), &at);
        return true;
      }
    }
    return false;
  }

  const char *row;
  const char *button;
  bool has_answered = false;
  Wait wait = Wait(60 * G_USEC_PER_SEC);
  guint source = 0;
};

struct Action {
  const char *row;
  const char *button;
  const char *changed; // the one file that it makes, changes or removes
};

void PrintTo(const Action &action, std::ostream *stream) { *stream << action.button; }

class WindowFaults : public testing::TestWithParam<Action> {
protected:
  WindowFaults() {
    workspace.folder_path = copy_text((folder / "workspace").c_str());
    fake_platform.install_folder = folder / "install";
  }

  void lay_ground() {
    std::filesystem::remove_all(folder / "workspace");
    std::filesystem::remove_all(folder / "install");
    put(folder.path(), ground);
  }

  Contents outcome() const { return contents_of(folder.path()); }

  const FakePlatformReset reset;
  const TemporaryFolder folder;
  VWorkspace workspace;
};

const Call all_calls[] = {Call::open,   Call::fopen,   Call::read,    Call::fread,   Call::write,
                          Call::fwrite, Call::fflush,  Call::close,   Call::fclose,  Call::unlink,
                          Call::stat,   Call::opendir, Call::readdir, Call::closedir};

} // namespace

TEST_P(WindowFaults, LeaveNoFileHalfWrittenAndReportEachFailure) {
  const Action action = GetParam();
  lay_ground();
  const Contents before = outcome();
  User undisturbed(action.row, action.button);
  undisturbed.use(&workspace);
  ASSERT_THAT(undisturbed.told, IsEmpty());
  const Contents done = outcome();
  ASSERT_NE(done, before);

  int injected_faults = 0;
  for (const Call call : all_calls) {
    bool is_struck = true;
    for (int nth = 1; is_struck && !HasFailure(); nth++) {
      lay_ground();
      User user(action.row, action.button);
      Report report;
      user.begin = [&] {
        injector::start(folder.path(), {.calls = {call}, .nth = nth, .error_number = EIO});
      };
      user.end = [&] { report = injector::stop(); };
      user.use(&workspace);
      ASSERT_TRUE(user.has_acted);
      is_struck = report.hit.has_value();
      injected_faults += is_struck;
      SCOPED_TRACE(std::string(name_of(call)) + " number " + std::to_string(nth) +
                   (is_struck ? " of " + report.hit->path : ", not reached"));
      EXPECT_THAT(report.left_open, IsEmpty());

      Contents after = outcome();
      const auto changed = after.find(action.changed);
      const bool is_there = changed != after.end();
      const std::string content = is_there ? changed->second : "";
      if (after != done) {
        EXPECT_THAT(user.told, testing::Not(IsEmpty()));
        // As before, or deleted; a source that fails at its first read leaves an empty file.
        const auto kept = before.find(action.changed);
        EXPECT_TRUE(content.empty() || (kept != before.end() && content == kept->second))
            << content.size() << " bytes";
      }
      // Everything else is as it was.
      Contents rest = before;
      rest.erase(action.changed);
      after.erase(action.changed);
      EXPECT_EQ(after, rest);
    }
  }
  EXPECT_GT(injected_faults, 10);
  RecordProperty("injected_faults", injected_faults);
}

INSTANTIATE_TEST_SUITE_P(MainWindow, WindowFaults,
                         testing::Values(Action{"Mine", "Clone", named},
                                         Action{"Mine", "Add bundled", same},
                                         Action{"Mine", "Delete", mine}));
