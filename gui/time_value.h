#pragma once
// A point in wall-clock time, and the whole seconds between two of them. Does not read a clock.

#include <cstdint>

struct VTimeValue {
  std::int64_t seconds = 0;      // since 1970
  std::int64_t microseconds = 0; // 0 to 999999
};

// microseconds: since 1970, not negative.
VTimeValue v_time_value_from_microseconds(std::int64_t microseconds);
// Rounded down. Negative when the end is before the start, as after the clock was set back.
long v_time_value_count_whole_seconds(const VTimeValue &start, const VTimeValue &end);
