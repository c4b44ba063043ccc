#pragma once
// Lets the main loop run until a state is reached, or acts from inside it. A wait that fails
// reports how long it took and for what.

#include <functional>
#include <string>

#include <gtest/gtest.h>
#include <gtk/gtk.h>

#include "support/wait.h"

// "Waited 10.0 s in vain for <what>", and the windows that are shown.
std::string describe_failure(const Wait &wait, const std::string &what);

// Ends the program when the wait is too long, because the code under test would wait forever.
void end_if_too_long(Wait &wait, const std::string &what);

// Observes that a condition holds for a time.
class Hold {
public:
  explicit Hold(unsigned milliseconds);
  // To be called until it is true: the time is over, or the condition was false.
  bool is_over(const std::function<bool()> &condition);
  // what: completes "There was not ... any more".
  testing::AssertionResult result(const std::string &what) const;

private:
  gint64 begin = g_get_monotonic_time();
  gint64 latest = begin;
  gint64 end;
  bool held = true;
};

// Runs the main loop until nothing is left to do and the display server has answered all requests.
// Does not wait for timeouts, for later frames or for the window manager: use wait_until for their
// effect. Must not be called in a step of a script, because later steps would run inside it.
void settle();

// Runs the main loop until the condition is true; fails when it is not within ten seconds:
// EXPECT_TRUE(wait_until("a click", [&] { return clicks > 0; })). what: completes "Waited in vain
// for ...".
testing::AssertionResult wait_until(const std::string &what,
                                    const std::function<bool()> &condition);

// For things that must not happen: runs the main loop for the time, and fails when the condition is
// false at any moment of it. The time must be longer than the unwanted effect would take. what:
// completes "There was not ... any more".
testing::AssertionResult holds_for(unsigned milliseconds, const std::string &what,
                                   const std::function<bool()> &condition);

// Runs the action once after the time, in the main loop that is innermost then.
void after(unsigned milliseconds, std::function<void()> action);

// Runs the action once, in the main loop that is innermost when there is nothing else to do and
// `ready` is true. Ends the program when that takes longer than ten seconds, because the code under
// test would wait forever. what: completes "Waited in vain for ...".
void when(std::string what, std::function<bool()> ready, std::function<void()> action);
// When the window has the keyboard.
void when_active(GtkWindow *window, std::function<void()> action);
// When a dialog has the keyboard.
void when_dialog_shows(std::function<void(GtkDialog *)> action);
