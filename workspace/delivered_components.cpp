#include "workspace/delivered_components.h"

#include "base/error.h"
#include "base/file_utils.h"
#include "base/fs_utils.h"
#include "base/platform.h"
#include "base/streams.h"

namespace {

constexpr const char *layouts_name = "layouts";

// MD5 digests of the layouts that earlier versions delivered.
constexpr const char *standard_layout_name = "standard.layout";
constexpr const char *standard_layout_digest = "fbf64e8b689a7e27434603f2cbb84636";

struct EarlierLayout {
  const char *file_name;
  const char *digests[2]; // oldest first
};

constexpr EarlierLayout earlier_layouts[] = {
    {"bundled_grey_blocks.layout",
     {"aa4e1af1ed60d7e3e8c5efa44377f207", "654c93ccc429308d49345b7ce8e3b992"}},
    {"bundled_modern.layout",
     {"a2e28f8bd698b869d9e47f1c59f7092d", "33afda9bcf867ddd84ad06d49f796460"}},
    {"bundled_simple.layout",
     {"a03d1a613373bc8f9765210b128ccdcf", "5daeefabb08e012aa358fb50fbf7687c"}},
    {"bundled_white_blocks.layout",
     {"6deb29cead8c3f577ca2f9eb4d7fe28d", "9f5172002cafc9e6a1ba3faff18f0234"}},
};

bool has_digest(const char *path, const char *digest_text) {
  VMd5Digest digest;
  return v_util_get_file_md5sum(path, digest) && v_util_verify_md5sum(digest, digest_text);
}

bool copy_if_missing(const char *source, const char *target) {
  VFileInfo source_info;
  VFileInfo target_info;
  if (!v_fs_utils_get_info(source, source_info)) {
    return false;
  }
  if (!v_fs_utils_is_regular_file(source_info)) {
    return true;
  }
  if (!v_fs_utils_get_info(target, target_info)) {
    return false;
  }
  if (target_info.exists || v_stream_copy_from_file_path_to_file_path(source, target)) {
    return true;
  }
  // Next time, a partial copy would be mistaken for an installed file.
  v_fs_utils_discard_file(target);
  return false;
}

bool copy_missing_files(DIR *listing, const char *source_folder, const char *target_folder) {
  for (;;) {
    OwnedText name;
    if (!v_fs_utils_next_folder_entry(listing, name)) {
      return false;
    }
    if (!name) {
      return true;
    }
    const OwnedText source = v_fs_utils_create_path_in_folder(source_folder, name.get());
    const OwnedText target = v_fs_utils_create_path_in_folder(target_folder, name.get());
    if (!copy_if_missing(source.get(), target.get())) {
      return false;
    }
  }
}

// The earlier layout was replaced by several: deletes its file and installs those that are missing.
void upgrade_standard_layout(const char *workspace_folder, const char *layouts_folder) {
  const OwnedText path = v_fs_utils_create_path_in_folder(layouts_folder, standard_layout_name);
  VFileInfo info;
  if (v_fs_utils_get_info(path.get(), info) && info.exists &&
      has_digest(path.get(), standard_layout_digest)) {
    v_fs_utils_delete_file_if_exists(path.get());
    install_bundled_components(workspace_folder, layouts_name);
  }
}

} // namespace

bool install_bundled_components(const char *workspace_folder, const char *sub_folder) {
  const OwnedText install_folder = v_platform_get_install_folder_path();
  if (!install_folder) {
    return false;
  }
  const OwnedText source = v_fs_utils_create_path_in_folder(install_folder.get(), sub_folder);
  const OwnedText target = v_fs_utils_create_path_in_folder(workspace_folder, sub_folder);
  VFileInfo source_info;
  if (v_fs_utils_get_info(source.get(), source_info) && !source_info.exists) {
    return true;
  }
  const OwnedFolder listing = v_fs_utils_open_folder(source.get());
  VFileInfo target_info;
  if (!listing || !v_fs_utils_get_info(target.get(), target_info) ||
      (!target_info.exists && !v_fs_utils_create_folder(target.get()))) {
    return false;
  }
  if (!copy_missing_files(listing.get(), source.get(), target.get())) {
    if (!target_info.exists) {
      delete_components_folder(workspace_folder, sub_folder);
    }
    return false;
  }
  return true;
}

void delete_components_folder(const char *workspace_folder, const char *sub_folder) {
  const VErrorKeeper keeper;
  const OwnedText folder = v_fs_utils_create_path_in_folder(workspace_folder, sub_folder);
  if (const OwnedFolder listing = v_fs_utils_open_folder(folder.get())) {
    while (const OwnedText name = v_fs_utils_next_convertible_folder_entry(listing.get())) {
      v_fs_utils_discard_file(v_fs_utils_create_path_in_folder(folder.get(), name.get()).get());
    }
  }
  v_fs_utils_delete_folder_if_exists(folder.get());
}

void upgrade_component_if_needed(const char *layouts_folder, const char *file_name,
                                 const char *old_digest) {
  const OwnedText path = v_fs_utils_create_path_in_folder(layouts_folder, file_name);
  if (!has_digest(path.get(), old_digest)) {
    return;
  }
  if (const OwnedText install_folder = v_platform_get_install_folder_path()) {
    const OwnedText delivered =
        v_fs_utils_create_path_in_folder(install_folder.get(), layouts_name, file_name);
    // Copying from a missing file would leave an empty layout instead of the old one.
    VFileInfo info;
    if (v_fs_utils_get_info(delivered.get(), info) && v_fs_utils_is_regular_file(info)) {
      v_stream_copy_from_file_path_to_file_path(delivered.get(), path.get());
    }
  }
}

void v_delivered_components_upgrade_layouts(const char *workspace_folder,
                                            const char *layouts_folder) {
  upgrade_standard_layout(workspace_folder, layouts_folder);
  for (const EarlierLayout &layout : earlier_layouts) {
    for (const char *digest : layout.digests) {
      upgrade_component_if_needed(layouts_folder, layout.file_name, digest);
    }
  }
}
