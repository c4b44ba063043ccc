#pragma once
// A row of the table: what is measured, its baseline, and the ratio to reach. Both sides are
// measured alternately within one benchmark, and the figures are the medians.

#include <functional>
#include <optional>
#include <string>

#include <benchmark/benchmark.h>

// The texts of a row in the table of results.
struct Row {
  std::string what;
  std::string size;
  std::string baseline;
  const char *unit = "s";       // "s" or "MiB"
  std::optional<double> target; // greatest ratio; a row without one only informs
};

struct Comparison {
  // Each does its work once, cleans up, and returns the value in the row's unit.
  std::function<double()> measure_baseline;
  std::function<double()> measure_ours;
};

// Adds the row. set_up is called once, before the row is measured; what its result captured lives
// until the end of the measurement.
void v_bench_add_row(const Row &row, int repetitions, std::function<Comparison()> set_up);
