#pragma once
// Temporary files that the suite's printing code has left behind.

// Deletes every temporary print file whose maker is gone: no process has its id, the system does
// not tell what runs under it, or that is another executable. A running process whose executable
// cannot be asked about keeps its files. Files that cannot be deleted stay, without a word. False
// with "Couldn't clean up temp files." before the reason when the folder could not be looked
// through at all.
bool v_temp_files_clean_up();
// The same in a folder of the caller's choice (UTF-8). Null, for a folder that is not known, fails
// without a further reason.
bool v_temp_files_clean_up_in_folder(const char *folder);
