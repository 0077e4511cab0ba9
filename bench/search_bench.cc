// AddMemory and Search of the memory base in the battery model's shape: a
// full ring of 4320 ten-minute steps (30 days), 14 features over a 12-value
// raw record, 16 lags (stride 1, decay 0.95), 16 neighbours, forecasts of 144
// steps. The raw records come from a simple simulated phone: a daily rhythm
// of discharge with a nightly charge, some daytime top-ups and noise.
#include <benchmark/benchmark.h>

#include <cmath>
#include <random>
#include <vector>

#include "search/VelqaSPBase.h"

namespace {

using vorn::VelqaSPBase;
using vorn::VelqaSPFunction;
using vorn::VelqaSPOperator;

const int kMemory = 4320;
const int kRaw = 12;

void AddOperator(VelqaSPFunction& f, int kind, int input) {
  VelqaSPOperator op;
  op.kind = kind;
  op.inputs.Add(input);
  op.SetOutputDim(1);
  f.AddOperator(op);
}

// kind 0: the element itself; 0x130 / 0x140: its rise / fall per step.
void AddFeature(VelqaSPBase& b, int element, double weight, int kind = 0, int discrete = 0) {
  VelqaSPFunction f;
  if (kind == 0) {
    AddOperator(f, 0x200, element);
  } else {
    AddOperator(f, 0x300, element);
    AddOperator(f, kind, 0);
  }
  f.weight = weight;
  f.discrete = discrete;
  b.AddFeatureFunction(f);
}

void Configure(VelqaSPBase& b) {
  AddFeature(b, 0, 277.0);  // day phase
  AddFeature(b, 1, 277.0);
  AddFeature(b, 2, 1.68);   // week phase
  AddFeature(b, 3, 1.68);
  AddFeature(b, 4, 30.0);           // level
  AddFeature(b, 4, 900.0, 0x130);   // rise
  AddFeature(b, 4, 900.0, 0x140);   // fall
  AddFeature(b, 5, 10.0);           // charging
  for (int e = 6; e < 11; ++e) AddFeature(b, e, 0.5);
  AddFeature(b, 4, 1.0, 0, 1);      // level, compared by mismatch
  b.SetSize(kMemory, kRaw);
  b.ClearBuf();
  b.lagCount = 16;
  b.lagStride = 1;
  b.neighbourMax = 16;
  b.lagDecay = 0.95;
  b.AllocBuf();
}

std::vector<double> SimulatedRecords(int steps) {
  std::mt19937 rng(12345);
  std::normal_distribution<double> noise(0.0, 1.0);
  std::uniform_real_distribution<double> uniform(0.0, 1.0);
  std::vector<double> records(static_cast<size_t>(steps) * kRaw);
  double level = 0.8;
  bool topUp = false;
  for (int t = 0; t < steps; ++t) {
    const double day = t / 144.0;
    const double hour = std::fmod(day, 1.0) * 24.0;
    if (!topUp && hour > 12 && hour < 18 && uniform(rng) < 0.01) topUp = true;
    if (topUp && uniform(rng) < 0.08) topUp = false;
    const bool charging = hour >= 23.0 || hour < 6.5 || topUp;
    if (charging) {
      level = std::min(1.0, level + 0.012 + 0.002 * noise(rng));
    } else {
      const double drain = hour > 8 && hour < 22 ? 0.0022 : 0.0006;
      level = std::max(0.02, level - drain * (1.0 + 0.3 * noise(rng)));
    }
    double* r = &records[static_cast<size_t>(t) * kRaw];
    r[0] = std::sin(std::fmod(day, 1.0) * 6.2831852);
    r[1] = std::cos(std::fmod(day, 1.0) * 6.2831852);
    r[2] = std::sin(std::fmod(day / 7.0, 1.0) * 6.2831852);
    r[3] = std::cos(std::fmod(day / 7.0, 1.0) * 6.2831852);
    r[4] = std::round(level * 100.0) / 100.0;
    r[5] = charging ? 1.0 : 0.0;
    r[6] = 30.0 + 5.0 * charging + noise(rng);       // temperature-like
    r[7] = 3.8 + 0.3 * level + 0.01 * noise(rng);     // voltage-like
    r[8] = charging ? 1.5 : -0.3 + 0.1 * noise(rng);  // current-like
    r[9] = std::log10(1.0 + 50.0 * uniform(rng));     // logarithmic counts
    r[10] = std::log(2.0 + 20.0 * uniform(rng)) / std::log(100.0);
    r[11] = 0.0;
  }
  return records;
}

// A base whose ring is full: 4320 steps plus one more day.
VelqaSPBase& FullBase() {
  static VelqaSPBase* base = [] {
    VelqaSPBase* b = new VelqaSPBase;
    Configure(*b);
    const int steps = kMemory + 144;
    const std::vector<double> records = SimulatedRecords(steps);
    for (int t = 0; t < steps; ++t) b->AddMemory(&records[static_cast<size_t>(t) * kRaw]);
    return b;
  }();
  return *base;
}

void BM_AddMemory(benchmark::State& state) {
  VelqaSPBase b;
  Configure(b);
  const int steps = 2 * kMemory;
  const std::vector<double> records = SimulatedRecords(steps);
  for (int t = 0; t < kMemory; ++t) b.AddMemory(&records[static_cast<size_t>(t) * kRaw]);
  int t = kMemory;
  for (auto _ : state) {
    b.AddMemory(&records[static_cast<size_t>(t) * kRaw]);
    if (++t == steps) t = 0;
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_AddMemory);

void BM_Search(benchmark::State& state) {
  VelqaSPBase& b = FullBase();
  const int futureSteps = static_cast<int>(state.range(0));
  int index[16];
  double distance[16];
  int count = 0;
  for (auto _ : state) {
    b.Search(futureSteps, count, index, distance);
    benchmark::DoNotOptimize(distance);
  }
  state.counters["neighbours"] = count;
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_Search)->Arg(144)->Arg(1)->Unit(benchmark::kMicrosecond);

void BM_kNNSearch(benchmark::State& state) {
  VelqaSPBase& b = FullBase();
  int index[16];
  double distance[16];
  int count = 0;
  std::vector<double> query(b.GetFeatureBuffer(0), b.GetFeatureBuffer(0) + 14);
  for (auto _ : state) {
    b.kNNSearch(query.data(), count, index, distance);
    benchmark::DoNotOptimize(distance);
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_kNNSearch)->Unit(benchmark::kMicrosecond);

}  // namespace
