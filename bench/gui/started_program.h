#pragma once
// Another program, from its start until its window is on the screen, and its memory. Observed
// through the X server and the kernel only, so the program needs no hook.

#include <string>

#include <glib.h>

class StartedProgram {
public:
  // Returns when the program has mapped its first window.
  explicit StartedProgram(const std::string &path);
  // Ends it.
  ~StartedProgram();
  StartedProgram(const StartedProgram &) = delete;
  StartedProgram &operator=(const StartedProgram &) = delete;

  // From the start until the window was mapped, on the wall clock.
  double seconds_until_mapped() const { return seconds; }
  // Waits until it does nothing any more. Its resident memory then, in MiB; what it shares with
  // others counts in full, or else the figure would move with what else happens to run.
  double measure_idle_memory() const;

private:
  GPid pid = 0;
  double seconds = 0;
};
