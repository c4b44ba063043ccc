#pragma once
// Temporary files that the suite's printing code has left behind.

// Deletes every temporary print file whose maker is certainly gone: no process has its id, or one
// that runs another executable. Files that cannot be deleted stay, without a word. False with
// "Couldn't clean up temp files." before the reason when the folder could not be looked through at
// all.
bool v_temp_files_clean_up();
