// JNI entry points of the Java class io.kez.KezInterface.
//
// Each native method forwards to one exported C function and adds only type
// conversion: Java strings to text, forecast records to Java float arrays
// (levels in percent, charging chance 0 to 1) and handles to and from Java
// longs (JniHandle.h). The declarations come from the header that javac -h
// generates from KezInterface.java at build time, so a Java signature that
// no longer matches these definitions stops the build.
//
// No C++ exception leaves an entry point and no Java exception is thrown
// here. When memory runs out: kezCreate returns the handle 0; kezPredict
// fills both arrays with zeros and returns 100.0 (the answer of "no forecast
// could be made", the same as for the handle 0); when the VM cannot pin an
// array its own OutOfMemoryError is left pending for the caller.
#include <jni.h>

#include "interface/jni/ForecastRecords.h"
#include "interface/jni/JniHandle.h"
#include "interface/jni/PinnedFloatArray.h"
#include "io_kez_KezInterface.h"
#include "kez/export.h"
#include "kez/kez.h"

namespace {

using kez::jni::ForecastRecords;
using kez::jni::HandleFromJava;
using kez::jni::HandleToJava;
using kez::jni::PinnedFloatArray;

// The result of kezPredict when no forecast could be made.
constexpr jfloat kNoForecast = 100.0f;

jfloat Predict(JNIEnv* env, jlong handle, jint mode, jfloatArray levels,
               jfloatArray charging) {
  PinnedFloatArray level_out(env, levels, PinnedFloatArray::kWrite);
  PinnedFloatArray charging_out(env, charging, PinnedFloatArray::kWrite);
  if (!level_out.Usable() || !charging_out.Usable()) return kNoForecast;
  const jsize n = level_out.Length();
  ForecastRecords records(static_cast<std::size_t>(n));
  stMobilePowerPredictionData* r = records.Data();
  if (r == nullptr) {
    level_out.Fill(0.0f);
    charging_out.Fill(0.0f);
    return kNoForecast;
  }
  const kez_handle h = HandleFromJava(handle);
  int done;
  switch (mode) {
    case 0:
      done = kez_predict(h, n, r);
      break;
    case 1:
      done = kez_predict_without_charging(h, n, r);
      break;
    case 2:
      done = kez_predict_at_charging_starting(h, n, r);
      break;
    default:
      // No forecast: the zeroed records are handed back as they are.
      done = 0;
      break;
  }
  if (done < 0) {
    level_out.Fill(0.0f);
    charging_out.Fill(0.0f);
    return kNoForecast;
  }
  // A charging array shorter than the levels breaks the caller's side of the
  // contract; it is written only as far as it reaches.
  const jsize charging_n = charging_out.Length();
  for (jsize i = 0; i < n; ++i) {
    level_out[i] = static_cast<jfloat>(r[i].level * 100.0);
    if (i < charging_n) charging_out[i] = static_cast<jfloat>(r[i].charging);
  }
  return static_cast<jfloat>(r[0].distance);
}

}  // namespace

extern "C" {

KEZ_EXPORT JNIEXPORT jlong JNICALL
Java_io_kez_KezInterface_kezCreate(JNIEnv*, jclass) {
  try {
    return HandleToJava(kez_init());
  } catch (...) {
    return 0;
  }
}

KEZ_EXPORT JNIEXPORT jstring JNICALL
Java_io_kez_KezInterface_kezGetVersion(JNIEnv* env, jclass) {
  try {
    char buffer[256] = {0};
    kez_get_version(buffer, 256);
    return env->NewStringUTF(buffer);
  } catch (...) {
    return nullptr;
  }
}

KEZ_EXPORT JNIEXPORT void JNICALL
Java_io_kez_KezInterface_kezAddStatusValue__JLjava_lang_String_2(
    JNIEnv* env, jclass, jlong handle, jstring line) {
  if (line == nullptr) return;
  const char* chars = env->GetStringUTFChars(line, nullptr);
  if (chars == nullptr) return;  // out of memory; the VM's error is pending
  try {
    kez_addStatusValues(HandleFromJava(handle), chars);
  } catch (...) {
  }
  env->ReleaseStringUTFChars(line, chars);
}

KEZ_EXPORT JNIEXPORT jint JNICALL
Java_io_kez_KezInterface_kezAddStatusValue__JJFFFFFDDD(
    JNIEnv*, jclass, jlong handle, jlong timeMs, jfloat levelPercent,
    jfloat charging, jfloat aux1, jfloat aux2, jfloat aux3, jdouble countA,
    jdouble countB1, jdouble countB2) {
  try {
    // The Java long carries the unsigned millisecond time bit for bit.
    return kez_addStatusValue(HandleFromJava(handle),
                              static_cast<uint64_t>(timeMs), levelPercent,
                              charging, aux1, aux2, aux3, countA, countB1,
                              countB2);
  } catch (...) {
    return 0;
  }
}

KEZ_EXPORT JNIEXPORT jfloat JNICALL Java_io_kez_KezInterface_kezPredict(
    JNIEnv* env, jclass, jlong handle, jint mode, jfloatArray levels,
    jfloatArray charging) {
  try {
    return Predict(env, handle, mode, levels, charging);
  } catch (...) {
    return kNoForecast;
  }
}

KEZ_EXPORT JNIEXPORT void JNICALL
Java_io_kez_KezInterface_kezStop(JNIEnv*, jclass, jlong handle) {
  try {
    kez_stop(HandleFromJava(handle));
  } catch (...) {
  }
}

}  // extern "C"
