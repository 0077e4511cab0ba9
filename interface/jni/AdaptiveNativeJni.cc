// JNI entry points of the Java class io.kez.AdaptiveNative: the adaptive
// forecaster's exported C functions (kez_adaptive_*) for io.kez.Forecaster.
//
// Type conversion only: handles to and from Java longs, forecast records to
// float arrays (levels in percent, charging chance 0 to 1), weights into a
// double array. The declarations come from the header that javac -h
// generates from AdaptiveNative.java, so a changed Java signature stops the
// build. Arrays are released in mode 0 (copied back when the VM handed out a
// copy) when written, with JNI_ABORT when nothing was written into them.
//
// No C++ exception leaves an entry point and no Java exception is thrown
// here; when the VM cannot pin an array or make a string, its own
// OutOfMemoryError is left pending for the caller.
#include <jni.h>

#include <cstddef>
#include <cstdint>

#include "interface/jni/ForecastRecords.h"
#include "interface/jni/PinnedFloatArray.h"
#include "io_kez_AdaptiveNative.h"
#include "kez/export.h"
#include "kez/kez.h"

namespace {

using kez::jni::ForecastRecords;
using kez::jni::PinnedFloatArray;

constexpr jfloat kNoForecast = 100.0f;

kez_adaptive* FromJava(jlong handle) {
  return reinterpret_cast<kez_adaptive*>(static_cast<std::uintptr_t>(handle));
}

jlong ToJava(kez_adaptive* a) {
  return static_cast<jlong>(reinterpret_cast<std::uintptr_t>(a));
}

jfloat Predict(JNIEnv* env, jlong handle, jint variant, jboolean raw,
               jfloatArray levels, jfloatArray charging) {
  PinnedFloatArray level_out(env, levels, PinnedFloatArray::kWrite);
  if (!level_out.Usable()) return kNoForecast;
  PinnedFloatArray charging_out(env, charging, PinnedFloatArray::kWrite);
  if (!charging_out.Usable()) return kNoForecast;
  const jsize n = level_out.Length();
  ForecastRecords records(static_cast<std::size_t>(n));
  stMobilePowerPredictionData* r = records.Data();
  int done = 0;
  if (r != nullptr) {
    done = raw ? kez_adaptive_predict_raw(FromJava(handle), variant, n, r)
               : kez_adaptive_predict(FromJava(handle), variant, n, r);
  }
  if (done != 1) {
    level_out.Fill(0.0f);
    charging_out.Fill(0.0f);
    return kNoForecast;
  }
  const jsize charging_n = charging_out.Length();
  for (jsize i = 0; i < n; ++i) {
    level_out[i] = static_cast<jfloat>(r[i].level * 100.0);
    if (i < charging_n) charging_out[i] = static_cast<jfloat>(r[i].charging);
  }
  return n > 0 ? static_cast<jfloat>(r[0].distance) : 0.0f;
}

jint Weights(JNIEnv* env, jlong handle, jint variant, jint what,
             jdoubleArray weights) {
  if (weights == nullptr) return 0;
  const int methods = kez_adaptive_method_count();
  const jsize steps = env->GetArrayLength(weights) / methods;
  if (steps < 1) return 0;
  jdouble* out = env->GetDoubleArrayElements(weights, nullptr);
  if (out == nullptr) return 0;
  const int done =
      kez_adaptive_weight_steps(FromJava(handle), variant, what, steps, out);
  // Written only when done; otherwise nothing needs copying back.
  env->ReleaseDoubleArrayElements(weights, out, done == 1 ? 0 : JNI_ABORT);
  return done == 1 ? steps : 0;
}

jobjectArray MethodNames(JNIEnv* env) {
  const int n = kez_adaptive_method_count();
  jclass string = env->FindClass("java/lang/String");
  if (string == nullptr) return nullptr;
  jobjectArray names = env->NewObjectArray(n, string, nullptr);
  if (names == nullptr) return nullptr;
  for (int m = 0; m < n; ++m) {
    char buffer[64] = {0};
    kez_adaptive_method_name(m, buffer, static_cast<int>(sizeof buffer));
    jstring name = env->NewStringUTF(buffer);
    if (name == nullptr) return nullptr;
    env->SetObjectArrayElement(names, m, name);
    env->DeleteLocalRef(name);
  }
  return names;
}

}  // namespace

extern "C" {

KEZ_EXPORT JNIEXPORT jlong JNICALL
Java_io_kez_AdaptiveNative_kezAdaptiveCreate(JNIEnv*, jclass) {
  try {
    return ToJava(kez_adaptive_init());
  } catch (...) {
    return 0;
  }
}

KEZ_EXPORT JNIEXPORT jint JNICALL Java_io_kez_AdaptiveNative_kezAdaptiveReport(
    JNIEnv*, jclass, jlong handle, jlong timeMs, jfloat levelPercent,
    jfloat charging, jfloat aux1, jfloat aux2, jfloat aux3, jdouble countA,
    jdouble countB1, jdouble countB2) {
  try {
    // The Java long carries the unsigned millisecond time bit for bit.
    return kez_adaptive_report(FromJava(handle), static_cast<uint64_t>(timeMs),
                               levelPercent, charging, aux1, aux2, aux3,
                               countA, countB1, countB2);
  } catch (...) {
    return 0;
  }
}

KEZ_EXPORT JNIEXPORT jint JNICALL
Java_io_kez_AdaptiveNative_kezAdaptiveReportLine(JNIEnv* env, jclass,
                                                 jlong handle, jstring line) {
  if (line == nullptr) return 0;
  const char* chars = env->GetStringUTFChars(line, nullptr);
  if (chars == nullptr) return 0;  // out of memory; the VM's error is pending
  int done = 0;
  try {
    done = kez_adaptive_report_line(FromJava(handle), chars);
  } catch (...) {
  }
  env->ReleaseStringUTFChars(line, chars);
  return done;
}

KEZ_EXPORT JNIEXPORT jfloat JNICALL
Java_io_kez_AdaptiveNative_kezAdaptivePredict(JNIEnv* env, jclass, jlong handle,
                                              jint variant, jboolean raw,
                                              jfloatArray levels,
                                              jfloatArray charging) {
  try {
    return Predict(env, handle, variant, raw, levels, charging);
  } catch (...) {
    return kNoForecast;
  }
}

KEZ_EXPORT JNIEXPORT jint JNICALL Java_io_kez_AdaptiveNative_kezAdaptiveWeights(
    JNIEnv* env, jclass, jlong handle, jint variant, jint what,
    jdoubleArray weights) {
  try {
    return Weights(env, handle, variant, what, weights);
  } catch (...) {
    return 0;
  }
}

KEZ_EXPORT JNIEXPORT jobjectArray JNICALL
Java_io_kez_AdaptiveNative_kezAdaptiveMethodNames(JNIEnv* env, jclass) {
  try {
    return MethodNames(env);
  } catch (...) {
    return nullptr;
  }
}

KEZ_EXPORT JNIEXPORT jlong JNICALL Java_io_kez_AdaptiveNative_kezAdaptiveScored(
    JNIEnv*, jclass, jlong handle, jint variant) {
  try {
    return static_cast<jlong>(kez_adaptive_scored(FromJava(handle), variant));
  } catch (...) {
    return 0;
  }
}

KEZ_EXPORT JNIEXPORT jlong JNICALL
Java_io_kez_AdaptiveNative_kezAdaptiveOpen(JNIEnv* env, jclass, jstring path,
                                           jintArray status) {
  int result = KEZ_JOURNAL_CANNOT_OPEN;
  kez_adaptive* a = nullptr;
  if (path != nullptr) {
    const char* chars = env->GetStringUTFChars(path, nullptr);
    if (chars == nullptr) return 0;  // out of memory; the VM's error is pending
    try {
      a = kez_adaptive_open(chars, &result);
    } catch (...) {
      a = nullptr;
    }
    env->ReleaseStringUTFChars(path, chars);
  }
  if (status != nullptr && env->GetArrayLength(status) >= 1) {
    const jint code = result;
    env->SetIntArrayRegion(status, 0, 1, &code);
  }
  return ToJava(a);
}

KEZ_EXPORT JNIEXPORT jint JNICALL Java_io_kez_AdaptiveNative_kezAdaptiveSync(
    JNIEnv*, jclass, jlong handle) {
  try {
    return kez_adaptive_sync(FromJava(handle));
  } catch (...) {
    return KEZ_JOURNAL_WRITE_FAILED;
  }
}

KEZ_EXPORT JNIEXPORT jlong JNICALL
Java_io_kez_AdaptiveNative_kezAdaptiveJournalCount(JNIEnv*, jclass,
                                                   jlong handle, jint what) {
  try {
    return static_cast<jlong>(kez_adaptive_journal_count(FromJava(handle), what));
  } catch (...) {
    return -1;
  }
}

KEZ_EXPORT JNIEXPORT void JNICALL
Java_io_kez_AdaptiveNative_kezAdaptiveStop(JNIEnv*, jclass, jlong handle) {
  try {
    kez_adaptive_stop(FromJava(handle));
  } catch (...) {
  }
}

}  // extern "C"
