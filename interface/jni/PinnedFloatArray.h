// The elements of a Java float array, held for the length of one JNI call.
//
// The constructor pins the array with GetFloatArrayElements (no copy flag is
// asked for) and the destructor releases it with ReleaseFloatArrayElements:
// an array the call writes (kWrite) in mode 0, which copies the elements back
// when the VM handed out a copy and frees that copy; an array the call only
// reads (kRead) in mode JNI_ABORT, which frees the copy without copying it
// back. Either mode frees: JNI_COMMIT, which copies back and keeps the copy,
// would leak the copy on every call. A null array is taken as an empty one
// and is not pinned.
// When the VM cannot pin the array, `Usable()` is false and a Java
// OutOfMemoryError is pending: the caller must make no JNI call but return.
#ifndef KEZ_INTERFACE_JNI_PINNEDFLOATARRAY_H_
#define KEZ_INTERFACE_JNI_PINNEDFLOATARRAY_H_

#include <jni.h>

namespace kez {
namespace jni {

class PinnedFloatArray {
 public:
  enum Access { kRead, kWrite };

  PinnedFloatArray(JNIEnv* env, jfloatArray array, Access access)
      : env_(env), array_(array), release_mode_(access == kRead ? JNI_ABORT : 0) {
    if (array_ == nullptr) return;
    length_ = env_->GetArrayLength(array_);
    elements_ = env_->GetFloatArrayElements(array_, nullptr);
  }
  ~PinnedFloatArray() {
    if (elements_ != nullptr) {
      env_->ReleaseFloatArrayElements(array_, elements_, release_mode_);
    }
  }
  PinnedFloatArray(const PinnedFloatArray&) = delete;
  PinnedFloatArray& operator=(const PinnedFloatArray&) = delete;

  bool Usable() const { return array_ == nullptr || elements_ != nullptr; }
  // Number of elements that may be read and written (0 for a null array).
  jsize Length() const { return elements_ != nullptr ? length_ : 0; }
  jfloat& operator[](jsize i) { return elements_[i]; }

  void Fill(jfloat value) {
    for (jsize i = 0; i < Length(); ++i) elements_[i] = value;
  }

 private:
  JNIEnv* env_;
  jfloatArray array_;
  jint release_mode_;
  jsize length_ = 0;
  jfloat* elements_ = nullptr;
};

}  // namespace jni
}  // namespace kez

#endif  // KEZ_INTERFACE_JNI_PINNEDFLOATARRAY_H_
