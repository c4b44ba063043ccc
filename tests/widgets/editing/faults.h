#pragma once
// Counts the beeps that the program asks for, and makes single calls fail that cannot fail by
// themselves. The linker leads the calls here.

// Beeps since the last call.
int take_beep_count();

// From the given call on (1 is the next) no combo box can be had; 0 ends the fault.
void fail_combo_boxes_from(int call);
// Likewise no one-line field can be read.
void fail_reading_entries_from(int call);
