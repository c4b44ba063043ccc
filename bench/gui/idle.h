#pragma once
// Detects when the toolkit's main loop has nothing left to do. A low priority alone is not enough:
// the last drawing may still wait for an answer of the X server or of the window manager.

#include <functional>

#include "support/stopwatch.h"

// Calls the function once, in the innermost main loop, when that loop has been idle for a tenth of
// a second. `seconds` is the stopwatch's reading at the start of that time.
void v_bench_when_idle(const Stopwatch &stopwatch, std::function<void(double seconds)> act);
// Runs a main loop until it has been idle for that long, and returns the seconds.
double v_bench_run_until_idle(const Stopwatch &stopwatch);
