#pragma once
// Messages on standard error. Line feeds inside a message are kept as far as they do not make blank
// lines; other control characters are not sent to the terminal. Colours are only used on a
// terminal, and not when the environment variable NO_COLOR is set.
//
// file: as the user named it (file system's encoding); "-" is shown as "standard input"; null for a
// message about no file. Messages are UTF-8.

#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

// The file as it is shown: UTF-8 without control characters. file is not null.
std::string v_report_show_file(const char *file);

// "vantorelle-codeset: FILE: message".
void v_report_error(const char *file, const char *message);
// The same with the message of base/error.h.
void v_report_last_error(const char *file);
// "vantorelle-codeset: FILE: warning: message".
void v_report_warning(const char *file, const char *message);

// Shows "FILE: <work>, <n> s" on a terminal while an object of this class exists, from one second
// after its construction on. Report nothing meanwhile.
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
  std::thread thread; // last, so that it starts when the rest is there
};
