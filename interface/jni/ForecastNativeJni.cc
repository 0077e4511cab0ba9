// JNI entry point of the Java class io.kez.ForecastNative: kez_forecast_find
// over a forecast that Java holds as float arrays, so that the Java API and
// the command-line tools answer "when will it reach N %" by one rule.
//
// Step k becomes the record {level = levelsPercent[k] / 100.0, charging =
// charging[k]}, both computed in double from the floats; a charging array
// shorter than the levels leaves the missing chances at 0. The threshold is
// passed on unchanged, in the record's units (a level fraction, or a chance).
// The declaration comes from the header that javac -h generates from
// ForecastNative.java, so a changed Java signature stops the build.
//
// Never throws and raises no Java exception of its own: a null array, an
// unknown query or a failed allocation gives -1. When the VM cannot pin an
// array its own OutOfMemoryError is left pending for the caller.
#include <jni.h>

#include <cstddef>

#include "interface/jni/ForecastRecords.h"
#include "interface/jni/PinnedFloatArray.h"
#include "io_kez_ForecastNative.h"
#include "kez/export.h"
#include "kez/kez.h"

namespace {

using kez::jni::ForecastRecords;
using kez::jni::PinnedFloatArray;

constexpr jint kNotFound = -1;

jint Find(JNIEnv* env, jfloatArray levels, jfloatArray charging, jint query,
          jdouble threshold) {
  if (levels == nullptr || charging == nullptr) return kNotFound;
  // Pinned one after the other: no JNI call may follow a failed pin.
  PinnedFloatArray level_in(env, levels, PinnedFloatArray::kRead);
  if (!level_in.Usable()) return kNotFound;
  PinnedFloatArray charging_in(env, charging, PinnedFloatArray::kRead);
  if (!charging_in.Usable()) return kNotFound;
  const jsize n = level_in.Length();
  ForecastRecords records(static_cast<std::size_t>(n));
  stMobilePowerPredictionData* r = records.Data();
  if (r == nullptr) return kNotFound;
  const jsize charging_n = charging_in.Length();
  for (jsize i = 0; i < n; ++i) {
    r[i].level = static_cast<double>(level_in[i]) / 100.0;
    if (i < charging_n) r[i].charging = static_cast<double>(charging_in[i]);
  }
  return kez_forecast_find(r, n, query, threshold);
}

}  // namespace

extern "C" {

KEZ_EXPORT JNIEXPORT jint JNICALL Java_io_kez_ForecastNative_kezForecastFind(
    JNIEnv* env, jclass, jfloatArray levelsPercent, jfloatArray charging,
    jint query, jdouble threshold) {
  try {
    return Find(env, levelsPercent, charging, query, threshold);
  } catch (...) {
    return kNotFound;
  }
}

}  // extern "C"
