#pragma once
// Scripts of a user's actions in windows that run nested main loops.

#include <deque>
#include <functional>
#include <optional>
#include <string>

#include <gtk/gtk.h>

#include "support/gui/waiting.h"

// A user's actions, step by step. Steps run while the test waits in a nested main loop; each waits
// until the program is idle and the step's condition is true. The test fails, and all windows are
// closed, when a step waits for ten seconds or the main loop does not end after the last step.
class GuiScript {
public:
  GuiScript();
  // Fails the test if steps are left.
  ~GuiScript();
  GuiScript(const GuiScript &) = delete;
  GuiScript &operator=(const GuiScript &) = delete;

  // The general step. what: names the condition in the message of a wait that fails.
  GuiScript &when(std::string what, std::function<bool()> ready, std::function<void()> act);
  GuiScript &then(std::function<void()> act);
  // For things that must not happen, instead of the driver's function, which must not be called in
  // a step: the test fails when the condition is false at any turn of the time. what: names the
  // condition. The time must be longer than the unwanted effect would take.
  GuiScript &holds_for(unsigned milliseconds, std::string what, std::function<bool()> condition);
  // Acts when the top window has the title.
  GuiScript &on(const std::string &title, std::function<void()> act);
  // Acts when the top window has the title and is active, so that it has its requested state.
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

  GuiScript &accept_chooser(const std::string &path);
  static gboolean turn_callback(void *script);
  void take_turn();
  void schedule();
  void give_up(const std::string &what);

  std::deque<Step> steps;
  guint source = 0;
  std::optional<Wait> wait; // of the first step; begins when the main loop runs
  bool gave_up = false;
};
