// The forecaster as a phone runs it, on a full 30-day memory of a realistic
// simulated log (bench/SimulatedMemory.h), and its neighbour search beside
// the peers a user could pick instead, on the same windows:
//
//   BM_AddStatusValue      one sample through kez_addStatusValue (reports
//                          every 5 minutes, so every second one commits a
//                          10-minute step)
//   BM_AddMemory           one committed step: the 14 default features
//   BM_Predict/N           kez_predict of N steps (144 = a day, 288)
//   BM_Search/N/path       the memory base's search for an N-step forecast,
//                          on one version of the distance scan (0 scalar,
//                          1 SSE2, 2 AVX2, 3 NEON; the library picks the best)
//   BM_Straightforward/N   the search as first written (one candidate at a
//                          time, early abandon after each lag row)
//   BM_FullScan/N          every candidate's full distance, no early abandon
//   BM_FaissFlatL2/N       FAISS's exact flat L2 index (when FAISS is found)
//   BM_PeakAddMul          what one core does: independent vector adds and
//                          multiplies (the arithmetic limit)
//
// Counters: terms = weighted squared differences a search adds up (FullScan:
// all of them; Search: those its schedule computes), flops = 4 per term.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdint>
#include <vector>

#include "bench/ScanWork.h"
#include "bench/SimulatedMemory.h"
#include "kez/kez.h"
#include "search/DistanceScan.h"
#include "search/testing/StraightforwardSearch.h"

#if defined(KEZ_HAVE_FAISS)
#include <faiss/IndexFlat.h>
#include <omp.h>
#endif

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace {

using kez_bench::FullMemory;

void BM_AddStatusValue(benchmark::State& state) {
  kez_bench::SimulatedMemory& world = FullMemory();
  kez_handle h = kez_init();
  const std::vector<kez_tools::Report>& reports = world.reports;
  const int64_t span = reports.back().time_ms - reports.front().time_ms + kez_tools::kStepMs;
  std::size_t k = 0;
  int64_t offset = 0;
  for (auto _ : state) {
    const kez_tools::Report& r = reports[k];
    const kez_tools::LogSample& s = *r.sample;
    kez_addStatusValue(h, static_cast<uint64_t>(r.time_ms + offset), static_cast<float>(s.level_percent),
                       static_cast<float>(s.charging), static_cast<float>(s.aux1),
                       static_cast<float>(s.aux2), static_cast<float>(s.aux3), s.count_a, s.count_b1,
                       s.count_b2);
    if (++k == reports.size()) {
      k = 0;
      offset += span;  // go on later in time, never back
    }
  }
  state.SetItemsProcessed(state.iterations());
  kez_stop(h);
}
BENCHMARK(BM_AddStatusValue);

void BM_AddMemory(benchmark::State& state) {
  vorn::MobilePowerPredictor& full = FullMemory().predictor();
  std::vector<double> records;
  const int R = static_cast<int>(full.rawSize);
  for (int i = -static_cast<int>(full.storedCount) + 1; i <= 0; ++i) {
    const double* raw = full.GetRAWBuffer(i);
    records.insert(records.end(), raw, raw + R);
  }
  vorn::MobilePowerPredictorParameter parameter;
  vorn::MobilePowerPredictor p(parameter);
  const std::size_t steps = records.size() / R;
  std::size_t k = 0;
  for (auto _ : state) {
    p.AddMemory(&records[k * R]);
    if (++k == steps) k = 0;
  }
  state.counters["features"] = p.featureFunctions.count;
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_AddMemory);

void BM_Predict(benchmark::State& state) {
  kez_bench::SimulatedMemory& world = FullMemory();
  const int count = static_cast<int>(state.range(0));
  std::vector<stMobilePowerPredictionData> out(count);
  vorn::ResetScanPath();
  for (auto _ : state) {
    kez_predict(world.session.handle(), count, out.data());
    benchmark::DoNotOptimize(out.data());
  }
  state.counters["neighbours"] = kez_similar_moments(world.session.handle(), count);
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_Predict)->Arg(144)->Arg(288)->Unit(benchmark::kMicrosecond);

void SetWork(benchmark::State& state, const kez_bench::ScanWork& work, bool full) {
  const double terms = static_cast<double>(full ? work.fullTerms : work.terms);
  state.counters["candidates"] = static_cast<double>(work.candidates);
  state.counters["terms"] = terms;
  state.counters["flops"] = benchmark::Counter(4.0 * terms * static_cast<double>(state.iterations()),
                                               benchmark::Counter::kIsRate);
}

void BM_Search(benchmark::State& state) {
  vorn::MobilePowerPredictor& p = FullMemory().predictor();
  const int futureSteps = static_cast<int>(state.range(0));
  const vorn::ScanPath path = static_cast<vorn::ScanPath>(state.range(1));
  if (!vorn::ScanPathAvailable(path)) {
    state.SkipWithError("this processor lacks that version");
    return;
  }
  vorn::ForceScanPath(path);
  int index[16];
  double distance[16];
  int count = 0;
  for (auto _ : state) {
    p.Search(futureSteps, count, index, distance);
    benchmark::DoNotOptimize(distance);
  }
  vorn::ResetScanPath();
  const int width = path == vorn::ScanPath::kAvx2 ? 4 : path == vorn::ScanPath::kScalar ? 1 : 2;
  SetWork(state, kez_bench::CountScanWork(p, futureSteps, width), false);
  state.counters["neighbours"] = count;
  state.SetLabel(vorn::ScanPathName(path));
}
BENCHMARK(BM_Search)
    ->ArgsProduct({{144, 288}, {0, 1, 2, 3}})
    ->Unit(benchmark::kMicrosecond);

void BM_Straightforward(benchmark::State& state) {
  vorn::MobilePowerPredictor& p = FullMemory().predictor();
  const int futureSteps = static_cast<int>(state.range(0));
  int index[16];
  double distance[16];
  int count = 0;
  for (auto _ : state) {
    vorn::testing::StraightforwardSearch(p, futureSteps, count, index, distance);
    benchmark::DoNotOptimize(distance);
  }
  SetWork(state, kez_bench::CountScanWork(p, futureSteps, 1, true), false);
  state.counters["neighbours"] = count;
}
BENCHMARK(BM_Straightforward)->Arg(144)->Arg(288)->Unit(benchmark::kMicrosecond);

void BM_FullScan(benchmark::State& state) {
  vorn::MobilePowerPredictor& p = FullMemory().predictor();
  const int futureSteps = static_cast<int>(state.range(0));
  int index[16];
  double distance[16];
  int count = 0;
  for (auto _ : state) {
    vorn::testing::FullScanSearch(p, futureSteps, count, index, distance);
    benchmark::DoNotOptimize(distance);
  }
  SetWork(state, kez_bench::CountScanWork(p, futureSteps, 1), true);
  state.counters["neighbours"] = count;
}
BENCHMARK(BM_FullScan)->Arg(144)->Arg(288)->Unit(benchmark::kMicrosecond);

#if defined(KEZ_HAVE_FAISS)
// The same windows for FAISS: each candidate that the search would examine
// becomes one vector of 16 lags x 13 features (the mismatch feature is left
// out: L2 has no such term), each value scaled by sqrt(weight) so that the
// squared L2 distance is the weighted sum of squares. FAISS works in single
// precision, on one thread here (the library is single-threaded).
void BM_FaissFlatL2(benchmark::State& state) {
  vorn::MobilePowerPredictor& p = FullMemory().predictor();
  const int futureSteps = static_cast<int>(state.range(0));
  const int F = p.featureFunctions.count;
  const int L = p.lagCount;
  const int used = F - 1;  // without the mismatch feature (the last)
  const int dim = L * used;
  auto window = [&](int age, float* v) {
    for (int m = 0; m < L; ++m) {
      const double* row = p.GetFeatureBuffer(-(age + m));
      for (int i = 0; i < used; ++i) {
        v[m * used + i] = static_cast<float>(std::sqrt(p.distanceWeights[m * F + i]) * row[i]);
      }
    }
  };
  const kez_bench::ScanWork work = kez_bench::CountScanWork(p, futureSteps, 1);
  std::vector<float> base;
  std::vector<float> v(dim);
  int run = 0;
  const int N = static_cast<int>(p.storedCount);
  for (int j = 0; j + L <= N; ++j) {
    if (run >= futureSteps) {
      window(j, v.data());
      base.insert(base.end(), v.begin(), v.end());
    }
    run = p.GetRAWBuffer(-j)[0] <= 1e306 ? run + 1 : 0;
  }
  omp_set_num_threads(1);
  faiss::IndexFlatL2 index(dim);
  index.add(static_cast<faiss::Index::idx_t>(base.size() / dim), base.data());
  std::vector<float> query(dim);
  window(0, query.data());
  std::vector<float> distances(16);
  std::vector<faiss::Index::idx_t> labels(16);
  for (auto _ : state) {
    index.search(1, query.data(), 16, distances.data(), labels.data());
    benchmark::DoNotOptimize(distances.data());
  }
  state.counters["vectors"] = static_cast<double>(index.ntotal);
  state.counters["dim"] = dim;
  state.counters["candidates"] = static_cast<double>(work.candidates);
}
BENCHMARK(BM_FaissFlatL2)->Arg(144)->Arg(288)->Unit(benchmark::kMicrosecond);
#endif

#if defined(__x86_64__) && (defined(__GNUC__) || defined(__clang__))
// Eight independent additions and eight independent multiplications per
// round, four doubles each: the most this core adds and multiplies per
// second (no fused multiply-add, as in the library).
__attribute__((target("avx2"))) void PeakRounds(benchmark::State& state) {
  __m256d a0 = _mm256_set1_pd(1), a1 = a0, a2 = a0, a3 = a0, a4 = a0, a5 = a0, a6 = a0, a7 = a0;
  __m256d m0 = a0, m1 = a0, m2 = a0, m3 = a0, m4 = a0, m5 = a0, m6 = a0, m7 = a0;
  const __m256d c = _mm256_set1_pd(1e-300), one = _mm256_set1_pd(1.0);
  for (auto _ : state) {
    for (int i = 0; i < 1000; ++i) {
      a0 = _mm256_add_pd(a0, c); a1 = _mm256_add_pd(a1, c); a2 = _mm256_add_pd(a2, c);
      a3 = _mm256_add_pd(a3, c); a4 = _mm256_add_pd(a4, c); a5 = _mm256_add_pd(a5, c);
      a6 = _mm256_add_pd(a6, c); a7 = _mm256_add_pd(a7, c);
      m0 = _mm256_mul_pd(m0, one); m1 = _mm256_mul_pd(m1, one); m2 = _mm256_mul_pd(m2, one);
      m3 = _mm256_mul_pd(m3, one); m4 = _mm256_mul_pd(m4, one); m5 = _mm256_mul_pd(m5, one);
      m6 = _mm256_mul_pd(m6, one); m7 = _mm256_mul_pd(m7, one);
      benchmark::DoNotOptimize(a0); benchmark::DoNotOptimize(a1); benchmark::DoNotOptimize(a2);
      benchmark::DoNotOptimize(a3); benchmark::DoNotOptimize(a4); benchmark::DoNotOptimize(a5);
      benchmark::DoNotOptimize(a6); benchmark::DoNotOptimize(a7); benchmark::DoNotOptimize(m0);
      benchmark::DoNotOptimize(m1); benchmark::DoNotOptimize(m2); benchmark::DoNotOptimize(m3);
      benchmark::DoNotOptimize(m4); benchmark::DoNotOptimize(m5); benchmark::DoNotOptimize(m6);
      benchmark::DoNotOptimize(m7);
    }
  }
  state.counters["flops"] = benchmark::Counter(1000.0 * 16 * 4 * static_cast<double>(state.iterations()),
                                               benchmark::Counter::kIsRate);
}

void BM_PeakAddMul(benchmark::State& state) {
  if (!vorn::ScanPathAvailable(vorn::ScanPath::kAvx2)) {
    state.SkipWithError("no AVX2");
    return;
  }
  PeakRounds(state);
}
BENCHMARK(BM_PeakAddMul);
#endif

}  // namespace
