#include "placed_file.h"

#include <atomic>
#include <cerrno>

#include <fcntl.h>
#include <glib/gstdio.h>
#include <signal.h>
#include <unistd.h>

#include "base/error.h"
#include "base/private_files.h"

namespace {

constexpr const char *exists_already = "The file exists already; --force replaces it.";

// Paths that the signal handler removes (file system's encoding); null for none.
std::atomic<const char *> unfinished_file;
std::atomic<const char *> unfinished_folder;
static_assert(std::atomic<const char *>::is_always_lock_free); // async-signal-safe

// The signal is blocked while its handler runs: the one raised here ends the program after that.
void remove_unfinished(int signal_number) {
  if (const char *file = unfinished_file) {
    unlink(file);
  }
  if (const char *folder = unfinished_folder) {
    rmdir(folder);
  }
  raise(signal_number);
}

constexpr int ending_signals[] = {SIGHUP, SIGINT, SIGTERM, SIGPIPE, SIGXFSZ};

// A signal that is ignored, as by nohup, stays ignored.
void handle_ending_signals() {
  for (const int signal_number : ending_signals) {
    struct sigaction action = {};
    if (sigaction(signal_number, nullptr, &action) == 0 && action.sa_handler == SIG_DFL) {
      action.sa_handler = remove_unfinished;
      action.sa_flags = static_cast<int>(SA_RESETHAND);
      sigaction(signal_number, &action, nullptr);
    }
  }
}

// While it exists, signals wait: the handler does not know yet what is on the disk.
class DelayedSignals {
public:
  DelayedSignals() {
    sigset_t delayed;
    sigemptyset(&delayed);
    for (const int signal_number : ending_signals) {
      sigaddset(&delayed, signal_number);
    }
    pthread_sigmask(SIG_BLOCK, &delayed, &old_mask);
  }
  ~DelayedSignals() { pthread_sigmask(SIG_SETMASK, &old_mask, nullptr); }
  DelayedSignals(const DelayedSignals &) = delete;
  DelayedSignals &operator=(const DelayedSignals &) = delete;

private:
  sigset_t old_mask;
};

bool fail_with_errno() {
  v_error_set_from_errno();
  v_error_append("Cannot create file.");
  return false;
}

} // namespace

PlacedFile::~PlacedFile() {
  if (new_path) {
    v_fs_utils_discard_file(new_path.get());
    g_rmdir(folder.get());
    unfinished_file = nullptr;
    unfinished_folder = nullptr;
  }
}

bool PlacedFile::create_folder(const char *parent, const char *name) {
  const DelayedSignals delayed;
  folder.reset(g_build_filename(parent, ".vantorelle-codeset-XXXXXX", nullptr));
  if (g_mkdtemp(folder.get()) == nullptr) {
    return fail_with_errno();
  }
  new_name.reset(g_build_filename(folder.get(), name, nullptr));
  new_path = v_fs_utils_convert_osfsenc_to_utf8(new_name.get());
  if (!new_path) {
    g_rmdir(folder.get());
    return false;
  }
  handle_ending_signals();
  unfinished_file = new_name.get();
  unfinished_folder = folder.get();
  return true;
}

bool PlacedFile::prepare(const char *target_file, Overwriting overwriting) {
  OwnedText path = v_fs_utils_convert_osfsenc_to_utf8(target_file);
  VFileInfo info;
  if (!path || !v_fs_utils_get_info(path.get(), info)) {
    return false;
  }
  may_replace = overwriting == Overwriting::allowed;
  if (info.exists && !v_fs_utils_is_regular_file(info)) {
    v_error_set("Not a regular file.");
    return false;
  }
  if (info.exists && !may_replace) {
    v_error_set(exists_already);
    return false;
  }
  if (OwnedText resolved = v_fs_utils_resolve_links(path.get())) {
    path = std::move(resolved);
  }
  old_permissions = v_fs_utils_get_permissions(path.get());
  target = v_fs_utils_convert_utf8_to_osfsenc(path.get());
  const OwnedText parent(g_path_get_dirname(target.get()));
  const OwnedText name(g_path_get_basename(target.get()));
  return create_folder(parent.get(), name.get());
}

bool PlacedFile::prepare_temporary() { return create_folder(g_get_tmp_dir(), "codeset"); }

// Creates the empty file that the new one then replaces; only one program can succeed. A hard link
// would do the same, but not every file system has them.
bool PlacedFile::claim_target() {
  const int descriptor = g_open(target.get(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
  if (descriptor != -1) {
    close(descriptor);
    return true;
  }
  if (errno != EEXIST) {
    return fail_with_errno();
  }
  v_error_set(exists_already);
  return false;
}

bool PlacedFile::rename_to_target() {
  const DelayedSignals delayed;
  if (!may_replace && !claim_target()) {
    return false;
  }
  if (g_rename(new_name.get(), target.get()) == 0) {
    return true;
  }
  fail_with_errno();
  if (!may_replace) {
    g_unlink(target.get()); // the empty file of claim_target
  }
  return false;
}

bool PlacedFile::put() {
  if (!v_private_files_sync(new_path.get())) {
    v_error_set_file_io_writing();
    return false;
  }
  if (!rename_to_target()) {
    return false;
  }
  // Failing to flush the folder is ignored: the file is complete and in place.
  const OwnedText parent(g_path_get_dirname(target.get()));
  if (const OwnedText parent_path = v_fs_utils_convert_osfsenc_to_utf8(parent.get())) {
    v_private_files_sync(parent_path.get());
  }
  return true;
}
