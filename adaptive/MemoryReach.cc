#include "adaptive/MemoryReach.h"

namespace kez {
namespace adaptive {

namespace {
constexpr uint64_t kDayMs = 86400000;
}  // namespace

MemoryReach::MemoryReach() { Clear(); }

void MemoryReach::Clear() {
  for (uint16_t& c : count_) c = 0;
}

void MemoryReach::Add(uint64_t timeMs, bool newPlace) {
  const uint64_t day = timeMs / kDayMs;
  if (!any_ || day < newestDay_) {
    Clear();
    any_ = true;
    newestDay_ = day;
  }
  if (day > newestDay_) {
    if (day - newestDay_ >= static_cast<uint64_t>(kDays)) {
      Clear();
    } else {
      for (uint64_t d = newestDay_ + 1; d <= day; ++d) count_[d % kDays] = 0;
    }
    newestDay_ = day;
  }
  uint16_t& c = count_[day % kDays];
  if (newPlace && c < 0xffff) ++c;
}

uint64_t MemoryReach::Since(int places) const {
  if (!any_) return 0;
  long sum = 0;
  for (int back = 0; back < kDays && static_cast<uint64_t>(back) <= newestDay_;
       ++back) {
    const uint64_t day = newestDay_ - static_cast<uint64_t>(back);
    sum += count_[day % kDays];
    if (sum >= places) return day * kDayMs;
  }
  return 0;
}

void MemoryReach::Save(StateWriter* out) const {
  out->PutBool(any_);
  out->Put(newestDay_);
  for (uint16_t c : count_) out->Put(c);
}

void MemoryReach::Restore(StateReader* in) {
  any_ = in->GetBool();
  newestDay_ = in->Get<uint64_t>();
  for (uint16_t& c : count_) c = in->Get<uint16_t>();
}

}  // namespace adaptive
}  // namespace kez
