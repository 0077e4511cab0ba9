#include "search/VelqaSPBase.h"

#include <cstddef>
#include <cstdint>

#include "search/DistanceScan.h"
#include "search/NeighbourRanking.h"

namespace vorn {

namespace {

// A raw record whose first element is greater than this marks a gap. The
// tests are written as `<= kGapLimit` for "valid" and `> kGapLimit` for
// "invalid", exactly as stated; a NaN first element is neither: it is not
// taken as the functions' input, does not count as valid history, and does
// not reset the functions either.
const double kGapLimit = 1e306;

// a * b slots, saturating so that an absurd size fails in the allocator
// instead of wrapping.
std::size_t Slots(std::size_t a, std::size_t b) {
  if (a != 0 && b > SIZE_MAX / sizeof(double) / a) return SIZE_MAX / sizeof(double);
  return a * b;
}

template <class T>
void Release(T*& p) {
  delete[] p;
  p = nullptr;
}

void CopyValues(double* to, const double* from, std::size_t n) {
  if (to == nullptr || from == nullptr) return;
  for (std::size_t i = 0; i < n; ++i) to[i] = from[i];
}

void DeleteFunctions(FListP<VelqaSPFunction*>& list) {
  for (int i = 0; i < list.count; ++i) {
    VelqaSPFunction*& cell = *list.data[i];
    delete cell;
    cell = nullptr;
  }
  list.Clear();
}

// Appends a heap copy of `function` to `list`. The copy and its cell belong
// to this call until the list holds them, so that running out of memory on
// the way leaks neither.
void AppendCopy(FListP<VelqaSPFunction*>& list, const VelqaSPFunction& function) {
  VelqaSPFunction* copy = new VelqaSPFunction(function);
  VelqaSPFunction** cell = nullptr;
  try {
    cell = new VelqaSPFunction*(copy);
    list.Add(cell);
  } catch (...) {
    delete cell;
    delete copy;
    throw;
  }
}

void CopyFunctions(FListP<VelqaSPFunction*>& to, const FListP<VelqaSPFunction*>& from) {
  for (int i = 0; i < from.count; ++i) AppendCopy(to, **from.data[i]);
}

}  // namespace

VelqaSPBase::VelqaSPBase() {}

VelqaSPBase::VelqaSPBase(const VelqaSPBase& source) {
  // A copy that runs out of memory half way gives back what it had taken:
  // the destructor does not run for a constructor that throws.
  try {
    Set(source);
  } catch (...) {
    Clear();
    throw;
  }
}

VelqaSPBase& VelqaSPBase::operator=(const VelqaSPBase& source) {
  if (this != &source) {
    Clear();
    Set(source);
  }
  return *this;
}

VelqaSPBase::~VelqaSPBase() { Clear(); }

void VelqaSPBase::Set(const VelqaSPBase& source) {
  if (this == &source) return;
  Clear();
  memorySize = source.memorySize;
  rawSize = source.rawSize;
  neighbourMax = source.neighbourMax;
  CopyFunctions(featureFunctions, source.featureFunctions);
  CopyFunctions(predictionFunctions, source.predictionFunctions);
  writePos = source.writePos;
  storedCount = source.storedCount;
  lagCount = source.lagCount;
  lagStride = source.lagStride;
  lagDecay = source.lagDecay;
  searchOffset = source.searchOffset;
  AllocBuf();

  const std::size_t M = memorySize;
  const std::size_t R = rawSize;
  const std::size_t F = static_cast<std::size_t>(featureFunctions.count);
  const std::size_t P = static_cast<std::size_t>(predictionFunctions.count);
  CopyValues(rawBuffer, source.rawBuffer, M * R);
  CopyValues(rawInput, source.rawInput, R);
  CopyValues(featureBuffer, source.featureBuffer, M * F);
  CopyValues(predictionBuffer, source.predictionBuffer, M * P);
  // The weight table copy counts L x P values (prediction functions, not
  // feature functions), kept as it stands; it never reaches past the L x F
  // values the table holds. The values equal what AllocBuf just computed
  // unless the source's weights were changed after its own AllocBuf.
  if (lagCount > 0) {
    const std::size_t L = static_cast<std::size_t>(lagCount);
    const std::size_t n = P < F ? L * P : L * F;
    CopyValues(distanceWeights, source.distanceWeights, n);
  }
}

void VelqaSPBase::Clear() {
  ClearBuf();
  memorySize = 0;
  rawSize = 0;
  neighbourMax = 32;
  DeleteFunctions(featureFunctions);
  DeleteFunctions(predictionFunctions);
  lagCount = 8;
  lagStride = 1;
  lagDecay = 1.0;
  searchOffset = 0;
}

void VelqaSPBase::AllocBuf() {
  if (lagStride < 1) lagStride = 1;  // a stride below 1 would never end a lag walk
  if (memorySize == 0) return;
  const std::size_t M = memorySize;
  const std::size_t R = rawSize;
  const std::size_t F = static_cast<std::size_t>(featureFunctions.count);
  const std::size_t P = static_cast<std::size_t>(predictionFunctions.count);
  if (R != 0) {
    rawBuffer = new double[Slots(M, R)];
    // Zeroed so that functions fed before the first valid record read
    // defined values.
    rawInput = new double[R]();
    featureBuffer = new double[Slots(M, F)];
    predictionBuffer = new double[Slots(M, P)];
  }
  if (F != 0 && lagCount > 0) {
    const std::size_t L = static_cast<std::size_t>(lagCount);
    distanceWeights = new double[Slots(L, F)];
    weightKinds = new uint8_t[Slots(L, F)];
    double factor = 1.0;
    std::size_t m = 0;
    for (; static_cast<int64_t>(m) * lagStride < lagCount; ++m) {
      double* row = distanceWeights + m * F;
      for (std::size_t i = 0; i < F; ++i) {
        const VelqaSPFunction& f = **featureFunctions.data[i];
        row[i] = factor * f.weight * static_cast<double>(1 - 2 * f.discrete);
      }
      factor = factor * lagDecay;
    }
    // Rows past ceil(L/S) are never read; zero them so that copies stay
    // defined.
    for (std::size_t k = m * F; k < L * F; ++k) distanceWeights[k] = 0.0;
  }
  lagRows = new double*[M + (lagCount > 0 ? static_cast<std::size_t>(lagCount) : 0)];
  candidateExamined = new uint8_t[M];
  if (neighbourMax != 0) {
    neighbourIndex = new int32_t[neighbourMax];
    neighbourDistance = new double[neighbourMax];
  }
}

void VelqaSPBase::ClearBuf() {
  Release(rawBuffer);
  Release(rawInput);
  Release(featureBuffer);
  Release(predictionBuffer);
  Release(distanceWeights);
  Release(weightKinds);
  Release(lagRows);
  Release(candidateExamined);
  Release(neighbourIndex);
  Release(neighbourDistance);
  writePos = 0;
  storedCount = 0;
}

void VelqaSPBase::SetSize(int size, int raw) {
  ClearBuf();
  memorySize = static_cast<uint32_t>(size);
  rawSize = static_cast<uint32_t>(raw);
  AllocBuf();
}

void VelqaSPBase::AddFeatureFunction(VelqaSPFunction& function) {
  ClearBuf();
  AppendCopy(featureFunctions, function);
  AllocBuf();
}

void VelqaSPBase::AddPredictionFunction(VelqaSPFunction& function) {
  ClearBuf();
  AppendCopy(predictionFunctions, function);
  AllocBuf();
}

void VelqaSPBase::AddMemory(const double* raw) {
  if (rawBuffer == nullptr) return;  // not configured
  const std::size_t R = rawSize;
  const std::size_t F = static_cast<std::size_t>(featureFunctions.count);
  const std::size_t P = static_cast<std::size_t>(predictionFunctions.count);
  const std::size_t slot = writePos;
  double* stored = rawBuffer + slot * R;
  for (std::size_t k = 0; k < R; ++k) stored[k] = raw[k];
  if (raw[0] <= kGapLimit) {
    for (std::size_t k = 0; k < R; ++k) rawInput[k] = raw[k];
  }
  // Every function runs every step, gap or not, so that stateful operators
  // advance exactly once per step.
  double* features = featureBuffer + slot * F;
  for (std::size_t i = 0; i < F; ++i) features[i] = (**featureFunctions.data[i]).Calc(rawInput);
  double* predictions = predictionBuffer + slot * P;
  for (std::size_t j = 0; j < P; ++j) {
    predictions[j] = (**predictionFunctions.data[j]).Calc(rawInput);
  }
  if (raw[0] > kGapLimit) {
    // Filters and differences restart after a gap.
    for (std::size_t i = 0; i < F; ++i) (**featureFunctions.data[i]).ResetValue();
    for (std::size_t j = 0; j < P; ++j) (**predictionFunctions.data[j]).ResetValue();
  }
  if (storedCount < memorySize) ++storedCount;
  writePos = writePos + 1 == memorySize ? 0 : writePos + 1;
}

int64_t VelqaSPBase::SlotOfAge(int age) const {
  int64_t slot = static_cast<int64_t>(writePos) - 1 - age;
  if (slot < 0) slot += memorySize;
  return slot;
}

bool VelqaSPBase::ValidAtAge(int age) const {
  return rawBuffer[SlotOfAge(age) * static_cast<int64_t>(rawSize)] <= kGapLimit;
}

void VelqaSPBase::FillLagRows() {
  const int64_t F = featureFunctions.count;
  const int n = static_cast<int>(storedCount);
  int64_t slot = static_cast<int64_t>(writePos) - 1;
  if (slot < 0) slot += memorySize;
  for (int a = 0; a < n; ++a) {
    lagRows[a] = featureBuffer + slot * F;
    slot = slot == 0 ? static_cast<int64_t>(memorySize) - 1 : slot - 1;
  }
}

void VelqaSPBase::DeliverNeighbours(int size, int& count, int* index, double* distance) const {
  count = size;
  for (int k = 0; k < size; ++k) {
    if (index != nullptr) index[k] = neighbourIndex[k];
    if (distance != nullptr) distance[k] = neighbourDistance[k];
  }
}

bool VelqaSPBase::SearchReady() const {
  const int F = featureFunctions.count;
  return searchOffset >= 0 && neighbourMax != 0 && neighbourIndex != nullptr &&
         rawBuffer != nullptr && lagRows != nullptr && candidateExamined != nullptr &&
         (F == 0 || (distanceWeights != nullptr && weightKinds != nullptr));
}

void VelqaSPBase::PrepareCandidates(int futureSteps, int candidates) {
  // The ages run backwards through the ring: from the slot before writePos
  // down to slot 0, then from slot M - 1 down. Each walk below is split at
  // that wrap so that its loops stay plain.
  const std::size_t F = static_cast<std::size_t>(featureFunctions.count);
  const std::size_t R = rawSize;
  const int M = static_cast<int>(memorySize);
  const int n = static_cast<int>(storedCount);
  const int newest = writePos == 0 ? M - 1 : static_cast<int>(writePos) - 1;
  double* const features = featureBuffer;
  double** const rows = lagRows;
  // Feature row of every stored age.
  int a = 0;
  for (int slot = newest; slot >= 0 && a < n; --slot, ++a) rows[a] = features + slot * F;
  for (int slot = M - 1; a < n; --slot, ++a) rows[a] = features + slot * F;
  // Candidate j (newest row at age O + j) is examined when the futureSteps
  // steps just newer than it, down to age O, are all valid: `run` counts
  // those consecutive valid steps.
  const double* const raw = rawBuffer;
  uint8_t* const examined = candidateExamined;
  int slot = newest - searchOffset;
  if (slot < 0) slot += M;
  int run = 0;
  int j = 0;
  while (j < candidates) {
    const int end = candidates - j < slot + 1 ? candidates : j + slot + 1;  // down to slot 0
    for (std::size_t at = static_cast<std::size_t>(slot) * R; j < end; ++j, at -= R) {
      examined[j] = run >= futureSteps ? 1 : 0;
      run = raw[at] <= kGapLimit ? run + 1 : 0;
    }
    slot = M - 1;
  }
}

void VelqaSPBase::Search(int futureSteps, int& count, int* index, double* distance) {
  count = 0;
  const int N = static_cast<int>(storedCount);
  const int O = searchOffset;
  const int L = lagCount;
  const int S = lagStride < 1 ? 1 : lagStride;
  const int K = static_cast<int>(neighbourMax);
  if (N - O <= L) return;  // strictly more than L stored steps are needed
  if (!SearchReady()) return;

  // Query length: the valid steps at ages 0, 1, ... up to the first gap.
  int q = 0;
  while (q < L && q < N && ValidAtAge(q)) ++q;
  // Candidates j = 0 .. N - O - q, the newest first; their windows reach
  // back to the oldest stored step at most.
  const int candidates = q == 0 || N - O < q ? 0 : N - O - q + 1;
  PrepareCandidates(futureSteps, candidates);
  if (candidates == 0) return;

  const int F = featureFunctions.count;
  const int rowsCompared = (q - 1) / S + 1;  // lag rows m with m * S < q
  for (int k = 0; k < rowsCompared * F; ++k) weightKinds[k] = ScanKindOf(distanceWeights[k]);

  DistanceScanTask task;
  task.rows = lagRows;
  task.weights = distanceWeights;
  task.kinds = weightKinds;
  task.examined = candidateExamined;
  task.features = F;
  task.queryLength = q;
  task.stride = S;
  task.firstAge = O;
  task.candidates = candidates;
  NeighbourRanking ranking(neighbourDistance, neighbourIndex, K);
  ScanDistances(task, ranking);
  DeliverNeighbours(ranking.size, count, index, distance);
}

void VelqaSPBase::kNNSearch(const double* query, int& count, int* index, double* distance) {
  count = 0;
  const int N = static_cast<int>(storedCount);
  const int O = searchOffset;
  const int L = lagCount;
  const int K = static_cast<int>(neighbourMax);
  const int F = featureFunctions.count;
  if (N - O <= L) return;
  // Without a lag there is no weight row and the candidate range would
  // reach past the oldest stored step.
  if (L < 1 || !SearchReady()) return;
  FillLagRows();

  NeighbourRanking ranking(neighbourDistance, neighbourIndex, K);
  const int last = N - O - L;
  for (int j = 0; j <= last; ++j) {
    const double* row = lagRows[O + j];
    double D = 0;
    // No mismatch rule here: a negative weight simply subtracts.
    for (int i = 0; i < F; ++i) {
      const double d = query[i] - row[i];
      D += distanceWeights[i] * (d * d);
    }
    if (D > ranking.bound) continue;  // a NaN distance is taken, as it stands
    ranking.Insert(D, -j);
  }
  DeliverNeighbours(ranking.size, count, index, distance);
}

void VelqaSPBase::ResetValue() {
  for (int i = 0; i < featureFunctions.count; ++i) (**featureFunctions.data[i]).ResetValue();
  for (int j = 0; j < predictionFunctions.count; ++j) (**predictionFunctions.data[j]).ResetValue();
  writePos = 0;
  storedCount = 0;
}

int64_t VelqaSPBase::SlotOfRelative(int i) const {
  int64_t slot = static_cast<int64_t>(writePos) - 1 + i;
  if (slot < 0) slot += memorySize;
  return slot;
}

double* VelqaSPBase::GetRAWBuffer(int i) {
  return rawBuffer + SlotOfRelative(i) * static_cast<int64_t>(rawSize);
}

double* VelqaSPBase::GetFeatureBuffer(int i) {
  return featureBuffer + SlotOfRelative(i) * static_cast<int64_t>(featureFunctions.count);
}

double* VelqaSPBase::GetPredictionBuffer(int i) {
  return predictionBuffer + SlotOfRelative(i) * static_cast<int64_t>(predictionFunctions.count);
}

}  // namespace vorn
