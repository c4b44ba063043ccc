#pragma once
// Calls a function that writes the draft, soon after the first change that the draft lacks, and
// before one of the signals SIGTERM, SIGHUP and SIGINT ends the program. Knows neither what a draft
// contains nor how it is written.

#include <glib.h>

class VDraftTimer {
public:
  // Writes the draft. After a failure (false), the timer calls it again later.
  using WriteCallback = bool (*)(void *data);

  // data is passed to the callback and must outlive the timer.
  VDraftTimer(WriteCallback write, void *data) : write_callback(write), callback_data(data) {}
  ~VDraftTimer() { stop(); }
  VDraftTimer(const VDraftTimer &) = delete;
  VDraftTimer &operator=(const VDraftTimer &) = delete;

  // To be called after each change. The callback is called one second after the first change.
  void start();
  // To be called when the draft is up to date or no longer needed.
  void stop();
  // Calls the callback at once.
  void write_now();
  // True while the draft lacks a change.
  bool is_running() const { return source != 0; }

private:
  static gboolean timeout_callback(void *timer);

  WriteCallback write_callback;
  void *callback_data;
  guint source = 0; // 0 while the draft is up to date
};
