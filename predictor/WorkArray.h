// WorkArray<T>: a scratch array that lives for one call.
//
// The storage is raw (elements are not constructed, so T must be trivially
// copyable) and obtained without exceptions: when it cannot be had, `ok()` is
// false and the caller gives up. Sizes are computed with saturating
// arithmetic, so an absurd element count asks the allocator for the largest
// possible size and fails there instead of wrapping round to a small block.
// Not copyable; the storage is released by the destructor.
#ifndef KEZ_PREDICTOR_WORKARRAY_H_
#define KEZ_PREDICTOR_WORKARRAY_H_

#include <cstddef>
#include <cstdint>
#include <new>
#include <type_traits>

namespace vorn {

// a * b, or SIZE_MAX when the product does not fit.
inline std::size_t SaturatingMul(std::size_t a, std::size_t b) {
  if (a != 0 && b > SIZE_MAX / a) return SIZE_MAX;
  return a * b;
}

template <class T>
class WorkArray {
  static_assert(std::is_trivially_copyable<T>::value,
                "WorkArray holds plain records only");

 public:
  explicit WorkArray(std::size_t count)
      : data_(static_cast<T*>(::operator new(SaturatingMul(count, sizeof(T)),
                                             std::nothrow))) {}
  WorkArray(const WorkArray&) = delete;
  WorkArray& operator=(const WorkArray&) = delete;
  ~WorkArray() { ::operator delete(data_); }

  bool ok() const { return data_ != nullptr; }
  T* get() const { return data_; }
  T& operator[](std::size_t i) const { return data_[i]; }

 private:
  T* data_;
};

}  // namespace vorn

#endif  // KEZ_PREDICTOR_WORKARRAY_H_
