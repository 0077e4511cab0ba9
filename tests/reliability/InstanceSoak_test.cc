// Soak: one instance fed a year of 1-minute samples through the exported
// functions, with a forecast every hour, as an app that is never restarted
// would drive it.
//
// The global operator new of this binary keeps a size header in front of
// every block, so the test knows the heap bytes in use at any moment and how
// many blocks each call allocated. What it asserts:
// - memory stays flat: the bytes in use at the end equal those after the
//   first day, and kez_stop gives back everything kez_init and the year took;
// - the sample path allocates nothing, except for what the memory base
//   documents: the step after a gap record (and the first step after
//   configuration) regrows the history of each stateful operator, one block
//   each; the battery model has two (the level's rise and fall chains). The
//   first sample of an instance stores the empty step of time 0 and a gap
//   record up to its own time, so it is followed by one more regrowth;
// - the search path (kez_similar_moments) allocates nothing; a forecast
//   allocates exactly its four scratch arrays and frees them before it
//   returns;
// - every forecast is finite, levels and charging chances within [0, 1].
//
// The length is a year; KEZ_SOAK_DAYS overrides it (the sanitizer build runs
// a shorter one, past the 30-day ring so that the ring wraps).
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <new>

#include "kez/kez.h"
#include "SyntheticPhone.h"
#include "support/CountingAllocator.h"

namespace {

using kez_reliability::PhoneSample;
using kez_reliability::SyntheticPhone;

// Stateful operators of the default model: one history block each.
constexpr long kStatefulOperators = 2;
// Scratch arrays of one forecast: the instance's record array, and the
// predictor's neighbour indices, distances and weighted sums.
constexpr long kForecastScratchBlocks = 4;
constexpr int kForecastSteps = 144;

int SoakDays() {
  const char* text = std::getenv("KEZ_SOAK_DAYS");
  const int days = text != nullptr ? std::atoi(text) : 0;
  return days > 0 ? days : 365;
}

bool InUnitRange(double v) { return std::isfinite(v) && v >= 0.0 && v <= 1.0; }

int Forecast(kez_handle h, int variant, int count, stMobilePowerPredictionData* out) {
  switch (variant) {
    case 0:
      return kez_predict(h, count, out);
    case 1:
      return kez_predict_without_charging(h, count, out);
    default:
      return kez_predict_at_charging_starting(h, count, out);
  }
}

TEST(SoakTest, AYearOfMinuteSamplesKeepsMemoryFlatAndForecastsSane) {
  const int days = SoakDays();
  static stMobilePowerPredictionData out[kForecastSteps];

  const long beforeInit = kez_testing::heap.liveBytes;
  kez_handle h = kez_init();
  ASSERT_NE(h, nullptr);
  const long afterInit = kez_testing::heap.liveBytes;

  SyntheticPhone phone(7, 1);
  long samples = 0;
  long forecasts = 0;
  long neighbourForecasts = 0;
  int silences = 0;
  int regrowths = 0;
  bool regrowAllowed = true;  // the first step after configuration
  long afterFirstDay = -1;
  long historyBytes = 0;  // the operator histories' blocks

  while (phone.day() < days) {
    const PhoneSample s = phone.Next();
    if (s.afterSilence) {
      ++silences;
      regrowAllowed = true;
    }
    const long allocationsBefore = kez_testing::heap.blocks;
    const long bytesBefore = kez_testing::heap.liveBytes;
    ASSERT_EQ(1, kez_addStatusValue(h, s.timeMs, s.levelPercent, s.charging, s.aux1, s.aux2,
                                    s.aux3, s.countA, s.countB1, s.countB2));
    ++samples;
    const long allocated = kez_testing::heap.blocks - allocationsBefore;
    if (allocated != 0) {
      ASSERT_TRUE(regrowAllowed) << "sample " << samples << " allocated " << allocated;
      ASSERT_EQ(kStatefulOperators, allocated) << "sample " << samples;
      regrowAllowed = false;
      // The first regrowth is undone by the gap record of the same sample;
      // the second one holds the histories from then on.
      if (regrowths++ == 1) historyBytes = kez_testing::heap.liveBytes - bytesBefore;
    }
    // The first sample after configuration closes the empty step of time 0
    // and records the gap from there to now.
    if (samples == 1) regrowAllowed = true;
    if (afterFirstDay < 0 && phone.day() >= 1) {
      afterFirstDay = kez_testing::heap.liveBytes;
      kez_testing::heap.peakBytes = kez_testing::heap.liveBytes;
    }

    if (phone.minute() % 60 != 0) continue;
    // The search alone allocates nothing.
    long mark = kez_testing::heap.blocks;
    const int found = kez_similar_moments(h, kForecastSteps);
    ASSERT_LE(found, 16);  // the model keeps 16 neighbours at most
    ASSERT_EQ(0, kez_testing::heap.blocks - mark) << "search at sample " << samples;
    if (found > 0) ++neighbourForecasts;

    // A forecast allocates its scratch arrays and gives them back.
    const long liveBefore = kez_testing::heap.liveBytes;
    mark = kez_testing::heap.blocks;
    const int variant = static_cast<int>(forecasts % 3);
    ASSERT_EQ(1, Forecast(h, variant, kForecastSteps, out));
    ++forecasts;
    ASSERT_EQ(kForecastScratchBlocks, kez_testing::heap.blocks - mark);
    ASSERT_EQ(liveBefore, kez_testing::heap.liveBytes);
    ASSERT_TRUE(std::isfinite(out[0].distance)) << "forecast " << forecasts;
    for (int k = 0; k < kForecastSteps; ++k) {
      ASSERT_TRUE(InUnitRange(out[k].level)) << "forecast " << forecasts << " step " << k
                                             << " level " << out[k].level;
      ASSERT_TRUE(InUnitRange(out[k].charging)) << "forecast " << forecasts << " step " << k
                                                << " charging " << out[k].charging;
    }
  }
  const long peakAfterFirstDay = kez_testing::heap.peakBytes;
  const long atEnd = kez_testing::heap.liveBytes;

  kez_stop(h);
  const long afterStop = kez_testing::heap.liveBytes;

  // Memory is flat over the year and comes back whole.
  EXPECT_EQ(afterFirstDay, atEnd);
  EXPECT_EQ(afterInit + historyBytes, atEnd);
  EXPECT_EQ(beforeInit, afterStop);
  // Configuration, the gap after time 0, and every silence were each
  // followed by exactly one regrowth.
  EXPECT_EQ(silences + 2, regrowths);
  EXPECT_GT(silences, 0);
  // The ring filled up and the search kept finding similar moments.
  EXPECT_GT(neighbourForecasts, forecasts / 2);

  std::printf(
      "soak: %d days, %ld samples, %ld forecasts (%ld from similar moments), %d gaps\n"
      "soak: heap bytes in use: after kez_init %ld, after day 1 %ld, at the end %ld, "
      "peak after day 1 %ld, after kez_stop %+ld; operator histories %ld\n",
      days, samples, forecasts, neighbourForecasts, silences, afterInit - beforeInit,
      afterFirstDay - beforeInit, atEnd - beforeInit, peakAfterFirstDay - beforeInit,
      afterStop - beforeInit, historyBytes);
  RecordProperty("days", days);
  RecordProperty("samples", static_cast<int>(samples));
  RecordProperty("forecasts", static_cast<int>(forecasts));
  RecordProperty("bytesAfterInit", static_cast<int>(afterInit - beforeInit));
  RecordProperty("bytesAtEnd", static_cast<int>(atEnd - beforeInit));
}

}  // namespace
