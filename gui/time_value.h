#pragma once
// A point of wall-clock time, and the whole seconds between two of them. Reads no clock itself: the
// caller passes the time.

#include <cstdint>

struct VTimeValue {
  std::int64_t seconds = 0;      // since 1970
  std::int64_t microseconds = 0; // 0 to 999999
};

// microseconds: since 1970, not negative.
VTimeValue v_time_value_from_microseconds(std::int64_t microseconds);
// Rounded down. Negative when the end is before the start, because the clock was set back.
long v_time_value_count_whole_seconds(const VTimeValue &start, const VTimeValue &end);
