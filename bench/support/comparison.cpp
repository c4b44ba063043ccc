#include "support/comparison.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include <malloc.h>

namespace {

// Each measurement starts with an empty heap.
double measure(const std::function<double()> &function) {
  malloc_trim(0);
  return function();
}

double median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

void run(benchmark::State &state, const Row &row, const std::function<Comparison()> &set_up) {
  const Comparison comparison = set_up();
  std::vector<double> baseline;
  std::vector<double> ours;
  for ([[maybe_unused]] const auto _ : state) {
    // The order alternates, because the second one may profit from warm caches.
    const bool baseline_first = ours.size() % 2 == 0;
    if (baseline_first) {
      baseline.push_back(measure(comparison.measure_baseline));
    }
    ours.push_back(measure(comparison.measure_ours));
    if (!baseline_first) {
      baseline.push_back(measure(comparison.measure_baseline));
    }
    state.SetIterationTime(ours.back());
  }
  state.SetLabel(row.what + "\t" + row.size + "\t" + row.baseline + "\t" + row.unit);
  state.counters["baseline"] = median(baseline);
  state.counters["ours"] = median(ours);
  state.counters["ratio"] = median(ours) / median(baseline);
  if (row.target) {
    state.counters["target"] = *row.target;
  }
}

} // namespace

void v_bench_add_row(const Row &row, int repetitions, std::function<Comparison()> set_up) {
  benchmark::RegisterBenchmark(
      (row.what + "/" + row.size).c_str(),
      [row, set_up = std::move(set_up)](benchmark::State &state) { run(state, row, set_up); })
      ->Iterations(repetitions)
      ->UseManualTime()
      ->Unit(benchmark::kMillisecond);
}
