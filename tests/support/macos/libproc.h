#pragma once
// Declares the one function of the system's libproc.h that the program calls, so that the macOS
// source can be compiled and tested everywhere. The test program defines the function.

#include <cstdint>

#define PROC_PIDPATHINFO_MAXSIZE 4096

extern "C" int proc_pidpath(int process_id, void *buffer, std::uint32_t buffer_size);
