#pragma once
// Messages on standard error. A blank line inside a message becomes a space, and the lines after
// other line feeds are indented; "?" replaces other control characters. Colours are used only on a
// terminal, and not when the environment variable NO_COLOR is set and not empty.
//
// file: as given on the command line (file system's encoding); "-" is shown as "standard input";
// null when the message is not about a file. Messages are UTF-8.

#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

// The file name for display, in UTF-8 without control characters but line feeds. file is not null.
std::string v_report_show_file(const char *file);

// "vantorelle-codeset: FILE: message".
void v_report_error(const char *file, const char *message);
// The same with the message of base/error.h.
void v_report_last_error(const char *file);
// "vantorelle-codeset: FILE: warning: message".
void v_report_warning(const char *file, const char *message);

// Shows "FILE: <work>, <n> s" on a terminal from one second after its construction until its
// destruction. Do not report messages in the meantime.
class VProgressReport {
public:
  // work: a verb, such as "reading".
  VProgressReport(const char *file, const char *work);
  ~VProgressReport();
  VProgressReport(const VProgressReport &) = delete;
  VProgressReport &operator=(const VProgressReport &) = delete;

private:
  void show_until_finished();

  std::string text;
  std::mutex mutex;
  std::condition_variable finishing;
  bool is_finished = false;
  std::thread thread; // last, so that the other members exist when it starts
};
