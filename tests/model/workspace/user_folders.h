#pragma once
// Temporary home, configuration and state folders for a test program. GLib caches their paths, so
// they are set before the first test and are the same for all tests.

#include <string>

std::string home_folder();
std::string config_folder();
// Neither it nor its parent exists until the program creates it.
std::string state_folder();

// Empties the home and configuration folders before a test and after it.
class FreshUserFolders {
public:
  FreshUserFolders();
  ~FreshUserFolders();
  FreshUserFolders(const FreshUserFolders &) = delete;
  FreshUserFolders &operator=(const FreshUserFolders &) = delete;
};
