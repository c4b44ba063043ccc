#include "tools/report.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>

#include <signal.h>
#include <unistd.h>

#include "base/error.h"

namespace {

constexpr const char *bold = "\033[1m";
constexpr const char *magenta = "\033[35m";
constexpr const char *plain = "\033[0m";
constexpr const char *erased_line = "\r\033[K";

bool is_terminal() { return isatty(STDERR_FILENO) != 0; }

bool is_coloured() {
  const char *no_color = std::getenv("NO_COLOR");
  return is_terminal() && (no_color == nullptr || *no_color == '\0');
}

// Returns valid UTF-8 without control characters, which could be escape sequences of the terminal.
// A blank line becomes a space; the lines after other line feeds are indented.
std::string make_printable(const char *text) {
  const OwnedText valid(g_utf8_make_valid(text, -1));
  std::string printable;
  for (const char *c = valid.get(); *c != '\0'; c = g_utf8_next_char(c)) {
    if (c[0] == '\n' && c[1] == '\n') {
      printable += ' ';
      c++;
    } else if (*c == '\n') {
      printable += "\n  ";
    } else if (g_unichar_iscntrl(g_utf8_get_char(c))) {
      printable += '?';
    } else {
      printable.append(c, static_cast<std::size_t>(g_utf8_next_char(c) - c));
    }
  }
  return printable;
}

// kind: put in front of the message; null for none.
void report(const char *file, const char *kind, const char *message) {
  const bool coloured = is_coloured();
  std::string text = coloured ? bold : "";
  text += "vantorelle-codeset: ";
  if (file != nullptr) {
    text += v_report_show_file(file) + ": ";
  }
  text += coloured ? plain : "";
  if (kind != nullptr) {
    text += coloured ? std::string(magenta) + kind + plain : kind;
  }
  text += make_printable(message) + '\n';
  std::fputs(text.c_str(), stderr);
}

} // namespace

std::string v_report_show_file(const char *file) {
  return std::string(file) == "-" ? "standard input" : make_printable(file);
}

void v_report_error(const char *file, const char *message) { report(file, nullptr, message); }

void v_report_last_error(const char *file) { v_report_error(file, v_error_get()); }

void v_report_warning(const char *file, const char *message) { report(file, "warning: ", message); }

VProgressReport::VProgressReport(const char *file, const char *work)
    : text(v_report_show_file(file) + ": " + work) {
  if (is_terminal()) {
    thread = std::thread(&VProgressReport::show_until_finished, this);
  }
}

VProgressReport::~VProgressReport() {
  if (thread.joinable()) {
    {
      const std::lock_guard lock(mutex);
      is_finished = true;
    }
    finishing.notify_one();
    thread.join();
  }
}

void VProgressReport::show_until_finished() {
  // Signals are for the main thread, which delays them at times.
  sigset_t all_signals;
  sigfillset(&all_signals);
  pthread_sigmask(SIG_BLOCK, &all_signals, nullptr);
  std::unique_lock lock(mutex);
  int seconds = 0;
  while (!finishing.wait_for(lock, std::chrono::seconds(1), [this] { return is_finished; })) {
    seconds++;
    std::fprintf(stderr, "%s%s, %d s", erased_line, text.c_str(), seconds);
    std::fflush(stderr);
  }
  if (seconds > 0) {
    std::fputs(erased_line, stderr);
    std::fflush(stderr);
  }
}
