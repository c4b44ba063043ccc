#pragma once
// The user's home and configuration folder as a test program's own. GLib asks for both once and
// keeps them, so they are set before the first test and are the same for all.

#include <string>

std::string home_folder();
std::string config_folder();

// Both are there and empty, before a test and after it.
class FreshUserFolders {
public:
  FreshUserFolders();
  ~FreshUserFolders();
  FreshUserFolders(const FreshUserFolders &) = delete;
  FreshUserFolders &operator=(const FreshUserFolders &) = delete;
};
