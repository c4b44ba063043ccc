#include "suite/temp_files.h"

#include <cstdint>
#include <cstring>

#include "base/error.h"
#include "base/fs_utils.h"
#include "base/owned.h"
#include "base/platform.h"

namespace {

using OwnedRegex = Owned<GRegex, g_regex_unref>;

// vantorelle-<process id>.<fingerprint of the process's executable>.out or .odt
constexpr const char *name_pattern = "^vantorelle-[0-9]+[.][0-9]+[.]o[du]t$";
constexpr char name_prefix[] = "vantorelle-";
constexpr std::size_t prefix_length = sizeof name_prefix - 1;

struct Maker {
  long process_id = 0;
  std::int64_t fingerprint = 0;
};

// The name must match the pattern. A number out of range becomes the limit, which is no process's
// id.
Maker get_maker(const char *file_name) {
  const char *process_id = file_name + prefix_length;
  const char *fingerprint = std::strchr(process_id, '.') + 1;
  return {static_cast<long>(g_ascii_strtoll(process_id, nullptr, 10)),
          g_ascii_strtoll(fingerprint, nullptr, 10)};
}

// The executable's size with its top bit cleared, because names hold 31 bits.
std::int64_t get_fingerprint(const VFileInfo &executable) { return executable.size & 0x7fffffff; }

// False also when the executable cannot be examined, for instance because its name cannot be
// converted: the process may still be running.
bool is_gone(const Maker &maker) {
  OwnedText path;
  if (!v_platform_get_exe_path_for_process_id(path, maker.process_id)) {
    return true;
  }
  VFileInfo executable;
  return path && v_fs_utils_get_info(path.get(), executable) && executable.exists &&
         get_fingerprint(executable) != maker.fingerprint;
}

// Compares the prefix first, which is a hundred times faster than the regular expression: the
// folder is shared and may have thousands of entries.
bool is_ours(const char *name, const GRegex *pattern) {
  return g_str_has_prefix(name, name_prefix) &&
         g_regex_match(pattern, name, G_REGEX_MATCH_DEFAULT, nullptr);
}

void clean_up_file(const char *folder, const char *name, const GRegex *pattern) {
  if (!is_ours(name, pattern) || !is_gone(get_maker(name))) {
    return;
  }
  const OwnedText path = v_fs_utils_create_path_in_folder(folder, name);
  v_fs_utils_delete_file_if_exists(path.get());
}

OwnedRegex compile_pattern() {
  OwnedRegex pattern(g_regex_new(name_pattern, G_REGEX_DEFAULT, G_REGEX_MATCH_DEFAULT, nullptr));
  if (!pattern) {
    v_error_set("Regex error.");
  }
  return pattern;
}

OwnedFolder open_folder(const char *path) {
  OwnedFolder listing = v_fs_utils_open_folder(path);
  if (!listing) {
    v_error_append("Couldn't open temp files folder.");
  }
  return listing;
}

bool clean_up(const char *folder) {
  const OwnedFolder listing = folder != nullptr ? open_folder(folder) : nullptr;
  const OwnedRegex pattern = listing ? compile_pattern() : nullptr;
  if (!pattern) {
    return false;
  }
  // An error while listing is not a failure: the next start deletes the rest. Names that cannot be
  // converted are not ours and are skipped; otherwise one would make every start fail.
  while (const OwnedText name = v_fs_utils_next_convertible_folder_entry(listing.get())) {
    clean_up_file(folder, name.get(), pattern.get());
  }
  return true;
}

} // namespace

bool v_temp_files_clean_up() {
  const OwnedText folder = v_platform_get_temp_files_folder_path();
  return v_temp_files_clean_up_in_folder(folder.get());
}

bool v_temp_files_clean_up_in_folder(const char *folder) {
  if (!clean_up(folder)) {
    v_error_append("Couldn't clean up temp files.");
    return false;
  }
  return true;
}
