#pragma once
// Files and folders of a test's own. Paths are UTF-8; every failure ends the test program, because
// a test whose ground is not as it believes proves nothing.

#include <string>
#include <vector>

// A new empty folder, removed with everything in it at the end.
class TemporaryFolder {
public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder &) = delete;
  TemporaryFolder &operator=(const TemporaryFolder &) = delete;

  const char *path() const { return folder.c_str(); }
  // The path of an entry of the folder, whether or not it exists; the name may hold "/".
  std::string operator/(const std::string &name) const { return folder + "/" + name; }

private:
  std::string folder;
};

void write_file(const std::string &path, const std::string &bytes);
std::string read_file(const std::string &path);
bool path_exists(const std::string &path);
void make_folder(const std::string &path);
void set_permissions(const std::string &path, unsigned mode);
// Names without "." and "..", sorted by their bytes.
std::vector<std::string> list_folder(const std::string &path);
// Descriptors that the process holds open.
int count_open_descriptors();
