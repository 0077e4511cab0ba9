#include "ParallelRunner.h"

#include <atomic>
#include <thread>
#include <vector>

namespace kez_tools {

void RunParallel(size_t count, int threads,
                 const std::function<void(size_t)>& job) {
  std::atomic<size_t> next(0);
  auto work = [&]() {
    for (size_t i = next++; i < count; i = next++) job(i);
  };
  size_t helpers = threads > 1 ? static_cast<size_t>(threads - 1) : 0;
  if (helpers + 1 > count) helpers = count > 0 ? count - 1 : 0;
  std::vector<std::thread> pool;
  pool.reserve(helpers);
  for (size_t t = 0; t < helpers; ++t) pool.emplace_back(work);
  work();
  for (std::thread& t : pool) t.join();
}

}  // namespace kez_tools
