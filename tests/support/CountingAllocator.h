// For test and benchmark programs that need to see the heap: replaces the
// global operator new and delete of the program with versions that count
// blocks and bytes and can fail on demand.
//
// Include it in exactly ONE source file of a program (it defines the
// replacement operators). Every block carries its requested size in a header
// of one max_align_t, so the bytes in use are known at any moment. Counts
// are plain globals: read them from one thread at a time.
#ifndef KEZ_TESTS_SUPPORT_COUNTING_ALLOCATOR_H_
#define KEZ_TESTS_SUPPORT_COUNTING_ALLOCATOR_H_

#include <cstddef>
#include <cstdlib>
#include <new>

namespace kez_testing {

struct HeapCounts {
  long blocks = 0;          // blocks handed out so far
  long allocatedBytes = 0;  // bytes ever handed out
  long liveBytes = 0;       // bytes in use (requested sizes)
  long peakBytes = 0;       // highest liveBytes; tests may reset it
  // When n > 0, the n-th allocation from now fails (once): operator new
  // throws std::bad_alloc, the nothrow forms return null.
  long failIn = 0;
};

inline HeapCounts heap;

namespace counting_allocator_detail {

constexpr std::size_t kHeader = alignof(std::max_align_t);

inline void* Allocate(std::size_t n) noexcept {
  if (heap.failIn > 0 && --heap.failIn == 0) return nullptr;
  if (n > static_cast<std::size_t>(-1) - kHeader) return nullptr;  // absurd size
  void* raw = std::malloc(n + kHeader);
  if (raw == nullptr) return nullptr;
  *static_cast<std::size_t*>(raw) = n;
  ++heap.blocks;
  heap.allocatedBytes += static_cast<long>(n);
  heap.liveBytes += static_cast<long>(n);
  if (heap.liveBytes > heap.peakBytes) heap.peakBytes = heap.liveBytes;
  return static_cast<char*>(raw) + kHeader;
}

inline void* AllocateOrThrow(std::size_t n) {
  void* p = Allocate(n);
  if (p == nullptr) throw std::bad_alloc();
  return p;
}

inline void Release(void* p) noexcept {
  if (p == nullptr) return;
  char* raw = static_cast<char*>(p) - kHeader;
  heap.liveBytes -= static_cast<long>(*reinterpret_cast<std::size_t*>(raw));
  std::free(raw);
}

}  // namespace counting_allocator_detail
}  // namespace kez_testing

void* operator new(std::size_t n) {
  return kez_testing::counting_allocator_detail::AllocateOrThrow(n);
}
void* operator new[](std::size_t n) {
  return kez_testing::counting_allocator_detail::AllocateOrThrow(n);
}
void* operator new(std::size_t n, const std::nothrow_t&) noexcept {
  return kez_testing::counting_allocator_detail::Allocate(n);
}
void* operator new[](std::size_t n, const std::nothrow_t&) noexcept {
  return kez_testing::counting_allocator_detail::Allocate(n);
}
void operator delete(void* p) noexcept {
  kez_testing::counting_allocator_detail::Release(p);
}
void operator delete[](void* p) noexcept {
  kez_testing::counting_allocator_detail::Release(p);
}
void operator delete(void* p, std::size_t) noexcept {
  kez_testing::counting_allocator_detail::Release(p);
}
void operator delete[](void* p, std::size_t) noexcept {
  kez_testing::counting_allocator_detail::Release(p);
}
void operator delete(void* p, const std::nothrow_t&) noexcept {
  kez_testing::counting_allocator_detail::Release(p);
}
void operator delete[](void* p, const std::nothrow_t&) noexcept {
  kez_testing::counting_allocator_detail::Release(p);
}

#endif  // KEZ_TESTS_SUPPORT_COUNTING_ALLOCATOR_H_
