#pragma once
// Temporary files that the suite's printing code has left behind.

// Deletes every temporary print file whose maker has ended: no process has its id, the system does
// not say which executable that process runs, or it is another executable. The files of a running
// process are kept when its executable cannot be examined. Files that cannot be deleted are skipped
// without a message. False with "Couldn't clean up temp files." before the reason when the folder
// could not be opened.
bool v_temp_files_clean_up();
// The same in a folder of the caller's choice (UTF-8). Null means that the folder is not known and
// fails without a further reason.
bool v_temp_files_clean_up_in_folder(const char *folder);
