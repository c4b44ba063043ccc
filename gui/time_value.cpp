#include "gui/time_value.h"

namespace {

constexpr std::int64_t microseconds_per_second = 1'000'000;

} // namespace

VTimeValue v_time_value_from_microseconds(std::int64_t microseconds) {
  return {microseconds / microseconds_per_second, microseconds % microseconds_per_second};
}

long v_time_value_count_whole_seconds(const VTimeValue &start, const VTimeValue &end) {
  const bool last_is_incomplete = end.microseconds < start.microseconds;
  return static_cast<long>(end.seconds - start.seconds - (last_is_incomplete ? 1 : 0));
}
