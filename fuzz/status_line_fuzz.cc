// Fuzz target: the host's status log lines (kez_addStatusValues) on a live
// instance. The input is split at newlines; each line is first parsed on its
// own (kez::StatusLine::Parse) from a heap block of exactly its length plus
// the terminating NUL, so that AddressSanitizer sees any read past the line,
// and the parse must keep what the log format promises:
//  - the fields kept are the comma-separated fields of the line, in order,
//    up to the first field that equals the whole text after it (the early
//    stop of the format: "7,7" keeps nothing, "a,5,5" keeps "a"); so the
//    count is at most the number of commas + 1;
//  - a column beyond the fields kept reads as 0;
//  - parsing the same line twice gives the same sample, bit for bit.
// Then a fresh instance takes every line in turn and forecasts in all three
// variants; the values of the forecasts are not checked (nothing is
// validated on the way in, so NaN results are allowed), but each forecast is
// made and the count of similar moments stays within the model's 16.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "FuzzInput.h"
#include "interface/StatusLine.h"
#include "kez/kez.h"

namespace {

// The fields that the format keeps, by its rule, computed on std::string.
size_t KeptFields(const std::string& line) {
  std::vector<std::string> fields;
  size_t start = 0;
  for (;;) {
    const size_t comma = line.find(',', start);
    if (comma == std::string::npos) {
      fields.push_back(line.substr(start));
      break;
    }
    fields.push_back(line.substr(start, comma - start));
    start = comma + 1;
  }
  // Splitting hands out field i together with the text after its comma
  // (nothing after the last field) and stops at the first field equal to
  // that text; a non-empty last field is kept, and the empty rest ends it.
  size_t offset = 0;
  for (size_t i = 0; i < fields.size(); ++i) {
    const size_t after = offset + fields[i].size() + 1;
    const std::string rest = after <= line.size() ? line.substr(after) : std::string();
    if (fields[i] == rest) return i;
    offset = after;
  }
  return fields.size();
}

bool SameBits(double a, double b) { return std::memcmp(&a, &b, sizeof a) == 0; }
bool SameBits(float a, float b) { return std::memcmp(&a, &b, sizeof a) == 0; }

void CheckParse(const std::string& line) {
  const size_t n = std::strlen(line.c_str());  // the line stops at a NUL
  std::unique_ptr<char[]> exact(new char[n + 1]);
  std::memcpy(exact.get(), line.c_str(), n + 1);
  const kez::StatusLine a = kez::StatusLine::Parse(exact.get());
  const std::string text(exact.get(), n);
  size_t commas = 0;
  for (char c : text) commas += c == ',';
  KEZ_FUZZ_CHECK(a.fieldCount >= 0);
  KEZ_FUZZ_CHECK(static_cast<size_t>(a.fieldCount) <= commas + 1);
  KEZ_FUZZ_CHECK(static_cast<size_t>(a.fieldCount) == KeptFields(text));
  if (a.fieldCount <= kez::StatusLine::kTimeColumn) KEZ_FUZZ_CHECK(a.days == 0.0);
  if (a.fieldCount <= kez::StatusLine::kLevelColumn) KEZ_FUZZ_CHECK(a.level == 0.0f);
  if (a.fieldCount <= kez::StatusLine::kChargingColumn) KEZ_FUZZ_CHECK(a.charging == 0.0f);
  if (a.fieldCount <= kez::StatusLine::kCountB2Column) KEZ_FUZZ_CHECK(a.countB2 == 0.0);
  if (a.fieldCount <= kez::StatusLine::kAux3Column) KEZ_FUZZ_CHECK(a.aux3 == 0.0f);
  if (a.fieldCount <= kez::StatusLine::kCountAColumn) KEZ_FUZZ_CHECK(a.countA == 0.0);
  const kez::StatusLine b = kez::StatusLine::Parse(exact.get());
  KEZ_FUZZ_CHECK(a.fieldCount == b.fieldCount);
  KEZ_FUZZ_CHECK(SameBits(a.days, b.days) && SameBits(a.level, b.level) &&
                 SameBits(a.charging, b.charging) && SameBits(a.aux1, b.aux1) &&
                 SameBits(a.aux2, b.aux2) && SameBits(a.aux3, b.aux3) &&
                 SameBits(a.countA, b.countA) && SameBits(a.countB1, b.countB1) &&
                 SameBits(a.countB2, b.countB2));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  kez_handle h = kez_init();
  if (h == nullptr) return 0;
  const char* text = reinterpret_cast<const char*>(data);
  size_t start = 0;
  while (start <= size) {
    size_t end = start;
    while (end < size && text[end] != '\n') ++end;
    const std::string line(text + start, end - start);
    CheckParse(line);
    kez_addStatusValues(h, line.c_str());
    start = end + 1;
  }
  stMobilePowerPredictionData out[16];
  KEZ_FUZZ_CHECK(kez_predict(h, 16, out) == 1);
  KEZ_FUZZ_CHECK(kez_predict_without_charging(h, 16, out) == 1);
  KEZ_FUZZ_CHECK(kez_predict_at_charging_starting(h, 16, out) == 1);
  const int found = kez_similar_moments(h, 16);
  KEZ_FUZZ_CHECK(found >= 0 && found <= 16);
  kez_stop(h);
  return 0;
}
