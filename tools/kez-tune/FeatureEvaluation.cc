#include "FeatureEvaluation.h"

#include <cmath>
#include <limits>

#include "ForecastPoints.h"
#include "KezSession.h"
#include "LogTruth.h"
#include "predictor/MobilePowerPredictor.h"

namespace kez_tools {

std::vector<double> DefaultFeatureGenome() {
  vorn::MobilePowerPredictor model{vorn::MobilePowerPredictorParameter()};
  vorn::FListT<double> code;
  model.EncodeFeature(code);
  return std::vector<double>(code.data, code.data + code.count);
}

bool EvaluateFeatures(const Log& log,
                      const std::vector<double>& genome,
                      const EvalOptions& o,
                      FeatureEvaluation* result, std::string* error) {
  if (!CheckOptions(o, error)) return false;
  if (log.samples.empty()) {
    *error = log.source + ": the log holds no sample";
    return false;
  }
  FeatureEvaluation r;
  r.horizons_ms = o.horizons_ms;
  r.level.resize(o.horizons_ms.size());

  const ForecastPoints grid(log, o);
  if (grid.empty()) {
    *result = std::move(r);
    return true;
  }
  const int64_t truth_end = grid.truth_end_ms();

  KezSession session;
  vorn::MobilePowerPredictor& core = session.predictor();
  if (!genome.empty()) {
    core.DecodeFeature(genome.data(), static_cast<int>(genome.size()));
  }
  const int channels = core.channelCount;
  const int steps = static_cast<int>(o.horizons_ms.back() / kStepMs);
  std::vector<double> mean(static_cast<size_t>(steps) * channels);
  std::vector<double> stdev(mean.size());

  LogTruth truth(log, o.replay.max_silence_ms);
  auto visit = [&](const ForecastPoint& fp) -> bool {
    const int64_t start = fp.start_ms;
    const bool learned = core.Predict(steps, mean.data(), stdev.data(),
                                      nullptr, nullptr);
    const double level_now = fp.last->level_percent;
    ++r.points;
    if (learned) ++r.learned;
    for (size_t h = 0; h < o.horizons_ms.size(); ++h) {
      const int64_t target = start + o.horizons_ms[h];
      double level = 0;
      if (target > truth_end || !truth.LevelAt(target, &level)) continue;
      const size_t k = static_cast<size_t>(o.horizons_ms[h] / kStepMs) - 1;
      const double forecast =
          learned ? mean[k * static_cast<size_t>(channels)] * 100.0
                  : level_now;
      r.level[h].Add(std::fabs(forecast - level));
    }
    return true;
  };
  PointCounts counts;
  ReplayStats replay;
  grid.Run(session, visit, &counts, &replay);
  *result = std::move(r);
  return true;
}

FeatureEvaluation CombineFeatures(const std::vector<FeatureEvaluation>& parts) {
  FeatureEvaluation total;
  for (const FeatureEvaluation& p : parts) {
    if (total.horizons_ms.empty()) {
      total.horizons_ms = p.horizons_ms;
      total.level.resize(p.level.size());
    }
    total.points += p.points;
    total.learned += p.learned;
    for (size_t h = 0; h < total.level.size() && h < p.level.size(); ++h) {
      total.level[h].Merge(p.level[h]);
    }
  }
  return total;
}

double FeatureScore(const FeatureEvaluation& result,
                    const std::vector<int64_t>& horizons_ms) {
  double sum = 0;
  int n = 0;
  for (int64_t wanted : horizons_ms) {
    for (size_t h = 0; h < result.horizons_ms.size(); ++h) {
      if (result.horizons_ms[h] != wanted || result.level[h].count() == 0) {
        continue;
      }
      sum += result.level[h].Mean();
      ++n;
    }
  }
  return n == 0 ? std::numeric_limits<double>::quiet_NaN()
                : sum / static_cast<double>(n);
}

}  // namespace kez_tools
