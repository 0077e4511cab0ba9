// Runs independent jobs on a few threads. Each job index runs exactly once;
// jobs take their next index from a shared counter, so which thread runs
// which job depends on timing, but a job writes only its own result slot
// (chosen by its index) and the caller reads the slots in index order: the
// outcome never depends on thread timing or on the number of threads.
#ifndef KEZ_TOOLS_KEZ_TUNE_PARALLELRUNNER_H_
#define KEZ_TOOLS_KEZ_TUNE_PARALLELRUNNER_H_

#include <cstddef>
#include <functional>

namespace kez_tools {

// Calls job(i) for every i in [0, count) on up to `threads` threads (at
// least one; the calling thread is one of them) and returns when all are
// done. `job` must not throw.
void RunParallel(size_t count, int threads,
                 const std::function<void(size_t)>& job);

}  // namespace kez_tools

#endif  // KEZ_TOOLS_KEZ_TUNE_PARALLELRUNNER_H_
