#pragma once
// A fake operating system: replaces the functions of base/platform.h that depend on the system. A
// test program uses it by listing vantorelle_fake_platform under USES. It starts no programs and
// knows only the folders that a test sets.

#include <map>
#include <optional>
#include <string>
#include <vector>

// All texts are UTF-8.
struct FakePlatform {
  std::optional<std::string> install_folder; // unset: "Error getting exe path from system."
  std::optional<std::string> temp_files_folder;
  std::map<long, std::string> exe_paths; // by process id; no other process exists
  bool programs_are_bundles = false;     // as on macOS
  bool commands_can_start = true;
  std::vector<std::string> command_lines; // of all attempts, failed ones included
};

extern FakePlatform fake_platform;

// Resets the fake before a test and after it.
class FakePlatformReset {
public:
  FakePlatformReset() { fake_platform = {}; }
  ~FakePlatformReset() { fake_platform = {}; }
  FakePlatformReset(const FakePlatformReset &) = delete;
  FakePlatformReset &operator=(const FakePlatformReset &) = delete;
};
