// Several instances driven from several threads at once must give exactly
// the forecasts that the same logs give when they are run one after another:
// instances share nothing. Run under ThreadSanitizer by scripts/test-tsan.sh,
// where any data race between instances fails the test.
//
// Each log is a different synthetic phone (5-minute reports for twelve days,
// a forecast in one of the three variants every six hours); half of them are
// fed as nine values, half as status log lines. While the logs run, further
// threads keep creating, using and stopping short-lived instances.
#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "kez/kez.h"
#include "SyntheticPhone.h"

namespace {

using kez_reliability::PhoneSample;
using kez_reliability::SyntheticPhone;

constexpr int kLogs = 6;
constexpr int kDays = 12;
constexpr int kForecastSteps = 144;

// The host's status line: 30 columns, the sample at its fixed positions.
std::string StatusLine(const PhoneSample& s) {
  std::string columns[30];
  char text[64];
  std::snprintf(text, sizeof text, "%llu", static_cast<unsigned long long>(s.timeMs));
  columns[0] = text;
  columns[1] = "x";
  auto put = [&](int c, double v) {
    std::snprintf(text, sizeof text, "%.9g", v);
    columns[c] = text;
  };
  put(2, s.levelPercent);
  put(3, s.charging);
  put(19, s.countB1);
  put(20, s.countB2);
  put(24, s.aux1);
  put(25, s.aux2);
  put(26, s.aux3);
  put(29, s.countA);
  // Distinct trailing text, so splitting never stops early.
  columns[27] = "a";
  columns[28] = "b";
  std::string line;
  for (int c = 0; c < 30; ++c) {
    if (c > 0) line += ',';
    line += columns[c];
  }
  return line;
}

// Runs log `seed` on a fresh instance; returns every forecast record.
std::vector<stMobilePowerPredictionData> RunLog(int seed) {
  std::vector<stMobilePowerPredictionData> results;
  kez_handle h = kez_init();
  if (h == nullptr) return results;
  SyntheticPhone phone(static_cast<uint32_t>(seed), 5);
  stMobilePowerPredictionData out[kForecastSteps];
  int forecasts = 0;
  while (phone.day() < kDays) {
    const PhoneSample s = phone.Next();
    if (seed % 2 == 0) {
      kez_addStatusValue(h, s.timeMs, s.levelPercent, s.charging, s.aux1, s.aux2, s.aux3,
                         s.countA, s.countB1, s.countB2);
    } else {
      kez_addStatusValues(h, StatusLine(s).c_str());
    }
    if (phone.minute() % (6 * 60) != 0) continue;
    int done = 0;
    switch (forecasts++ % 3) {
      case 0:
        done = kez_predict(h, kForecastSteps, out);
        break;
      case 1:
        done = kez_predict_without_charging(h, kForecastSteps, out);
        break;
      default:
        done = kez_predict_at_charging_starting(h, kForecastSteps, out);
        break;
    }
    if (done != 1) break;
    results.insert(results.end(), out, out + kForecastSteps);
  }
  kez_stop(h);
  return results;
}

// Creates, feeds, forecasts and stops small instances until told to stop.
void Churn(int seed, const std::atomic<bool>* stop, long* cycles) {
  SyntheticPhone phone(static_cast<uint32_t>(1000 + seed), 10);
  stMobilePowerPredictionData out[8];
  while (!stop->load()) {
    kez_handle h = kez_init();
    for (int i = 0; i < 50 && h != nullptr; ++i) {
      const PhoneSample s = phone.Next();
      kez_addStatusValue(h, s.timeMs, s.levelPercent, s.charging, s.aux1, s.aux2, s.aux3,
                         s.countA, s.countB1, s.countB2);
    }
    kez_predict(h, 8, out);
    kez_stop(h);
    ++*cycles;
  }
}

bool SameBits(const std::vector<stMobilePowerPredictionData>& a,
              const std::vector<stMobilePowerPredictionData>& b) {
  return a.size() == b.size() &&
         (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof a[0]) == 0);
}

TEST(ThreadsTest, ConcurrentInstancesForecastExactlyAsSequentialOnes) {
  std::vector<std::vector<stMobilePowerPredictionData>> sequential(kLogs);
  for (int i = 0; i < kLogs; ++i) sequential[i] = RunLog(i + 1);
  for (int i = 0; i < kLogs; ++i) {
    // 12 days, a forecast every 6 hours.
    ASSERT_EQ(static_cast<std::size_t>(kDays * 4 * kForecastSteps), sequential[i].size())
        << "log " << i + 1;
  }
  // The logs differ, so equal results below mean something.
  EXPECT_FALSE(SameBits(sequential[0], sequential[1]));

  std::vector<std::vector<stMobilePowerPredictionData>> concurrent(kLogs);
  std::atomic<bool> stop(false);
  long cycles[2] = {0, 0};
  std::vector<std::thread> threads;
  threads.emplace_back(Churn, 0, &stop, &cycles[0]);
  threads.emplace_back(Churn, 1, &stop, &cycles[1]);
  std::vector<std::thread> runners;
  for (int i = 0; i < kLogs; ++i) {
    runners.emplace_back([i, &concurrent] { concurrent[i] = RunLog(i + 1); });
  }
  for (std::thread& t : runners) t.join();
  stop.store(true);
  for (std::thread& t : threads) t.join();

  for (int i = 0; i < kLogs; ++i) {
    EXPECT_TRUE(SameBits(sequential[i], concurrent[i])) << "log " << i + 1;
  }
  EXPECT_GT(cycles[0] + cycles[1], 0);
}

}  // namespace
