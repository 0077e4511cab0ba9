#include "EvaluationCodec.h"

#include <cstdint>
#include <cstring>
#include <utility>
#include <vector>

namespace kez_tools {

namespace {

constexpr char kTag[8] = {'K', 'E', 'Z', 'E', 'V', 'A', 'L', '1'};
// No count in a real evaluation comes near this; a larger one means damage.
constexpr uint64_t kMaxItems = uint64_t{1} << 32;

class Writer {
 public:
  std::string bytes;

  void U64(uint64_t v) {
    for (int i = 0; i < 8; ++i) bytes.push_back(static_cast<char>(v >> (8 * i)));
  }
  void Size(const size_t& v) { U64(v); }
  void I64(const int64_t& v) { U64(static_cast<uint64_t>(v)); }
  void F64(const double& v) {
    uint64_t bits;
    std::memcpy(&bits, &v, sizeof bits);
    U64(bits);
  }
  void Bool(const bool& v) { U64(v ? 1 : 0); }
  void Text(const std::string& s) {
    U64(s.size());
    bytes += s;
  }
  void Errors(const ErrorStats& e) {
    U64(e.errors().size());
    for (double x : e.errors()) F64(x);
    F64(e.sum());
  }
  void Score(const ProbabilityScore& p) {
    F64(p.sum());
    U64(p.count());
  }
  template <typename T, typename F>
  void List(const std::vector<T>& items, F each) {
    U64(items.size());
    for (const T& item : items) each(item);
  }
};

class Reader {
 public:
  explicit Reader(const std::string& bytes) : bytes_(bytes) {}
  bool ok() const { return ok_; }
  bool at_end() const { return pos_ == bytes_.size(); }

  uint64_t U64() {
    if (!ok_ || bytes_.size() - pos_ < 8) {
      ok_ = false;
      return 0;
    }
    uint64_t v = 0;
    for (int i = 0; i < 8; ++i) {
      v |= static_cast<uint64_t>(static_cast<unsigned char>(bytes_[pos_ + i]))
           << (8 * i);
    }
    pos_ += 8;
    return v;
  }
  uint64_t Count() {
    uint64_t n = U64();
    if (n > kMaxItems || n > bytes_.size()) ok_ = false;
    return ok_ ? n : 0;
  }
  void Size(size_t& v) { v = static_cast<size_t>(U64()); }
  void I64(int64_t& v) { v = static_cast<int64_t>(U64()); }
  void F64(double& v) {
    uint64_t bits = U64();
    std::memcpy(&v, &bits, sizeof v);
  }
  void Bool(bool& v) { v = U64() != 0; }
  void Text(std::string& s) {
    uint64_t n = Count();
    if (!ok_ || bytes_.size() - pos_ < n) {
      ok_ = false;
      return;
    }
    s.assign(bytes_, pos_, n);
    pos_ += n;
  }
  void Errors(ErrorStats& e) {
    uint64_t n = Count();
    std::vector<double> errors(n);
    for (double& x : errors) F64(x);
    double sum = 0;
    F64(sum);
    e = ErrorStats::FromState(std::move(errors), sum);
  }
  void Score(ProbabilityScore& p) {
    double sum = 0;
    F64(sum);
    size_t count = static_cast<size_t>(U64());
    p = ProbabilityScore::FromState(sum, count);
  }
  template <typename T, typename F>
  void List(std::vector<T>& items, F each) {
    items.assign(Count(), T());
    for (T& item : items) each(item);
  }

 private:
  const std::string& bytes_;
  size_t pos_ = sizeof kTag;
  bool ok_ = true;
};

// Every field of a result, in one order for writing and reading. `R` is
// LogEvaluation or const LogEvaluation.
template <typename Archive, typename R>
void Transfer(Archive& a, R& r) {
  a.Text(r.source);
  a.Size(r.logs);
  a.Size(r.samples);
  a.I64(r.first_ms);
  a.I64(r.last_ms);
  a.I64(r.span_ms);
  a.Bool(r.any_charging);
  a.Size(r.replay.samples_read);
  a.Size(r.replay.reports_added);
  a.Size(r.replay.gaps);
  a.Size(r.replay.gap_steps);
  a.I64(r.replay.first_report_ms);
  a.I64(r.replay.last_report_ms);
  a.I64(r.first_point_ms);
  a.I64(r.last_point_ms);
  a.Size(r.points.planned);
  a.Size(r.points.made);
  a.Size(r.points.learned);
  a.Size(r.points.phone_off);
  a.Size(r.points.no_new_report);
  a.Size(r.points.seasonal_missing[0]);
  a.Size(r.points.seasonal_missing[1]);
  a.List(r.horizons, [&a](auto& h) {
    a.I64(h.horizon_ms);
    a.Size(h.pairs);
    a.Size(h.learned);
    a.Size(h.left_in_silence);
    a.Size(h.left_after_end);
    for (int c = 0; c < kConditionCount; ++c) {
      for (int m = 0; m < kMethodCount; ++m) a.Errors(h.level[c][m]);
    }
    for (int m = 0; m < kMethodCount; ++m) a.Score(h.charging[m]);
    a.Size(h.nocharge_left_charging);
    a.Size(h.nocharge_left_silence);
    a.Size(h.nocharge_left_after_end);
  });
  a.Size(r.low.events);
  for (int c = 0; c < kConditionCount; ++c) {
    for (int m = 0; m < kMethodCount; ++m) {
      a.Errors(r.low.minutes[c][m]);
      a.Size(r.low.misses[c][m]);
    }
  }
  a.F64(r.low_percent);
  a.List(r.notes, [&a](auto& note) { a.Text(note); });
}

}  // namespace

std::string EncodeEvaluation(const LogEvaluation& result) {
  Writer w;
  w.bytes.assign(kTag, sizeof kTag);
  Transfer(w, result);
  return std::move(w.bytes);
}

bool DecodeEvaluation(const std::string& bytes, LogEvaluation* result,
                      std::string* error) {
  if (bytes.size() < sizeof kTag ||
      std::memcmp(bytes.data(), kTag, sizeof kTag) != 0) {
    *error = "not an encoded evaluation of this version of kez";
    return false;
  }
  Reader reader(bytes);
  LogEvaluation r;
  Transfer(reader, r);
  if (!reader.ok() || !reader.at_end()) {
    *error = "the encoded evaluation is damaged";
    return false;
  }
  *result = std::move(r);
  return true;
}

}  // namespace kez_tools
