// Growable lists: the only containers of the library.
//
// FListT<T> keeps values inline; FListP<T> keeps owned pointers to heap
// objects and deletes them. Both start with no block, take 256 slots at the
// first append, double when full, and halve when a long list (258 elements
// or more before a removal) falls to half of its slots. Removing element 0 is
// O(1): `data` moves one slot forward inside `block` and `capacity` shrinks by
// one, so lists that lose their head (table rows) never move their elements.
//
// Indices are never validated; allocation failure is the allocator's.
//
// When T is itself a pointer type (FListP<VelqaSPOperator*>), every element
// is a heap cell that holds one pointer: the list deletes the cells, never the
// objects they point to. Their owner deletes those first.
#ifndef KEZ_FOUNDATION_FLIST_H_
#define KEZ_FOUNDATION_FLIST_H_

#include <climits>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace vorn {

namespace flist_detail {

// Slot count after growth; an overflowing count asks for the largest size so
// that the allocator, not an index wrap, fails.
inline std::size_t GrownSlots(int capacity) {
  if (capacity == 0) return 256;
  if (capacity > INT_MAX / 2) return SIZE_MAX / 64;
  return static_cast<std::size_t>(capacity) * 2;
}

}  // namespace flist_detail

template <class T>
class FListT {
 public:
  T* block = nullptr;  // start of the allocated block
  T* data = nullptr;   // first live element (block + n after cheap head removals)
  int count = 0;       // live elements
  int capacity = 0;    // slots from `data` onward
  int sorted = 0;      // 1 after Sort(), 0 after any append or insertion

  FListT() {}
  FListT(const FListT& other) { CopyFrom(other); }
  FListT(FListT&& other) noexcept { Steal(other); }
  FListT& operator=(const FListT& other) {
    if (this != &other) {
      Clear();
      CopyFrom(other);
    }
    return *this;
  }
  FListT& operator=(FListT&& other) noexcept {
    if (this != &other) {
      Clear();
      Steal(other);
    }
    return *this;
  }
  virtual ~FListT() { Clear(); }

  T& operator[](int i) { return data[i]; }
  const T& operator[](int i) const { return data[i]; }
  int Count() const { return count; }

  void Add(const T& item) {
    sorted = 0;
    if (data == nullptr || count >= capacity) Twice();
    data[count] = item;
    ++count;
  }
  void Add(T&& item) {
    sorted = 0;
    if (data == nullptr || count >= capacity) Twice();
    data[count] = std::move(item);
    ++count;
  }

  // Removes element `index`; see the class comment for the storage rules.
  void Delete(int index) {
    data[index] = T();
    if (index == 0 && capacity >= 2) {
      ++data;
      --capacity;
    } else {
      for (int i = index; i + 1 < count; ++i) data[i] = std::move(data[i + 1]);
      if (count - 1 > index) data[count - 1] = T();
    }
    const int oldCount = count;
    --count;
    if (oldCount >= 258 && count <= capacity / 2) Half();
  }

  // Releases the block (destroying class elements); the list becomes empty.
  void Clear() {
    delete[] block;
    block = nullptr;
    data = nullptr;
    count = 0;
    capacity = 0;
    sorted = 0;
  }

  void Sort() {
    if (count >= 2) {
      QuickSort(0, count - 1);
      sorted = 1;
    }
  }

  // Grows to 256 slots, or to twice the capacity, moving the live elements.
  void Twice() {
    const std::size_t slots = flist_detail::GrownSlots(capacity);
    T* grown = new T[slots];
    if (capacity != 0 && data != nullptr) {
      for (int i = 0; i < count; ++i) grown[i] = std::move(data[i]);
    }
    delete[] block;
    block = grown;
    data = grown;
    capacity = static_cast<int>(slots);
  }

  // Shrinks to half the capacity, keeping the first capacity/2 slots.
  void Half() {
    const int slots = capacity / 2;
    if (capacity >= -1 && capacity <= 1) {
      delete[] block;
      block = nullptr;
      data = nullptr;
    } else {
      T* shrunk = new T[slots];
      for (int i = 0; i < slots; ++i) shrunk[i] = std::move(data[i]);
      delete[] block;
      block = shrunk;
      data = shrunk;
    }
    capacity = slots;
  }

  // Sorts data[lo..hi] ascending in place (partition by the middle-right
  // pivot; the right part is handled by iteration, the left by recursion).
  void QuickSort(int lo, int hi) {
    for (;;) {
      int split;
      if (lo > hi) {
        split = lo;
      } else {
        const T pivot = data[(lo + hi + 1) / 2];
        int i = lo;
        int j = hi;
        for (;;) {
          while (i < hi && data[i] < pivot) ++i;
          while (j > lo && data[j] > pivot) --j;
          if (i >= j) {
            split = i;
            break;
          }
          std::swap(data[i], data[j]);
          if (j - 1 <= i) {
            split = i + 1;
            break;
          }
          ++i;
          --j;
        }
      }
      if (split - 1 > lo) QuickSort(lo, split - 1);
      if (split < hi) {
        lo = split;
      } else {
        return;
      }
    }
  }

 private:
  void CopyFrom(const FListT& other) {
    for (int i = 0; i < other.count; ++i) Add(other.data[i]);
    sorted = other.sorted;
  }
  void Steal(FListT& other) {
    block = other.block;
    data = other.data;
    count = other.count;
    capacity = other.capacity;
    sorted = other.sorted;
    other.block = other.data = nullptr;
    other.count = other.capacity = other.sorted = 0;
  }
};

template <class T>
class FListP {
 public:
  T** block = nullptr;
  T** data = nullptr;
  int count = 0;
  int capacity = 0;
  int sorted = 0;

  FListP() {}
  FListP(const FListP&) = delete;
  FListP& operator=(const FListP&) = delete;
  virtual ~FListP() { Clear(); }

  T*& operator[](int i) { return data[i]; }
  T* const& operator[](int i) const { return data[i]; }
  int Count() const { return count; }

  // Appends `item`; the list takes ownership of it.
  void Add(T* item) {
    sorted = 0;
    if (data == nullptr || count >= capacity) Twice();
    data[count] = item;
    ++count;
  }

  // Stores a heap copy of `item` at `index` (appends when index >= count)
  // and returns it.
  T* Insert(int index, const T& item) {
    sorted = 0;
    T* copy = new T(item);
    if (data == nullptr || count >= capacity) Twice();
    if (index < count) {
      for (int i = count; i > index; --i) data[i] = data[i - 1];
      data[index] = copy;
    } else {
      data[count] = copy;
    }
    ++count;
    return copy;
  }

  // Deletes the owned element `index` and removes its slot.
  void Delete(int index) {
    delete data[index];
    data[index] = nullptr;
    if (index == 0 && capacity >= 2) {
      ++data;
      --capacity;
    } else {
      for (int i = index; i + 1 < count; ++i) data[i] = data[i + 1];
    }
    const int oldCount = count;
    --count;
    if (oldCount >= 258 && count <= capacity / 2) Half();
  }

  // Removes slot `index` without deleting its element (ownership returns to
  // the caller).
  T* Take(int index) {
    T* item = data[index];
    data[index] = nullptr;
    for (int i = index; i + 1 < count; ++i) data[i] = data[i + 1];
    --count;
    return item;
  }

  // Deletes every owned element and releases the block.
  void Clear() {
    if (capacity != 0 && data != nullptr) {
      for (int i = 0; i < count; ++i) delete data[i];
    }
    delete[] block;
    block = nullptr;
    data = nullptr;
    count = 0;
    capacity = 0;
    sorted = 0;
  }

  void Twice() {
    const std::size_t slots = flist_detail::GrownSlots(capacity);
    T** grown = new T*[slots]();
    if (capacity != 0 && data != nullptr) {
      for (int i = 0; i < count; ++i) grown[i] = data[i];
    }
    delete[] block;
    block = grown;
    data = grown;
    capacity = static_cast<int>(slots);
  }

  void Half() {
    const int slots = capacity / 2;
    if (capacity >= -1 && capacity <= 1) {
      delete[] block;
      block = nullptr;
      data = nullptr;
    } else {
      T** shrunk = new T*[slots];
      for (int i = 0; i < slots; ++i) shrunk[i] = data[i];
      delete[] block;
      block = shrunk;
      data = shrunk;
    }
    capacity = slots;
  }
};

}  // namespace vorn

#endif  // KEZ_FOUNDATION_FLIST_H_
