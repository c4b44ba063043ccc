#pragma once
// What must not happen to the test program itself happens in a child of it: limits, other rights,
// another locale. The child is a copy of the process and shares its files.

#include <functional>
#include <string>

// What the work returns in the child. A child that ends in any other way ends the test program.
std::string in_child_process(const std::function<std::string()> &work);
// The same without the superuser's rights, so that permissions count whoever runs the tests. A
// folder that the work is to see must be open to everybody.
std::string as_ordinary_user(const std::function<std::string()> &work);
// The same on a disk that is full: no file can grow beyond the number of bytes.
std::string with_file_size_limit(unsigned long bytes, const std::function<std::string()> &work);
