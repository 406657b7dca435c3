#pragma once

#include <benchmark/benchmark.h>

#include <chrono>

namespace morvelan::benchmarks {

double Seconds(const auto& action, int repeats) {
  const auto start = std::chrono::steady_clock::now();
  for (int i = 0; i < repeats; ++i) action();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// Times two actions in turns, so that whatever else the machine does falls on both. The counters are the
/// time of the first and its ratio to that of the second.
void InTurns(benchmark::State& state, const auto& measured, const auto& reference, int batch = 200) {
  double measuredTime = 0;
  double referenceTime = 0;
  for (auto _ : state) {
    const double time = Seconds(measured, batch);
    referenceTime += Seconds(reference, batch);
    measuredTime += time;
    state.SetIterationTime(time);
  }
  state.counters["nanoseconds"] = 1e9 * measuredTime / (batch * static_cast<double>(state.iterations()));
  state.counters["ratio"] = measuredTime / referenceTime;
}

}  // namespace morvelan::benchmarks
