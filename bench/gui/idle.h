#pragma once
// When the toolkit's main loop has nothing left to do. Low priority alone would not tell: what is
// drawn last may still wait for an answer of the X server or of the window manager.

#include <functional>

#include "support/stopwatch.h"

// Calls the function once, in whatever main loop is innermost then, when the main loop has had
// nothing to do for a tenth of a second; seconds: what the stopwatch said when that time began.
void v_bench_when_idle(const Stopwatch &stopwatch, std::function<void(double seconds)> act);
// Runs a main loop until then and returns the seconds.
double v_bench_run_until_idle(const Stopwatch &stopwatch);
