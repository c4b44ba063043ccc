#pragma once
// Drives windows as a user would, from inside their nested main loops. Widgets are found by walking
// the tree; labels are compared without the underscore of their mnemonic.

#include <deque>
#include <functional>
#include <string>
#include <vector>

#include <gtk/gtk.h>

#include "base/owned.h"

// The window that has no other window over it; null when none is shown.
GtkWindow *top_window();
// All windows that are shown.
std::vector<GtkWindow *> shown_windows();

// All widgets of the type in the tree, parents before children, whether or not they are shown.
std::vector<GtkWidget *> find_widgets(GtkWidget *root, GType type);
// The first of them, null when there is none: find_widget<GtkEntry>(window, GTK_TYPE_ENTRY).
template <typename T>
T *find_widget(GtkWidget *root, GType type) {
  const std::vector<GtkWidget *> found = find_widgets(root, type);
  return found.empty() ? nullptr : reinterpret_cast<T *>(found.front());
}
// The shown button with the label; null when there is none.
GtkButton *find_button(GtkWidget *root, const std::string &label);
// The labels of all shown buttons that have one, as they stand from left to right and from top to
// bottom in their boxes.
std::vector<std::string> button_labels(GtkWidget *root);
// The shown label that reads so and is not part of a button; null when there is none.
GtkLabel *find_label(GtkWidget *root, const std::string &text);
// The text of the first shown label that is not part of a button; "" when there is none.
std::string message_of(GtkWindow *dialog);
// The label widget that is said to be the label of the widget; null when there is none.
GtkLabel *label_of(GtkWidget *widget);

// Expects a scrolled window that asks for this room (pixels), scrolls up and down alone, and has a
// sunken frame and a scroll bar that does not lie over the content.
void expect_scrolls_downwards(GtkScrolledWindow *scroller, int width, int height);

// Runs the action once, in whatever main loop is innermost then.
void after(unsigned milliseconds, std::function<void()> action);
// Runs the main loop until the condition holds; false when it does not within ten seconds.
bool wait_until(const std::function<bool()> &condition);
// Runs the main loop until nothing is left to do for the moment. Not for steps of a script, which
// would let later steps run inside.
void settle();

// What a user does, step by step. Steps are taken while the test waits in a nested main loop; each
// waits until the program has nothing else to do and what the step needs is there. A step that
// waits in vain for ten seconds, and a test that does not come back after the last step, is a
// failure, and then all windows are closed.
class GuiScript {
public:
  GuiScript();
  // Fails the test if steps are left.
  ~GuiScript();
  GuiScript(const GuiScript &) = delete;
  GuiScript &operator=(const GuiScript &) = delete;

  // The general step. what: what is waited for, said when it does not come.
  GuiScript &when(std::string what, std::function<bool()> ready, std::function<void()> act);
  GuiScript &then(std::function<void()> act);
  // Acts when the top window has the title and is active, and so has the state that it asked for.
  GuiScript &when_active(const std::string &title, std::function<void()> act);
  // Clicks the button of the top window, which must be sensitive.
  GuiScript &click(const std::string &label);
  // Expects a message dialog with exactly this text, and clicks its button.
  GuiScript &answer(const std::string &title, const std::string &message, const std::string &label);
  // The same with the dialog's close button.
  GuiScript &dismiss(const std::string &title, const std::string &message);
  // Closes the top window, which must have the title, as the window manager does.
  GuiScript &close(const std::string &title);
  // Chooses an existing file or folder in the file chooser that is open or about to be.
  GuiScript &choose(const std::string &path);
  // Saves under the name in the folder.
  GuiScript &save_as(const std::string &folder, const std::string &name);
  GuiScript &cancel_chooser();

private:
  struct Step {
    std::string what;
    std::function<bool()> ready;
    std::function<void()> act;
  };

  static gboolean turn_callback(void *script);
  void take_turn();
  void schedule();
  void give_up(const std::string &what);

  std::deque<Step> steps;
  guint source = 0;
  gint64 deadline = 0;
  bool gave_up = false;
};
