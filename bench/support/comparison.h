#pragma once
// One row of the table: what is measured, its baseline, and the ratio to reach. Both are measured
// in turns within one benchmark, and the row's figures are the medians.

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
  std::optional<double> target; // the greatest ratio; none for a row that only informs
};

struct Comparison {
  // Each does its work once, cleans up, and returns the measured value in the row's unit.
  std::function<double()> measure_baseline;
  std::function<double()> measure_ours;
};

// Adds the row; set_up is called once, when the row's turn has come, and what it captured lives as
// long as the measuring.
void v_bench_add_row(const Row &row, int repetitions, std::function<Comparison()> set_up);
