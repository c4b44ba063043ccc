#pragma once
// Waits that, when they fail, report how long they took and for what.

#include <functional>
#include <string>

#include <glib.h>
#include <gtest/gtest.h>

// Measures how long a test has waited for one thing.
class Wait {
public:
  static constexpr gint64 ten_seconds = 10 * G_USEC_PER_SEC;

  // limit: microseconds.
  explicit Wait(gint64 limit = ten_seconds) : patience(limit) {}
  // To be called each time the wait is not over. True when it has lasted longer than the limit; the
  // time since the last call counts a tenth of a second at most, because the layout of a long text
  // may take several seconds, and a busy machine may stop the test for as long.
  bool is_too_long();
  // "Waited 10.0 s in vain for <what>".
  std::string describe_failure(const std::string &what) const;

private:
  gint64 patience;
  gint64 begin = g_get_monotonic_time();
  gint64 latest = begin;
  gint64 counted = 0; // microseconds
};

// "1.5 s".
std::string format_seconds(gint64 microseconds);

// Sleeps until the condition is true, such as one that another process makes true; fails when it is
// not within ten seconds. what: completes "Waited in vain for ...".
testing::AssertionResult sleep_until(const std::string &what,
                                     const std::function<bool()> &condition);
