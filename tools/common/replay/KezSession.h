// One forecaster instance fed the way a host app feeds it.
//
// Owns a kez::KEZ, the instance behind the exported C functions, built with
// the built-in model (or, with UseModel, a tuned one). Feed() takes the
// replay's reports exactly as the exported functions would: CSV samples with
// the nine values (the time converted from milliseconds as the C interface
// converts it), samples of a status-line log as the host's own line (for a
// repeat made by the replay, the same line with the report's time in column
// 0). Use Sink() as the Replayer's sink.
//
// Offline code reaches the instance and its predictor through the typed
// accessors; handle() gives the same instance to code that measures the C
// interface itself.
//
// With EnableAdaptive, every report also goes to an adaptive forecaster
// (adaptive/AdaptiveForecaster.h), which keeps an instance of its own fed
// the same reports: CSV samples with the nine values, status lines through
// the adaptive forecaster's line reading.
#ifndef KEZ_TOOLS_COMMON_REPLAY_KEZSESSION_H_
#define KEZ_TOOLS_COMMON_REPLAY_KEZSESSION_H_

#include <cstdint>
#include <memory>
#include <string>

#include "Replayer.h"
#include "adaptive/AdaptiveForecaster.h"
#include "interface/KEZ.h"
#include "kez/kez.h"
#include "predictor/MobilePowerPredictor.h"
#include "predictor/MobilePowerPredictorParameter.h"

namespace kez_tools {

class KezSession {
 public:
  // Throws std::bad_alloc when the instance cannot be built.
  KezSession() = default;
  KezSession(const KezSession&) = delete;
  KezSession& operator=(const KezSession&) = delete;

  // Replaces the built-in model by `parameter` (a tuned record): the
  // instance's predictor is initialised again with it, which empties its
  // memory, so call it before the first report. False when the instance has
  // no predictor.
  // With an adaptive forecaster, its instance takes the model too.
  bool UseModel(const vorn::MobilePowerPredictorParameter& parameter);

  // Feeds an adaptive forecaster beside the instance from now on (call it
  // before the first report). Throws std::bad_alloc when out of memory.
  void EnableAdaptive();
  // The adaptive forecaster, or nullptr without EnableAdaptive.
  kez::adaptive::AdaptiveForecaster* adaptive() { return adaptive_.get(); }

  void Feed(const Report& report);
  Replayer::Sink Sink() {
    return [this](const Report& r) { Feed(r); };
  }

  kez::KEZ& instance() { return instance_; }
  // The instance's predictor; the instance always has one once built.
  vorn::MobilePowerPredictor& predictor() { return *instance_.impl->predictor; }
  // The instance as the C interface sees it, for kez_* calls.
  kez_handle handle() { return &instance_; }

  // The last report fed: its time (-1 before any) and the state it carried.
  int64_t last_time_ms() const { return last_time_ms_; }
  const LogSample* last_sample() const { return last_sample_; }

 private:
  kez::KEZ instance_;
  std::unique_ptr<kez::adaptive::AdaptiveForecaster> adaptive_;
  int64_t last_time_ms_ = -1;
  const LogSample* last_sample_ = nullptr;
};

// `line` with its first column replaced by `time_ms`.
std::string StatusLineAt(const std::string& line, int64_t time_ms);

}  // namespace kez_tools

#endif  // KEZ_TOOLS_COMMON_REPLAY_KEZSESSION_H_
