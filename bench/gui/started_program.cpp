#include "started_program.h"

#include <chrono>
#include <csignal>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <thread>

#include <X11/Xlib.h>
#include <poll.h>
#include <sys/wait.h>

namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

constexpr auto longest_wait = 30s;
constexpr auto quiet = 500ms;

struct CloseDisplay {
  void operator()(Display *display) const { XCloseDisplay(display); }
};

// Observes when windows of the display are created and mapped.
class MapWatch {
public:
  MapWatch() : display(XOpenDisplay(nullptr)) {
    if (!display) {
      throw std::runtime_error("No display.");
    }
    // A window may be destroyed before its events are selected; ignore that error.
    XSetErrorHandler([](Display *, XErrorEvent *) { return 0; });
    XSelectInput(display.get(), DefaultRootWindow(display.get()), SubstructureNotifyMask);
    XSync(display.get(), False);
  }

  // Waits until a window that the window manager manages is mapped.
  void wait() {
    while (!is_map_of_client(next_event())) {
    }
  }

private:
  XEvent next_event() {
    while (XPending(display.get()) == 0) {
      pollfd connection = {ConnectionNumber(display.get()), POLLIN, 0};
      if (poll(&connection, 1, std::chrono::milliseconds(longest_wait).count()) == 0) {
        throw std::runtime_error("The program shows no window.");
      }
    }
    XEvent event;
    XNextEvent(display.get(), &event);
    return event;
  }

  // Only the map event of the window itself counts, because the window manager first puts it into a
  // frame. Frames and menus are not managed.
  bool is_map_of_client(const XEvent &event) {
    if (event.type == CreateNotify && !event.xcreatewindow.override_redirect) {
      XSelectInput(display.get(), event.xcreatewindow.window, StructureNotifyMask);
      XFlush(display.get());
    }
    return event.type == MapNotify && !event.xmap.override_redirect;
  }

  std::unique_ptr<Display, CloseDisplay> display;
};

GPid start(const std::string &path) {
  char *arguments[] = {const_cast<char *>(path.c_str()), nullptr};
  GPid pid = 0;
  GError *error = nullptr;
  if (!g_spawn_async(nullptr, arguments, nullptr, G_SPAWN_DO_NOT_REAP_CHILD, nullptr, nullptr, &pid,
                     &error)) {
    throw std::runtime_error(error->message);
  }
  return pid;
}

// Processor time so far, in ticks.
long read_used_time(GPid pid) {
  std::ifstream file("/proc/" + std::to_string(pid) + "/stat");
  std::string field;
  std::getline(file, field, ')'); // the name may contain spaces
  for (int i = 3; i < 14; i++) {
    file >> field;
  }
  long user = 0;
  long system = 0;
  file >> user >> system;
  return user + system;
}

double read_memory(GPid pid) {
  std::ifstream file("/proc/" + std::to_string(pid) + "/smaps_rollup");
  std::string word;
  while (file >> word) {
    if (word == "Rss:") {
      double kibibytes = 0;
      file >> kibibytes;
      return kibibytes / 1024;
    }
  }
  throw std::runtime_error("The kernel does not tell the memory of the program.");
}

} // namespace

StartedProgram::StartedProgram(const std::string &path) {
  MapWatch watch;
  const auto begin = Clock::now();
  pid = start(path);
  watch.wait();
  seconds = std::chrono::duration<double>(Clock::now() - begin).count();
}

StartedProgram::~StartedProgram() {
  kill(pid, SIGTERM);
  waitpid(pid, nullptr, 0);
  g_spawn_close_pid(pid);
}

double StartedProgram::measure_idle_memory() const {
  long before = -1;
  for (long now = read_used_time(pid); now != before; now = read_used_time(pid)) {
    before = now;
    std::this_thread::sleep_for(quiet);
  }
  return read_memory(pid);
}
