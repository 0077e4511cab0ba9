// The neighbour search against the straightforward one-candidate-at-a-time
// search (search/testing/StraightforwardSearch.h), on every version of the
// distance scan this processor has (scalar, SSE2, AVX2 or NEON): the same
// neighbours in the same order with the same distances to the last bit.
//
// Histories are random but shaped to reach every rule: wrapped rings, gaps
// (single and in runs), quantised values (many exact ties), NaN and infinite
// values, strides, offsets, negative and zero decays, discrete features,
// NaN / infinite / negative-zero weights, windows straddling the ring's
// wrap, and futureSteps from below zero to beyond the memory. One part uses
// the battery model's shape (14 features, 16 lags, 16 neighbours, a full
// 30-day ring of a simulated phone).
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "search/DistanceScan.h"
#include "search/VelqaSPBase.h"
#include "search/testing/StraightforwardSearch.h"

namespace vorn {
namespace {

struct Result {
  int count = 0;
  std::vector<int> index;
  std::vector<uint64_t> distanceBits;  // compared bit for bit
};

Result Collect(int count, const std::vector<int>& index, const std::vector<double>& distance) {
  Result r;
  r.count = count;
  for (int k = 0; k < count; ++k) {
    uint64_t bits;
    std::memcpy(&bits, &distance[k], sizeof bits);
    r.index.push_back(index[k]);
    r.distanceBits.push_back(bits);
  }
  return r;
}

Result Straightforward(VelqaSPBase& b, int futureSteps) {
  std::vector<int> index(b.neighbourMax + 1);
  std::vector<double> distance(b.neighbourMax + 1);
  int count = -1;
  testing::StraightforwardSearch(b, futureSteps, count, index.data(), distance.data());
  return Collect(count, index, distance);
}

Result Fast(VelqaSPBase& b, int futureSteps) {
  std::vector<int> index(b.neighbourMax + 1);
  std::vector<double> distance(b.neighbourMax + 1);
  int count = -1;
  b.Search(futureSteps, count, index.data(), distance.data());
  return Collect(count, index, distance);
}

std::vector<ScanPath> Paths() {
  std::vector<ScanPath> paths;
  for (ScanPath p : {ScanPath::kScalar, ScanPath::kSse2, ScanPath::kAvx2, ScanPath::kNeon}) {
    if (ScanPathAvailable(p)) paths.push_back(p);
  }
  return paths;
}

// Restores the automatic choice when a test ends, whatever happens.
struct PathGuard {
  ~PathGuard() { ResetScanPath(); }
};

// Compares every path with the reference; returns the reference's count.
int ExpectSameOnEveryPath(VelqaSPBase& b, int futureSteps, const std::string& where) {
  const Result expected = Straightforward(b, futureSteps);
  for (ScanPath path : Paths()) {
    ForceScanPath(path);
    const Result got = Fast(b, futureSteps);
    EXPECT_EQ(expected.count, got.count) << where << " path " << ScanPathName(path);
    EXPECT_EQ(expected.index, got.index) << where << " path " << ScanPathName(path);
    EXPECT_EQ(expected.distanceBits, got.distanceBits) << where << " path " << ScanPathName(path);
  }
  ResetScanPath();
  return expected.count;
}

void AddFeature(VelqaSPBase& b, int kind, int element, double weight, int discrete) {
  VelqaSPFunction f;
  VelqaSPOperator op;
  op.kind = kind == 0 ? 0x200 : 0x300;  // the element, or its change per step
  op.inputs.Add(element);
  op.SetOutputDim(1);
  f.AddOperator(op);
  f.weight = weight;
  f.discrete = discrete;
  b.AddFeatureFunction(f);
}

TEST(SearchDifferentialTest, EveryScanPathMatchesTheStraightforwardSearchOnRandomHistories) {
  PathGuard guard;
  std::mt19937 rng(77001);
  auto pick = [&rng](int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(rng); };
  const double kNaN = std::numeric_limits<double>::quiet_NaN();
  const double kInf = std::numeric_limits<double>::infinity();
  int searches = 0, nonEmpty = 0;
  for (int trial = 0; trial < 500; ++trial) {
    VelqaSPBase b;
    const int R = 4;
    const int F = pick(1, 16);  // odd and even counts, below and above a register's width
    for (int i = 0; i < F; ++i) {
      const int discrete = pick(0, 5) == 0 ? 1 : 0;
      const double weights[] = {1.0, 0.5, 3.0, 0.0, 277.0, 1e-3};
      AddFeature(b, pick(0, 4) == 0 ? 1 : 0, pick(0, R - 1), weights[pick(0, 5)], discrete);
    }
    const int M = pick(8, 300);
    b.SetSize(M, R);
    b.ClearBuf();
    b.lagCount = pick(1, 20);
    b.lagStride = pick(1, 4);
    b.neighbourMax = static_cast<uint32_t>(pick(1, 40));
    const double decays[] = {1.0, 0.95, 0.5, -0.7, 0.0};
    b.lagDecay = decays[pick(0, 4)];
    b.searchOffset = pick(0, 4) == 0 ? pick(1, 3) : 0;
    b.AllocBuf();
    // Odd weights straight into the table, as an offline tool may set them.
    if (pick(0, 3) == 0) {
      const double odd[] = {kNaN, kInf, -kInf, -0.0, 1e300};
      const int n = b.lagCount * F;
      for (int k = pick(1, 3); k > 0; --k) b.distanceWeights[pick(0, n - 1)] = odd[pick(0, 4)];
    }

    const int levels = pick(2, 5);  // few distinct values: many exact ties
    const int gapOdds = pick(0, 3) == 0 ? 0 : pick(5, 40);
    const bool oddValues = pick(0, 4) == 0;
    const int steps = pick(1, 3 * M);
    int gapRun = 0;
    for (int s = 0; s < steps; ++s) {
      double raw[R];
      if (gapRun > 0 || (gapOdds != 0 && pick(1, gapOdds) == 1)) {
        gapRun = gapRun > 0 ? gapRun - 1 : pick(0, 3);
        for (double& v : raw) v = 1e307;
      } else {
        for (double& v : raw) v = pick(0, levels - 1) * 0.25;
        raw[1] = pick(0, 2) == 0 ? raw[1] + 1e-5 : raw[1];  // right at the mismatch limit
        if (oddValues && pick(0, 30) == 0) raw[pick(0, R - 1)] = pick(0, 1) ? kNaN : kInf;
      }
      b.AddMemory(raw);
      if (s % 5 != 4 && s != steps - 1) continue;
      const int futureChoices[] = {-2, 0, 1, 2, pick(3, 3 + 2 * b.lagCount), M, pick(0, 12)};
      const int futureSteps = futureChoices[pick(0, 6)];
      const std::string where = "trial " + std::to_string(trial) + " step " + std::to_string(s) +
                                " futureSteps " + std::to_string(futureSteps);
      if (ExpectSameOnEveryPath(b, futureSteps, where) > 0) ++nonEmpty;
      ++searches;
      if (::testing::Test::HasFailure()) return;
    }
  }
  EXPECT_GT(nonEmpty, searches / 3);  // most comparisons found neighbours
}

// A simulated phone in the battery model's shape: a daily rhythm of use and
// overnight charging, weekends, noise, reports missed now and then.
void BatteryStep(std::mt19937& rng, int t, bool gap, double* raw, double& level) {
  std::normal_distribution<double> noise(0.0, 1.0);
  std::uniform_real_distribution<double> uniform(0.0, 1.0);
  if (gap) {
    for (int k = 0; k < 12; ++k) raw[k] = 1e307;
    return;
  }
  const double day = t / 144.0;
  const double hour = std::fmod(day, 1.0) * 24.0;
  const bool charging = hour >= 23.0 || hour < 6.5 || (hour > 13 && hour < 14 && uniform(rng) < 0.3);
  level = charging ? std::min(1.0, level + 0.012) : std::max(0.03, level - 0.002 * (1 + 0.3 * noise(rng)));
  raw[0] = std::sin(std::fmod(day, 1.0) * 6.2831852);
  raw[1] = std::cos(std::fmod(day, 1.0) * 6.2831852);
  raw[2] = std::sin(std::fmod(day / 7.0, 1.0) * 6.2831852);
  raw[3] = std::cos(std::fmod(day / 7.0, 1.0) * 6.2831852);
  raw[4] = std::round(level * 100.0) / 100.0;
  raw[5] = charging ? 1.0 : 0.0;
  raw[6] = std::round(300.0 + 30.0 * charging + 5.0 * noise(rng)) / 10.0;
  raw[7] = std::round(3800.0 + 300.0 * level) / 1000.0;
  raw[8] = charging ? 0.0 : std::floor(uniform(rng) * 4.0);
  raw[9] = std::log10(1.0 + std::floor(uniform(rng) * 20.0));
  raw[10] = std::log(2.0 + std::floor(uniform(rng) * 10.0)) / std::log(100.0);
  raw[11] = 0.0;
}

TEST(SearchDifferentialTest, BatteryModelShapeMatchesOnAFullWrappedRing) {
  PathGuard guard;
  VelqaSPBase b;
  const double w[] = {277.0, 277.0, 1.68, 1.68, 3.17, 1.0, 2.15, 0.32, 1.0, 1.0, 4.3, 0.7, 0.26};
  for (int e = 0; e < 4; ++e) AddFeature(b, 0, e, w[e], 0);
  AddFeature(b, 0, 4, w[4], 0);
  AddFeature(b, 1, 4, w[5], 0);  // change of the level (both signs here)
  AddFeature(b, 1, 4, w[6], 0);
  for (int e = 5; e < 11; ++e) AddFeature(b, 0, e, w[e + 2], 0);
  AddFeature(b, 0, 4, 0.1, 1);  // the level, compared by mismatch
  b.SetSize(4320, 12);
  b.ClearBuf();
  b.lagCount = 16;
  b.lagStride = 1;
  b.neighbourMax = 16;
  b.lagDecay = 0.95;
  b.AllocBuf();
  ASSERT_EQ(14, b.featureFunctions.count);

  std::mt19937 rng(4242);
  double level = 0.8;
  double raw[12];
  int searches = 0, full = 0;
  const int steps = 4320 + 1000;  // the ring wraps
  for (int t = 0; t < steps; ++t) {
    const bool gap = t % 997 == 500 || (t % 1409 >= 700 && t % 1409 < 703);
    BatteryStep(rng, t, gap, raw, level);
    b.AddMemory(raw);
    if (t < 4300 || t % 53 != 0) continue;
    for (int futureSteps : {0, 1, 6, 144, 288, 5000}) {
      const int count = ExpectSameOnEveryPath(b, futureSteps, "step " + std::to_string(t) +
                                                                  " futureSteps " +
                                                                  std::to_string(futureSteps));
      ++searches;
      if (count == 16) ++full;
    }
    if (::testing::Test::HasFailure()) return;
  }
  EXPECT_GT(full, searches / 2);
}

TEST(SearchDifferentialTest, PathChoiceFallsBackToTheScalarVersion) {
  PathGuard guard;
  EXPECT_TRUE(ScanPathAvailable(ScanPath::kScalar));
  EXPECT_TRUE(ScanPathAvailable(BestScanPath()));
#if defined(__x86_64__)
  EXPECT_TRUE(ScanPathAvailable(ScanPath::kSse2));
  EXPECT_FALSE(ScanPathAvailable(ScanPath::kNeon));
#elif defined(__aarch64__)
  EXPECT_TRUE(ScanPathAvailable(ScanPath::kNeon));
  EXPECT_FALSE(ScanPathAvailable(ScanPath::kAvx2));
#endif
  // Forcing a version the processor lacks runs the scalar one: same result.
  VelqaSPBase b;
  AddFeature(b, 0, 0, 1.0, 0);
  b.SetSize(40, 1);
  for (int t = 0; t < 60; ++t) {
    const double v = (t * 7) % 5;
    b.AddMemory(&v);
  }
  for (ScanPath p : {ScanPath::kScalar, ScanPath::kSse2, ScanPath::kAvx2, ScanPath::kNeon}) {
    ForceScanPath(p);
    const Result got = Fast(b, 1);
    ResetScanPath();
    const Result expected = Straightforward(b, 1);
    EXPECT_EQ(expected.index, got.index) << ScanPathName(p);
    EXPECT_EQ(expected.distanceBits, got.distanceBits) << ScanPathName(p);
  }
}

}  // namespace
}  // namespace vorn
