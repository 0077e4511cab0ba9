// Fuzz target: the tools' log reader (kez_tools::ReadLog), in both formats,
// on the same input. Bad input must be refused with a message, never crash;
// a log that is accepted must keep the reader's promises: at least one
// sample, times that never decrease, finite values, levels within 0..100
// and charging states within 0..1.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>

#include "FuzzInput.h"
#include "LogReader.h"

namespace {

void ReadAndCheck(const std::string& text, kez_tools::LogFormat format) {
  std::istringstream in(text);
  kez_tools::Log log;
  std::string error;
  if (!kez_tools::ReadLog(in, "fuzz", format, &log, &error)) {
    KEZ_FUZZ_CHECK(!error.empty());
    return;
  }
  KEZ_FUZZ_CHECK(!log.samples.empty());
  for (size_t i = 0; i < log.samples.size(); ++i) {
    const kez_tools::LogSample& s = log.samples[i];
    KEZ_FUZZ_CHECK(s.time_ms >= 0);
    if (i > 0) KEZ_FUZZ_CHECK(s.time_ms >= log.samples[i - 1].time_ms);
    KEZ_FUZZ_CHECK(s.level_percent >= 0.0 && s.level_percent <= 100.0);
    KEZ_FUZZ_CHECK(s.charging >= 0.0 && s.charging <= 1.0);
    KEZ_FUZZ_CHECK(std::isfinite(s.aux1) && std::isfinite(s.aux2) && std::isfinite(s.aux3));
    KEZ_FUZZ_CHECK(std::isfinite(s.count_a) && std::isfinite(s.count_b1) &&
                   std::isfinite(s.count_b2));
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  ReadAndCheck(text, kez_tools::LogFormat::kCsv);
  ReadAndCheck(text, kez_tools::LogFormat::kStatusLines);
  return 0;
}
