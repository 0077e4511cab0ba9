// The exported C functions of the adaptive forecaster: thin, exception-proof
// wrappers around kez::adaptive::AdaptiveForecaster and, when it was opened
// with one, its journal (kez::Journal). Every function catches everything; a
// failure inside ends as the function's "nothing done" result.
#include <cstdio>
#include <cstring>
#include <new>

#include "adaptive/AdaptiveForecaster.h"
#include "adaptive/ForecastMethod.h"
#include "adaptive/HostReportLine.h"
#include "journal/Journal.h"
#include "kez/kez.h"

// The opaque handle: the forecaster and its journal (closed when the
// forecaster has none). The journal is declared last, so it is closed
// (synced) first when the handle is deleted.
struct kez_adaptive {
  kez::adaptive::AdaptiveForecaster forecaster;
  kez::Journal journal;
  int lastStatus = KEZ_JOURNAL_OK;
};

namespace {

kez::adaptive::HostReport FromRecord(const kez::JournalRecord& j) {
  kez::adaptive::HostReport r;
  r.timeMs = j.timeMs;
  r.levelPercent = j.levelPercent;
  r.charging = j.charging;
  r.aux1 = j.aux1;
  r.aux2 = j.aux2;
  r.aux3 = j.aux3;
  r.countA = j.countA;
  r.countB1 = j.countB1;
  r.countB2 = j.countB2;
  return r;
}

kez::JournalRecord ToRecord(const kez::adaptive::HostReport& r) {
  kez::JournalRecord j;
  j.timeMs = r.timeMs;
  j.levelPercent = r.levelPercent;
  j.charging = r.charging;
  j.aux1 = r.aux1;
  j.aux2 = r.aux2;
  j.aux3 = r.aux3;
  j.countA = r.countA;
  j.countB1 = r.countB1;
  j.countB2 = r.countB2;
  return j;
}

// The forecaster as its journal sees it. The journal calls these from
// inside Open and Append, which run inside the exported functions' try
// blocks; the forecaster's calls throw nothing but std::bad_alloc anyway.
void ReplayReport(void* c, const kez::JournalRecord& record) {
  static_cast<kez_adaptive*>(c)->forecaster.Report(FromRecord(record));
}

std::size_t SaveSnapshot(void* c, unsigned char* out, std::size_t capacity) {
  return static_cast<kez_adaptive*>(c)->forecaster.SaveState(out, capacity);
}

void RestoreSnapshot(void* c, const unsigned char* data, std::size_t size) {
  static_cast<kez_adaptive*>(c)->forecaster.RestoreState(data, size);
}

uint64_t OldestNeeded(void* c) {
  return static_cast<kez_adaptive*>(c)->forecaster.OldestNeeded();
}

// Takes a report; a report the forecaster took goes into the journal.
int Take(kez_adaptive* a, const kez::adaptive::HostReport& r) {
  const int taken = a->forecaster.Report(r);
  if (taken == 1 && a->journal.isOpen()) {
    a->lastStatus = a->journal.Append(ToRecord(r));
  }
  return taken;
}

}  // namespace

extern "C" {

kez_adaptive* kez_adaptive_open(const char* journalPath, int* status) {
  int result = KEZ_JOURNAL_CANNOT_OPEN;
  kez_adaptive* a = nullptr;
  if (journalPath != nullptr) {
    try {
      a = new kez_adaptive();
      kez::JournalHost host;
      host.report = ReplayReport;
      host.snapshot = SaveSnapshot;
      host.restore = RestoreSnapshot;
      host.oldestNeeded = OldestNeeded;
      host.context = a;
      result = a->journal.Open(journalPath, kez::JournalOptions(), host);
      a->lastStatus = result;
      if (result != KEZ_JOURNAL_OK && result != KEZ_JOURNAL_DISK_FULL &&
          result != KEZ_JOURNAL_WRITE_FAILED) {
        delete a;
        a = nullptr;
      }
    } catch (...) {
      delete a;
      a = nullptr;
      result = KEZ_JOURNAL_NO_MEMORY;
    }
  }
  if (status != nullptr) *status = result;
  return a;
}

int kez_adaptive_sync(kez_adaptive* a) {
  if (a == nullptr) return -1;
  if (!a->journal.isOpen()) return KEZ_JOURNAL_OK;
  try {
    a->lastStatus = a->journal.Sync();
    return a->lastStatus;
  } catch (...) {
    return KEZ_JOURNAL_WRITE_FAILED;
  }
}

long long kez_adaptive_journal_count(kez_adaptive* a, int what) {
  if (a == nullptr) return -1;
  const kez::Journal& j = a->journal;
  switch (what) {
    case KEZ_JOURNAL_UNSAFE:
      return static_cast<long long>(j.unsyncedReports() + j.pendingReports());
    case KEZ_JOURNAL_HELD:
      return static_cast<long long>(j.pendingReports());
    case KEZ_JOURNAL_LOST:
      return static_cast<long long>(j.lostReports());
    case KEZ_JOURNAL_REPLAYED:
      return static_cast<long long>(j.replayedReports());
    case KEZ_JOURNAL_DAMAGED:
      return static_cast<long long>(j.damagedLines());
    case KEZ_JOURNAL_TORN:
      return static_cast<long long>(j.tornLines());
    case KEZ_JOURNAL_LAST_STATUS:
      return a->journal.isOpen() ? a->lastStatus : KEZ_JOURNAL_OK;
    default:
      return -1;
  }
}

kez_adaptive* kez_adaptive_init(void) {
  try {
    return new kez_adaptive();
  } catch (...) {
    return nullptr;
  }
}

int kez_adaptive_report(kez_adaptive* a, uint64_t timeMs, float levelPercent,
                        float charging, float aux1, float aux2, float aux3,
                        double countA, double countB1, double countB2) {
  if (a == nullptr) return -1;
  try {
    kez::adaptive::HostReport r;
    r.timeMs = timeMs;
    r.levelPercent = levelPercent;
    r.charging = charging;
    r.aux1 = aux1;
    r.aux2 = aux2;
    r.aux3 = aux3;
    r.countA = countA;
    r.countB1 = countB1;
    r.countB2 = countB2;
    return Take(a, r);
  } catch (...) {
    return 0;
  }
}

int kez_adaptive_report_line(kez_adaptive* a, const char* line) {
  if (a == nullptr) return -1;
  if (line == nullptr) return 0;
  try {
    kez::adaptive::HostReport r;
    if (!kez::adaptive::HostReportFromLine(line, &r)) return 0;
    return Take(a, r);
  } catch (...) {
    return 0;
  }
}

int kez_adaptive_predict(kez_adaptive* a, int variant, int count,
                         stMobilePowerPredictionData* out) {
  if (a == nullptr) return -1;
  try {
    return a->forecaster.Predict(variant, count, out);
  } catch (...) {
    return 0;
  }
}

int kez_adaptive_predict_raw(kez_adaptive* a, int variant, int count,
                             stMobilePowerPredictionData* out) {
  if (a == nullptr) return -1;
  try {
    return a->forecaster.PredictRaw(variant, count, out);
  } catch (...) {
    return 0;
  }
}

int kez_adaptive_method_count(void) { return kez::adaptive::kMethodCount; }

int kez_adaptive_method_name(int method, char* buffer, int size) {
  const char* name = kez::adaptive::MethodName(method);
  if (name == nullptr) return -1;
  if (buffer == nullptr || size <= 0) {
    return static_cast<int>(std::strlen(name));
  }
  std::memset(buffer, 0, static_cast<std::size_t>(size));
  return std::snprintf(buffer, static_cast<std::size_t>(size), "%s", name);
}

int kez_adaptive_weights(kez_adaptive* a, int variant, int what, int step,
                         double* weights, int count) {
  if (a == nullptr) return -1;
  if (variant < 0 || variant >= kez::adaptive::kVariantCount) return 0;
  if (what != 0 && !(what == 1 && variant == kez::adaptive::kFree)) return 0;
  if (weights == nullptr || count <= 0) return 0;
  try {
    double all[kez::adaptive::kMethodCount];
    if (what == 0) {
      a->forecaster.LevelWeights(variant, step, all);
    } else {
      a->forecaster.ChargingWeights(step, all);
    }
    const int n = count < kez::adaptive::kMethodCount
                      ? count
                      : kez::adaptive::kMethodCount;
    for (int m = 0; m < n; ++m) weights[m] = all[m];
    return n;
  } catch (...) {
    return 0;
  }
}

int kez_adaptive_weight_steps(kez_adaptive* a, int variant, int what,
                              int steps, double* weights) {
  if (a == nullptr) return -1;
  if (weights == nullptr || steps < 1) return 0;
  try {
    return a->forecaster.WeightPath(variant, what, steps, weights) ? 1 : 0;
  } catch (...) {
    return 0;
  }
}

long kez_adaptive_scored(kez_adaptive* a, int variant) {
  if (a == nullptr) return -1;
  if (variant < 0 || variant >= kez::adaptive::kVariantCount) return 0;
  return a->forecaster.Scored(variant);
}

void kez_adaptive_stop(kez_adaptive* a) {
  if (a == nullptr) return;
  try {
    delete a;
  } catch (...) {
  }
}

}  // extern "C"
