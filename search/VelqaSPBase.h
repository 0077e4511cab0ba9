// VelqaSPBase: the learner's memory and its neighbour search.
//
// A ring of the `memorySize` most recent steps; each slot holds the raw
// record that was fed in, the value of every feature function and of every
// prediction function computed on it. Search() finds the past moments whose
// recent window of feature values best matches the present window and
// returns them best first, as relative indices (0 = the newest step, -1 the
// one before it) with their weighted distances.
//
// A raw record whose first element is greater than 1e306 is a gap: it is
// stored (searches see it) but the functions keep reading the last valid
// record, and every function is reset after it.
//
// Configuration changes (functions, sizes, lagCount, lagStride, neighbourMax,
// lagDecay) are bracketed by ClearBuf() / AllocBuf() and empty the memory.
// Once configured, AddMemory, Search and kNNSearch allocate nothing.
// One thread owns an object; even searches write its scratch members.
#ifndef KEZ_SEARCH_VELQASPBASE_H_
#define KEZ_SEARCH_VELQASPBASE_H_

#include <cstdint>

#include "foundation/FList.h"
#include "kez/export.h"
#include "search/VelqaSPFunction.h"

namespace vorn {

class KEZ_EXPORT VelqaSPBase {
 public:
  FListP<VelqaSPFunction*> featureFunctions;     // owned; F = count
  FListP<VelqaSPFunction*> predictionFunctions;  // owned; P = count
  uint32_t memorySize = 0;    // M: slots in the ring
  uint32_t rawSize = 0;       // R: doubles in one raw record
  uint32_t neighbourMax = 32; // K: most neighbours a search returns
  double* rawBuffer = nullptr;         // M x R, slot-major
  double* rawInput = nullptr;          // R: last valid raw record
  double* featureBuffer = nullptr;     // M x F
  double* predictionBuffer = nullptr;  // M x P
  uint32_t writePos = 0;      // slot the next AddMemory writes
  uint32_t storedCount = 0;   // slots holding data, 0..M
  int32_t lagCount = 8;       // L: steps of history a search compares
  int32_t lagStride = 1;      // S: step between compared lags (>= 1)
  double lagDecay = 1.0;      // weight factor per compared lag
  int32_t searchOffset = 0;   // O: age of the newest candidate
  double* distanceWeights = nullptr;  // L x F allocated, ceil(L/S) x F used
  double** lagRows = nullptr;         // M + L: feature row of each age
  int32_t* neighbourIndex = nullptr;  // K: result indices, best first
  double* neighbourDistance = nullptr;  // K: result distances, ascending

  VelqaSPBase();
  VelqaSPBase(const VelqaSPBase& source);
  VelqaSPBase& operator=(const VelqaSPBase& source);
  virtual ~VelqaSPBase();

  void Set(const VelqaSPBase& source);
  void Clear();
  void AllocBuf();
  void ClearBuf();
  void SetSize(int memorySize, int rawSize);
  void AddFeatureFunction(VelqaSPFunction& function);
  void AddPredictionFunction(VelqaSPFunction& function);

  void AddMemory(const double* raw);
  void Search(int futureSteps, int& count, int* index, double* distance);
  void kNNSearch(const double* query, int& count, int* index, double* distance);
  void ResetValue();

  // Rows at relative index i: 0 = newest, -1 the one before, 1 = the slot the
  // next AddMemory overwrites. Not range checked.
  double* GetRAWBuffer(int i);
  double* GetFeatureBuffer(int i);
  double* GetPredictionBuffer(int i);

  // Model evolution (offline).
  void EncodeFeature(FListT<double>& code) const;
  void DecodeFeature(const double* code, int length);
  double GetFeatureStDev(int feature);
  void OptimizeFeatureOrder();
  void Mutate(int level, const FListP<VelqaSPFunction*>& pool);
};

}  // namespace vorn

#endif  // KEZ_SEARCH_VELQASPBASE_H_
