// A race: a piece of work done by a peer and by us, turn by turn in one run of one process, so that the
// ratio holds on any machine whatever its times are.
#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <functional>
#include <vector>

namespace velanor::bench {

// One side: what is done before each turn and not measured, and the work.
struct Runner {
  std::function<void()> prepare = [] {};
  std::function<void()> run;
};

struct Course {
  // How many times faster than the peer we mean to be.
  double goal = 1;
  // How often a turn does the work, for what is too short to be measured once.
  int times = 1;
};

// In microseconds, for each time that the work was done.
inline double timed(const Runner& runner, int times) {
  runner.prepare();
  const auto begin = std::chrono::steady_clock::now();
  runner.run();
  const std::chrono::duration<double, std::micro> taken = std::chrono::steady_clock::now() - begin;
  return taken.count() / times;
}

inline double median(std::vector<double> times) {
  const auto middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
  std::nth_element(times.begin(), middle, times.end());
  return *middle;
}

// How often each side runs: VELANOR_BENCH_TURNS, or often enough for a steady median.
inline int turns() {
  const char* const wanted = std::getenv("VELANOR_BENCH_TURNS");
  return wanted ? std::max(std::atoi(wanted), 1) : 31;
}

// Runs both as often as the benchmark has iterations, to be registered with VELANOR_RACE. Tells the
// medians of both, the slowest of our turns (all in microseconds), the ratio and its goal; bench/run reads
// them by these names.
inline void race(benchmark::State& state, const Course& course, const Runner& peer, const Runner& ours) {
  std::vector<double> peers, our;
  for (auto _ : state) {
    peers.push_back(timed(peer, course.times));
    our.push_back(timed(ours, course.times));
    state.SetIterationTime(our.back() * course.times / 1e6);
  }
  const double peer_us = median(peers), ours_us = median(our);
  state.counters["peer_us"] = peer_us;
  state.counters["ours_us"] = ours_us;
  state.counters["slowest_us"] = *std::max_element(our.begin(), our.end());
  state.counters["ratio"] = peer_us / ours_us;
  state.counters["goal"] = course.goal;
}

}  // namespace velanor::bench

// Registers a race, whose turns are counted: how long ours takes says nothing of the peer.
#define VELANOR_RACE(function) \
  BENCHMARK(function)->UseManualTime()->Unit(benchmark::kMicrosecond)->Iterations(velanor::bench::turns())
