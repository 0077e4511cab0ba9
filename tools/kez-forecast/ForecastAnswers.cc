#include "ForecastAnswers.h"

#include "kez/kez.h"

namespace kez_tools {
namespace {

// The level threshold of kez_forecast_find for N %: the fraction N / 100.0,
// exactly as the Java API passes it.
double Fraction(int percent) { return percent / 100.0; }

Answer Find(const Forecast& f, Answer::Kind kind, int variant, int percent) {
  Answer a;
  a.kind = kind;
  a.variant = variant;
  a.percent = percent;
  const stMobilePowerPredictionData* r = f.records[variant].data();
  switch (kind) {
    case Answer::kChargingExpected:
      a.now = f.charging_now;
      a.step = kez_forecast_find(r, f.steps, KEZ_QUERY_CHARGING_AT_OR_ABOVE,
                                 0.5);
      break;
    case Answer::kLevelReached:
      a.now = f.level_now <= percent;
      a.step = kez_forecast_find(r, f.steps, KEZ_QUERY_LEVEL_AT_OR_BELOW,
                                 Fraction(percent));
      break;
    case Answer::kLevelRisen:
      a.now = f.level_now >= percent;
      a.step = kez_forecast_find(r, f.steps, KEZ_QUERY_LEVEL_AT_OR_ABOVE,
                                 Fraction(percent));
      break;
    case Answer::kLevelAt:
      break;
  }
  if (a.step >= 0) a.time_ms = f.StepTime(a.step);
  return a;
}

}  // namespace

int NearestStep(const Forecast& f, int64_t time_ms) {
  int64_t offset = time_ms - f.start_ms;  // the first step is at 1 step
  if (offset < kStepMs / 2) return -1;
  int64_t k = (offset + kStepMs / 2) / kStepMs - 1;
  return k >= f.steps ? f.steps : static_cast<int>(k);
}

std::vector<Answer> ComputeAnswers(const Forecast& f,
                                   const AnswerOptions& o) {
  std::vector<Answer> answers;
  if (f.has[kFree]) {
    answers.push_back(Find(f, Answer::kChargingExpected, kFree, 0));
    answers.push_back(Find(f, Answer::kLevelReached, kFree, o.level_percent));
  }
  if (f.has[kNoCharge]) {
    answers.push_back(
        Find(f, Answer::kLevelReached, kNoCharge, o.level_percent));
    if (o.level_percent != 0) {
      answers.push_back(Find(f, Answer::kLevelReached, kNoCharge, 0));
    }
  }
  if (f.has[kCharge]) {
    answers.push_back(Find(f, Answer::kLevelRisen, kCharge, 80));
    answers.push_back(Find(f, Answer::kLevelRisen, kCharge, 100));
  }
  if (o.has_when) {
    int k = NearestStep(f, o.when_ms);
    for (int v = 0; v < kVariantCount; ++v) {
      if (!f.has[v]) continue;
      Answer a;
      a.kind = Answer::kLevelAt;
      a.variant = v;
      a.time_ms = o.when_ms;
      if (k < 0 && o.when_ms >= f.start_ms) {
        a.now = true;
        a.level = f.level_now;
      } else if (k >= 0 && k < f.steps) {
        a.step = k;
        a.level = f.records[v][k].level * 100.0;
      }
      answers.push_back(a);
    }
  }
  return answers;
}

}  // namespace kez_tools
