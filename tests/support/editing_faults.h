#pragma once
// Counts the beeps that the program asks for and the drafts that it writes, and makes single calls
// of the editing widgets fail that never fail on their own. For tests of gui/editing; the calls are
// wrapped by the linker.

// Beeps since the last call.
int take_beep_count();
// Drafts since the last call that were written or could not be written.
int take_draft_count();

// From the given call on (1 is the next) no combo box can be created; 0 ends the fault.
void fail_combo_boxes_from(int call);
// Likewise no one-line field can be read.
void fail_reading_entries_from(int call);
