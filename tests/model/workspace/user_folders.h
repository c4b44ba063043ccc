#pragma once
// The user's home, configuration and state folder as a test program's own. GLib asks for them once
// and keeps them, so they are set before the first test and are the same for all.

#include <string>

std::string home_folder();
std::string config_folder();
// Missing, as its parent is, until the program makes it.
std::string state_folder();

// Home and configuration folder are there and empty, before a test and after it.
class FreshUserFolders {
public:
  FreshUserFolders();
  ~FreshUserFolders();
  FreshUserFolders(const FreshUserFolders &) = delete;
  FreshUserFolders &operator=(const FreshUserFolders &) = delete;
};
