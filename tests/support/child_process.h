#pragma once
// Runs work that must not affect the test program in a child process: with limits, with other
// permissions or in another locale. The child is a copy of the process and shares its open files.

#include <functional>
#include <string>

// Returns the result of `work`. If the child ends in any other way, the test program ends too.
std::string in_child_process(const std::function<std::string()> &work);
// Same as in_child_process, but never as the superuser, so that permissions apply whoever runs the
// tests. Folders that `work` uses must be accessible to everybody.
std::string as_ordinary_user(const std::function<std::string()> &work);
// Same as in_child_process, but as on a full disk: no file can grow beyond `bytes`.
std::string with_file_size_limit(unsigned long bytes, const std::function<std::string()> &work);
