#pragma once
// Drafts: unsaved changes of a codeset file, kept in
// $XDG_STATE_HOME/vantorelle/drafts so that it outlives the program. A draft is an ordinary codeset
// file. Its name tells the path of the codeset it belongs to, and the program that edits the
// codeset holds it: a draft that nobody holds was left behind. Knows nothing of windows, nor of
// when a draft is due.
//
// Paths are UTF-8. A draft that cannot be written or removed is not reported: the user's work does
// not depend on it.

#include <cstdint>
#include <string>

#include "base/fs_utils.h"
#include "base/private_files.h"
#include "codeset/codeset.h"

struct VDraft {
  OwnedText codeset_path;
  // Of the draft's name. Found when the codeset is opened, because links in its path cannot be
  // resolved while its folder is away.
  std::string name_prefix;
  // Of the codeset's file, when it was last saved over an existing file; unknown before.
  VFilePermissions codeset_permissions;
  OwnedText path;     // of the draft; null while there is none
  OwnedHeldFile held; // holds the draft; null while there is none
  // The draft that a program left behind when it ended, until it is taken or removed; null when
  // there was none.
  OwnedCodeset left_behind;
  std::int64_t left_behind_time = 0; // when it was written, in seconds since the epoch
};

// The draft stays on the disk and counts as left behind from then on.
void v_draft_close(VDraft *draft);
using OwnedDraft = Owned<VDraft, v_draft_close>;

// The draft of one codeset file, which need not exist, while it is edited. The newest draft of it
// that was left behind is taken over; older ones stay for the next time. A draft that cannot be
// read is set aside: its name gets the ending ".unreadable", and it is not read again.
OwnedDraft v_draft_open(const char *codeset_path);

// Brings the draft up to date, in place of the older one. A codeset without name is given its
// file's name. A codeset without remarks could not be read again: the older draft stays. False when
// the draft could not be written, so that it may be tried again later.
bool v_draft_write(VDraft *draft, const VCodeset *codeset);

// Saves the codeset to its file as v_codeset_io_write_to_file does, and returns what that returns.
// Before that the draft is brought up to date and forced onto the disk; it is removed once the file
// is on the disk. It stays beside a file that cannot be read back (v_codeset_io_can_be_read_back):
// then the draft alone holds the work. A failure of the draft does not stop the saving. A save that
// is tried again gives the file the permissions that it had before it was lost.
bool v_draft_save_codeset(VDraft *draft, const VCodeset *codeset);

// Removes the draft. The next one that is written is a new one. What is on the disk stays there,
// and counts as left behind, when a failed save has taken the codeset's file away: then there is
// nothing else.
void v_draft_remove(VDraft *draft);
