// SyntheticPhone: a deterministic, endless battery log for the long-running
// and the concurrent tests.
//
// The phone is plugged in every night (around 22:30 until around 07:00, a
// few minutes earlier or later each day), charges at about 0.5 % a minute up
// to 100 %, and discharges by day at a rate that differs from day to day.
// It reports every `intervalMinutes` minutes. On some days (about one in
// seven) it is switched off for 45 minutes in the afternoon: no report then,
// so the instance records a gap. The same seed always gives the same log;
// different seeds give different routines. Header-only, standard library
// only; not thread-safe (one phone per thread).
#ifndef KEZ_TESTS_RELIABILITY_SYNTHETICPHONE_H_
#define KEZ_TESTS_RELIABILITY_SYNTHETICPHONE_H_

#include <cstdint>

namespace kez_reliability {

struct PhoneSample {
  uint64_t timeMs = 0;
  float levelPercent = 0.0f;
  float charging = 0.0f;
  float aux1 = 0.0f;  // temperature
  float aux2 = 0.0f;  // voltage
  float aux3 = 0.0f;  // screen on
  double countA = 0.0;
  double countB1 = 0.0;
  double countB2 = 0.0;
  // True when this is the first report after the phone was switched off.
  bool afterSilence = false;
};

class SyntheticPhone {
 public:
  // 2024-03-04 00:00 UTC, a Monday.
  static constexpr uint64_t kStartMs = 1709510400000ULL;
  static constexpr uint64_t kMinuteMs = 60000ULL;
  static constexpr int kMinutesPerDay = 1440;
  static constexpr int kSilenceMinutes = 45;

  SyntheticPhone(uint32_t seed, int intervalMinutes)
      : state_(seed * 2654435761u + 12345u), interval_(intervalMinutes) {
    PlanDay();
  }

  // The next report (times strictly increase).
  PhoneSample Next() {
    bool silent = false;
    for (;;) {
      AdvanceOneInterval();
      if (!InSilence()) break;
      silent = true;
    }
    PhoneSample s;
    s.timeMs = kStartMs + static_cast<uint64_t>(minute_) * kMinuteMs;
    s.levelPercent = static_cast<float>(level_);
    s.charging = charging_ ? 1.0f : 0.0f;
    const int inDay = minute_ % kMinutesPerDay;
    s.aux1 = static_cast<float>(24.0 + (charging_ ? 6.0 : 2.0) * (inDay % 97) / 97.0);
    s.aux2 = static_cast<float>(3.6 + 0.6 * level_ / 100.0);
    s.aux3 = (!charging_ && inDay % 30 < 12) ? 1.0f : 0.0f;
    s.countA = static_cast<double>(inDay % 50);
    s.countB1 = static_cast<double>(inDay % 7);
    s.countB2 = static_cast<double>(inDay % 11);
    s.afterSilence = silent;
    return s;
  }

  int day() const { return minute_ / kMinutesPerDay; }
  long minute() const { return minute_; }

 private:
  uint32_t Random() {
    state_ = state_ * 1664525u + 1013904223u;
    return state_ >> 8;
  }

  void PlanDay() {
    unplugMinute_ = 7 * 60 - 20 + static_cast<int>(Random() % 41);
    plugMinute_ = 22 * 60 + 10 + static_cast<int>(Random() % 41);
    drainPerMinute_ = 0.05 + 0.0001 * static_cast<double>(Random() % 500);
    silenceStart_ = Random() % 7 == 0 ? 15 * 60 + static_cast<int>(Random() % 60) : -1;
  }

  bool InSilence() const {
    const int inDay = minute_ % kMinutesPerDay;
    return silenceStart_ >= 0 && inDay >= silenceStart_ &&
           inDay < silenceStart_ + kSilenceMinutes;
  }

  void AdvanceOneInterval() {
    for (int m = 0; m < interval_; ++m) {
      ++minute_;
      const int inDay = minute_ % kMinutesPerDay;
      if (inDay == 0) PlanDay();
      charging_ = inDay >= plugMinute_ || inDay < unplugMinute_;
      if (charging_) {
        level_ = level_ + 0.5 > 100.0 ? 100.0 : level_ + 0.5;
      } else {
        level_ = level_ - drainPerMinute_ < 1.0 ? 1.0 : level_ - drainPerMinute_;
      }
    }
  }

  uint32_t state_;
  int interval_;
  long minute_ = 0;
  double level_ = 80.0;
  bool charging_ = false;
  int unplugMinute_ = 0;
  int plugMinute_ = 0;
  double drainPerMinute_ = 0.0;
  int silenceStart_ = -1;
};

}  // namespace kez_reliability

#endif  // KEZ_TESTS_RELIABILITY_SYNTHETICPHONE_H_
