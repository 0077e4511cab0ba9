#include "KezSession.h"

#include "adaptive/HostReportLine.h"
#include "interface/HostTime.h"

namespace kez_tools {

bool KezSession::UseModel(const vorn::MobilePowerPredictorParameter& parameter) {
  if (instance_.impl == nullptr || instance_.impl->predictor == nullptr) {
    return false;
  }
  instance_.impl->parameter = parameter;
  instance_.impl->predictor->Initialize(parameter);
  if (adaptive_ != nullptr) {
    kez::KEZ& other = adaptive_->instance();
    if (other.impl == nullptr || other.impl->predictor == nullptr) return false;
    other.impl->parameter = parameter;
    other.impl->predictor->Initialize(parameter);
  }
  return true;
}

void KezSession::EnableAdaptive() {
  if (adaptive_ == nullptr) {
    adaptive_.reset(new kez::adaptive::AdaptiveForecaster());
  }
}

void KezSession::Feed(const Report& report) {
  const LogSample& s = *report.sample;
  if (!s.line.empty()) {
    // As the C interface takes it: the text up to its first NUL.
    std::string line = (report.added ? StatusLineAt(s.line, report.time_ms)
                                     : s.line).c_str();
    instance_.addStatusValues(line);
    kez::adaptive::HostReport r;
    if (adaptive_ != nullptr &&
        kez::adaptive::HostReportFromLine(line.c_str(), &r)) {
      adaptive_->Report(r);
    }
  } else {
    instance_.addStatusValue(
        kez::MillisecondsToDays(static_cast<uint64_t>(report.time_ms)),
        static_cast<float>(s.level_percent), static_cast<float>(s.charging),
        static_cast<float>(s.aux1), static_cast<float>(s.aux2),
        static_cast<float>(s.aux3), s.count_a, s.count_b1, s.count_b2);
    if (adaptive_ != nullptr) {
      kez::adaptive::HostReport r;
      r.timeMs = static_cast<uint64_t>(report.time_ms);
      r.levelPercent = static_cast<float>(s.level_percent);
      r.charging = static_cast<float>(s.charging);
      r.aux1 = static_cast<float>(s.aux1);
      r.aux2 = static_cast<float>(s.aux2);
      r.aux3 = static_cast<float>(s.aux3);
      r.countA = s.count_a;
      r.countB1 = s.count_b1;
      r.countB2 = s.count_b2;
      adaptive_->Report(r);
    }
  }
  last_time_ms_ = report.time_ms;
  last_sample_ = &s;
}

std::string StatusLineAt(const std::string& line, int64_t time_ms) {
  size_t comma = line.find(',');
  return std::to_string(time_ms) +
         (comma == std::string::npos ? std::string() : line.substr(comma));
}

}  // namespace kez_tools
