#include "Simulator.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "CivilTime.h"
#include "TimeUnits.h"
#include "SeededRandom.h"

namespace kez_tools {
namespace {

// The plan of one local day: minutes from local midnight of the first day.
struct DayPlan {
  int64_t wake = 0;
  int64_t bed = 0;
  int64_t off_start = -1;  // the phone switched off for some hours
  int64_t off_end = -1;
  double use = 1.0;        // how much the phone is used that day
};

bool IsWeekend(int weekday) { return weekday == 0 || weekday == 6; }

// Rotating shifts: wake and bed times of early, late and night weeks.
void ShiftTimes(int64_t day, int weekday, double* wake, double* bed) {
  static const double kWake[3] = {285, 570, 840};
  static const double kBed[3] = {1275, 1485, 1860};
  int shift = static_cast<int>(FloorDiv(day, 7) % 3);
  // Two days off a week, moving with the rotation.
  int off1 = (3 + 2 * shift) % 7;
  int off2 = (off1 + 1) % 7;
  if (weekday == off1 || weekday == off2) {
    *wake = 540;
    *bed = 1470;
  } else {
    *wake = kWake[shift];
    *bed = kBed[shift];
  }
}

std::vector<DayPlan> PlanDays(const SimOptions& o, SeededRandom& rng) {
  const SimProfile& p = o.profile;
  std::vector<DayPlan> plans(o.days + 2);  // day -1 .. days
  for (int i = 0; i < o.days + 2; ++i) {
    int64_t day = o.start_day + i - 1;
    int weekday = CivilFromMs(day * 86400000).weekday;
    int next_weekday = (weekday + 1) % 7;
    double wake, bed;
    if (p.rotating_shifts) {
      ShiftTimes(day, weekday, &wake, &bed);
    } else {
      wake = IsWeekend(weekday) ? p.wake_weekend : p.wake_weekday;
      bed = IsWeekend(next_weekday) ? p.bed_weekend : p.bed_weekday;
    }
    DayPlan& d = plans[i];
    int64_t base = static_cast<int64_t>(i - 1) * 1440;
    d.wake = base + static_cast<int64_t>(rng.Normal(wake, p.wake_sd));
    d.bed = base + static_cast<int64_t>(rng.Normal(bed, p.bed_sd));
    if (i > 0) d.wake = std::max(d.wake, plans[i - 1].bed + 240);
    d.bed = std::max(d.bed, d.wake + 600);
    d.use = std::min(1.6, std::max(0.6, rng.Normal(1.0, 0.12)));
    if (rng.Chance(p.off_per_day)) {
      int64_t start = d.wake + 60 + rng.UniformInt(0, 480);
      int64_t end = std::min(start + rng.UniformInt(60, 540), d.bed - 30);
      if (end > start + 30) {
        d.off_start = start;
        d.off_end = end;
      }
    }
  }
  return plans;
}

class Phone {
 public:
  Phone(const SimOptions& o, SeededRandom& rng)
      : o_(o), p_(o.profile), rng_(rng) {}

  Log Run() {
    Log log;
    log.source = "kez-simulate";
    std::vector<DayPlan> plans = PlanDays(o_, rng_);
    const int64_t minutes = static_cast<int64_t>(o_.days) * 1440;
    const int64_t origin_ms =
        (o_.start_day * 1440 - o_.tz_offset_minutes) * kMinuteMs;
    level_ = rng_.Uniform(55.0, 90.0);
    size_t night = 1;  // the plan whose bed time comes next
    size_t sleep = 1;  // the plan whose wake time comes next
    int64_t night_plug = -1;
    for (int64_t m = 0; m < minutes; ++m) {
      const int64_t tod = m - FloorDiv(m, 1440) * 1440;
      const DayPlan& today = plans[static_cast<size_t>(FloorDiv(m, 1440)) + 1];
      while (sleep < plans.size() && m >= plans[sleep].wake) ++sleep;
      const bool asleep = sleep < plans.size() &&
                          m >= plans[sleep - 1].bed && m < plans[sleep].wake;
      const bool was_plugged = plugged_;
      const bool was_on = On();

      // Plugging and unplugging.
      if (plugged_ && m >= unplug_at_) plugged_ = false;
      while (night < plans.size() && m >= plans[night].bed) {
        ++night;
        night_plug = -1;
      }
      if (night < plans.size() && night_plug < 0) {
        night_plug = plans[night].bed - rng_.UniformInt(1, 25);
      }
      if (m == night_plug && !switched_off_) {
        // Whether to charge tonight is decided at bed time, from the level.
        double p = level_ >= 50 ? p_.night_charge : p_.night_charge_low;
        if (rng_.Chance(p)) {
          plugged_ = true;
          unplug_at_ = (night + 1 < plans.size() ? plans[night + 1].wake
                                                 : m + 480) +
                       rng_.UniformInt(5, 40);
        }
      }
      if (!plugged_ && !asleep && !switched_off_) {
        double per_hour = p_.topup_per_hour;
        if (level_ < 25) per_hour += p_.low_plug_per_hour;
        if (dead_) per_hour += 1.0;  // a flat phone gets noticed
        if (rng_.Chance(per_hour / 60.0)) {
          plugged_ = true;
          unplug_at_ = m + (level_ < 25 ? rng_.UniformInt(30, 120)
                                        : rng_.UniformInt(10, 40));
        }
      }

      // Switched off for some hours, then on again.
      if (m == today.off_start && !plugged_) switched_off_ = true;
      if (switched_off_ && m >= today.off_end) switched_off_ = false;

      // Use and power.
      bool screen = false;
      if (On()) {
        if (session_left_ > 0) {
          --session_left_;
          screen = true;
        } else {
          double rate = asleep ? 0.1
                        : tod >= 18 * 60 ? p_.sessions_evening
                                         : p_.sessions_day;
          int weekday = CivilFromMs((o_.start_day + FloorDiv(m, 1440)) *
                                    86400000).weekday;
          if (IsWeekend(weekday)) rate *= p_.weekend_use;
          if (rng_.Chance(rate * today.use / 60.0)) {
            session_left_ = rng_.UniformInt(
                0, static_cast<int64_t>(2 * p_.session_minutes) - 2);
            screen = true;
            apps_ += 1 + static_cast<double>(rng_.UniformInt(0, 2));
          }
        }
        if (screen && rng_.Chance(0.15)) apps_ += 1;
        if (rng_.Chance(asleep ? p_.notifications * 0.2 : p_.notifications)) {
          notifications_ += 1;
        }
        if (!asleep && rng_.Chance(p_.messages)) messages_ += 1;
      }
      double drain = 0.02;  // self-discharge while off
      if (On()) {
        drain = screen ? p_.screen_drain
                : asleep ? p_.sleep_drain
                         : p_.idle_drain;
        drain *= today.use;
      }
      double charge = 0;
      if (plugged_) {
        charge = level_ < 80 ? p_.charge_rate
                 : level_ < 95 ? p_.charge_rate * 0.35
                               : p_.charge_rate * 0.12;
      }
      level_ = level_ + charge - drain / 60.0;
      if (level_ >= 100) level_ = 100;
      if (level_ <= 0) {
        level_ = 0;
        dead_ = true;
      }
      if (dead_ && level_ >= 2) dead_ = false;
      if (screen) screen_minutes_ += 1;
      double target = p_.ambient + (screen ? 7.0 : 0.0) +
                      (plugged_ && level_ < 95 ? 9.0 : 0.0) +
                      rng_.Normal(0.0, 0.8);
      temperature_ = temperature_ + (target - temperature_) * 0.08;

      // Reports: at once when switched on or (un)plugged, then periodically.
      const int64_t minute_ms = origin_ms + m * kMinuteMs;
      if (On() && (!was_on || plugged_ != was_plugged || m == 0)) {
        Report(&log, std::max(last_report_ + 1000,
                              minute_ms + rng_.UniformInt(0, 59) * 1000));
      }
      while (On() && next_report_ < minute_ms + kMinuteMs) {
        Report(&log, std::max(next_report_, last_report_ + 1000));
      }
    }
    return log;
  }

 private:
  bool On() const { return !dead_ && !switched_off_; }

  void Report(Log* log, int64_t time_ms) {
    LogSample s;
    s.time_ms = time_ms;
    s.level_percent = std::floor(level_);
    s.charging = plugged_ ? 1 : 0;
    s.aux1 = std::round(temperature_ * 10.0) / 10.0;
    double volts = 3.5 + 0.7 * (level_ / 100.0) + (plugged_ ? 0.12 : 0.0);
    s.aux2 = std::round(volts * 1000.0) / 1000.0;
    s.aux3 = screen_minutes_;
    s.count_a = apps_;
    s.count_b1 = notifications_;
    s.count_b2 = messages_;
    log->samples.push_back(s);
    screen_minutes_ = apps_ = notifications_ = messages_ = 0;
    last_report_ = time_ms;
    // Jitter of up to 45 s either way; never more than 10 minutes.
    int64_t gap = o_.interval_minutes * kMinuteMs +
                  rng_.UniformInt(-45, 45) * 1000;
    next_report_ = time_ms + std::min<int64_t>(std::max<int64_t>(gap, 30000),
                                               kStepMs - 5000);
  }

  const SimOptions& o_;
  const SimProfile& p_;
  SeededRandom& rng_;
  double level_ = 70;
  double temperature_ = p_.ambient;
  bool plugged_ = false;
  bool dead_ = false;
  bool switched_off_ = false;
  int64_t unplug_at_ = 0;
  int64_t session_left_ = 0;
  double screen_minutes_ = 0, apps_ = 0, notifications_ = 0, messages_ = 0;
  int64_t last_report_ = INT64_MIN / 2;
  int64_t next_report_ = INT64_MAX;
};

}  // namespace

Log Simulate(const SimOptions& options) {
  SimOptions o = options;
  if (o.profile.name.empty()) FindSimProfile("regular", &o.profile);
  o.interval_minutes = std::min(10, std::max(1, o.interval_minutes));
  o.days = std::max(0, o.days);
  SeededRandom rng(o.seed);
  Phone phone(o, rng);
  return phone.Run();
}

}  // namespace kez_tools
