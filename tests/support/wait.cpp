#include "support/wait.h"

#include <algorithm>
#include <iomanip>
#include <sstream>

namespace {

constexpr gint64 longest_turn = G_USEC_PER_SEC / 10;
constexpr gulong pause_between_looks = 1000; // microseconds

} // namespace

bool Wait::is_too_long() {
  const gint64 now = g_get_monotonic_time();
  counted += std::min(now - latest, longest_turn);
  latest = now;
  return counted > patience;
}

std::string Wait::describe_failure(const std::string &what) const {
  return "Waited " + format_seconds(g_get_monotonic_time() - begin) + " in vain for " + what;
}

std::string format_seconds(gint64 microseconds) {
  std::ostringstream text;
  text << std::fixed << std::setprecision(1)
       << static_cast<double>(microseconds) / static_cast<double>(G_USEC_PER_SEC) << " s";
  return text.str();
}

testing::AssertionResult sleep_until(const std::string &what,
                                     const std::function<bool()> &condition) {
  Wait wait;
  while (!condition()) {
    if (wait.is_too_long()) {
      return testing::AssertionFailure() << wait.describe_failure(what);
    }
    g_usleep(pause_between_looks);
  }
  return testing::AssertionSuccess();
}
