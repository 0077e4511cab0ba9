// One kez instance fed the way a host app feeds it.
//
// Owns the handle (kez_init / kez_stop). Feed() takes the replay's reports:
// CSV samples go through kez_addStatusValue with the nine values; samples of
// a status-line log go through kez_addStatusValues with the host's own line
// (for a repeat made by the replay, the same line with the report's time in
// column 0). Use Sink() as the Replayer's sink.
#ifndef KEZ_TOOLS_KEZ_SESSION_H_
#define KEZ_TOOLS_KEZ_SESSION_H_

#include <cstdint>
#include <string>

#include "Replayer.h"
#include "kez/kez.h"
#include "predictor/MobilePowerPredictorParameter.h"

namespace kez_tools {

class KezSession {
 public:
  KezSession();
  ~KezSession();
  KezSession(const KezSession&) = delete;
  KezSession& operator=(const KezSession&) = delete;

  // Replaces the built-in model by `parameter` (a tuned record): the
  // instance's predictor is initialised again with it, which empties its
  // memory, so call it before the first report. The exported C functions
  // cannot do this; tools reach the predictor behind the handle. False when
  // the instance could not be created.
  bool UseModel(const vorn::MobilePowerPredictorParameter& parameter);

  void Feed(const Report& report);
  Replayer::Sink Sink() {
    return [this](const Report& r) { Feed(r); };
  }

  kez_handle handle() const { return handle_; }
  // The last report fed: its time (-1 before any) and the state it carried.
  int64_t last_time_ms() const { return last_time_ms_; }
  const LogSample* last_sample() const { return last_sample_; }

 private:
  kez_handle handle_;
  int64_t last_time_ms_ = -1;
  const LogSample* last_sample_ = nullptr;
};

// `line` with its first column replaced by `time_ms`.
std::string StatusLineAt(const std::string& line, int64_t time_ms);

}  // namespace kez_tools

#endif  // KEZ_TOOLS_KEZ_SESSION_H_
