#include "KezSession.h"

#include "interface/KEZ.h"

namespace kez_tools {

KezSession::KezSession() : handle_(kez_init()) {}

KezSession::~KezSession() { kez_stop(handle_); }

bool KezSession::UseModel(const vorn::MobilePowerPredictorParameter& parameter) {
  kez::KEZ* instance = static_cast<kez::KEZ*>(handle_);
  if (instance == nullptr || instance->impl == nullptr ||
      instance->impl->predictor == nullptr) {
    return false;
  }
  instance->impl->parameter = parameter;
  instance->impl->predictor->Initialize(parameter);
  return true;
}

void KezSession::Feed(const Report& report) {
  const LogSample& s = *report.sample;
  if (!s.line.empty()) {
    std::string line =
        report.added ? StatusLineAt(s.line, report.time_ms) : s.line;
    kez_addStatusValues(handle_, line.c_str());
  } else {
    kez_addStatusValue(handle_, static_cast<uint64_t>(report.time_ms),
                       static_cast<float>(s.level_percent),
                       static_cast<float>(s.charging),
                       static_cast<float>(s.aux1), static_cast<float>(s.aux2),
                       static_cast<float>(s.aux3), s.count_a, s.count_b1,
                       s.count_b2);
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
