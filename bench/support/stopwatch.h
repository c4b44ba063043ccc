#pragma once
// Processor time of this thread, including that in the kernel. The work of other programs does not
// count.

#include <ctime>

class Stopwatch {
public:
  Stopwatch() { clock_gettime(CLOCK_THREAD_CPUTIME_ID, &start); }
  double seconds() const {
    timespec now;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec - start.tv_sec) +
           static_cast<double>(now.tv_nsec - start.tv_nsec) * 1e-9;
  }

private:
  timespec start;
};
