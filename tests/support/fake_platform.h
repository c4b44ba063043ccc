#pragma once
// The operating system as a test wants it to be: takes the place of everything in base/platform.h
// that asks the system something. A test program gets it by naming vantorelle_fake_platform under
// USES. Nothing is started, and no folder of the machine is known until a test names one.

#include <map>
#include <optional>
#include <string>
#include <vector>

// All texts are UTF-8.
struct FakePlatform {
  std::optional<std::string> install_folder; // none: "Error getting exe path from system."
  std::optional<std::string> temp_files_folder;
  std::map<long, std::string> exe_paths; // by process id; others are no process
  bool programs_are_bundles = false;     // as on macOS
  bool commands_can_start = true;
  std::vector<std::string> command_lines; // what was to be started, the failed starts included
};

extern FakePlatform fake_platform;

// Sets the fake back to what it is at first, before a test and after it.
class FakePlatformReset {
public:
  FakePlatformReset() { fake_platform = {}; }
  ~FakePlatformReset() { fake_platform = {}; }
  FakePlatformReset(const FakePlatformReset &) = delete;
  FakePlatformReset &operator=(const FakePlatformReset &) = delete;
};
