#include "FeatureEvaluation.h"

#include <cmath>
#include <limits>

#include "KezSession.h"
#include "LogTruth.h"
#include "Replayer.h"
#include "interface/KEZ.h"
#include "predictor/MobilePowerPredictor.h"

namespace kez_tune {

using kez_tools::kStepMs;

namespace {

int64_t AlignUp(int64_t t, int64_t every) {
  int64_t r = t % every;
  if (r < 0) r += every;
  return r == 0 ? t : t + (every - r);
}

}  // namespace

std::vector<double> DefaultFeatureGenome() {
  vorn::MobilePowerPredictor model{vorn::MobilePowerPredictorParameter()};
  vorn::FListT<double> code;
  model.EncodeFeature(code);
  return std::vector<double>(code.data, code.data + code.count);
}

bool EvaluateFeatures(const kez_tools::Log& log,
                      const std::vector<double>& genome,
                      const kez_eval::EvalOptions& o,
                      FeatureEvaluation* result, std::string* error) {
  if (!kez_eval::CheckOptions(o, error)) return false;
  if (log.samples.empty()) {
    *error = log.source + ": the log holds no sample";
    return false;
  }
  FeatureEvaluation r;
  r.horizons_ms = o.horizons_ms;
  r.level.resize(o.horizons_ms.size());

  const int64_t first_ms = log.samples.front().time_ms;
  const int64_t last_ms = log.samples.back().time_ms;
  const int64_t truth_end = o.has_to && o.to_ms < last_ms ? o.to_ms : last_ms;
  int64_t first_point = first_ms + o.warmup_ms;
  if (o.has_from && o.from_ms > first_point) first_point = o.from_ms;
  first_point = AlignUp(first_point, o.every_ms);
  if (first_point > truth_end) {
    *result = std::move(r);
    return true;
  }

  kez_tools::KezSession session;
  if (session.handle() == nullptr) {
    *error = "the library could not create an instance";
    return false;
  }
  vorn::MobilePowerPredictor* core =
      static_cast<kez::KEZ*>(session.handle())->impl->predictor;
  if (!genome.empty()) {
    core->DecodeFeature(genome.data(), static_cast<int>(genome.size()));
  }
  const int channels = core->channelCount;
  const int steps = static_cast<int>(o.horizons_ms.back() / kStepMs);
  std::vector<double> mean(static_cast<size_t>(steps) * channels);
  std::vector<double> stdev(mean.size());

  kez_eval::LogTruth truth(log, o.replay.max_silence_ms);
  kez_tools::Replayer replayer(log, o.replay, session.Sink());
  int64_t previous_start = -1;
  for (int64_t point = first_point; point <= truth_end; point += o.every_ms) {
    replayer.ReplayTo(point);
    const kez_tools::LogSample* last_logged = replayer.last_sample();
    if (last_logged == nullptr ||
        point - last_logged->time_ms > o.replay.max_silence_ms) {
      continue;  // the phone was off: no forecast
    }
    const int64_t start = session.last_time_ms();
    if (start == previous_start) continue;  // the same forecast again
    previous_start = start;

    const bool learned = core->Predict(steps, mean.data(), stdev.data(),
                                       nullptr, nullptr);
    const double level_now = session.last_sample()->level_percent;
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
  }
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

}  // namespace kez_tune
