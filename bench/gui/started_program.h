#pragma once
// A program from its start until its window is on the screen, and its memory. It is observed only
// through the X server and the kernel, so the program needs no hook.

#include <string>

#include <glib.h>

class StartedProgram {
public:
  // Returns when the program has mapped its first window.
  explicit StartedProgram(const std::string &path);
  // Ends the program.
  ~StartedProgram();
  StartedProgram(const StartedProgram &) = delete;
  StartedProgram &operator=(const StartedProgram &) = delete;

  // Wall-clock time from the start until the window was mapped.
  double seconds_until_mapped() const { return seconds; }
  // Waits until the program is idle and returns its resident memory in MiB. Shared memory counts in
  // full; otherwise the figure would depend on the other programs that run.
  double measure_idle_memory() const;

private:
  GPid pid = 0;
  double seconds = 0;
};
