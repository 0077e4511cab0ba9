// StateWriter and StateReader: the byte blob in which an adaptive forecaster
// saves what it learned (AdaptiveForecaster::SaveState). Values are copied
// as their bytes in the machine's order (little-endian on every platform the
// library runs on), so a blob read back gives the very same bits; bools are
// one byte, 0 or 1.
//
// A writer with a null buffer only counts, so that the size of a blob is
// known before anything is written. A writer past its capacity keeps
// counting and reports !ok(); a reader past its end reads zeros and
// reports !ok().
#ifndef KEZ_ADAPTIVE_STATEBYTES_H_
#define KEZ_ADAPTIVE_STATEBYTES_H_

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

namespace kez {
namespace adaptive {

class StateWriter {
 public:
  StateWriter(unsigned char* out, std::size_t capacity)
      : out_(out), capacity_(capacity) {}

  template <class T>
  void Put(const T& value) {
    static_assert(std::is_arithmetic<T>::value && !std::is_same<T, bool>::value,
                  "numbers only; bools through PutBool");
    if (out_ != nullptr) {
      if (size_ + sizeof(T) <= capacity_) {
        std::memcpy(out_ + size_, &value, sizeof(T));
      } else {
        ok_ = false;
      }
    }
    size_ += sizeof(T);
  }
  void PutBool(bool value) { Put(static_cast<uint8_t>(value ? 1 : 0)); }

  std::size_t size() const { return size_; }
  bool ok() const { return ok_; }

 private:
  unsigned char* out_;
  std::size_t capacity_;
  std::size_t size_ = 0;
  bool ok_ = true;
};

class StateReader {
 public:
  StateReader(const unsigned char* data, std::size_t size)
      : data_(data), size_(size) {}

  template <class T>
  T Get() {
    static_assert(std::is_arithmetic<T>::value && !std::is_same<T, bool>::value,
                  "numbers only; bools through GetBool");
    T value{};
    if (data_ != nullptr && at_ + sizeof(T) <= size_) {
      std::memcpy(&value, data_ + at_, sizeof(T));
      at_ += sizeof(T);
    } else {
      ok_ = false;
    }
    return value;
  }
  bool GetBool() {
    const uint8_t b = Get<uint8_t>();
    if (b > 1) ok_ = false;
    return b == 1;
  }

  bool ok() const { return ok_; }
  bool atEnd() const { return at_ == size_; }

 private:
  const unsigned char* data_;
  std::size_t size_;
  std::size_t at_ = 0;
  bool ok_ = true;
};

}  // namespace adaptive
}  // namespace kez

#endif  // KEZ_ADAPTIVE_STATEBYTES_H_
