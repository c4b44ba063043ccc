#pragma once
// Files and folders for tests. Paths are UTF-8. Every failure ends the test program, because a test
// without its files proves nothing.

#include <ctime>
#include <string>
#include <vector>

// A new empty folder. The destructor removes it with its contents.
class TemporaryFolder {
public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder &) = delete;
  TemporaryFolder &operator=(const TemporaryFolder &) = delete;

  const char *path() const { return folder.c_str(); }
  // The path of an entry, which need not exist. The name may contain "/".
  std::string operator/(const std::string &name) const { return folder + "/" + name; }

private:
  std::string folder;
};

void write_file(const std::string &path, const std::string &bytes);
std::string read_file(const std::string &path);
bool path_exists(const std::string &path);
void make_folder(const std::string &path);
void set_permissions(const std::string &path, unsigned mode);
// Follows links. Includes the set-user, set-group and sticky bits.
unsigned permissions_of(const std::string &path);
// seconds: since 1970.
void set_modification_time(const std::string &path, std::time_t seconds);
// Names without "." and "..", sorted by their bytes.
std::vector<std::string> list_folder(const std::string &path);
// The number of open descriptors of this process.
int count_open_descriptors();
