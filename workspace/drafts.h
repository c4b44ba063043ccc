#pragma once
// Drafts: unsaved changes to a codeset file, kept in $XDG_STATE_HOME/vantorelle/drafts so that they
// survive the end of the program. A draft is an ordinary codeset file. Its name begins with a
// digest of the codeset's path, and the program that edits the codeset locks it: an unlocked draft
// was left behind. Knows nothing of windows, nor of when to write a draft.
//
// Paths are UTF-8. Failing to write or remove a draft is not reported, because the user's work does
// not depend on it.

#include <cstdint>
#include <string>

#include "base/fs_utils.h"
#include "base/private_files.h"
#include "codeset/codeset.h"

struct VDraft {
  OwnedText codeset_path;
  // The prefix of the draft's name. Determined when the codeset is opened, because links in its
  // path cannot be resolved while its folder is not accessible.
  std::string name_prefix;
  // Permissions of the codeset's file when it was last saved over; unknown before that.
  VFilePermissions codeset_permissions;
  OwnedText path;     // of the draft; null while there is none
  OwnedHeldFile held; // the lock on the draft; null while there is none
  // The draft that an earlier program has left behind, until the caller moves or removes it; null
  // when there was none.
  OwnedCodeset left_behind;
  std::int64_t left_behind_time = 0; // when it was written, in seconds since the epoch
};

// The draft remains on disk and counts as left behind from then on. Null is allowed.
void v_draft_close(VDraft *draft);
using OwnedDraft = Owned<VDraft, v_draft_close>;

// Opens the draft of a codeset file that is about to be edited; the file need not exist. Takes over
// the newest draft of it that was left behind; older ones are kept for the next time. A draft that
// cannot be read gets the suffix ".unreadable" and is not read again. Never null.
OwnedDraft v_draft_open(const char *codeset_path);

// Writes the draft, replacing the older one. A codeset without a name gets that of its file. Does
// nothing for a codeset without remarks, which could not be read back: the older draft is kept.
// False when writing failed, so that the caller can try again later.
bool v_draft_write(VDraft *draft, const VCodeset *codeset);

// Saves the codeset to its file as v_codeset_io_write_to_file does, with the same result. Writes
// the draft first and flushes it to disk, and removes it once the file is on disk, unless the file
// cannot be read back (v_codeset_io_can_be_read_back): then only the draft has the work. A failure
// to write the draft does not prevent saving. When a save is repeated after one that lost the file,
// the file gets its former permissions.
bool v_draft_save_codeset(VDraft *draft, const VCodeset *codeset);

// Removes the draft; the next v_draft_write creates another one. If a failed save has lost the
// codeset's file, the draft on disk is kept and counts as left behind, because it is the only copy.
void v_draft_remove(VDraft *draft);
