#pragma once
// The one call of the system library of this name that the program makes, so that the macOS source
// is compiled and tested everywhere. The test program defines the function.

#include <cstdint>

#define PROC_PIDPATHINFO_MAXSIZE 4096

extern "C" int proc_pidpath(int process_id, void *buffer, std::uint32_t buffer_size);
