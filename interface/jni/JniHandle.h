// The one conversion between an instance handle and the Java `long` that
// carries it.
//
// Java keeps the handle of an instance in a 64-bit `long`. The pointer goes
// through uintptr_t in both directions, so on a 32-bit ARM phone it is
// zero-extended into the long and the long is cut back to the pointer's 32
// bits; a null handle is 0 in Java on every platform. Every JNI entry point
// converts with these two functions and nothing else.
#ifndef KEZ_INTERFACE_JNI_JNIHANDLE_H_
#define KEZ_INTERFACE_JNI_JNIHANDLE_H_

#include <jni.h>

#include <cstdint>

#include "kez/kez.h"

namespace kez {
namespace jni {

inline jlong HandleToJava(kez_handle handle) {
  return static_cast<jlong>(reinterpret_cast<std::uintptr_t>(handle));
}

inline kez_handle HandleFromJava(jlong value) {
  return reinterpret_cast<kez_handle>(static_cast<std::uintptr_t>(value));
}

}  // namespace jni
}  // namespace kez

#endif  // KEZ_INTERFACE_JNI_JNIHANDLE_H_
