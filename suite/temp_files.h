#pragma once
// Cleans up temporary files that the suite's printing code has left behind.

// Deletes every temporary print file whose creator has ended: no process has its id, the system
// does not reveal the executable of that process, or it is a different executable. Files are kept
// when the executable is known but cannot be examined. Files that cannot be deleted are skipped
// silently. False with "Couldn't clean up temp files." before the reason when the folder cannot be
// opened.
bool v_temp_files_clean_up();
// The same in the given folder (UTF-8). Null means that the folder is unknown: false with that
// sentence in front of the current message.
bool v_temp_files_clean_up_in_folder(const char *folder);
