#include "workspace/drafts.h"

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "base/error.h"
#include "base/fs_utils.h"
#include "base/text_encoding.h"
#include "codeset/codeset_io.h"

namespace {

// File name suffixes. A draft is written with the first one and then renamed.
constexpr const char *unfinished = ".new";
constexpr const char *unreadable = ".unreadable";

// Maximum length in bytes of the codeset's file name at the end of a draft's name, where it helps
// people who look into the folder.
constexpr std::size_t longest_repeated_name = 60;

// The folder of drafts; null when the state folder's name cannot be converted.
OwnedText find_folder() {
  const OwnedText state_folder = v_fs_utils_convert_glibfsenc_to_utf8(g_get_user_state_dir());
  return state_folder ? v_fs_utils_create_path_in_folder(state_folder.get(), "vantorelle", "drafts")
                      : nullptr;
}

// The absolute path of the file, with symbolic links in the path of its folder resolved. If the
// file itself is a link it is not resolved, because saving replaces it.
OwnedText find_location(const char *path) {
  const OwnedText folder(g_path_get_dirname(path));
  const OwnedText real_folder = v_fs_utils_resolve_links(folder.get());
  return real_folder ? v_fs_utils_create_path_in_folder(real_folder.get(),
                                                        v_fs_utils_find_entry_name_in_path(path))
                     : OwnedText(g_canonicalize_filename(path, nullptr));
}

// The prefix of the names of this file's drafts and of no others. A digest, because a path may be
// longer than the maximum length of a file name.
std::string make_prefix(const char *absolute_path) {
  const OwnedText digest(g_compute_checksum_for_string(G_CHECKSUM_SHA256, absolute_path, -1));
  return std::string(digest.get()) + ".";
}

// The prefix for new drafts, and that of drafts written while the file's folder was not accessible,
// so that the links in its path could not be resolved.
std::array<std::string, 2> find_prefixes(const char *codeset_path) {
  const OwnedText unresolved(g_canonicalize_filename(codeset_path, nullptr));
  return {make_prefix(find_location(codeset_path).get()), make_prefix(unresolved.get())};
}

bool has_any_prefix(const char *name, const std::array<std::string, 2> &prefixes) {
  return std::any_of(prefixes.begin(), prefixes.end(), [name](const std::string &prefix) {
    return g_str_has_prefix(name, prefix.c_str());
  });
}

// The end of the name, which includes the extension.
const char *shorten(const char *name) {
  const std::size_t length = std::char_traits<char>::length(name);
  const char *rest = name + length - std::min(length, longest_repeated_name);
  return g_utf8_validate(rest, -1, nullptr) ? rest : g_utf8_find_next_char(rest, nullptr);
}

// Returns a different path each time: each editing session has its own draft.
OwnedText make_path(const char *folder, const VDraft *draft) {
  const char *codeset_name = v_fs_utils_find_entry_name_in_path(draft->codeset_path.get());
  const OwnedText name(g_strdup_printf("%s%08x%08x.%s", draft->name_prefix.c_str(), g_random_int(),
                                       g_random_int(), shorten(codeset_name)));
  return v_fs_utils_create_path_in_folder(folder, name.get());
}

bool make_folder_if_missing(const char *folder) {
  VFileInfo info;
  return v_fs_utils_get_info(folder, info) &&
         (info.exists || v_fs_utils_create_folder_recursively(folder));
}

bool write_content(const char *path, const VCodeset *codeset, const char *substitute_name) {
  OwnedFile file = v_fs_utils_open_file(path, "wb");
  return file && v_codeset_io_write_readably(file.get(), codeset, substitute_name) &&
         v_fs_utils_close_file(std::move(file));
}

// Writes the draft under a temporary name, locked, and renames it, so that other programs never see
// one that is incomplete or not locked.
bool write_draft(VDraft *draft, const VCodeset *codeset) {
  const OwnedText folder = find_folder();
  if (v_remark_list_is_empty(codeset->remarks.get()) || !folder ||
      !make_folder_if_missing(folder.get())) {
    return false;
  }
  OwnedText path = draft->path ? copy_text(draft->path.get()) : make_path(folder.get(), draft);
  const OwnedText new_path(g_strconcat(path.get(), unfinished, nullptr));
  OwnedHeldFile held = v_private_files_create(new_path.get());
  if (!held) {
    return false;
  }
  const std::string name = v_codeset_io_make_substitute_name(
      v_fs_utils_find_entry_name_in_path(draft->codeset_path.get()));
  if (!write_content(new_path.get(), codeset, name.c_str()) ||
      !v_private_files_rename(new_path.get(), path.get())) {
    v_fs_utils_discard_file(new_path.get());
    return false;
  }
  draft->path = std::move(path);
  draft->held = std::move(held);
  return true;
}

// Flushes the file's content, and its directory entry, to disk.
bool sync_file(const char *path) {
  const OwnedText folder(g_path_get_dirname(path));
  return v_private_files_sync(path) && v_private_files_sync(folder.get());
}

bool write_and_sync_draft(VDraft *draft, const VCodeset *codeset) {
  return write_draft(draft, codeset) && sync_file(draft->path.get());
}

void remember_permissions(VDraft *draft) {
  const VFilePermissions permissions = v_fs_utils_get_permissions(draft->codeset_path.get());
  if (permissions.are_known) {
    draft->codeset_permissions = permissions;
  }
}

// True when the codeset file existed when it was last saved, but no longer does.
bool has_lost_its_file(const VDraft *draft) {
  VFileInfo info;
  return draft->codeset_permissions.are_known &&
         (!v_fs_utils_get_info(draft->codeset_path.get(), info) || !info.exists);
}

void discard_unless_held(const char *path) {
  if (const OwnedHeldFile held = v_private_files_hold(path)) {
    v_fs_utils_discard_file(path);
  }
}

struct Candidate {
  OwnedText path;
  std::int64_t time = 0;
};

// The drafts whose names begin with one of the prefixes, newest first, whether locked or not.
// Removes unfinished ones of programs that ended while writing.
std::vector<Candidate> list_candidates(const char *folder,
                                       const std::array<std::string, 2> &prefixes) {
  std::vector<Candidate> candidates;
  const OwnedFolder listing = v_fs_utils_open_folder(folder);
  while (const OwnedText name =
             listing ? v_fs_utils_next_convertible_folder_entry(listing.get()) : nullptr) {
    OwnedText path = v_fs_utils_create_path_in_folder(folder, name.get());
    VFileInfo info;
    if (!has_any_prefix(name.get(), prefixes) || g_str_has_suffix(name.get(), unreadable) ||
        !v_fs_utils_get_info(path.get(), info) || !v_fs_utils_is_regular_file(info)) {
      continue;
    }
    if (g_str_has_suffix(name.get(), unfinished)) {
      discard_unless_held(path.get());
    } else {
      candidates.push_back({std::move(path), info.modification_time});
    }
  }
  std::stable_sort(candidates.begin(), candidates.end(),
                   [](const Candidate &a, const Candidate &b) { return a.time > b.time; });
  return candidates;
}

// False when another program has locked the draft or it cannot be read.
bool take_over(VDraft *draft, Candidate &candidate) {
  OwnedHeldFile held = v_private_files_hold(candidate.path.get());
  if (!held) {
    return false;
  }
  draft->left_behind = v_codeset_io_read_from_file(candidate.path.get());
  if (!draft->left_behind) {
    const OwnedText aside(g_strconcat(candidate.path.get(), unreadable, nullptr));
    v_private_files_rename(candidate.path.get(), aside.get());
    return false;
  }
  draft->left_behind_time = candidate.time;
  draft->path = std::move(candidate.path);
  draft->held = std::move(held);
  return true;
}

} // namespace

void v_draft_close(VDraft *draft) { delete draft; }

OwnedDraft v_draft_open(const char *codeset_path) {
  OwnedDraft draft(new VDraft);
  draft->codeset_path = copy_text(codeset_path);
  const std::array<std::string, 2> prefixes = find_prefixes(codeset_path);
  draft->name_prefix = prefixes.front();
  if (const OwnedText folder = find_folder()) {
    for (Candidate &candidate : list_candidates(folder.get(), prefixes)) {
      if (take_over(draft.get(), candidate)) {
        break;
      }
    }
  }
  return draft;
}

bool v_draft_write(VDraft *draft, const VCodeset *codeset) {
  return v_remark_list_is_empty(codeset->remarks.get()) || write_draft(draft, codeset);
}

bool v_draft_save_codeset(VDraft *draft, const VCodeset *codeset) {
  const bool is_drafted = write_and_sync_draft(draft, codeset);
  remember_permissions(draft);
  if (!v_codeset_io_write_to_file_with_permissions(codeset, draft->codeset_path.get(),
                                                   draft->codeset_permissions)) {
    // The failed save may have freed space on a full disk by deleting the old file.
    if (!is_drafted) {
      const VErrorKeeper keeper;
      write_and_sync_draft(draft, codeset);
    }
    return false;
  }
  if (sync_file(draft->codeset_path.get()) && v_codeset_io_can_be_read_back(codeset)) {
    v_draft_remove(draft);
  }
  return true;
}

void v_draft_remove(VDraft *draft) {
  draft->left_behind.reset();
  if (draft->path && !has_lost_its_file(draft)) {
    v_fs_utils_discard_file(draft->path.get());
  }
  // Unlock the draft after deleting it, so that no other program can take it over.
  draft->path.reset();
  draft->held.reset();
}
