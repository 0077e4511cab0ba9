// Random numbers. This binary replaces the C library's rand() with a
// scripted one so that exact values (0, RAND_MAX) and the number of calls can
// be checked; without a script it runs a fixed 31-bit generator.
#include "foundation/Random.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <deque>

namespace {

std::deque<int> g_script;  // values rand() returns next, in order
long g_calls = 0;
std::uint64_t g_state = 88172645463325252ull;

}  // namespace

extern "C" int rand(void) noexcept {
  ++g_calls;
  if (!g_script.empty()) {
    const int v = g_script.front();
    g_script.pop_front();
    return v;
  }
  g_state ^= g_state << 13;
  g_state ^= g_state >> 7;
  g_state ^= g_state << 17;
  return static_cast<int>(g_state >> 33);  // 0 .. 2^31 - 1
}

namespace {

const double kRootTwoPi = 2.5066282532517663;
const double kPi = 3.14159265358979323846;

class RandomTest : public ::testing::Test {
 protected:
  void SetUp() override {
    g_script.clear();
    g_calls = 0;
  }
  static void Script(std::initializer_list<int> values) { g_script.assign(values); }
  static void ScriptRepeated(int value, int times) { g_script.assign(times, value); }
};

TEST_F(RandomTest, RandIntPassesRandThrough) {
  Script({0, 12345, RAND_MAX});
  EXPECT_EQ(vorn::rand_int(), 0);
  EXPECT_EQ(vorn::rand_int(), 12345);
  EXPECT_EQ(vorn::rand_int(), RAND_MAX);
  EXPECT_EQ(g_calls, 3);
}

TEST_F(RandomTest, RandDoubleSpansZeroToOneInclusive) {
  Script({0, 2147483647, 1073741824, -1, INT32_MIN});
  EXPECT_EQ(vorn::rand_double(), 0.0);
  EXPECT_EQ(vorn::rand_double(), 1.0);
  EXPECT_EQ(vorn::rand_double(), 1073741824.0 / 2147483647.0);
  // Values are taken as unsigned and folded modulo 2^31.
  EXPECT_EQ(vorn::rand_double(), 1.0);
  EXPECT_EQ(vorn::rand_double(), 0.0);
  EXPECT_EQ(g_calls, 5);
}

TEST_F(RandomTest, GaussRandCallsRandTwelveTimes) {
  for (int i = 0; i < 3; ++i) vorn::rand_int();
  const long before = g_calls;
  gauss_rand();
  EXPECT_EQ(g_calls - before, 12);
  gauss_rand();
  EXPECT_EQ(g_calls - before, 24);
}

TEST_F(RandomTest, GaussRandSumsInSinglePrecisionInCallOrder) {
  ScriptRepeated(0, 12);
  EXPECT_EQ(gauss_rand(), -6.0f);
  // Each term is 2^-23, a quarter of a float step near 6: added one by one
  // to -6 every term is lost. A double sum, or adding the uniforms before
  // subtracting 6, would give -6 + 12 * 2^-23.
  ScriptRepeated(256, 12);
  EXPECT_EQ(gauss_rand(), -6.0f);
  // A half first, then small terms that each vanish against -5.5.
  Script({1 << 30, 256, 256, 256, 256, 256, 256, 256, 256, 256, 256, 256});
  EXPECT_EQ(gauss_rand(), -5.5f);
  // Small terms first: -6 + 2^-23 is lost, then the half counts.
  Script({256, 256, 256, 256, 256, 256, 256, 256, 256, 256, 256, 1 << 30});
  EXPECT_EQ(gauss_rand(), -5.5f);
  // RAND_MAX becomes 2^31 as a float, so the upper end is reached exactly.
  ScriptRepeated(RAND_MAX, 12);
  EXPECT_EQ(gauss_rand(), 6.0f);
}

TEST_F(RandomTest, GaussRandIsRoughlyStandardNormal) {
  const int n = 20000;
  double sum = 0.0;
  double squares = 0.0;
  for (int i = 0; i < n; ++i) {
    const float v = gauss_rand();
    ASSERT_GE(v, -6.0f);
    ASSERT_LE(v, 6.0f);
    sum += v;
    squares += static_cast<double>(v) * v;
  }
  const double mean = sum / n;
  const double variance = squares / n - mean * mean;
  EXPECT_NEAR(mean, 0.0, 0.05);
  EXPECT_NEAR(variance, 1.0, 0.05);
}

TEST(GaussTest, PeakUsesTheShortenedPi) {
  EXPECT_EQ(gauss(0.0, 1.0, 0.0), 1 / (1.0 * kRootTwoPi));
  EXPECT_EQ(gauss(3.0, 0.5, 3.0), 1 / (0.5 * kRootTwoPi));
  EXPECT_EQ(gauss(-2.0, 4.0, -2.0), 1 / (4.0 * kRootTwoPi));
  // Not the value of the full constant.
  EXPECT_NE(gauss(0.0, 1.0, 0.0), 1 / std::sqrt(2 * kPi));
  EXPECT_NEAR(gauss(0.0, 1.0, 0.0), 1 / std::sqrt(2 * kPi), 1e-8);
}

TEST(GaussTest, FollowsTheNormalDensity) {
  for (double s : {0.1, 1.0, 3.0}) {
    for (double d : {-2.5, -1.0, 0.3, 4.0}) {
      const double expected = std::exp(-d * d / 2) / (s * std::sqrt(2 * kPi));
      EXPECT_NEAR(gauss(1.0, s, 1.0 + d * s), expected, expected * 1e-7) << s << " " << d;
    }
  }
  // Symmetric about m; a negative deviation flips the sign.
  EXPECT_EQ(gauss(1.0, 2.0, 0.0), gauss(1.0, 2.0, 2.0));
  EXPECT_EQ(gauss(0.0, -1.0, 0.0), -gauss(0.0, 1.0, 0.0));
  // Far out the density underflows to 0.
  EXPECT_EQ(gauss(0.0, 1.0, 1e3), 0.0);
}

TEST(GaussTest, ZeroDeviationGivesNaN) {
  // 0/0 in the exponent stays NaN (it is not capped at 10).
  EXPECT_TRUE(std::isnan(gauss(1.0, 0.0, 1.0)));
  // exp(-inf) = 0 times the infinite factor.
  EXPECT_TRUE(std::isnan(gauss(1.0, 0.0, 2.0)));
  EXPECT_TRUE(std::isnan(gauss(0.0, 1.0, NAN)));
}

}  // namespace
