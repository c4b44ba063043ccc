// The file that holds the path of the workspace. A path that is read is saved and read again
// unchanged.

#include <cstdlib>
#include <cstring>

#include "fuzz/fuzzing.h"
#include "support/files.h"
#include "workspace/workspace_location.h"

namespace {

// The user's configuration folder, with the pointer file's own folder in it.
class ConfigurationFolder {
public:
  ConfigurationFolder() {
    // GLib reads the variable once per process.
    setenv("XDG_CONFIG_HOME", folder.path(), 1);
    make_folder(folder / "vantorelle");
  }
  std::string pointer_file_path() const { return folder / "vantorelle/vantorelle.xml"; }

private:
  TemporaryFolder folder;
};

void require_saved_reads_back(const OwnedText &path) {
  OwnedText reread;
  require(v_workspace_save_folder_path(path.get()), "a path can be saved");
  require(v_workspace_get_saved_folder_path(reread), "what was saved can be read");
  require(reread != nullptr && std::strcmp(reread.get(), path.get()) == 0, "as the same path");
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  static const ConfigurationFolder folder;
  write_file(folder.pointer_file_path(), {reinterpret_cast<const char *>(data), size});
  set_old_message();
  OwnedText path;
  if (!v_workspace_get_saved_folder_path(path)) {
    require(path == nullptr, "a failure gives no path");
    require_message();
    return 0;
  }
  require(path != nullptr && g_utf8_validate(path.get(), -1, nullptr), "the path is UTF-8");
  require(!g_str_has_suffix(path.get(), "/"), "the path has no delimiter at its end");
  // A path of delimiters alone becomes empty.
  if (*path != '\0') {
    require_saved_reads_back(path);
  }
  return 0;
}
