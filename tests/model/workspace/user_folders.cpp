#include "model/workspace/user_folders.h"

#include <cstdlib>
#include <filesystem>

#include "support/files.h"

namespace {

// A test that needs another folder names it in the variable `chosen_by` and runs in a new process.
void set_folder(const char *variable, const char *chosen_by, const std::string &usual) {
  const char *chosen = std::getenv(chosen_by);
  setenv(variable, chosen == nullptr ? usual.c_str() : chosen, 1);
}

class UserFolders {
public:
  UserFolders() {
    set_folder("HOME", "VANTORELLE_TEST_HOME", home());
    set_folder("XDG_CONFIG_HOME", "VANTORELLE_TEST_CONFIG_HOME", config());
    set_folder("XDG_STATE_HOME", "VANTORELLE_TEST_STATE_HOME", state());
    make();
  }
  std::string home() const { return folder / "home"; }
  std::string config() const { return folder / "home/.config"; }
  std::string state() const { return folder / "home/.local/state"; }
  void make() const {
    std::filesystem::remove_all(home());
    make_folder(home());
    make_folder(config());
  }

private:
  TemporaryFolder folder;
};

const UserFolders user_folders;

} // namespace

std::string home_folder() { return user_folders.home(); }

std::string config_folder() { return user_folders.config(); }

std::string state_folder() { return user_folders.state(); }

FreshUserFolders::FreshUserFolders() { user_folders.make(); }

FreshUserFolders::~FreshUserFolders() { user_folders.make(); }
