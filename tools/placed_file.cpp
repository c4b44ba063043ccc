#include "placed_file.h"

#include <cerrno>

#include <fcntl.h>
#include <glib/gstdio.h>
#include <unistd.h>

#include "base/error.h"
#include "base/private_files.h"

namespace {

constexpr const char *exists_already = "The file exists already; --force replaces it.";

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
  }
}

bool PlacedFile::create_folder(const char *parent, const char *name) {
  folder.reset(g_build_filename(parent, ".vantorelle-codeset-XXXXXX", nullptr));
  if (g_mkdtemp(folder.get()) == nullptr) {
    return fail_with_errno();
  }
  const OwnedText path(g_build_filename(folder.get(), name, nullptr));
  new_path = v_fs_utils_convert_osfsenc_to_utf8(path.get());
  if (!new_path) {
    g_rmdir(folder.get());
  }
  return new_path != nullptr;
}

bool PlacedFile::prepare(const char *place, Overwriting overwriting) {
  OwnedText path = v_fs_utils_convert_osfsenc_to_utf8(place);
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

// Only one program can create the file that the new one then replaces. Hard links would do the
// same, but not every file system has them.
bool PlacedFile::claim_place() {
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

bool PlacedFile::put() {
  if (!v_private_files_sync(new_path.get())) {
    v_error_set_file_io_writing();
    return false;
  }
  if (!may_replace && !claim_place()) {
    return false;
  }
  const OwnedText name = v_fs_utils_convert_utf8_to_osfsenc(new_path.get());
  if (g_rename(name.get(), target.get()) != 0) {
    fail_with_errno();
    if (!may_replace) {
      g_unlink(target.get()); // the empty file of claim_place
    }
    return false;
  }
  // Failures of this are ignored: the file is whole and in its place.
  const OwnedText parent(g_path_get_dirname(target.get()));
  if (const OwnedText parent_path = v_fs_utils_convert_osfsenc_to_utf8(parent.get())) {
    v_private_files_sync(parent_path.get());
  }
  return true;
}
