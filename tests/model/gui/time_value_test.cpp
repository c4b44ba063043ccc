#include "gui/time_value.h"

#include <gtest/gtest.h>

namespace {

TEST(TimeValue, SplitsMicrosecondsIntoSecondsAndTheRest) {
  struct Row {
    std::int64_t microseconds;
    VTimeValue expected;
  };
  constexpr Row rows[] = {
      {0, {0, 0}},
      {1, {0, 1}},
      {999'999, {0, 999'999}},
      {1'000'000, {1, 0}},
      {1'753'000'000'123'456, {1'753'000'000, 123'456}},
      {4'102'444'800'999'999, {4'102'444'800, 999'999}}, // after 2038
  };
  for (const Row &row : rows) {
    const VTimeValue time = v_time_value_from_microseconds(row.microseconds);
    EXPECT_EQ(time.seconds, row.expected.seconds) << row.microseconds;
    EXPECT_EQ(time.microseconds, row.expected.microseconds) << row.microseconds;
  }
}

TEST(TimeValue, CountsOnlyWholeSeconds) {
  struct Row {
    VTimeValue start;
    VTimeValue end;
    long seconds;
  };
  constexpr Row rows[] = {
      {{100, 0}, {100, 0}, 0},
      {{100, 0}, {100, 999'999}, 0},
      {{100, 0}, {101, 0}, 1},
      {{100, 999'999}, {101, 0}, 0},
      {{100, 999'999}, {101, 999'998}, 0},
      {{100, 999'999}, {101, 999'999}, 1},
      {{100, 500'000}, {102, 499'999}, 1},
      {{100, 500'000}, {102, 500'000}, 2},
      {{100, 1}, {3'700, 0}, 3'599},
      {{0, 0}, {4'102'444'800, 0}, 4'102'444'800},
  };
  for (const Row &row : rows) {
    EXPECT_EQ(v_time_value_count_whole_seconds(row.start, row.end), row.seconds)
        << row.start.seconds << "." << row.start.microseconds << " to " << row.end.seconds << "."
        << row.end.microseconds;
  }
}

TEST(TimeValue, CountsBackwardsWhenTheClockWasSetBack) {
  EXPECT_EQ(v_time_value_count_whole_seconds({100, 500'000}, {99, 700'000}), -1);
  EXPECT_EQ(v_time_value_count_whole_seconds({100, 500'000}, {99, 500'000}), -1);
  EXPECT_EQ(v_time_value_count_whole_seconds({100, 500'000}, {99, 200'000}), -2);
}

} // namespace
